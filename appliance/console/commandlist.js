// The lines of `camvoractl` for what can be done to a service, to be copied.
import { announce } from "./announcer.js";
import { copy } from "./clipboard.js";
import { commandFor } from "./commands.js";
import { foreign, make, reconcile } from "./dom.js";
import { store } from "./store.js";
import { fill, label } from "./texts.js";

const kShownMs = 2000;

export function commandList() {
  const list = make("ul");
  const summary = make("summary", { text: "commands.title", class: "button-like" });
  const element = make("details", { class: "commands" }, summary, list);
  closeWhenLeft(element, summary);
  const show = ({ info, actions }) => {
    label(summary, "action.on", { action: summary.textContent, name: info.name });
    const lines = [...new Set([...actions].map((action) => commandFor(action, info, store.recorder)))];
    reconcile(list, lines, (line) => line, itemOf, () => {});
  };
  return { element, show };
}

function itemOf(line) {
  const button = make("button", { type: "button", text: "commands.copy", onclick: () => void copyLine(button, line) });
  label(button, "commands.copyLine", { line });
  return make("li", {}, make("code", {}, foreign(line)), button);
}

async function copyLine(button, line) {
  await copy(line);
  fill(button, "commands.copied");
  announce("commands.copied");
  setTimeout(() => fill(button, "commands.copy"), kShownMs);
}

function closeWhenLeft(element, summary) {
  element.addEventListener("keydown", (event) => {
    if (event.key === "Escape" && element.open) {
      element.open = false;
      summary.focus();
    }
  });
  element.addEventListener("focusout", (event) => {
    if (event.relatedTarget !== null && !element.contains(event.relatedTarget)) {
      element.open = false;
    }
  });
  document.addEventListener("click", (event) => {
    if (!element.contains(event.target)) {
      element.open = false;
    }
  });
}
