// Operations, entries of the operation log and notifications, described alike.
import { infoOf, store } from "./store.js";
import { text } from "./texts.js";

export const kKinds = ["operation", "entry", "notification"];

const kAddOnControlled = 0x133000b5; // an entry with the texts: name of the service, description, ""
const kAddOnChanged = 24; // a notification with the texts: service, action, "0"
const kWordsLimit = 300;

const known = new WeakMap(); // what was described before

export function nameOf(service) {
  return infoOf(service)?.name ?? text("service.unknown", { number: service });
}

// The versions of an operation that changes them, as a sentence; else "".
export function versionsOf({ fromVersion, toVersion }) {
  return toVersion && toVersion !== fromVersion
    ? text("operation.versions", { from: fromVersion || "–", to: toVersion })
    : "";
}

function operationOf(operation) {
  const { method, service, begin, who, outcome, problem } = operation;
  const what = `${text(`operation.${method}`)} ${versionsOf(operation)}`.trim();
  return { service, name: nameOf(service), time: begin, who, outcome, words: problem ? `${what}: ${problem}` : what };
}

function entryOf({ event, texts, time, who, request }) {
  if (event !== kAddOnControlled) {
    return { name: "", time, who, words: text("entry.other", { event, texts: texts.filter(Boolean).join(": ") }) };
  }
  const [name, words] = texts;
  const isOpen = !name || !words;
  const operation = isOpen ? store.operations.ofRequest(request) : undefined;
  return {
    service: operation?.service ?? store.services.find((info) => info.name === name)?.service,
    name: name || (operation ? nameOf(operation.service) : text("entry.addOn")),
    words: words || (operation ? text(`operation.${operation.method}`) : ""),
    time, who, isOpen: isOpen && !operation,
  };
}

function notificationOf({ type, texts, time }) {
  const service = Number(texts[0]);
  return type === kAddOnChanged
    ? { service, name: nameOf(service), time, words: text(`notice.${texts[1]}`) }
    : { name: "", time, words: text("notice.other", { type, texts: texts.join(", ") }) };
}

// All of them, newest first: [{kind, id, key, service, name, time, who, words, outcome}].
export function happenings() {
  return [
    ...store.operations.all().map((one) => described("operation", one, operationOf)),
    ...store.entries.map((one) => described("entry", one, entryOf)),
    ...store.notifications.map((one) => described("notification", one, notificationOf)),
  ].sort((a, b) => (a.time < b.time ? 1 : a.time > b.time ? -1 : b.id - a.id));
}

function described(kind, one, describe) {
  if (!known.has(one)) {
    const { words, isOpen, ...others } = describe(one);
    const { id } = one;
    const key = `${kind}-${id}`;
    const description = { who: "", outcome: "", ...others, words: words.slice(0, kWordsLimit), kind, id, key };
    if (isOpen) {
      return description;
    }
    known.set(one, description);
  }
  return known.get(one);
}
