// What the buttons of a service do.
import { call } from "./api.js";
import { ask } from "./dialog.js";
import { alone, order } from "./orders.js";
import { isDowngrade, planFor, restorePlanFor } from "./plan.js";
import { holdView, store } from "./store.js";

const kActions = {
  start: ({ service }) => order(service, "Enable"),
  stop: ({ service }) => order(service, "Disable"),
  restart: ({ service }) => order(service, "Restart"),
  check: ({ service }) => look(service),
  download: ({ service }) => download(service),
  cancel: ({ service }) => cancel(service),
  install: async ({ service }) => (await installing()).chooseFile(service),
  autoOn: ({ service }) => order(service, "SetAutoUpdate", { blEnable: true }),
  autoOff: ({ service }) => order(service, "SetAutoUpdate", { blEnable: false }),
  update,
  restore,
};

// Loaded when it is wanted for the first time.
const installing = () => import("./install.js");

// `service`: where the file was dropped, undefined for nowhere in particular.
export async function installDropped(file, service) {
  (await installing()).installFile(file, service);
}

// Does `action` for the service that the appliance describes as `info`.
export function act(action, info) {
  void kActions[action](info);
}

// Asks for newer releases of all services that take packages.
export function lookForAll() {
  store.services.filter((info) => info.blHasPackages).forEach(({ service }) => void look(service));
}

async function look(service) {
  await alone(service, "CheckUpdateInfo", async () => {
    const isShown = holdView();
    const { data } = await call("CheckUpdateInfo", { service });
    if (isShown()) {
      store.checks.set(service, data.status);
    }
  });
}

async function download(service) {
  store.checks.delete(service);
  await order(service, "DownloadStart");
}

// A cancel goes beside what it cancels.
async function cancel(service) {
  await call("DownloadCancel", { service }).catch(() => {});
}

async function update(info) {
  const { version } = store.downloads.find((download) => download.service === info.service);
  const values = { name: info.name, version };
  if (await ask("update.title", values, planFor(info, { version }), "install.confirm", isDowngrade(info, version))) {
    store.checks.delete(info.service);
    await order(info.service, "Update", { filePath: "" });
  }
}

async function restore(info) {
  if (await ask("restore.title", { name: info.name }, restorePlanFor(info), "restore.confirm", true)) {
    await order(info.service, "Restore");
  }
}
