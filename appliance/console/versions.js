// The order of versions: pieces between "." and "-" are compared one by one, numbers by their value and above words.
const kEqual = 0;

function pieceOf(words) {
  return /^\d+$/.test(words)
    ? { isNumber: true, words: words.replace(/^0+/, "") }
    : { isNumber: false, words };
}

function comparePieces(a, b) {
  if (a.isNumber !== b.isNumber) {
    return a.isNumber ? 1 : -1;
  }
  if (a.isNumber && a.words.length !== b.words.length) {
    return a.words.length - b.words.length;
  }
  return a.words < b.words ? -1 : Number(a.words > b.words);
}

// Below, at or above zero, as `a` is older than, the same as or newer than `b`.
export function compareVersions(a, b) {
  const left = a.split(/[.-]/);
  const right = b.split(/[.-]/);
  for (let i = 0; i < Math.max(left.length, right.length); ++i) {
    const order = comparePieces(pieceOf(left[i] ?? "0"), pieceOf(right[i] ?? "0"));
    if (order !== kEqual) {
      return order;
    }
  }
  return kEqual;
}

// What an installation of `next` over `installed` is: "first", "newer", "same" or "older".
export function changeBetween(installed, next) {
  if (!installed) {
    return "first";
  }
  const order = compareVersions(next, installed);
  return order === kEqual ? "same" : order > kEqual ? "newer" : "older";
}
