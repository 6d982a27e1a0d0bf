// What is done once somebody has agreed to it in a window.
import { page } from "./api.js";
import { ask, tell } from "./dialog.js";
import { isBusy, order } from "./orders.js";
import { isDowngrade, planFor, restorePlanFor } from "./plan.js";
import { infoOf, store } from "./store.js";
import { text } from "./texts.js";

export async function update(info) {
  const download = store.downloads.find((one) => one.service === info.service);
  if (!download) { // it was cancelled a moment ago
    return;
  }
  const { version } = download;
  const values = { name: info.name, version };
  if (await ask("update.title", values, planFor(info, { version }), "install.confirm", isDowngrade(info, version))) {
    store.checks.delete(info.service);
    await orderAgreed(info, "Update", { filePath: "" }, async () => {
      const { downloads } = await page("/downloads");
      refuseIf(downloads.find((one) => one.service === info.service)?.version !== version);
    });
  }
}

export async function restore(info) {
  if (await ask("restore.title", { name: info.name }, restorePlanFor(info), "restore.confirm", true)) {
    await orderAgreed(info, "Restore");
  }
}

// Installs the package at `filePath`, which the request `checked` has looked at, in place of what `info` has; not one
// that came in since, nor in place of another. What comes in at a recorder is not known here.
export function install(info, filePath, checked) {
  return orderAgreed(info, "Update", { filePath }, () => {
    const isAnother = store.operations.last(info.service, "GetPkgInfo")?.request !== checked;
    refuseIf(store.recorder === "" && isAnother);
  });
}

// `info` is what was shown of the service.
async function orderAgreed(info, method, params, check = () => {}) {
  if (isBusy(info.service)) {
    tell(`failed.${method}`, {}, ["refusal.busy", { name: info.name }]);
  } else {
    await order(info.service, method, params, async () => {
      refuseIf(infoOf(info.service)?.version !== info.version);
      await check();
    });
  }
}

function refuseIf(isAnother) {
  if (isAnother) {
    throw new Error(text("refusal.replaced"));
  }
}
