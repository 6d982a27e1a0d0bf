// The services, a card each, and what is done to all of them.
import { lookForAll } from "./actions.js";
import { Card } from "./card.js";
import { button, make, reconcile, setAttribute, setEnabled, setShown } from "./dom.js";
import { chooseFile, installFile } from "./install.js";
import { stateOf } from "./servicestate.js";
import { store } from "./store.js";
import { fill } from "./texts.js";

export class Services {
  element;
  #cards = new Map();
  #grid = make("div", { class: "cards" });
  #summary = make("p", { class: "quiet" });
  #running = make("span");
  #updates = make("span");
  #empty = make("div", { class: "empty", hidden: true }, make("p", { class: "empty-title", text: "services.none" }),
    make("p", { class: "quiet", text: "services.none.words" }));
  #check = button("services.checkAll", () => void lookForAll());
  #install = button("services.install", () => chooseFile());

  constructor() {
    this.#summary.append(this.#running, this.#updates);
    this.element = make("section", { "aria-labelledby": "services-title" },
      make("header", { class: "section-head" },
        make("div", {}, make("h2", { id: "services-title", text: "services.title" }), this.#summary),
        make("div", { class: "buttons" }, this.#check, this.#install)),
      this.#grid, this.#empty);
    takeDropsAnywhere();
  }

  show() {
    const isUsable = store.connection === "live";
    const known = store.services.map(stateOf);
    setAttribute(this.#grid, "data-stale", String(!isUsable));
    reconcile(this.#grid, known, ({ info }) => info.service, ({ info }) => this.#cardOf(info.service).element,
      (element, one) => this.#cardOf(one.info.service).show(one, isUsable));
    this.#showSummary(known);
    setShown(this.#empty, isUsable && known.length === 0);
    const takers = known.filter(({ info }) => info.blHasPackages);
    setEnabled(this.#check, isUsable && takers.some(({ actions }) => actions.has("check")));
    setEnabled(this.#install, isUsable && takers.some(({ actions }) => actions.has("install")));
  }

  #cardOf(service) {
    if (!this.#cards.has(service)) {
      this.#cards.set(service, new Card(service));
    }
    return this.#cards.get(service);
  }

  #showSummary(known) {
    setShown(this.#summary, known.length > 0);
    fill(this.#running, "services.summary",
      { running: known.filter(({ info }) => info.blRunning).length, all: known.length });
    const updates = known.filter(({ release }) => release !== undefined).length;
    setShown(this.#updates, updates > 0);
    fill(this.#updates, "services.updates", { count: updates });
  }
}

// A file that misses the cards is not opened by the browser instead: its name may tell the service.
function takeDropsAnywhere() {
  document.addEventListener("dragover", (event) => event.preventDefault());
  document.addEventListener("drop", (event) => {
    event.preventDefault();
    if (event.dataTransfer.files.length > 0 && store.connection === "live") {
      installFile(event.dataTransfer.files[0]);
    }
  });
}
