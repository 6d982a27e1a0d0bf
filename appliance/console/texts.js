// What the console says, in the language of who reads it. Sentences have "{name}" where a value goes in.
import de from "./texts-de.js";
import en from "./texts-en.js";

const kTables = { en, de };
const kStored = "camvora-language";
const kFirstStrongIsolate = "\u2068";
const kPopIsolate = "\u2069";

const valuesOf = new WeakMap(); // what stands in the sentences of elements, for another language

export const languages = Object.keys(kTables);
export let language = chosenLanguage();

// A language's name in itself.
export function languageName(code) {
  return kTables[code]["language.name"];
}

function chosenLanguage() {
  const wishes = [localStorage.getItem(kStored), ...navigator.languages];
  const codes = wishes.filter(Boolean).map((wish) => wish.slice(0, 2).toLowerCase());
  return codes.find((code) => code in kTables) ?? "en";
}

export function setLanguage(code) {
  language = code;
  localStorage.setItem(kStored, code);
  translate(document);
}

export function hasText(key) {
  return key in kTables[language];
}

// The sentence of `key` as plain text, its values isolated from the direction of what stands around them.
export function text(key, values = {}) {
  return pieces(key, values)
    .map((piece) => (piece.isValue ? kFirstStrongIsolate + piece.words + kPopIsolate : piece.words))
    .join("");
}

// Shows the sentence of `key` in `element`, and anew whenever the language changes.
export function fill(element, key, values) {
  const written = signature(key, values);
  if (element.dataset.written === written) {
    return;
  }
  element.dataset.written = written;
  element.dataset.text = key;
  element.replaceChildren(...pieces(key, values).map(asNode));
  keepValues(element, values);
}

// Gives `element` the sentence of `key` as its accessible name.
export function label(element, key, values) {
  element.dataset.label = key;
  keepValues(element, values);
  const words = text(key, values);
  if (element.getAttribute("aria-label") !== words) {
    element.setAttribute("aria-label", words);
  }
}

// Says everything below `root` in the present language.
export function translate(root) {
  document.documentElement.lang = language;
  for (const element of root.querySelectorAll("[data-text]")) {
    fill(element, element.dataset.text, valuesOf.get(element));
  }
  for (const element of root.querySelectorAll("[data-label]")) {
    label(element, element.dataset.label, valuesOf.get(element));
  }
}

function keepValues(element, given) {
  if (given !== undefined) {
    valuesOf.set(element, given);
  }
}

function signature(key, given) {
  return language + "\n" + key + "\n" + (given === undefined ? "" : JSON.stringify(given));
}

function pieces(key, given = {}) {
  const sentence = kTables[language][key] ?? key;
  return sentence
    .split(/(\{\w+\})/)
    .filter((piece) => piece !== "")
    .map((piece) => (/^\{\w+\}$/.test(piece)
      ? { isValue: true, words: String(given[piece.slice(1, -1)] ?? "") }
      : { isValue: false, words: piece }));
}

function asNode(piece) {
  if (!piece.isValue) {
    return document.createTextNode(piece.words);
  }
  const node = document.createElement("bdi");
  node.dir = "auto";
  node.textContent = piece.words;
  return node;
}
