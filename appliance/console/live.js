// The appliance itself, followed by its stream of events.
import { call, page } from "./api.js";
import { EventStream } from "./events.js";
import { kKept } from "./operations.js";
import { changed, holdView, setConnection, store, take } from "./store.js";

const kEntriesPauseMs = 1000;
const kEntriesRetryMs = 5000;
const kSettleMs = 4000;
const kSettleStepMs = 150;

let stream;
let losses = 0; // of connections
let entriesTimer;

// `onRefused` is called when nobody is signed in any more.
export function start(onRefused) {
  stream = new EventStream({
    onEvent: takeEvent, onRefused,
    onHidden: () => takeLoss("connecting"),
    onLost: (error) => takeLoss("lost", error),
  });
}

function takeLoss(connection, error) {
  ++losses;
  setConnection(connection, error);
}

export function stop() {
  stream.stop();
  clearTimeout(entriesTimer);
  entriesTimer = undefined;
}

// Opens a new stream.
export function reconnect() {
  stream?.drop();
}

export function retryNow() {
  stream.retryNow();
}

// Which appliance it is; the stream tells the rest.
export async function readAppliance() {
  const isShown = holdView();
  const appliance = await page("/appliance");
  if (isShown()) {
    take({ appliance });
  }
}

// Reads them where the calls go, unless `signal` aborts that.
export async function readServices(signal) {
  const isShown = holdView();
  const { data } = await call("List", {}, signal);
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
  entriesTimer ??= setTimeout(readEntries, kEntriesPauseMs);
}

// Only with what has happened before the stream began the appliance is shown as it is.
async function catchUp() {
  const isShown = holdView();
  const before = losses;
  const isOpen = () => isShown() && losses === before;
  try {
    await store.operations.catchUp();
    if (isOpen()) {
      setConnection("live");
    }
  } catch (error) {
    if (isOpen()) {
      stream.drop(error);
    }
  }
}

// The operation log, which the stream does not tell.
async function readEntries() {
  const isShown = holdView();
  const last = store.entries.at(-1)?.id ?? 0;
  const read = await page(last === 0 ? "/operationlog" : `/operationlog?after=${last}`).catch(() => undefined);
  if (isShown()) {
    takeEntries(read?.entries.filter((entry) => entry.id > last) ?? []);
    entriesTimer = read ? undefined : setTimeout(readEntries, kEntriesRetryMs);
  }
}

function takeEntries(news) {
  if (news.length > 0) {
    store.entries = [...store.entries, ...news].slice(-kKept);
    changed();
  }
}
