// How a service stands, of all that is known: what its card shows, and what may be asked for it.
import { isDismissed, store } from "./store.js";
import { changeBetween } from "./versions.js";

const kStarted = 1; // statuses of a service
const kInProgress = 4;
const kReading = [ // leave it as it is
  "DownloadStart", "DownloadCancel", "GetPkgInfo", "Upload", "CheckUpdateInfo", "SetAutoUpdate",
];

export const kDownload = { running: 1, ready: 2, failed: 4 }; // statuses of a download

// Of `info`, as the appliance describes the service: {info, work, release, download, check, failure, state, actions}.
// `work` is what is under way, with "method" and "begin"; `state` is "running", "stopped", "busy", "absent", "dead"
// (it was started, and does not run) or "cut" (an action had no end); `actions` is a set of names.
export function stateOf(info) {
  const { service } = info;
  const known = {
    info,
    work: store.operations.running(service) ?? store.pending.get(service),
    release: store.releases.find((release) => release.service === service && isNewer(release.version, info.version)),
    download: store.downloads.find((download) => download.service === service),
    check: store.checks.get(service),
  };
  known.failure = failureOf(known);
  known.state = nameOf(known);
  known.actions = new Set(actionsOf(known));
  return known;
}

// What was found stays known when it is installed.
function isNewer(version, installed) {
  return version !== "" && ["first", "newer"].includes(changeBetween(installed, version));
}

function nameOf({ info, work }) {
  if (work && !kReading.includes(work.method)) {
    return "busy";
  }
  if (info.blHasPackages && info.version === "") {
    return "absent";
  }
  if (info.status === kInProgress) {
    return store.recorder === "" ? "cut" : "busy"; // what a recorder does shows in nothing else
  }
  if (info.blRunning) {
    return "running";
  }
  return info.status === kStarted ? "dead" : "stopped";
}

// A download's failure counts once its operation has ended, too.
function failureOf({ info: { service }, work, download }) {
  if (store.problems.has(service)) {
    return store.problems.get(service);
  }
  const last = store.operations.last(service, "change");
  if (["failed", "lost"].includes(last?.outcome) && !isDismissed(service, "change")) {
    return { ...last, text: last.problem };
  }
  const isOver = download?.status === kDownload.failed && work?.method !== "DownloadStart";
  return isOver && !isDismissed(service, "DownloadStart")
    ? { ...store.operations.last(service, "DownloadStart"), method: "DownloadStart", text: download.problem }
    : undefined;
}

function actionsOf({ info, state, work, release, download }) {
  if (download?.status === kDownload.running) {
    return store.pending.has(info.service) ? [] : ["cancel"];
  }
  if (work) {
    return [];
  }
  const power = info.blRunning ? ["stop", "restart"] : ["start"];
  const ready = download?.status === kDownload.ready ? ["update"] : release ? ["download"] : [];
  const online = store.recorder === "" ? ["check", ...ready] : []; // a recorder tells nothing of releases
  return [
    ...(state === "absent" ? [] : power),
    ...(info.blHasPackages ? [info.blAutoUpdate ? "autoOff" : "autoOn", "install", ...online] : []),
    ...(info.blFactoryCopy ? ["restore"] : []),
  ];
}
