// A recorder that is paired with the appliance, asked again and again: of what it does by itself it tells nothing.
import { call, isRefusal } from "./api.js";
import { setConnection, store, take } from "./store.js";

const kPauseMs = 2000;
const kSettleMs = 20_000;
const kDownloading = 4;
const kDownloadStates = [3, 4, 5]; // of a look for a release: of others the recorder has no progress to tell

let run = null; // of the present recorder; a later one takes its place

export function start() {
  const mine = { isWanted: true };
  run = mine;
  void poll(mine);
}

export function stop() {
  if (run !== null) {
    run.isWanted = false;
  }
}

export function retryNow() {
  stop();
  start();
}

// Waits until a service that was started or stopped is what was asked for: `isRunning`, undefined for either.
// False when it did not become so in time.
export async function settle(service, isRunning) {
  const until = performance.now() + kSettleMs;
  do {
    await readServices();
    const info = store.services.find((candidate) => candidate.service === service);
    if (isRunning === undefined || info?.blRunning === isRunning) {
      return true;
    }
    await new Promise((resolve) => setTimeout(resolve, kPauseMs / 4));
  } while (performance.now() < until);
  return false;
}

// Takes over how the download of `service` stands. The recorder tells only how much of it is there.
export async function readDownload(service) {
  if (!kDownloadStates.includes(store.checks.get(service))) {
    return;
  }
  const { version, status, percent } = (await call("DownloadProgress", { service })).data;
  const download = { service, version: version.split(" ").at(-1), status, bytes: percent, size: 100, problem: "" };
  take({ downloads: [...store.downloads.filter((other) => other.service !== service), download] });
  if (status !== 1 && store.checks.get(service) === kDownloading) {
    store.checks.set(service, status === 2 ? 3 : 5);
  }
}

async function poll(mine) {
  while (mine.isWanted) {
    try {
      await readServices();
      await Promise.all(store.downloads.filter((download) => download.status === 1)
        .map((download) => readDownload(download.service)));
      if (mine.isWanted) {
        setConnection("live");
      }
    } catch (error) {
      if (mine.isWanted) {
        setConnection(isRefusal(error) ? "refused" : "lost");
      }
    }
    await new Promise((resolve) => setTimeout(resolve, kPauseMs));
  }
}

async function readServices() {
  const { list } = (await call("List")).data;
  take({ services: list.map((entry) => entry.info) });
}
