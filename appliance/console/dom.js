// Elements, made and changed in place. Whatever is shown goes in as text, never as markup.
import { fill, text } from "./texts.js";

const kSaidMs = 5000;

// Of the attributes "text" and "label" are keys of the texts, or [key, values]; "on..." are listeners; true stands
// for an attribute without value, undefined for none.
export function make(tag, attributes = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (name === "text") {
      fill(element, ...[value].flat());
    } else if (name === "label") {
      element.setAttribute("aria-label", text(...[value].flat()));
    } else if (name.startsWith("on")) {
      element.addEventListener(name.slice(2), value);
    } else if (value !== undefined) {
      element.setAttribute(name, value === true ? "" : value);
    }
  }
  element.append(...children);
  return element;
}

export function button(key, onclick, attributes) {
  return make("button", { type: "button", text: key, onclick, ...attributes });
}

// The setters touch only what is not so yet.
export function setText(element, words) {
  if (element.textContent !== words) {
    element.textContent = words;
  }
}

export function setAttribute(element, name, value) {
  if (element.getAttribute(name) !== String(value)) {
    element.setAttribute(name, value);
  }
}

export function setShown(element, isShown) {
  if (element.hidden === Boolean(isShown)) {
    element.hidden = !isShown;
  }
}

// Names a button after what it does to what: the words that are seen, and those that are read out.
export function nameAction(element, action, subject) {
  fill(element, `action.${action}`);
  setAttribute(element, "aria-label", text("action.on", { action: text(`action.${action}`), name: subject }));
}

// Unlike "disabled" this leaves the focus where it is; `guardClicks` keeps the promise.
export function setEnabled(element, isEnabled) {
  setAttribute(element, "aria-disabled", !isEnabled);
}

export function isEnabled(element) {
  return element.getAttribute("aria-disabled") !== "true";
}

// Swallows clicks on what is switched off, before anybody else sees them.
export function guardClicks() {
  document.addEventListener("click", (event) => {
    if (event.target.closest("[aria-disabled=true]")) {
      event.stopPropagation();
      event.preventDefault();
    }
  }, true);
}

// Makes the children of `parent` show `items`, in their order; elements stay with their keys.
export function reconcile(parent, items, keyOf, create, update) {
  const present = new Map([...parent.children].map((child) => [child.dataset.key, child]));
  let place = parent.firstElementChild;
  for (const item of items) {
    const key = String(keyOf(item));
    const element = present.get(key) ?? create(item);
    present.delete(key);
    element.dataset.key = key;
    if (element === place) {
      place = place.nextElementSibling;
    } else {
      parent.insertBefore(element, place);
    }
    update(element, item);
  }
  present.forEach((element) => element.remove());
}

// Says to screen readers what has changed somewhere on the page.
export function announce(key, values) {
  const words = make("p", { text: [key, values] });
  document.getElementById("announcer").append(words);
  setTimeout(() => words.remove(), kSaidMs);
}
