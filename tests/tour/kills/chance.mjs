// Random choices that a seed repeats: the generator "mulberry32".

export class Chance {
  #state;

  constructor(seed) {
    this.#state = seed >>> 0;
  }

  /** At least 0, less than 1. */
  fraction() {
    this.#state = (this.#state + 0x6d2b79f5) >>> 0;
    let mixed = this.#state;
    mixed = Math.imul(mixed ^ (mixed >>> 15), mixed | 1);
    mixed ^= mixed + Math.imul(mixed ^ (mixed >>> 7), mixed | 61);
    return ((mixed ^ (mixed >>> 14)) >>> 0) / 2 ** 32;
  }

  /** From 1 to `limit`. */
  upTo(limit) {
    return 1 + Math.floor(this.fraction() * limit);
  }

  oneOf(list) {
    return list[Math.floor(this.fraction() * list.length)];
  }
}
