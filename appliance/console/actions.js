// What the buttons of a service do.
import { ask } from "./dialog.js";
import { chooseFile } from "./install.js";
import { alone, order } from "./orders.js";
import { isDowngrade, planFor, restorePlanFor } from "./plan.js";
import { call } from "./api.js";
import { readDownload } from "./recorder.js";
import { isRecorder } from "./source.js";
import { changed, store } from "./store.js";

const kActions = {
  start: (info) => order(info.service, "Enable"),
  stop: (info) => order(info.service, "Disable"),
  restart: (info) => order(info.service, "Restart"),
  check: (info) => look(info.service),
  download: (info) => download(info.service),
  cancel: (info) => cancel(info.service),
  update: update,
  install: (info) => chooseFile(info.service),
  restore: restore,
  autoOn: (info) => order(info.service, "SetAutoUpdate", { blEnable: true }),
  autoOff: (info) => order(info.service, "SetAutoUpdate", { blEnable: false }),
};

// Does `action` for the service that the appliance describes as `info`.
export function act(action, info) {
  void kActions[action](info);
}

// Asks whether there is a newer release of each service that takes packages.
export function lookForAll() {
  return Promise.all(store.services.filter((info) => info.blHasPackages).map((info) => look(info.service)));
}

async function look(service) {
  const answer = await alone(service, "CheckUpdateInfo", async () => {
    const { data } = await call("CheckUpdateInfo", { service });
    return data;
  });
  if (answer === undefined) {
    return;
  }
  store.checks.set(service, answer.status);
  if (isRecorder()) {
    await readDownload(service).catch(() => {});
  }
  changed();
}

async function download(service) {
  store.checks.delete(service);
  const answer = await order(service, "DownloadStart");
  if (isRecorder() && answer !== undefined) {
    store.checks.set(service, 4);
    await readDownload(service).catch(() => {});
  }
}

// A cancel goes beside what it cancels.
async function cancel(service) {
  await call("DownloadCancel", { service }).catch(() => {});
  if (isRecorder()) {
    store.downloads = store.downloads.filter((other) => other.service !== service);
    await look(service);
  }
}

async function update(info) {
  const { version } = store.downloads.find((ready) => ready.service === info.service);
  const isOlder = isDowngrade(info, version);
  const title = { name: info.name, version };
  if (await ask("update.titleFor", title, planFor(info, { version }), "install.confirm", isOlder)) {
    store.checks.delete(info.service);
    await order(info.service, "Update", { filePath: "" });
  }
}

async function restore(info) {
  if (await ask("restore.title", { name: info.name }, restorePlanFor(info), "restore.confirm", true)) {
    await order(info.service, "Restore");
  }
}
