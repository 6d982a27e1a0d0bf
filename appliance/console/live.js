// The appliance itself, followed by its stream of events.
import { call, page } from "./api.js";
import { EventStream } from "./events.js";
import { changed, setConnection, store, take } from "./store.js";

const kKept = 300; // of notifications, and of entries of the operation log
const kRestPauseMs = 1000;
const kSettleMs = 4000;
const kSettleStepMs = 150;

let stream;
let restTimer;

// `onRefused` is called when nobody is signed in any more.
export function start(onRefused) {
  stream = new EventStream({ onEvent: takeEvent, onLost: () => setConnection("lost"), onRefused });
}

export function stop() {
  stream.stop();
  clearTimeout(restTimer);
  restTimer = undefined;
}

export function retryNow() {
  stream.retryNow();
}

export async function readServices() {
  const { data } = await call("List");
  take({ services: data.list.map((entry) => entry.info) });
}

// Waits until the operation of the request is known, and over where `isAnswerTheEnd`, and shows in the services.
export async function settle(request, isAnswerTheEnd) {
  const until = performance.now() + kSettleMs;
  const operation = () => store.operations.ofRequest(request);
  const isKnown = () => operation() && !(isAnswerTheEnd && operation().outcome === "running");
  while (!isKnown() && performance.now() < until) {
    await (operation() ? store.operations.read(operation().id) : store.operations.catchUp());
    await new Promise((resolve) => setTimeout(resolve, kSettleStepMs));
  }
  if (operation()?.outcome !== "running") {
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
  try {
    await store.operations.catchUp();
    setConnection("live");
  } catch {
    stream.drop();
  }
}

// What the stream does not tell.
async function readRest() {
  try {
    store.appliance = await page("/appliance");
    const last = store.entries.at(-1)?.id ?? 0;
    const { entries } = await page(last === 0 ? "/operationlog" : `/operationlog?after=${last}`);
    const news = entries.filter((entry) => entry.id > last);
    if (news.length > 0) {
      store.entries = [...store.entries, ...news].slice(-kKept);
    }
    changed();
  } catch {
    // the next event, or the next connection, brings another attempt
  }
  restTimer = undefined;
}
