// Shapes as signed distances: negative inside, positive outside, in the unit of the coordinates.
// A shape is a function of a point; what it looks like at an edge is the painter's business.

export const circle = (centerX, centerY, radius) => (x, y) =>
  Math.hypot(x - centerX, y - centerY) - radius;

// `cornerRadius` at most half the shorter side.
export const roundedRectangle = (left, top, width, height, cornerRadius) => {
  const centerX = left + width / 2;
  const centerY = top + height / 2;
  return (x, y) => {
    const dx = Math.abs(x - centerX) - width / 2 + cornerRadius;
    const dy = Math.abs(y - centerY) - height / 2 + cornerRadius;
    const outside = Math.hypot(Math.max(dx, 0), Math.max(dy, 0));
    return outside + Math.min(Math.max(dx, dy), 0) - cornerRadius;
  };
};

// Edges of three half planes, the corners rounded by `radius`.
export const roundedTriangle = (a, b, c, radius) => {
  const edges = [[a, b], [b, c], [c, a]].map(([from, to]) => {
    const length = Math.hypot(to[0] - from[0], to[1] - from[1]);
    const normal = [(to[1] - from[1]) / length, -(to[0] - from[0]) / length];
    return (x, y) => (x - from[0]) * normal[0] + (y - from[1]) * normal[1];
  });
  const corners = [a, b, c];
  return (x, y) => {
    const inside = Math.max(...edges.map((edge) => edge(x, y)));
    if (inside <= 0) {
      return inside - radius;
    }
    return Math.min(...corners.map((corner, i) =>
      distanceToSegment(x, y, corner, corners[(i + 1) % 3]))) - radius;
  };
};

function distanceToSegment(x, y, from, to) {
  const dx = to[0] - from[0];
  const dy = to[1] - from[1];
  const along = ((x - from[0]) * dx + (y - from[1]) * dy) / (dx * dx + dy * dy);
  const clamped = Math.min(1, Math.max(0, along));
  return Math.hypot(x - from[0] - clamped * dx, y - from[1] - clamped * dy);
}
