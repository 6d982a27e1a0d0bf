// What the console says, in the language of who reads it. Sentences have "{name}" where a value goes in.
const kStored = "camvora-language";
const kIsolate = ["\u2068", "\u2069"]; // characters that keep a value's direction to itself

export const languages = { en: "English", de: "Deutsch" };
export const language = chosenLanguage();

const table = (await import(`./texts-${language}.js`)).default;
const shown = new WeakMap();

function chosenLanguage() {
  const wishes = [localStorage.getItem(kStored), ...navigator.languages];
  return wishes.map((wish) => wish?.slice(0, 2).toLowerCase()).find((code) => code in languages) ?? "en";
}

export function setLanguage(code) {
  localStorage.setItem(kStored, code);
  location.reload();
}

export function hasText(key) {
  return key in table;
}

// The sentence of `key` as plain text.
export function text(key, values) {
  const isolated = ({ words, isValue }) => (isValue ? kIsolate[0] + words + kIsolate[1] : words);
  return pieces(key, values).map(isolated).join("");
}

// Shows the sentence of `key` in `element`.
export function fill(element, key, values) {
  redraw(element, [key, values], () => pieces(key, values)
    .map(({ words, isValue }) => (isValue ? foreign(words) : words)));
}

// Replaces the content of `element` by what `build` returns, where `state` is not what it shows already.
export function redraw(element, state, build) {
  const signature = JSON.stringify(state);
  if (shown.get(element) !== signature) {
    shown.set(element, signature);
    const hasFocus = element.contains(document.activeElement);
    element.replaceChildren(...build());
    if (hasFocus) {
      element.querySelector("button, summary")?.focus();
    }
  }
}

// A text of unknown origin, kept from changing the direction of what stands around it.
export function foreign(words) {
  const element = document.createElement("bdi");
  element.dir = "auto";
  element.textContent = words;
  return element;
}

function pieces(key, values = {}) {
  return (table[key] ?? key).split(/\{(\w+)\}/).map((words, index) =>
    (index % 2 === 1 ? { words: String(values[words] ?? ""), isValue: true } : { words, isValue: false }));
}
