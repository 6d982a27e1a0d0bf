// What is known of the appliance that is shown. Who shows it is told of changes, once a second at most.
import { Operations } from "./operations.js";

const kDismissed = "camvora-dismissed";
const kPauseMs = 1000; // between two looks of those who show it
const kNoAppliance = { name: "", model: "", version: "", blCmsHost: false };
const kLists = ["services", "downloads", "releases"]; // that the stream tells

export const store = {
  era: 0, // grows when all is forgotten
  connection: "connecting", // later "live", "lost" or "refused"
  error: undefined, // of a connection that is lost
  appliance: kNoAppliance,
  recorders: [], // the names of those that are paired with it
  recorder: "", // the paired recorder that is shown; "" is the appliance itself
  operations: new Operations(() => changed(), forgetOpen),
  pending: new Map(), // service to what is asked for it and not over: {method, begin}
  problems: new Map(), // service to why the last thing that was asked for it failed, see problemOf
  checks: new Map(), // service to what the last look for a release has answered
  dismissed: new Map(JSON.parse(sessionStorage.getItem(kDismissed) ?? "[]")), // the last failures put away, by kind
};

const listeners = [];
let timer;
let toldAt = 0;

forget();

export function whenChanged(listener) {
  listeners.push(listener);
}

// What the user has asked for shows at once: `isUrgent`.
export function changed(isUrgent = false) {
  if (isUrgent) {
    clearTimeout(timer);
    timer = undefined;
  }
  const pauseMs = isUrgent ? 0 : toldAt + kPauseMs - performance.now();
  timer ??= setTimeout(() => requestAnimationFrame(tellAll), pauseMs);
}

function tellAll() {
  timer = undefined;
  toldAt = performance.now();
  listeners.forEach((listener) => listener());
}

// `error`: why nobody answers, where that is known.
export function setConnection(connection, error) {
  store.connection = connection;
  store.error = error;
  changed(true);
}

// Takes over what `news` has of services, downloads and releases, of the appliance and its pairs.
export function take(news) {
  for (const name of [...kLists, "appliance"]) {
    store[name] = news[name] ?? store[name];
  }
  store.recorders = news.pairs?.filter(({ role }) => role === "server").map(({ name }) => name) ?? store.recorders;
  changed();
}

// Forgets the appliance, as when another one is shown or the session is over.
export function forget() {
  ++store.era;
  for (const name of [...kLists, "entries", "notifications"]) {
    store[name] = [];
  }
  for (const name of ["pending", "problems", "checks", "operations"]) {
    store[name].clear();
  }
  setConnection("connecting");
}

// Returns a function that tells, after a wait, whether it is still the same that is shown.
export function holdView() {
  const { era } = store;
  return () => era === store.era;
}

export function forgetAppliance() {
  store.appliance = kNoAppliance;
  store.recorders = [];
  forget();
}

// What had no answer is known by its record, once that is read.
function forgetOpen() {
  store.problems.forEach(({ isOpen }, service) => isOpen && store.problems.delete(service));
}

export function infoOf(service) {
  return store.services.find((info) => info.service === service);
}

const lastId = (service, kind) => store.operations.last(service, kind)?.id ?? 0;

// Whether the last failure of that kind of operation was put away.
export function isDismissed(service, kind) {
  return store.dismissed.get(`${service} ${kind}`) === lastId(service, kind);
}

export function dismiss(service, kind) {
  store.problems.delete(service);
  store.dismissed.set(`${service} ${kind}`, lastId(service, kind));
  sessionStorage.setItem(kDismissed, JSON.stringify([...store.dismissed]));
  changed(true);
}
