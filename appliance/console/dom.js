// Elements, made and changed in place. Whatever is shown goes in as text, never as markup.
import { fill, label } from "./texts.js";

// Makes an element. Of the attributes "text" and "label" are keys of the texts (content and accessible name),
// "on..." are listeners, `true` stands for an attribute without value, `false` and undefined for none.
export function make(tag, attributes = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (name === "text") {
      fill(element, value);
    } else if (name === "label") {
      label(element, value);
    } else if (name.startsWith("on")) {
      element.addEventListener(name.slice(2), value);
    } else if (value !== false && value !== undefined) {
      element.setAttribute(name, value === true ? "" : value);
    }
  }
  element.append(...children);
  return element;
}

// A button that does nothing while it is switched off by `setEnabled`, but keeps the focus.
export function button(key, onclick, attributes = {}) {
  return make("button", { type: "button", text: key, ...(onclick && { onclick }), ...attributes });
}

// A text of unknown origin, kept from changing the direction of what stands around it.
export function foreign(value, attributes = {}) {
  return make("bdi", { dir: "auto", ...attributes }, String(value));
}

export function setText(element, value) {
  const words = String(value ?? "");
  if (element.textContent !== words) {
    element.textContent = words;
  }
}

export function setAttribute(element, name, value) {
  if (element.getAttribute(name) !== value) {
    element.setAttribute(name, value);
  }
}

export function setShown(element, isShown) {
  if (element.hidden === isShown) {
    element.hidden = !isShown;
  }
}

// Unlike "disabled" this leaves the focus where it is; `guardClicks` keeps the promise.
export function setEnabled(element, isEnabled) {
  setAttribute(element, "aria-disabled", String(!isEnabled));
}

export function isEnabled(element) {
  return element.getAttribute("aria-disabled") !== "true";
}

// Swallows clicks on what is switched off below `root`, before anybody else sees them.
export function guardClicks(root) {
  root.addEventListener("click", (event) => {
    const control = event.target.closest("[aria-disabled=true]");
    if (control !== null) {
      event.stopPropagation();
      event.preventDefault();
    }
  }, true);
}

// Makes the children of `parent` show `items` in their order: elements are made for new keys, removed with
// theirs, and otherwise stay the same.
export function reconcile(parent, items, keyOf, create, update) {
  const present = new Map([...parent.children].map((child) => [child.dataset.key, child]));
  let place = parent.firstElementChild;
  for (const item of items) {
    const key = String(keyOf(item));
    let element = present.get(key);
    present.delete(key);
    if (element === undefined) {
      element = create(item);
      element.dataset.key = key;
    }
    if (element === place) {
      place = place.nextElementSibling;
    } else {
      parent.insertBefore(element, place);
    }
    update(element, item);
  }
  for (const element of present.values()) {
    element.remove();
  }
}
