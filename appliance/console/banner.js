// What is said above everything else while the appliance does not answer, or another one is shown.
import { announce } from "./announcer.js";
import { button, make, setShown } from "./dom.js";
import { retryNow } from "./source.js";
import { store } from "./store.js";
import { fill, text } from "./texts.js";

const kTroubles = ["lost", "refused"];

export class Banner {
  element = make("div", { class: "banners" });
  #trouble = make("div", { class: "banner trouble", hidden: true });
  #title = make("p", { class: "strip-title" });
  #words = make("p");
  #recorder = make("p", { class: "banner", hidden: true });
  #before = "connecting";

  constructor() {
    this.#trouble.append(make("div", {}, this.#title, this.#words), button("lost.retry", retryNow));
    this.element.append(this.#trouble, this.#recorder);
  }

  show() {
    const { connection, recorder } = store;
    const isTrouble = kTroubles.includes(connection);
    setShown(this.#trouble, isTrouble);
    if (isTrouble) {
      fill(this.#title, `${connection}.title`);
      fill(this.#words, `${connection}.words`, { name: recorder });
    }
    setShown(this.#recorder, recorder !== "");
    fill(this.#recorder, "recorder.note", { name: recorder });
    if (connection !== this.#before) {
      this.#before = connection;
      announce("announce.connection", { state: text(`connection.${connection}`) });
    }
  }
}
