// The services, a card each, and what is done for all of them.
import { installDropped, lookForAll } from "./actions.js";
import { Card } from "./card.js";
import { button, make, reconcile, setAttribute, setEnabled, setShown } from "./dom.js";
import { stateOf } from "./servicestate.js";
import { store } from "./store.js";
import { fill } from "./texts.js";

export class Services {
  #cards = new WeakMap(); // by their elements
  #grid = make("div", { class: "cards" });
  #running = make("span");
  #updates = make("span");
  #summary = make("p", { class: "quiet" }, this.#running, this.#updates);
  #check = button("services.check", lookForAll);
  #empty = make("div", { class: "empty", hidden: true }, make("p", { class: "empty-title", text: "services.none" }),
    make("p", { class: "quiet", text: "services.none.words" }));
  element = make("section", { "aria-labelledby": "services-title" },
    make("header", { class: "section-head" },
      make("div", {}, make("h2", { id: "services-title", text: "services.title" }), this.#summary), this.#check),
    this.#grid, this.#empty);

  constructor() {
    takeDropsAnywhere();
  }

  show() {
    const isUsable = store.connection === "live";
    const known = store.services.map(stateOf);
    setAttribute(this.#grid, "data-stale", !isUsable);
    reconcile(this.#grid, known, ({ info }) => info.service, ({ info }) => this.#makeCard(info.service),
      (element, one) => this.#cards.get(element).show(one, isUsable));
    setShown(this.#empty, isUsable && known.length === 0);
    setShown(this.#summary, known.length > 0);
    fill(this.#running, "services.running",
      { running: known.filter(({ info }) => info.blRunning).length, all: known.length });
    const updates = known.filter(({ release }) => release).length;
    setShown(this.#updates, updates > 0);
    fill(this.#updates, "services.updates", { count: updates });
    setEnabled(this.#check, isUsable && known.some(({ actions }) => actions.has("check")));
  }

  #makeCard(service) {
    const card = new Card(service);
    this.#cards.set(card.element, card);
    return card.element;
  }
}

// A file that misses the cards is not opened by the browser instead: its name may tell the service.
function takeDropsAnywhere() {
  document.addEventListener("dragover", (event) => event.preventDefault());
  document.addEventListener("drop", (event) => {
    event.preventDefault();
    if (event.dataTransfer.files.length > 0 && store.connection === "live") {
      void installDropped(event.dataTransfer.files);
    }
  });
}
