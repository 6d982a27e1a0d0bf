// The part of a card that says what went wrong last, and why.
import { button, foreign, make, setShown } from "./dom.js";
import { time } from "./format.js";
import { logLines } from "./loglines.js";
import { dismiss } from "./store.js";
import { fill, language, text } from "./texts.js";

const kLost = "lost";

function titleOf(failure) {
  const title = make("p", { class: "strip-title" });
  if (failure.outcome === kLost) {
    fill(title, "failed.lost", { what: text(`operation.${failure.method}`) });
  } else {
    fill(title, `failed.${failure.method}`);
  }
  return title;
}

function madeBy(failure) {
  const line = make("p", { class: "quiet" });
  fill(line, "failed.at", { time: time(failure.begin), who: text(`who.${failure.who}`) });
  return line;
}

function contentOf(failure, service) {
  return [
    titleOf(failure),
    ...(failure.text ? [make("p", {}, foreign(failure.text))] : []),
    ...(failure.who ? [madeBy(failure)] : []),
    ...(failure.request ? [logLines(failure.request, "failed.details")] : []),
    ...(service === undefined ? [] : [button("failed.dismiss", () => dismiss(service), { class: "dismiss" })]),
  ];
}

// What the service itself shows, when nothing is known of an action that failed.
function plainOf({ info, state }) {
  if (state !== "failed") {
    return undefined;
  }
  return info.blRunning || info.status !== 1 ? "failed.cut" : "failed.dead";
}

export function failureStrip() {
  const element = make("div", { class: "strip failure", hidden: true });
  let shown = "";
  const show = (known) => {
    const { info, failure, work } = known;
    const plain = plainOf(known);
    const isThere = work === undefined && (failure !== undefined || plain !== undefined);
    const signature = language + JSON.stringify([failure?.id, failure?.method, failure?.text, failure?.request, plain]);
    setShown(element, isThere);
    if (isThere && signature !== shown) {
      shown = signature;
      const canDismiss = failure !== undefined && failure.method !== "DownloadStart";
      element.replaceChildren(
        ...(failure === undefined ? [] : contentOf(failure, canDismiss ? info.service : undefined)),
        ...(plain === undefined ? [] : [make("p", { text: plain })]));
    }
  };
  return { element, show };
}
