// Which appliance is shown: the one that serves this page, or a recorder that is paired with it.
import { callAt } from "./api.js";
import * as live from "./live.js";
import * as recorder from "./recorder.js";
import { forget, store } from "./store.js";

let present;

// `name`: of the recorder, "" for the appliance itself. `onRefused` is called when the session is over.
export function showAppliance(name, onRefused) {
  hideAppliance();
  store.recorder = name;
  callAt(name);
  present = name === "" ? live : recorder;
  present.start(onRefused);
}

export function hideAppliance() {
  present?.stop();
  present = undefined;
  forget();
}

export function retryNow() {
  present?.retryNow();
}
