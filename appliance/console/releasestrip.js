// The part of a card that tells of a newer release, from the news to the download that is ready.
import { button, make, setAttribute, setEnabled, setShown, setText } from "./dom.js";
import { percent, Rate, size } from "./format.js";
import { kDownload } from "./servicestate.js";
import { fill, text } from "./texts.js";

const kPercentOnly = 100; // the size of a recorder's download

export class ReleaseStrip {
  #title = make("p", { class: "strip-title" });
  #facts = make("p", { class: "quiet" });
  #notes = make("p", { class: "notes", dir: "auto" });
  #bar = make("progress", { label: "operation.DownloadStart" });
  #button;
  #action = "download";
  #rate = new Rate();
  element;

  // `onAction` is called with the name of an action.
  constructor(onAction) {
    this.#button = button("action.download", () => onAction(this.#action), { class: "primary" });
    this.element = make("div", { class: "strip release" },
      make("div", { class: "strip-words" }, this.#title, this.#facts, this.#notes, this.#bar), this.#button);
  }

  show({ info, release, download, check, actions }, isUsable) {
    const isDownloading = download?.status === kDownload.running;
    const isReady = download?.status === kDownload.ready;
    setShown(this.element, isDownloading || isReady || release || check !== undefined);
    fill(this.#title, ...titleOf({ isDownloading, isReady, release, download, check }));
    setText(this.#notes, isDownloading ? "" : release?.notes ?? "");
    setShown(this.#bar, isDownloading);
    setShown(this.#facts, isDownloading || release);
    setShown(this.#button, isDownloading || isReady || release || actions.has("download"));
    if (isDownloading) {
      this.#showProgress(download);
    } else if (release) {
      fill(this.#facts, "release.facts", { date: release.date, size: size(release.size) });
    }
    this.#showButton(["cancel", "update", "download"].find((action) => actions.has(action)), info, isUsable);
  }

  #showProgress({ bytes, size: all }) {
    this.#bar.max = Math.max(1, all);
    this.#bar.value = bytes;
    const values = { done: percent(bytes, all), size: size(all), rate: size(this.#rate.add(bytes)) };
    fill(this.#facts, all === kPercentOnly ? "amount.done" : "amount.rate", values);
  }

  // Without an action it stays where it was, switched off.
  #showButton(action, info, isUsable) {
    this.#action = action ?? this.#action;
    this.#button.classList.toggle("primary", this.#action !== "cancel");
    fill(this.#button, `action.${this.#action}`);
    setAttribute(this.#button, "aria-label", text("action.on", { action: text(`action.${this.#action}`), name: info.name }));
    setEnabled(this.#button, isUsable && action !== undefined);
  }
}

function titleOf({ isDownloading, isReady, release, download, check }) {
  if (isDownloading || isReady) {
    return [isReady ? "download.ready" : "download.running", { version: download.version }];
  }
  return release ? ["release.new", { version: release.version }] : [`check.${check}`];
}
