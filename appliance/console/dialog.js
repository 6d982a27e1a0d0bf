// Windows over the page: for a question, or for work that wants the whole attention.
import { button, make, setEnabled, setShown } from "./dom.js";
import { titleOf } from "./header.js";
import { store, whenChanged } from "./store.js";
import { fill } from "./texts.js";

const kTroubles = ["lost", "refused"];

await loadStyles();

const openDialogs = new Set();
let lastId = 0;

whenChanged(() => openDialogs.forEach((dialog) => dialog.showConnection()));

// They are wanted with the first window.
function loadStyles() {
  return new Promise((resolve) => {
    document.head.append(make("link", { rel: "stylesheet", href: "/console/dialogs.css", onload: resolve,
      onerror: resolve }));
  });
}

// On the page until it is closed; the focus then is where it was before.
export class Dialog {
  #title = make("h2", { id: `dialog-${++lastId}`, tabindex: "-1" });
  #trouble = make("p", { class: "warning", role: "status" });
  #body = make("div", { class: "dialog-body" });
  #actions = make("div", { class: "dialog-actions" });
  #doers = [];
  element = make("dialog", { "aria-labelledby": this.#title.id }, this.#title, this.#trouble, this.#body,
    this.#actions);

  constructor(title, values) {
    this.setTitle(title, values);
    this.whenClosed(() => {
      openDialogs.delete(this);
      this.element.remove();
    });
    openDialogs.add(this);
    this.showConnection();
    document.body.append(this.element);
    this.element.showModal();
    this.#title.focus();
  }

  setTitle(key, values) {
    fill(this.#title, key, values);
  }

  show(content, ...actions) {
    this.#body.replaceChildren(...content);
    this.#actions.replaceChildren(...actions);
    if (!this.element.contains(document.activeElement)) {
      this.#title.focus();
    }
  }

  // While nobody answers, that is said, and nothing can be done here.
  showConnection() {
    const { connection } = store;
    const isTrouble = kTroubles.includes(connection);
    setShown(this.#trouble, isTrouble);
    if (isTrouble) {
      fill(this.#trouble, ...titleOf(connection, store));
    }
    this.#doers.forEach((doer) => setEnabled(doer, connection === "live"));
  }

  // A button that closes it.
  closer(key) {
    return button(key, () => this.element.close());
  }

  // A button that closes it, and then does `work`.
  doer(key, work, style = "primary") {
    const closeAndWork = () => {
      this.element.close();
      work();
    };
    const doer = button(key, closeAndWork, { class: style });
    this.#doers.push(doer);
    this.showConnection();
    return doer;
  }

  whenClosed(listener) {
    this.element.addEventListener("close", listener);
  }
}

// Asks for consent; true when it was given. `content` are elements that say what will happen.
export function ask(title, values, content, confirm, isDangerous) {
  return new Promise((resolve) => {
    const dialog = new Dialog(title, values);
    dialog.show(content, dialog.closer("dialog.cancel"),
      dialog.doer(confirm, () => resolve(true), isDangerous ? "danger" : "primary"));
    dialog.whenClosed(() => resolve(false));
  });
}

// Says something, `sentence`, that needs no answer.
export function tell(title, values, sentence) {
  const dialog = new Dialog(title, values);
  dialog.show([make("p", { text: sentence, role: "alert" })], dialog.closer("dialog.close"));
}

// A list of facts. `rows`: keys of texts, each with what it is; those without are left out.
export function facts(rows) {
  return make("dl", { class: "facts" }, ...rows.filter(([, content]) => content).map(([key, content]) =>
    make("div", {}, make("dt", { text: key }), make("dd", { dir: "auto" }, content))));
}
