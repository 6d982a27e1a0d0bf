// A recorder that is paired with the appliance, asked again and again, as it tells nothing by itself.
import { call, isRefusal } from "./api.js";
import { readServices } from "./live.js";
import { setConnection, store, take } from "./store.js";

const kPauseMs = 2000;
const kSettleMs = 20_000;
const kSettleStepMs = 500;
const kDownloading = 4; // answers of "CheckUpdateInfo"
const kDownloadStates = [3, kDownloading, 5];
const kRunning = 1; // of a download

let run = {}; // of the present recorder; a later one takes its place

const pause = (ms) => new Promise((resolve) => setTimeout(resolve, ms));

export function start() {
  run = { isWanted: true };
  void poll(run);
}

export function stop() {
  run.isWanted = false;
}

export function retryNow() {
  stop();
  start();
}

// Waits until the service runs, or does not, as `isRunning` says; undefined is either. False when it did not in time.
export async function settle(service, isRunning) {
  const until = performance.now() + kSettleMs;
  while (performance.now() < until) {
    await readServices();
    const info = store.services.find((candidate) => candidate.service === service);
    if (isRunning === undefined || info.blRunning === isRunning) {
      return true;
    }
    await pause(kSettleStepMs);
  }
  return false;
}

// Takes over how the download of `service` stands; of that a recorder tells only the percentage.
export async function readDownload(service) {
  const others = store.downloads.filter((download) => download.service !== service);
  if (!kDownloadStates.includes(store.checks.get(service))) {
    take({ downloads: others });
    return;
  }
  const { version, status, percent } = (await call("DownloadProgress", { service })).data;
  const download = { service, version: version.split(" ").at(-1), status, bytes: percent, size: 100, problem: "" };
  take({ downloads: [...others, download] });
}

async function poll(mine) {
  for (; mine.isWanted; await pause(kPauseMs)) {
    let connection = "live";
    try {
      await readServices();
      const running = store.downloads.filter((download) => download.status === kRunning);
      await Promise.all(running.map((download) => readDownload(download.service)));
    } catch (error) {
      connection = isRefusal(error) ? "refused" : "lost";
    }
    if (mine.isWanted) {
      setConnection(connection);
    }
  }
}
