// A package file's way to the appliance, in one window: sent, checked, shown, and installed when that is agreed to.
import { install } from "./agreed.js";
import { Dialog, tell } from "./dialog.js";
import { make } from "./dom.js";
import { percent, Rate, size } from "./format.js";
import { logLines } from "./loglines.js";
import { alone, carryOut, isBusy } from "./orders.js";
import { isDowngrade, planFor } from "./plan.js";
import { isCut, refusalOf } from "./problems.js";
import { infoOf, store } from "./store.js";
import { fill, foreign } from "./texts.js";
import { upload, UploadCancelled } from "./upload.js";

const kExtension = ".spk";
const kShowMs = 500;

// The service that the file's name begins with.
function namedBy({ name }) {
  return store.services.find(({ blHasPackages, shortName }) =>
    blHasPackages && name.startsWith(shortName) && !/^\w/.test(name.slice(shortName.length)));
}

// Lets the user choose a file.
export function chooseFile(service) {
  const input = make("input", { type: "file", accept: kExtension });
  input.addEventListener("change", () => installFile(input.files[0], service));
  input.click();
}

// Takes one file.
export function installDropped(files, service) {
  if (files.length === 1) {
    installFile(files[0], service);
  } else {
    tell("install.title", {}, "install.one");
  }
}

// `service` is the file's unless its name says another; undefined where only the name can tell.
export function installFile(file, service) {
  const info = namedBy(file) ?? infoOf(service);
  if (info) {
    void new Installation(file, info).run();
  } else {
    tell("install.title", {}, ["install.which", { file: file.name }]);
  }
}

class Installation {
  #file;
  #info;
  #dialog;
  #isOpen = true;
  #isSent = false;
  #cancelUpload = () => {};

  constructor(file, info) {
    this.#file = file;
    this.#info = info;
    this.#dialog = new Dialog("install.titleFor", { name: info.name });
    this.#dialog.whenClosed(() => {
      this.#isOpen = false;
      this.#cancelUpload();
    });
  }

  async run() {
    if (!this.#file.name.endsWith(kExtension)) {
      this.#showRefusal({ why: "refusal.extension", advice: "advice.device_pack.sel_file", values: {} });
    } else if (isBusy(this.#info.service)) {
      this.#showRefusal({ why: "refusal.busy", advice: "advice.busy", values: { name: this.#info.name } });
    } else {
      await alone(this.#info.service, "Upload", () => this.#sendAndCheck());
    }
  }

  async #sendAndCheck() {
    const { service } = this.#info;
    try {
      const pkgInfo = await this.#send();
      this.#isSent = true;
      store.pending.get(service).method = "GetPkgInfo";
      this.#dialog.show([make("p", { text: "install.checking", role: "status" }),
        make("progress", { label: "work.GetPkgInfo" })], this.#dialog.closer("dialog.cancel"));
      this.#showPlan(await carryOut(service, "GetPkgInfo", { pkgInfo }));
    } catch (error) {
      this.#showFailure(error);
    }
  }

  #send() {
    const { name, size: bytes } = this.#file;
    const bar = make("progress", { max: bytes, value: 0, label: "work.Upload" });
    const amount = make("p", { class: "amount" });
    const rate = new Rate();
    this.#dialog.show([make("p", { text: ["install.sending", { file: name }] }), bar, amount,
      ...(store.recorder ? [make("p", { text: ["install.onRecorder", { name: store.recorder }] })] : [])],
    this.#dialog.closer("dialog.cancel"));
    const show = () => fill(amount, "amount.rate",
      { done: percent(bar.value, bytes), size: size(bytes), rate: size(rate.add(bar.value)) });
    const timer = setInterval(show, kShowMs); // one that stands still, too
    const { done, cancel } = upload(this.#file, (sent) => (bar.value = sent));
    this.#cancelUpload = cancel;
    return done.finally(() => clearInterval(timer));
  }

  #showPlan({ data: pack, request }) {
    const info = infoOf(this.#info.service) ?? this.#info;
    const isOlder = isDowngrade(info, pack.version);
    const confirm = () => void install(info, pack.filePath, request);
    const [key, style] = isOlder ? ["install.confirmOlder", "danger"] : ["install.confirm", "primary"];
    this.#dialog.show(planFor(info, { ...pack, file: this.#file.name }),
      this.#dialog.closer("dialog.cancel"), this.#dialog.doer(key, confirm, style));
  }

  #showFailure(error) {
    if (error instanceof UploadCancelled || !this.#isOpen) {
      return;
    }
    if (isCut(error) && !this.#isSent) {
      this.#showEnd("install.cut", "advice.cut", {}, "",
        this.#dialog.doer("install.again", () => installFile(this.#file, this.#info.service)));
    } else {
      this.#showRefusal({ ...refusalOf(error), request: error.request });
    }
  }

  #showRefusal({ why, advice, values, request }) {
    this.#dialog.setTitle("install.refused");
    this.#showEnd(why, advice, values, request,
      this.#dialog.doer("install.another", () => chooseFile(this.#info.service)));
  }

  #showEnd(why, advice, values, request, next) {
    this.#dialog.show([
      make("p", {}, foreign(this.#file.name)),
      make("p", { text: [why, values], class: "failure-words", role: "alert" }),
      make("p", { text: [advice, values] }),
      ...(request ? [logLines(request)] : []),
    ], this.#dialog.closer("dialog.close"), next);
  }
}
