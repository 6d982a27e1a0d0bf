// The card of a service: built once, then changed where something else is to be shown.
import { act, installDropped } from "./actions.js";
import { announce, button, isEnabled, make, nameAction, setAttribute, setEnabled, setShown, setText } from "./dom.js";
import { FailureStrip } from "./failurestrip.js";
import { time, today } from "./format.js";
import { load } from "./load.js";
import { ReleaseStrip } from "./releasestrip.js";
import { store } from "./store.js";
import { fill, foreign, redraw, text } from "./texts.js";

const kPackageActions = ["check", "install", "restore"];

export class Card {
  #known;
  #said = [];
  #name = make("h3", { dir: "auto" });
  #state = make("span", { class: "state" });
  #line = make("p", { class: "line" });
  #bar = make("progress", { class: "work", "aria-hidden": "true" });
  #auto = make("button", { type: "button", role: "switch", class: "switch",
    onclick: () => this.#act(this.#known.info.blAutoUpdate ? "autoOff" : "autoOn") });
  #autoField = make("span", { class: "auto" });
  #failure = new FailureStrip();
  #release = new ReleaseStrip((action) => this.#act(action));
  #power = button("action.start", () => this.#act(this.#known.info.blRunning ? "stop" : "start"), { class: "power" });
  #buttons = new Map(["restart", ...kPackageActions].map((action) =>
    [action, button(`action.${action}`, () => this.#act(action))]));
  #commands; // the lines for `camvoractl`, once they were wanted
  #commandsField = make("details", { class: "commands", ontoggle: () => void this.#unfoldCommands() },
    make("summary", { text: "commands.title", class: "button-like" }));
  #packages = make("div", { class: "buttons quiet-buttons" },
    ...kPackageActions.map((action) => this.#buttons.get(action)));
  element = make("article", { class: "card", tabindex: "-1" }, this.#bar,
    make("header", {}, this.#name, this.#state), make("div", { class: "facts-line" }, this.#line, this.#autoField),
    this.#failure.element, this.#release.element,
    make("div", { class: "buttons" }, this.#power, this.#buttons.get("restart"), this.#commandsField),
    this.#packages);

  constructor(service) {
    this.#name.id = `name-${service}`;
    const label = make("span", { id: `auto-${service}`, text: "auto.label" });
    this.#autoField.append(label, this.#auto);
    this.#auto.setAttribute("aria-labelledby", `${label.id} ${this.#name.id}`);
    this.element.setAttribute("aria-labelledby", this.#name.id);
    this.#takeDrops();
  }

  // Shows `known`, what `stateOf` says of the service; `isUsable` is false while nobody answers.
  show(known, isUsable) {
    const { info, state, actions } = known;
    const hasFocus = this.element.contains(document.activeElement);
    this.#known = known;
    setText(this.#name, info.name);
    setAttribute(this.element, "data-state", state);
    fill(this.#state, `state.${state}`);
    this.#showLine(known);
    const news = [text(`state.${state}`), this.#failure.show(known), this.#release.show(known, isUsable)];
    const ids = ["", known.failure?.request || known.failure?.begin, ""];
    this.#showButton(this.#power, info.blRunning ? "stop" : "start", isUsable);
    this.#buttons.forEach((element, action) => this.#showButton(element, action, isUsable));
    setAttribute(this.#auto, "aria-checked", info.blAutoUpdate);
    setEnabled(this.#auto, isUsable && actions.has(info.blAutoUpdate ? "autoOff" : "autoOn"));
    setShown(this.#autoField, info.blHasPackages);
    setShown(this.#packages, info.blHasPackages);
    setShown(this.#buttons.get("restore"), info.blFactoryCopy);
    this.#commands?.show(known);
    if (isUsable) {
      this.#say(news, ids);
    }
    const focused = document.activeElement;
    if (hasFocus && (!this.element.contains(focused) || focused.closest("[hidden]"))) {
      this.element.focus();
    }
  }

  // `news`: the state, the failure and the release in words, "" for none, each with its id. What is there at first is
  // no news, nor is what comes back.
  #say(news, ids) {
    const isFirst = this.#said.length === 0;
    news.forEach((words, index) => {
      const saying = `${words} ${ids[index]}`;
      if (words && saying !== this.#said[index] && !isFirst) {
        announce("announce.news", { name: this.#known.info.name, words });
      }
      this.#said[index] = words ? saying : this.#said[index] ?? "";
    });
  }

  #showLine({ info, work }) {
    setShown(this.#bar, work);
    redraw(this.#line, [today(), work?.method, work?.who, info.version, info.since],
      () => (work ? workLine(work) : factsLine(info)));
  }

  #showButton(element, action, isUsable) {
    nameAction(element, action, this.#known.info.name);
    setEnabled(element, isUsable && this.#known.actions.has(action));
  }

  async #unfoldCommands() {
    const loaded = await load("./commands.js");
    this.#commands ??= loaded && new loaded.CommandList(this.#commandsField);
    this.#commands?.show(this.#known);
  }

  #act(action) {
    act(action, this.#known.info);
  }

  #takeDrops() {
    const { classList } = this.element;
    this.element.addEventListener("dragover", () => classList.toggle("drop", isEnabled(this.#buttons.get("install"))));
    this.element.addEventListener("dragleave", () => classList.remove("drop"));
    this.element.addEventListener("drop", (event) => {
      classList.remove("drop");
      if (event.dataTransfer.files.length > 0 && this.#known.info.blHasPackages && store.connection === "live") {
        event.preventDefault();
        event.stopPropagation();
        void installDropped(event.dataTransfer.files, this.#known.info.service);
      }
    });
  }
}

function workLine(work) {
  const values = { who: text(`who.${work.who}`), time: time(work.begin) };
  return [make("strong", { text: `work.${work.method}` }),
    ...(work.who ? [make("span", { text: ["work.by", values] })] : [])];
}

function factsLine({ blHasPackages, version, since }) {
  return [
    version ? foreign(version) : make("span", { text: blHasPackages ? "version.none" : "version.builtin" }),
    ...(since ? [make("span", { text: ["since", { time: time(since) }] })] : []),
  ];
}
