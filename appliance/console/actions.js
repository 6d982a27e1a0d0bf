// What the buttons of a service do.
import { call } from "./api.js";
import { announce } from "./dom.js";
import { nameOf } from "./happenings.js";
import { load } from "./load.js";
import { alone, alongside, carryOut, order } from "./orders.js";
import { holdView, store } from "./store.js";
import { text } from "./texts.js";

const kInstalling = "./install.js";
const kAgreeing = "./agreed.js";
const kNewer = 2; // an answer about releases

const kActions = {
  start: ({ service }) => order(service, "Enable"),
  stop: ({ service }) => order(service, "Disable"),
  restart: ({ service }) => order(service, "Restart"),
  check: ({ service }) => look(service),
  download: ({ service }) => download(service),
  cancel: ({ service }) => cancel(service),
  install: async ({ service }) => (await load(kInstalling))?.chooseFile(service),
  autoOn: ({ service }) => order(service, "SetAutoUpdate", { blEnable: true }),
  autoOff: ({ service }) => order(service, "SetAutoUpdate", { blEnable: false }),
  update: async (info) => (await load(kAgreeing))?.update(info),
  restore: async (info) => (await load(kAgreeing))?.restore(info),
};

// `service`: where the files were dropped, undefined for nowhere in particular. An open window comes first.
export async function installDropped(files, service) {
  if (!document.querySelector("dialog")) {
    (await load(kInstalling))?.installDropped(files, service);
  }
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
    const isKnown = store.releases.some((release) => release.service === service && release.version !== "");
    const { data } = await call("CheckUpdateInfo", { service });
    if (isShown()) {
      store.checks.set(service, data.status);
      if (data.status !== kNewer || isKnown) { // a release that is news is said by its card
        announce("announce.news", { name: nameOf(service), words: text(`check.${data.status}`) });
      }
    }
  });
}

async function download(service) {
  store.checks.delete(service);
  await order(service, "DownloadStart");
}

// A cancel goes beside what it cancels.
async function cancel(service) {
  await alongside(service, "DownloadCancel", () => carryOut(service, "DownloadCancel"));
}
