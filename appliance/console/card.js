// The card of a service: built once, then changed where something else is to be shown.
import { act } from "./actions.js";
import { announce } from "./announcer.js";
import { button, foreign, isEnabled, make, setAttribute, setEnabled, setShown, setText } from "./dom.js";
import { commandList } from "./commandlist.js";
import { failureStrip } from "./failurestrip.js";
import { time } from "./format.js";
import { installFile } from "./install.js";
import { releaseStrip } from "./releasestrip.js";
import { fill, label, language, text } from "./texts.js";

const kButtons = ["restart", "check", "install", "restore"];

export class Card {
  element;
  #known;
  #name = make("h3", { dir: "auto" });
  #state = make("span", { class: "state" });
  #version = make("p", { class: "version" });
  #work = make("div", { class: "work", role: "group" }, make("p"), make("p", { class: "quiet" }), make("progress"));
  #failure = failureStrip();
  #release = releaseStrip((action) => this.#act(action));
  #power = button("action.start", () => this.#act(this.#power.dataset.action), { class: "power" });
  #buttons = new Map(kButtons.map((action) =>
    [action, button(`action.${action}`, () => this.#act(action), { "data-action": action })]));
  #auto = make("button", { type: "button", role: "switch", class: "switch", onclick: () => this.#switchAuto() });
  #autoRow = make("div", { class: "auto" });
  #packages = make("div", { class: "packages" });
  #commands = commandList();

  constructor(service) {
    const autoLabel = make("span", { id: `auto-${service}`, text: "auto.label" });
    this.#name.id = `name-${service}`;
    setAttribute(this.#auto, "aria-labelledby", `${autoLabel.id} ${this.#name.id}`);
    this.#autoRow.append(this.#auto, autoLabel);
    this.#packages.append(this.#autoRow,
      make("div", { class: "buttons quiet-buttons" }, ...["check", "install", "restore"].map((action) => this.#buttons.get(action))));
    this.element = make("article", { class: "card", tabindex: "-1", "aria-labelledby": this.#name.id },
      make("header", {}, this.#name, this.#state),
      this.#version, this.#work, this.#failure.element, this.#release.element,
      make("div", { class: "buttons" }, this.#power, this.#buttons.get("restart"), this.#commands.element),
      this.#packages);
    this.#takeDrops();
  }

  // Shows `known`, what `stateOf` says of the service; `isUsable` is false while nobody answers.
  show(known, isUsable) {
    const focused = document.activeElement;
    const before = this.#known;
    this.#known = known;
    setText(this.#name, known.info.name);
    this.#showState(known);
    this.#showVersion(known);
    this.#showWork(known);
    this.#failure.show(known);
    this.#release.show(known, isUsable);
    this.#showActions(known, isUsable);
    this.#commands.show(known);
    if (before !== undefined && before.state !== known.state) {
      announce("announce.state", { name: known.info.name, state: text(`state.${known.state}`) });
    }
    if (this.element.contains(focused) && focused.closest("[hidden]") !== null) {
      this.element.focus();
    }
  }

  #showState({ state }) {
    setAttribute(this.element, "data-state", state);
    fill(this.#state, `state.${state}`);
  }

  #showVersion({ info }) {
    const key = info.blHasPackages ? (info.version === "" ? "version.none" : "") : "version.builtin";
    const signature = JSON.stringify([language, info.version, info.since, info.pid]);
    if (this.#version.dataset.signature === signature) {
      return;
    }
    this.#version.dataset.signature = signature;
    const parts = [key === "" ? foreign(info.version, { class: "number" }) : make("span", { text: key })];
    if (info.since !== undefined) {
      parts.push(sentence("since", { time: time(info.since) }));
    }
    if (info.pid !== undefined) {
      parts.push(sentence("pid", { pid: info.pid }));
    }
    this.#version.replaceChildren(...parts);
  }

  #showWork({ work }) {
    setShown(this.#work, work !== undefined);
    if (work !== undefined) {
      const [what, who] = this.#work.children;
      fill(what, `work.${work.method}`);
      fill(who, work.who === undefined ? "work.mine" : "work.by",
        { who: text(`who.${work.who}`), time: time(work.begin) });
      label(this.#work.lastElementChild, `work.${work.method}`);
    }
  }

  #showActions({ info, actions }, isUsable) {
    const power = info.blRunning ? "stop" : "start";
    setAttribute(this.#power, "data-action", power);
    this.#showButton(this.#power, power, actions.has(power) && isUsable);
    for (const [action, element] of this.#buttons) {
      this.#showButton(element, action, actions.has(action) && isUsable);
    }
    setShown(this.#buttons.get("restore"), info.blFactoryCopy);
    setShown(this.#packages, info.blHasPackages);
    setAttribute(this.#auto, "aria-checked", String(info.blAutoUpdate));
    setEnabled(this.#auto, isUsable && (actions.has("autoOn") || actions.has("autoOff")));
  }

  #showButton(element, action, isUsable) {
    fill(element, `action.${action}`);
    label(element, "action.on", { action: text(`action.${action}`), name: this.#known.info.name });
    setEnabled(element, isUsable);
  }

  #switchAuto() {
    this.#act(this.#known.info.blAutoUpdate ? "autoOff" : "autoOn");
  }

  #act(action) {
    act(action, this.#known.info);
  }

  #takeDrops() {
    const install = this.#buttons.get("install");
    this.element.addEventListener("dragover", (event) => {
      if (this.#known.info.blHasPackages && isEnabled(install)) {
        event.preventDefault();
        this.element.classList.add("drop");
      }
    });
    this.element.addEventListener("dragleave", () => this.element.classList.remove("drop"));
    this.element.addEventListener("drop", (event) => {
      this.element.classList.remove("drop");
      if (event.dataTransfer.files.length > 0 && this.#known.info.blHasPackages) {
        event.preventDefault();
        event.stopPropagation();
        installFile(event.dataTransfer.files[0], this.#known.info.service);
      }
    });
  }
}

function sentence(key, values) {
  const element = make("span");
  fill(element, key, values);
  return element;
}
