// The appliance itself, followed by its stream of events.
import { call } from "./api.js";
import { EventStream } from "./events.js";
import { changed, setConnection, store, take } from "./store.js";

const kLogPauseMs = 300;
const kSettleMs = 4000;
const kSettleStepMs = 150;

let stream = null;
let logTimer = null;

// Follows the appliance until `stop`. `onRefused` is called when nobody is signed in any more.
export function start(onRefused) {
  stream = new EventStream({
    onEvent: takeEvent,
    onLost: () => setConnection("lost"),
    onRefused,
  });
  void stream.run();
}

export function stop() {
  stream?.stop();
  clearTimeout(logTimer);
}

export function retryNow() {
  stream?.retryNow();
}

// Waits until the operation of the request is known, and over where `isAnswerTheEnd`, and shows in the services.
// Without a request, only for the latter.
export async function settle(request, isAnswerTheEnd) {
  const until = performance.now() + kSettleMs;
  while (request !== "" && !isKnown(request, isAnswerTheEnd) && performance.now() < until) {
    await new Promise((resolve) => setTimeout(resolve, kSettleStepMs));
    await readOperation(request);
  }
  if (store.operations.ofRequest(request)?.outcome !== "running") {
    const { list } = (await call("List")).data;
    take({ services: list.map((entry) => entry.info) });
  }
}

function isKnown(request, isOver) {
  const operation = store.operations.ofRequest(request);
  return operation !== undefined && !(isOver && operation.outcome === "running");
}

async function readOperation(request) {
  const operation = store.operations.ofRequest(request);
  await (operation === undefined ? store.operations.catchUp() : store.operations.read(operation.id));
}

function takeEvent(name, data) {
  if (name === "notification") {
    store.history.addNotification(data);
    changed();
    readLogSoon();
    return;
  }
  if (name === "snapshot") {
    void catchUp();
  }
  if (name === "snapshot" || name === "state") {
    take(data);
    store.operations.see(data.operations ?? []);
    readLogSoon();
  }
}

// What has happened before the stream began; only with that the appliance is shown as it is.
async function catchUp() {
  try {
    await store.operations.load();
    setConnection("live");
  } catch {
    stream?.drop();
  }
}

function readLogSoon() {
  if (logTimer !== null) {
    return;
  }
  logTimer = setTimeout(async () => {
    logTimer = null;
    await store.history.readLog().catch(() => {});
    changed();
  }, kLogPauseMs);
}
