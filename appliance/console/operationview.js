// One operation in a window: what it was, how it ended, and its course.
import { page } from "./api.js";
import { Dialog, facts } from "./dialog.js";
import { make } from "./dom.js";
import { duration, time } from "./format.js";
import { nameOf, versionsOf } from "./happenings.js";
import { wordsFor } from "./problems.js";
import { store, whenChanged } from "./store.js";
import { foreign, redraw, text } from "./texts.js";

const kProgramEnds = { "-1": "program.killed", "-2": "program.absent" }; // by exit status

let follow = () => {}; // what the open window does at a change

whenChanged(() => follow());

export function openOperation(id) {
  let operation = store.operations.get(id);
  if (!operation) { // it has become too old
    return;
  }
  const { method, service, request } = operation;
  const dialog = new Dialog("operation.title", { what: text(`operation.${method}`), name: nameOf(service) });
  const details = make("div");
  const course = make("ol", { class: "timeline" });
  dialog.element.classList.add("wide");
  dialog.show([details, make("h3", { text: "operation.timeline" }), course], dialog.closer("dialog.close"));
  follow = () => {
    operation = store.operations.get(id) ?? operation;
    redraw(details, operation, () => {
      void showCourse(course, request);
      return [factsOf(operation)];
    });
  };
  follow();
  dialog.whenClosed(() => {
    follow = () => {};
  });
}

async function showCourse(list, request) {
  const remark = (sentence) => make("li", { class: "quiet", text: sentence });
  try {
    const steps = await readTimeline(request);
    list.replaceChildren(...(steps.length > 0 ? steps.map(stepOf) : [remark("timeline.none")]));
  } catch (error) {
    list.replaceChildren(remark(["log.failed", { reason: wordsFor(error) }]));
  }
}

function factsOf(operation) {
  const { outcome, problem, who, begin, durationMs, request } = operation;
  return facts([
    ["operation.outcome", make("span", { class: "outcome", "data-outcome": outcome, text: `outcome.${outcome}` })],
    ["operation.reason", problem && foreign(problem)],
    ["operation.change", versionsOf(operation)],
    ["operation.who", text(`who.${who}`)],
    ["operation.begin", time(begin)],
    ["operation.duration", outcome !== "running" && durationMs !== undefined && duration(durationMs)],
    ["operation.request", make("code", {}, request)],
  ]);
}

function stepOf({ kind, time: when, words, end, isBad }) {
  return make("li", { class: isBad ? "step bad" : "step" },
    make("time", { datetime: when }, time(when)), make("span", { class: "kind", text: `timeline.${kind}` }),
    make(kind === "program" ? "code" : "span", { class: "step-words" }, foreign(words)),
    ...(end ? [make("span", { class: "step-end", text: end })] : []));
}

// [{kind, time, words, end, isBad}]; `end` is a key of the texts with its values. Throws a CallError.
async function readTimeline(request) {
  const [{ programs }, { lines }, { entries }] =
    await Promise.all(["programs", "log", "operationlog"].map((name) => page(`/${name}?request=${request}`)));
  return [
    ...programs.map(stepOfProgram),
    ...lines.map((line) => ({ kind: "log", time: line.time, words: line.text })),
    ...entries.map((entry) => ({ kind: "entry", time: entry.time, words: entry.texts.filter(Boolean).join(": ") })),
  ].sort((a, b) => (a.time < b.time ? -1 : Number(a.time > b.time)));
}

function stepOfProgram({ path, arguments: given, time, exitStatus, durationMs }) {
  const end = [kProgramEnds[exitStatus] ?? "program.ended", { status: exitStatus, duration: duration(durationMs) }];
  return { kind: "program", time, words: `${path} ${[given].flat().join(" ")}`.trim(), end, isBad: exitStatus !== 0 };
}
