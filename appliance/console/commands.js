// The lines of `camvoractl` that do what the console does, to be copied.
import { announce, make, reconcile, setShown } from "./dom.js";
import { store } from "./store.js";
import { fill, foreign } from "./texts.js";

const kCopiedMs = 2000;

const kLines = {
  start: (service) => ["start", service],
  stop: (service) => ["stop", service],
  restart: (service) => ["restart", service],
  check: () => ["updates"],
  download: (service) => ["download", service],
  cancel: (service) => ["cancel", service],
  update: (service) => ["update", service],
  install: () => ["install", "FILE.spk"],
  restore: (service) => ["restore", service],
  autoOn: (service) => ["auto-update", service, "on"],
  autoOff: (service) => ["auto-update", service, "off"],
};

function quoted(word) {
  return /^[\w.=-]+$/.test(word) ? word : `'${word.replaceAll("'", "'\\''")}'`;
}

// `info`: the service as the appliance describes it; `recorder`: where it is, "" for the appliance itself.
export function commandFor(action, info, recorder) {
  const server = recorder ? ["--server", recorder] : [];
  return ["camvoractl", ...server, ...kLines[action](info.shortName)].map(quoted).join(" ");
}

// What unfolds in `element`, a "details"; `show` takes what `stateOf` says of the service.
export class CommandList {
  #list = make("ul");
  #none = make("p", { class: "quiet", text: "commands.none" });

  constructor(element) {
    element.append(this.#none, this.#list);
    element.addEventListener("focusout", ({ relatedTarget }) => {
      if (relatedTarget && !element.contains(relatedTarget)) {
        element.open = false;
      }
    });
    element.addEventListener("keydown", ({ key }) => {
      if (key === "Escape") {
        element.open = false;
        element.firstChild.focus();
      }
    });
  }

  show({ info, actions }) {
    const lines = new Set([...actions].map((action) => commandFor(action, info, store.recorder)));
    setShown(this.#none, lines.size === 0);
    reconcile(this.#list, lines, String, itemOf, () => {});
  }
}

function itemOf(line) {
  const button = make("button", { type: "button", text: "commands.copy", label: ["commands.copyLine", { line }] });
  button.addEventListener("click", async () => {
    const said = (await copy(line, button)) ? "commands.copied" : "commands.notCopied";
    fill(button, said);
    announce(said);
    setTimeout(() => fill(button, "commands.copy"), kCopiedMs);
  });
  return make("li", {}, make("code", {}, foreign(line)), button);
}

// Browsers keep their clipboard closed to pages that came over plain HTTP; a selection can be copied even there.
// False where nothing was copied.
async function copy(words, button) {
  if (navigator.clipboard) {
    return navigator.clipboard.writeText(words).then(() => true, () => false);
  }
  const field = make("textarea", { class: "unseen" });
  field.value = words;
  button.after(field);
  field.select();
  const isCopied = document.execCommand("copy");
  field.remove();
  button.focus();
  return isCopied;
}
