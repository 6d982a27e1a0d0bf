// A recorder that is paired with the appliance, asked again and again, as it tells nothing by itself.
import { CallError, isRefusal, kRecorderAway } from "./api.js";
import { readServices } from "./live.js";
import { holdView, infoOf, setConnection } from "./store.js";

const kPauseMs = 2000;
const kSilenceMs = 15_000;
const kSilentPauseMs = 60_000; // the host goes on waiting for each answer
const kSettleMs = 20_000;
const kSettleStepMs = 500;

let run = {}; // of the present recorder; a later one takes its place

const pause = (ms) => new Promise((resolve) => setTimeout(resolve, ms));

export function start() {
  run = { isWanted: true };
  void poll(run);
}

export function stop() {
  run.isWanted = false;
  run.attempt?.abort();
}

export function retryNow() {
  stop();
  start();
}

// Waits until the service runs, or does not, as `isRunning` says; undefined is either. False when it did not in time.
export async function settle(service, isRunning) {
  const isShown = holdView();
  const until = performance.now() + kSettleMs;
  while (isShown() && performance.now() < until) {
    await readServices();
    if (isRunning === undefined || infoOf(service)?.blRunning === isRunning) {
      return true;
    }
    await pause(kSettleStepMs);
  }
  return false;
}

async function poll(mine) {
  while (mine.isWanted) {
    mine.attempt = new AbortController();
    const silence = new CallError(kRecorderAway, null, "");
    const timer = setTimeout(() => mine.attempt.abort(silence), kSilenceMs);
    const error = await readServices(mine.attempt.signal).catch((problem) => problem);
    clearTimeout(timer);
    if (mine.isWanted) {
      setConnection(!error ? "live" : isRefusal(error) ? "refused" : "lost", error);
      await pause(error === silence ? kSilentPauseMs : kPauseMs);
    }
  }
}
