// What is asked of the appliance for a service: one thing at a time, and nothing counts before it is seen.
import { call } from "./api.js";
import { readServices, settle } from "./live.js";
import { problemOf } from "./problems.js";
import * as recorder from "./recorder.js";
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

// Has the method carried out. Returns its data when that is over, or under way without us; undefined when it failed.
export function order(service, method, params) {
  const names = kNamed.includes(method) && { serviceName: infoOf(service).name, description: text(`log.${method}`) };
  return alone(service, method, () => carryOut(service, method, { ...params, ...names }));
}

// Calls the method, and waits until what it was answered shows in the services. Throws a CallError.
export async function carryOut(service, method, params) {
  const isShown = holdView();
  const answer = await call(method, { service, ...params }).catch((error) => error);
  if (answer.request && isShown()) {
    await whenSeen(service, answer instanceof Error ? undefined : method, answer.request);
  }
  if (answer instanceof Error) {
    throw answer;
  }
  return answer.data ?? {};
}

// Runs `work` while nothing else can be asked for `service`. What it throws becomes the service's problem.
export async function alone(service, method, work) {
  if (isBusy(service)) {
    return undefined;
  }
  const isShown = holdView();
  store.problems.delete(service);
  store.pending.set(service, { method, begin: new Date().toISOString() });
  changed(true);
  try {
    return await work();
  } catch (error) {
    if (isShown()) {
      store.problems.set(service, problemOf(error, method));
    }
    return undefined;
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
  } else if (!(await recorder.settle(service, kWanted[method]))) {
    throw new Error(text("problem.unseen"));
  }
}
