// One operation in a window: what it was, how it ended, and its course.
import { Dialog } from "./dialog.js";
import { button, foreign, make, setText } from "./dom.js";
import { facts } from "./facts.js";
import { duration, time } from "./format.js";
import { nameOf, versionsOf } from "./happenings.js";
import { store, whenChanged } from "./store.js";
import { fill, text } from "./texts.js";
import { readTimeline } from "./timeline.js";

let present = null; // the window that is open

export function openOperation(id) {
  const operation = store.operations.get(id);
  if (operation !== undefined) {
    present = new OperationView(operation);
  }
}

whenChanged(() => present?.follow());

class OperationView {
  #dialog;
  #id;
  #seen = "";
  #facts = make("div");
  #timeline = make("ol", { class: "timeline" });

  constructor(operation) {
    this.#id = operation.id;
    this.#dialog = new Dialog("operation.title",
      { what: text(`operation.${operation.method}`), name: nameOf(operation.service) });
    this.#dialog.element.classList.add("wide");
    this.#dialog.show([this.#facts, make("h3", { text: "operation.timeline" }), this.#timeline],
      [button("install.close", () => this.#dialog.close())]);
    this.#dialog.element.addEventListener("close", () => {
      present = null;
    });
    this.#timeline.append(make("li", { text: "operation.timelineLoading" }));
    this.follow();
  }

  // Shows the operation as it stands now.
  follow() {
    const operation = store.operations.get(this.#id);
    const seen = JSON.stringify(operation);
    if (operation === undefined || seen === this.#seen) {
      return;
    }
    this.#seen = seen;
    this.#facts.replaceChildren(factsOf(operation));
    void this.#showCourse(operation.request);
  }

  async #showCourse(request) {
    const steps = await readTimeline(request);
    this.#timeline.replaceChildren(...steps.map(stepOf));
    if (steps.length === 0) {
      this.#timeline.append(make("li", { class: "quiet", text: "operation.timelineNone" }));
    }
  }
}

function factsOf(operation) {
  const outcome = make("span", { class: "outcome", "data-outcome": operation.outcome });
  setText(outcome, text(`outcome.${operation.outcome}`));
  return facts([
    ["operation.outcome", outcome],
    ["operation.reason", operation.problem && foreign(operation.problem)],
    ["operation.change", versionsOf(operation)],
    ["operation.who", text(`who.${operation.who}`)],
    ["operation.begin", time(operation.begin)],
    [operation.outcome === "running" ? "operation.durationSoFar" : "operation.duration", duration(operation.durationMs)],
    ["operation.request", make("code", {}, operation.request)],
  ]);
}

function stepOf(step) {
  const words = make("span", { class: "step-words", dir: "auto" });
  words.append(step.kind === "program" ? make("code", {}, foreign(step.words)) : foreign(step.words));
  const line = make("li", { class: step.isBad ? "step bad" : "step" },
    make("time", { class: "number", datetime: step.time }, time(step.time)),
    make("span", { class: "kind", text: `timeline.${step.kind}` }), words);
  if (step.end !== undefined) {
    const end = make("span", { class: "step-end" });
    fill(end, step.end.key, step.end.values);
    line.append(end);
  }
  return line;
}
