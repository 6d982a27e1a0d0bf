// Operations, entries of the operation log and notifications, described alike.
import { serviceName } from "./store.js";
import { text } from "./texts.js";

export const kKinds = ["operation", "entry", "notification"];

const kAddOnControlled = 0x133000b5; // an entry with the texts: name of the service, description, ""
const kAddOnChanged = 24; // a notification with the texts: service, action, "0"
const kAddOnActions = ["0", "1", "2"];

// The most that a row shows; the whole text is with the operation.
const kWordsLimit = 300;

class Happening {
  // `source`: as the appliance has it; `facts`: {service, serviceName, words, who, outcome}.
  constructor(kind, source, facts) {
    Object.assign(this, { who: "", outcome: "" }, facts);
    this.kind = kind;
    this.id = source.id;
    this.key = `${kind}-${source.id}`;
    this.time = source.time ?? source.begin;
    this.words = this.words.slice(0, kWordsLimit);
  }

  signature() {
    return JSON.stringify([this.time, this.serviceName, this.words, this.who, this.outcome]);
  }

  searched() {
    return `${this.serviceName}\n${this.words}\n${this.who && text(`who.${this.who}`)}`.toLowerCase();
  }
}

export function nameOf(service) {
  return serviceName(service) ?? text("service.unknown", { number: service });
}

// The versions of an operation that changed one; "" otherwise.
export function versionsOf({ fromVersion, toVersion }) {
  return toVersion === "" || toVersion === undefined || toVersion === fromVersion
    ? ""
    : text("operation.versions", { from: fromVersion || "–", to: toVersion });
}

function operationOf(operation) {
  const words = [text(`operation.${operation.method}`), versionsOf(operation)];
  return new Happening("operation", operation, {
    service: operation.service,
    serviceName: nameOf(operation.service),
    words: words.filter(Boolean).join(" ") + (operation.problem ? ": " + operation.problem : ""),
    who: operation.who,
    outcome: operation.outcome,
  });
}

function entryOf(entry, services) {
  const texts = entry.texts.filter(Boolean);
  const isOfService = entry.event === kAddOnControlled;
  const joined = texts.slice(isOfService ? 1 : 0).join(": ");
  return new Happening("entry", entry, {
    service: services.find((info) => info.name === entry.texts[0])?.service,
    serviceName: isOfService ? entry.texts[0] : "",
    words: isOfService ? joined : text("entry.other", { event: entry.event, texts: joined }),
    who: entry.who,
  });
}

function notificationOf(notification) {
  const { type, texts } = notification;
  const isOfService = type === kAddOnChanged && kAddOnActions.includes(texts[1]);
  const name = isOfService ? nameOf(Number(texts[0])) : "";
  return new Happening("notification", notification, {
    service: isOfService ? Number(texts[0]) : undefined,
    serviceName: name,
    words: isOfService ? text(`notice.${texts[1]}`, { name }) : text("notice.other", { type, texts: texts.join(", ") }),
  });
}

// Newest first.
export function describe({ operations, history, services }) {
  return [
    ...operations.all().map(operationOf),
    ...history.entries.map((entry) => entryOf(entry, services)),
    ...history.notifications.map(notificationOf),
  ].sort((a, b) => (a.time < b.time ? 1 : a.time > b.time ? -1 : b.id - a.id));
}
