// Windows over the page: for a question, or for work that wants the whole attention.
import { button, make } from "./dom.js";
import { fill } from "./texts.js";

let lastId = 0;

// Makes a window with a heading and puts it on the page; it goes when it is closed.
export class Dialog {
  element;
  body;
  actions;
  #title;

  constructor(titleKey, values) {
    this.#title = make("h2", { id: `dialog-${++lastId}`, tabindex: "-1" });
    this.body = make("div", { class: "dialog-body" });
    this.actions = make("div", { class: "dialog-actions" });
    this.element = make("dialog", { "aria-labelledby": this.#title.id }, this.#title, this.body, this.actions);
    this.setTitle(titleKey, values);
    this.element.addEventListener("close", () => this.element.remove());
    document.body.append(this.element);
    this.element.showModal();
    this.#title.focus();
  }

  setTitle(key, values) {
    fill(this.#title, key, values);
  }

  // Replaces content and buttons; the focus goes to the heading where its place is gone.
  show(body, actions) {
    this.body.replaceChildren(...body);
    this.actions.replaceChildren(...actions);
    if (!this.element.contains(document.activeElement)) {
      this.#title.focus();
    }
  }

  close() {
    this.element.close();
  }
}

// Asks for consent; true when it was given. `content` are elements that say what will happen.
export function ask(title, values, content, confirmKey, isDangerous) {
  return new Promise((resolve) => {
    const dialog = new Dialog(title, values);
    let isAgreed = false;
    const agree = () => {
      isAgreed = true;
      dialog.close();
    };
    dialog.show(content, [
      button("dialog.cancel", () => dialog.close()),
      button(confirmKey, agree, { class: isDangerous ? "danger" : "primary" }),
    ]);
    dialog.element.addEventListener("close", () => resolve(isAgreed));
  });
}
