// The course of a request: its programs, log lines and entries of the operation log, by time.
import { page } from "./api.js";
import { duration } from "./format.js";

const kProgramEnds = { "-1": "program.killed", "-2": "program.absent" }; // by exit status

// [{kind, time, words, end, isBad}]; `end` is a key of the texts with its values. What cannot be read is left out.
export async function readTimeline(request) {
  const read = (name) => page(`/${name}?request=${request}`).catch(() => ({}));
  const [{ programs = [] }, { lines = [] }, { entries = [] }] =
    await Promise.all(["programs", "log", "operationlog"].map(read));
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
