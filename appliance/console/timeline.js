// The course of a request: programs, log lines and entries of the operation log, by time.
import { page } from "./api.js";
import { duration } from "./format.js";

const kNoProgram = -2;
const kKilled = -1;

// Newest last: [{kind, time, words, isBad, end}]. What cannot be read is left out.
export async function readTimeline(request) {
  const query = `?request=${encodeURIComponent(request)}`;
  const [programs, lines, entries] = await Promise.all([
    read(`/programs${query}`, "programs"),
    read(`/log${query}`, "lines"),
    read(`/operationlog${query}`, "entries"),
  ]);
  return [
    ...programs.map(stepOfProgram),
    ...lines.map((line) => ({ kind: "log", time: line.time, words: line.text, isBad: false })),
    ...entries.map((entry) => ({ kind: "entry", time: entry.time, words: entry.texts.filter(Boolean).join(": "),
      isBad: false })),
  ].sort((a, b) => (a.time < b.time ? -1 : Number(a.time > b.time)));
}

async function read(path, member) {
  try {
    return (await page(path))[member];
  } catch {
    return [];
  }
}

function stepOfProgram(program) {
  const values = { status: program.exitStatus, duration: duration(program.durationMs) };
  const key = { [kNoProgram]: "program.absent", [kKilled]: "program.killed" }[program.exitStatus] ?? "program.ended";
  const args = Array.isArray(program.arguments) ? program.arguments.join(" ") : program.arguments ?? "";
  return {
    kind: "program",
    time: program.time,
    words: `${program.path} ${args}`.trim(),
    isBad: program.exitStatus !== 0,
    end: { key, values },
  };
}
