// What is asked of the appliance for a service: one thing at a time, and nothing counts before it is seen.
import { call } from "./api.js";
import { readServices, settle } from "./live.js";
import { problemOf, wordsFor } from "./problems.js";
import { changed, holdView, infoOf, store } from "./store.js";
import { text } from "./texts.js";

const kNamed = ["Enable", "Disable", "Restore"]; // enter the operation log, with words for it
const kDetached = ["Enable", "Disable", "DownloadStart"]; // go on after the answer
const kUnrecorded = ["SetAutoUpdate"]; // are over with the answer, and no operations
const kWanted = { Enable: true, Disable: false }; // whether the service runs then

// True while anything is under way for `service`, whoever asked for it.
export function isBusy(service) {
  return store.pending.has(service) || store.operations.running(service) !== undefined;
}

// Has the method carried out, until that is over, or under way without us. `check` comes first; what it throws, too,
// becomes the service's problem.
export function order(service, method, params, check = () => {}) {
  const names = kNamed.includes(method) && { serviceName: infoOf(service)?.name, description: text(`log.${method}`) };
  return alone(service, method, async () => {
    try {
      await refuseIfBusy(service);
      await check();
    } catch (error) { // nothing was asked for yet, so nothing is open
      throw error.code === undefined ? error : new Error(wordsFor(error));
    }
    await carryOut(service, method, { ...params, ...names });
  });
}

// Somebody else may have asked for something a moment ago.
async function refuseIfBusy(service) {
  if (store.recorder === "") {
    await store.operations.catchUp();
    if (store.operations.running(service)) {
      throw new Error(text("refusal.busy", { name: infoOf(service)?.name }));
    }
  }
}

// Calls the method, and waits until what it was answered shows in the services. Returns the answer: its data and the
// request's id. Throws a CallError.
export async function carryOut(service, method, params) {
  const isShown = holdView();
  const answer = await call(method, { service, ...params }).catch((error) => error);
  if (answer.request && isShown()) {
    await whenSeen(service, answer instanceof Error ? undefined : method, answer.request);
  }
  if (answer instanceof Error) {
    throw answer;
  }
  return answer;
}

// Runs `work` while nothing else can be asked for `service`. What it throws becomes the service's problem.
export async function alone(service, method, work) {
  if (!isBusy(service)) {
    await alongside(service, method, work);
  }
}

// As `alone`, but beside an operation that runs.
export async function alongside(service, method, work) {
  if (store.pending.has(service)) {
    return;
  }
  const isShown = holdView();
  store.problems.delete(service);
  store.pending.set(service, { method, begin: new Date().toISOString() });
  changed(true);
  try {
    await work();
  } catch (error) {
    if (isShown()) {
      store.problems.set(service, problemOf(error, method));
    }
  } finally {
    if (isShown()) {
      store.pending.delete(service);
      changed(true);
    }
  }
}

async function whenSeen(service, method, request) {
  if (kUnrecorded.includes(method)) {
    await readServices();
  } else if (store.recorder === "") {
    await settle(request, !kDetached.includes(method));
  } else {
    await whenSeenAtRecorder(service, method);
  }
}

async function whenSeenAtRecorder(service, method) {
  const { settle: settleThere } = await import("./recorder.js");
  if (!(await settleThere(service, kWanted[method]))) {
    throw new Error(text("problem.unseen"));
  }
}
