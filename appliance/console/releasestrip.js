// The part of a card that tells of a newer release, from the news to the download that is ready.
import { button, make, setEnabled, setShown, setText } from "./dom.js";
import { percent, size } from "./format.js";
import { Rate } from "./rate.js";
import { fill, label, text } from "./texts.js";

const kDownloading = 1;
const kReady = 2;

// `onAction` is called with the name of an action.
export function releaseStrip(onAction) {
  const title = make("p", { class: "strip-title" });
  const facts = make("p", { class: "quiet" });
  const notes = make("p", { class: "notes", dir: "auto" });
  const bar = make("progress", { label: "operation.DownloadStart" });
  const main = button("action.download", () => onAction(main.dataset.action), { class: "primary" });
  const element = make("div", { class: "strip release" },
    make("div", { class: "strip-words" }, title, facts, notes, bar), main);
  let rate = new Rate();

  const showDownload = (download) => {
    const perSecond = rate.add(download.bytes);
    bar.max = Math.max(1, download.size);
    bar.value = download.bytes;
    const done = percent(download.bytes, download.size);
    const isKnown = download.size > 100; // a recorder tells percents only
    const amount = isKnown ? text("download.progress", { percent: done, size: size(download.size) }) : done;
    const speed = isKnown && perSecond > 0 ? " · " + text("download.rate", { rate: size(perSecond) }) : "";
    fill(facts, "refusal.call", { reason: amount + speed });
  };

  const show = ({ info, release, download, check, actions, work }, isUsable) => {
    const view = viewOf(release, download, check);
    setShown(element, view !== undefined);
    if (view === undefined) {
      return;
    }
    fill(title, view.key, { version: view.version });
    setShown(bar, view.isDownloading);
    setShown(notes, Boolean(view.notes));
    setText(notes, view.notes);
    if (view.isDownloading) {
      showDownload(download);
    } else {
      rate = new Rate();
      fill(facts, "release.facts", { date: release?.date ?? "", size: release ? size(release.size) : "" });
    }
    setShown(facts, view.isDownloading || Boolean(release));
    setShown(main, view.action !== undefined);
    if (view.action !== undefined) {
      main.dataset.action = view.action;
      main.classList.toggle("primary", view.action !== "cancel");
      fill(main, `action.${view.action}`);
      label(main, "action.on", { action: text(`action.${view.action}`), name: info.name });
      setEnabled(main, isUsable && actions.has(view.action));
    }
  };
  return { element, show };
}

// What is to be shown: {key, version, action, notes, isDownloading}; undefined for nothing.
function viewOf(release, download, check) {
  if (download?.status === kDownloading) {
    return { key: "download.running", version: download.version, action: "cancel", isDownloading: true };
  }
  if (download?.status === kReady) {
    return { key: "download.ready", version: download.version, action: "update", isDownloading: false,
      notes: release?.version === download.version ? release.notes : "" };
  }
  if (release !== undefined) {
    return { key: "release.new", version: release.version, action: "download", notes: release.notes,
      isDownloading: false };
  }
  return check === undefined
    ? undefined
    : { key: `check.${check}`, version: "", action: check === 2 ? "download" : undefined, isDownloading: false };
}
