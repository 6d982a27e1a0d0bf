// What the console knows of the appliance that it shows. Whoever shows it is told of changes, once a frame.
import { History } from "./history.js";
import { Operations } from "./operations.js";

const kDismissed = "camvora-dismissed";

export const store = {
  connection: "connecting", // "live" or "lost" later
  appliance: { name: "", model: "", version: "", blCmsHost: false },
  recorder: "", // the paired recorder that is shown; "" is the appliance itself
  services: [],
  downloads: [],
  releases: [],
  operations: new Operations(changed),
  history: new History(),
  pending: new Map(), // service number to what was asked for it and is not over yet: {method, begin}
  problems: new Map(), // service number to why the last thing asked for it failed: {method, code, text, request}
  checks: new Map(), // service number to what the last look for a release has answered
  dismissed: new Map(JSON.parse(sessionStorage.getItem(kDismissed) ?? "[]")), // service to the last failure put away
};

const listeners = new Set();
let isScheduled = false;

export function whenChanged(listener) {
  listeners.add(listener);
}

export function changed() {
  if (isScheduled) {
    return;
  }
  isScheduled = true;
  requestAnimationFrame(() => {
    isScheduled = false;
    for (const listener of listeners) {
      listener();
    }
  });
}

export function setConnection(connection) {
  store.connection = connection;
  changed();
}

// Takes over those members of `news` that the store has: services, downloads, releases.
export function take(news) {
  for (const name of ["services", "downloads", "releases"]) {
    store[name] = news[name] ?? store[name];
  }
  changed();
}

// Forgets the appliance, as when another one is shown or the session has ended.
export function forget() {
  store.services = [];
  store.downloads = [];
  store.releases = [];
  for (const name of ["pending", "problems", "checks", "operations", "history"]) {
    store[name].clear();
  }
  setConnection("connecting");
}

export function serviceName(service) {
  return store.services.find((info) => info.service === service)?.name;
}

export function dismiss(service) {
  store.problems.delete(service);
  const last = store.operations.lastEnded(service);
  if (last !== undefined) {
    store.dismissed.set(service, last.id);
    sessionStorage.setItem(kDismissed, JSON.stringify([...store.dismissed]));
  }
  changed();
}
