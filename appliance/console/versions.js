// The order of versions: their pieces one by one, numbers by value and above words.
function comparePieces(a, b) {
  const [x, y] = [a, b].map((piece) => (/^\d+$/.test(piece) ? BigInt(piece) : piece));
  if (typeof x !== typeof y) {
    return typeof x === "bigint" ? 1 : -1;
  }
  return x < y ? -1 : Number(x > y);
}

// Below, at or above zero, as `a` is older than, the same as or newer than `b`.
export function compareVersions(a, b) {
  const [left, right] = [a, b].map((version) => version.split(/[.-]/));
  const count = Math.max(left.length, right.length);
  const orders = Array.from({ length: count }, (_, i) => comparePieces(left[i] ?? "0", right[i] ?? "0"));
  return orders.find((order) => order !== 0) ?? 0;
}

// What an installation of `next` over `installed` is: "first", "newer", "same" or "older".
export function changeBetween(installed, next) {
  return installed === "" ? "first" : ["older", "same", "newer"][Math.sign(compareVersions(next, installed)) + 1];
}
