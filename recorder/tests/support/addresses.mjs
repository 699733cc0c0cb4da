// The addresses that this computer has besides the one its own programs talk over.

import os from "node:os";

export function otherAddresses() {
  const interfaces = Object.values(os.networkInterfaces()).flat();
  const outer = interfaces.filter(({ internal, family }) => !internal && family === "IPv4");
  // Linux answers on all of 127.0.0.0/8.
  const loopback = process.platform === "linux" ? ["127.0.0.2"] : [];
  return [...outer.map(({ address }) => address), ...loopback];
}
