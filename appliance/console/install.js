// A package file's way to the appliance, in one window: sent, checked, shown, and installed when that is agreed to.
import { call, CallError, kUnreachable } from "./api.js";
import { Dialog } from "./dialog.js";
import { button, foreign, make } from "./dom.js";
import { percent, size } from "./format.js";
import { logLines } from "./loglines.js";
import { alone, isBusy, order, whenSeen } from "./orders.js";
import { isDowngrade, planFor } from "./plan.js";
import { refusalOf } from "./problems.js";
import { Rate } from "./rate.js";
import { store } from "./store.js";
import { fill } from "./texts.js";
import { upload, UploadCancelled } from "./upload.js";

const kExtension = ".spk";

function paragraph(key, values, attributes = {}) {
  const element = make("p", attributes);
  fill(element, key, values);
  return element;
}

function takers() {
  return store.services.filter((info) => info.blHasPackages);
}

// The service that the file's name begins with.
function namedBy(file) {
  const name = file.name.toLowerCase();
  return takers().find((info) => name.startsWith(info.shortName) && !/^\w/.test(name.slice(info.shortName.length)));
}

// Lets the user choose a file; `service` is its service unless its name says another.
export function chooseFile(service) {
  const input = make("input", { type: "file", accept: kExtension, hidden: true });
  input.addEventListener("change", () => {
    input.remove();
    if (input.files.length > 0) {
      installFile(input.files[0], service);
    }
  });
  input.addEventListener("cancel", () => input.remove());
  document.body.append(input);
  input.click();
}

export function installFile(file, service) {
  const info = namedBy(file) ?? takers().find((candidate) => candidate.service === service);
  if (info !== undefined) {
    void new Installation(file, info).run();
  } else {
    askForService(file);
  }
}

function askForService(file) {
  const dialog = new Dialog("install.title");
  const services = takers();
  if (services.length === 0) {
    dialog.show([paragraph("install.unknown")], [button("install.close", () => dialog.close())]);
    return;
  }
  const question = make("legend");
  fill(question, "install.which", { file: file.name });
  const choices = services.map((info, index) => make("label", { class: "choice" },
    make("input", { type: "radio", name: "service", value: info.service, checked: index === 0 }),
    foreign(info.name)));
  const form = make("fieldset", {}, question, ...choices);
  const next = () => {
    const chosen = Number(form.querySelector(":checked").value);
    dialog.close();
    installFile(file, chosen);
  };
  dialog.show([form], [
    button("install.cancel", () => dialog.close()),
    button("install.next", next, { class: "primary" }),
  ]);
}

class Installation {
  #file;
  #info;
  #dialog;
  #isOpen = true;
  #cancelUpload = () => {};

  constructor(file, info) {
    this.#file = file;
    this.#info = info;
    this.#dialog = new Dialog("install.titleFor", { name: info.name });
    this.#dialog.element.addEventListener("close", () => {
      this.#isOpen = false;
      this.#cancelUpload();
    });
  }

  async run() {
    if (!this.#file.name.endsWith(kExtension)) {
      this.#showRefusal("refusal.extension", "advice.device_pack.sel_file", { file: this.#file.name }, "");
    } else if (isBusy(this.#info.service)) {
      this.#showEnd([paragraph("install.busy", { name: this.#info.name }, { class: "failure-words" })]);
    } else {
      await alone(this.#info.service, "Upload", () => this.#sendAndCheck());
    }
  }

  async #sendAndCheck() {
    try {
      const pkgInfo = await this.#send();
      store.pending.get(this.#info.service).method = "GetPkgInfo";
      this.#dialog.show([make("p", { text: "install.checking", role: "status" }), make("progress")],
        [this.#closeButton("install.cancel")]);
      const { data, request } = await call("GetPkgInfo", { service: this.#info.service, pkgInfo });
      await whenSeen(this.#info.service, "GetPkgInfo", request);
      if (this.#isOpen) {
        this.#showPlan(data);
      }
    } catch (error) {
      this.#showFailure(error);
    }
  }

  #send() {
    const bar = make("progress", { max: this.#file.size, value: 0, label: "work.Upload" });
    const done = make("p", { class: "amount" });
    const note = store.recorder === "" ? [] : [paragraph("install.onRecorder", { name: store.recorder })];
    this.#dialog.show([paragraph("install.sending", { file: this.#file.name }), bar, done, ...note],
      [this.#closeButton("install.cancel")]);
    const rate = new Rate();
    const sending = upload(this.#file, (sent, whole) => {
      bar.value = sent;
      fill(done, "install.sent", { sent: percent(sent, whole), size: size(whole), rate: size(rate.add(sent)) });
    });
    this.#cancelUpload = sending.cancel;
    return sending.done.finally(() => {
      this.#cancelUpload = () => {};
    });
  }

  #showPlan(pack) {
    const isOlder = isDowngrade(this.#info, pack.version);
    const install = () => {
      this.#dialog.close();
      void order(this.#info.service, "Update", { filePath: pack.filePath });
    };
    this.#dialog.show(planFor(this.#info, { ...pack, file: this.#file.name }), [
      this.#closeButton("install.cancel"),
      button(isOlder ? "install.confirmOlder" : "install.confirm", install, { class: isOlder ? "danger" : "primary" }),
    ]);
  }

  #showFailure(error) {
    if (!this.#isOpen || error instanceof UploadCancelled) {
      return;
    }
    if (!(error instanceof CallError)) {
      throw error;
    }
    if (error.code === kUnreachable) {
      this.#showCut();
    } else {
      const { why, advice, values } = refusalOf(error);
      this.#showRefusal(why, advice, values, error.request);
    }
  }

  #showCut() {
    const again = () => void this.run();
    this.#showEnd([
      paragraph("install.cut", { file: this.#file.name }, { class: "failure-words", role: "alert" }),
      paragraph("install.cutAdvice"),
    ], button("install.again", again, { class: "primary" }));
  }

  #showRefusal(why, advice, values, request) {
    this.#dialog.setTitle("install.refused");
    const another = () => {
      this.#dialog.close();
      chooseFile(this.#info.service);
    };
    this.#showEnd([
      make("p", { class: "subject" }, foreign(this.#file.name)),
      paragraph(why, values, { class: "failure-words", role: "alert" }),
      paragraph(advice, values),
      ...(request === "" ? [] : [logLines(request, "install.logged")]),
    ], button("install.another", another, { class: "primary" }));
  }

  #showEnd(content, ...actions) {
    this.#dialog.show(content, [this.#closeButton("install.close"), ...actions]);
  }

  #closeButton(key) {
    return button(key, () => this.#dialog.close());
  }
}
