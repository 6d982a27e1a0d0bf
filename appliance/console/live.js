// The appliance itself, followed by its stream of events.
import { call, page } from "./api.js";
import { EventStream } from "./events.js";
import { changed, holdView, setConnection, store, take } from "./store.js";

const kKept = 300; // of notifications, and of entries of the operation log
const kRestPauseMs = 1000;
const kSettleMs = 4000;
const kSettleStepMs = 150;

let stream;
let restTimer;

// `onRefused` is called when nobody is signed in any more.
export function start(onRefused) {
  stream = new EventStream({ onEvent: takeEvent, onLost: (error) => setConnection("lost", error), onRefused });
}

export function stop() {
  stream.stop();
  clearTimeout(restTimer);
  restTimer = undefined;
}

export function retryNow() {
  stream.retryNow();
}

// Which appliance it is, and the recorders that are paired with it.
export async function readAppliance() {
  const isShown = holdView();
  const appliance = await page("/appliance");
  const { pairs } = appliance.blCmsHost ? await page("/pairs") : { pairs: [] };
  if (isShown()) {
    store.appliance = appliance;
    store.recorders = pairs.filter(({ role }) => role === "server").map(({ name }) => name);
    changed();
  }
}

export async function readServices() {
  const isShown = holdView();
  const { data } = await call("List");
  if (isShown()) {
    take({ services: data.list.map((entry) => entry.info) });
  }
}

// Waits until the operation of the request is known, and over where `isAnswerTheEnd`, and shows in the services.
export async function settle(request, isAnswerTheEnd) {
  const isShown = holdView();
  const until = performance.now() + kSettleMs;
  const operation = () => store.operations.ofRequest(request);
  const isKnown = () => operation() && !(isAnswerTheEnd && operation().outcome === "running");
  while (isShown() && !isKnown() && performance.now() < until) {
    await (operation() ? store.operations.read(operation().id) : store.operations.catchUp());
    await new Promise((resolve) => setTimeout(resolve, kSettleStepMs));
  }
  if (isShown() && operation()?.outcome !== "running") {
    await readServices();
  }
}

function takeEvent(name, data) {
  if (name === "notification") {
    store.notifications = [...store.notifications, data].slice(-kKept);
    changed();
  } else {
    take(data);
    store.operations.see(data.operations, data.lastOperation);
  }
  if (name === "snapshot") {
    void catchUp();
  }
  restTimer ??= setTimeout(readRest, kRestPauseMs);
}

// Only with what has happened before the stream began the appliance is shown as it is.
async function catchUp() {
  const isShown = holdView();
  try {
    await store.operations.catchUp();
    if (isShown()) {
      setConnection("live");
    }
  } catch (error) {
    if (isShown()) {
      stream.drop(error);
    }
  }
}

// What the stream does not tell.
async function readRest() {
  const isShown = holdView();
  const last = store.entries.at(-1)?.id ?? 0;
  try {
    const [{ entries }] = await Promise.all([
      page(last === 0 ? "/operationlog" : `/operationlog?after=${last}`), readAppliance()]);
    if (isShown()) {
      takeEntries(entries.filter((entry) => entry.id > last));
    }
  } catch {
    // the next event, or the next connection, brings another attempt
  }
  if (isShown()) {
    restTimer = undefined;
  }
}

function takeEntries(news) {
  if (news.length > 0) {
    store.entries = [...store.entries, ...news].slice(-kKept);
    changed();
  }
}
