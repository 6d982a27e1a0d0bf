// What is asked of the appliance for a service: one thing at a time, and nothing counts before it is seen.
import { call } from "./api.js";
import { problemOf } from "./problems.js";
import { settle } from "./live.js";
import * as recorder from "./recorder.js";
import { isRecorder } from "./source.js";
import { changed, serviceName, store } from "./store.js";
import { text } from "./texts.js";

const kNamed = ["Enable", "Disable", "Restore"]; // enter the operation log, with words for it
const kDetached = ["Enable", "Disable", "DownloadStart"]; // go on after the answer
const kWithoutRecord = ["DownloadCancel", "SetAutoUpdate"]; // are no operations
const kWanted = { Enable: true, Disable: false };

// True while anything is under way for `service`, whoever asked for it.
export function isBusy(service) {
  return store.pending.has(service) || store.operations.running(service) !== undefined;
}

// Has the method carried out for `service`. Returns its data when that is over or under way; undefined when it
// failed, which is kept in the store's problems.
export function order(service, method, params = {}) {
  return alone(service, method, async () => {
    const answer = await call(method, { service, ...params, ...namesFor(service, method) });
    await whenSeen(service, method, answer.request);
    return answer.data ?? {};
  });
}

// Runs `work` while nothing else can be asked for `service`. What it throws becomes the service's problem.
export async function alone(service, method, work) {
  if (isBusy(service)) {
    return undefined;
  }
  store.problems.delete(service);
  store.pending.set(service, { method, begin: new Date().toISOString() });
  changed();
  try {
    return await work();
  } catch (error) {
    store.problems.set(service, problemOf(error, method));
    return undefined;
  } finally {
    store.pending.delete(service);
    changed();
  }
}

function namesFor(service, method) {
  return kNamed.includes(method)
    ? { serviceName: serviceName(service), description: text(`log.${method}`) }
    : {};
}

// What was answered counts once the services show it.
export async function whenSeen(service, method, request) {
  if (!isRecorder()) {
    await settle(kWithoutRecord.includes(method) ? "" : request, !kDetached.includes(method));
  } else if (!(await recorder.settle(service, kWanted[method]))) {
    throw new Error(text("problem.unseen"));
  }
}
