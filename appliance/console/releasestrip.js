// The part of a card that tells of a newer release, from the news to the download that is ready.
import { button, make, nameAction, setEnabled, setShown } from "./dom.js";
import { percent, Rate, size } from "./format.js";
import { kDownload } from "./servicestate.js";
import { foreign, redraw } from "./texts.js";

export class ReleaseStrip {
  #words = make("div", { class: "strip-words" });
  #action = "download";
  #button;
  #rate = new Rate();
  element;

  // `onAction` is called with the name of an action.
  constructor(onAction) {
    this.#button = button("action.download", () => onAction(this.#action));
    this.element = make("div", { class: "strip release" }, this.#words, this.#button);
  }

  // Returns what it says of a release, "" for nothing.
  show({ info, release, download, check, actions }, isUsable) {
    const isRunning = download?.status === kDownload.running;
    const isHere = isRunning || download?.status === kDownload.ready;
    const words = isHere
      ? [isRunning ? "download.running" : "download.ready", { version: download.version }]
      : release ? ["release.new", { version: release.version }] : [`check.${check}`];
    const second = isRunning && Math.floor(performance.now() / 1000); // the rate of one that stands still, too
    setShown(this.element, isHere || release || check !== undefined);
    redraw(this.#words, [words, download?.bytes, release, second], () => [
      make("strong", { text: words }),
      ...(isRunning ? this.#progressOf(download) : release ? newsOf(release) : []),
    ]);
    const action = ["cancel", "update", "download"].find((name) => actions.has(name));
    this.#action = action ?? this.#action; // one that is over stays where it was, switched off
    this.#button.className = isRunning ? "" : "primary";
    setShown(this.#button, isHere || release || action);
    nameAction(this.#button, this.#action, info.name);
    setEnabled(this.#button, isUsable && action !== undefined);
    return isHere || release ? this.#words.firstChild.textContent : "";
  }

  #progressOf({ bytes, size: all }) {
    const values = { done: percent(bytes, all), size: size(all), rate: size(this.#rate.add(bytes)) };
    return [
      make("p", { class: "quiet", text: ["amount.rate", values] }),
      make("progress", { label: "operation.DownloadStart", max: Math.max(1, all), value: bytes }),
    ];
  }
}

function newsOf({ date, size: bytes, notes }) {
  return [" ", make("span", { class: "quiet", text: ["release.facts", { date, size: size(bytes) }] }),
    make("p", { class: "notes" }, foreign(notes))];
}
