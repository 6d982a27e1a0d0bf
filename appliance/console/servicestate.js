// How a service stands, of all that is known of it: what its card shows, and what may be asked for it now.
import { store } from "./store.js";

const kStarted = 1;
const kInProgress = 4;
const kDownloading = 1;
const kDownloaded = 2;
const kDownloadFailed = 4;
const kReading = ["DownloadStart", "GetPkgInfo", "Upload", "CheckUpdateInfo"]; // leave the service as it is

// Returns {info, state, work, failure, release, download, actions}: state is "running", "stopped", "busy",
// "absent" or "failed"; work is what is under way, as an operation or as {method, begin}; actions is a set.
export function stateOf(info) {
  const service = info.service;
  const work = store.operations.running(service) ?? store.pending.get(service);
  const release = store.releases.find((found) => found.service === service && found.version !== "");
  const download = store.downloads.find((found) => found.service === service);
  const known = { info, work, release, download, failure: failureOf(service, download) };
  known.check = store.checks.get(service);
  known.state = nameOf(known);
  known.actions = actionsOf(known);
  return known;
}

// A service whose action was cut stays "in progress", and one whose process has died stays "started".
function nameOf({ info, work }) {
  if (work !== undefined && !kReading.includes(work.method)) {
    return "busy";
  }
  if (info.blHasPackages && info.version === "") {
    return "absent";
  }
  if (info.status === kInProgress) {
    return store.recorder === "" ? "failed" : "busy";
  }
  if (info.blRunning) {
    return "running";
  }
  return info.status === kStarted ? "failed" : "stopped";
}

function failureOf(service, download) {
  const problem = store.problems.get(service);
  if (problem !== undefined) {
    return problem;
  }
  const last = store.operations.lastEnded(service);
  if (last !== undefined && last.id !== store.dismissed.get(service) && ["failed", "lost"].includes(last.outcome)) {
    return { ...last, text: last.problem };
  }
  if (download?.status === kDownloadFailed) {
    return { method: "DownloadStart", text: download.problem, request: "", outcome: "failed" };
  }
  return undefined;
}

function actionsOf({ info, state, work, release, download, check }) {
  const actions = new Set();
  if (download?.status === kDownloading) {
    actions.add("cancel");
  }
  if (work !== undefined) {
    return actions;
  }
  if (state !== "absent") {
    actions.add(info.blRunning ? "stop" : "start");
  }
  if (info.blRunning) {
    actions.add("restart");
  }
  if (info.blHasPackages) {
    addPackageActions(actions, { info, release, download, check });
  }
  return actions;
}

function addPackageActions(actions, { info, release, download, check }) {
  actions.add(info.blAutoUpdate ? "autoOff" : "autoOn");
  if (download?.status === kDownloading) {
    return;
  }
  actions.add("check").add("install");
  if (download?.status === kDownloaded) {
    actions.add("update");
  } else if (release !== undefined || check === 2) {
    actions.add("download");
  }
  if (info.blFactoryCopy) {
    actions.add("restore");
  }
}
