// The part of a card that says what went wrong last, and why.
import { button, make, setShown } from "./dom.js";
import { time, today } from "./format.js";
import { logLines } from "./loglines.js";
import { kindOf } from "./operations.js";
import { dismiss } from "./store.js";
import { foreign, redraw, text } from "./texts.js";

const kPlain = ["dead", "cut"]; // states that say what is wrong when nothing is known of an action

export class FailureStrip {
  element = make("div", { class: "strip failure", hidden: true });

  // Returns the first of what it says, "" for nothing.
  show({ info, state, work, failure }) {
    const plain = kPlain.includes(state) ? [make("p", { text: `failed.${state}` })] : [];
    const isQuiet = !work || work.method === "DownloadStart"; // nothing that could mend it is under way
    const isShown = isQuiet && Boolean(failure || plain.length > 0);
    setShown(this.element, isShown);
    const shown = failure && [failure.id, failure.method, failure.text, failure.request];
    redraw(this.element, [today(), shown, state], () => [...(failure ? wordsOf(failure, info.service) : []), ...plain]);
    return isShown ? this.element.firstChild.textContent : "";
  }
}

function wordsOf({ method, outcome, isOpen, text: reason, who, begin, request }, service) {
  const key = isOpen ? "failed.open" : outcome === "lost" ? "failed.lost" : `failed.${method}`;
  const what = [key, { what: text(`operation.${method}`) }];
  const at = { time: time(begin), who: text(`who.${who}`) };
  return [
    make("p", { class: "strip-title", text: what }),
    ...(reason ? [make("p", {}, foreign(reason))] : []),
    ...(who ? [make("p", { class: "quiet", text: ["failed.at", at] })] : []),
    ...(request ? [logLines(request)] : []),
    button("failed.dismiss", () => dismiss(service, kindOf(method)), { class: "small" }),
  ];
}
