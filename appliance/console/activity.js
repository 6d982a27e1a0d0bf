// What was done on the appliance, in one list.
import { announce, button, make, reconcile, setAttribute, setShown, setText } from "./dom.js";
import { time, today } from "./format.js";
import { happenings, kKinds } from "./happenings.js";
import { load } from "./load.js";
import { kKept } from "./operations.js";
import { store } from "./store.js";
import { foreign, redraw, text } from "./texts.js";

const kPage = 40;
const kTypingMs = 700; // the longest pause between two keys of a word

export class Activity {
  #sources = []; // of what is shown
  #shown = kPage;
  #telling; // a timer
  #service = this.#filter("select", "activity.service");
  #kind = this.#filter("select", "activity.kind");
  #words = this.#filter("input", "activity.search", { type: "search" });
  #filters = make("div", { class: "filters", role: "search" },
    ...[this.#service, this.#kind, this.#words].map((control) => control.parentElement));
  #list = make("ol", { class: "happenings" });
  #empty = make("div", { class: "empty" });
  #more = button("activity.more", () => this.#showMore());
  #older = make("p", { class: "quiet", text: "activity.older" });
  element = make("section", { class: "activity", "aria-labelledby": "activity-title" },
    make("header", { class: "section-head" },
      make("div", {}, make("h2", { id: "activity-title", text: "activity.title" }),
        make("p", { class: "quiet", text: "activity.words" })), this.#filters),
    this.#list, this.#empty, this.#more, this.#older);

  show() {
    const sources = [store.operations.all(), store.entries, store.notifications, store.recorder, store.services.length,
      store.connection, today()];
    if (sources.some((source, index) => source !== this.#sources[index])) {
      this.#sources = sources;
      this.#showAll();
    }
  }

  // Returns how much there is to show.
  #showAll() {
    const isHere = store.recorder === "";
    this.#showOptions();
    const all = isHere ? happenings() : [];
    const matching = all.filter((one) => this.#matches(one));
    reconcile(this.#list, matching.slice(0, this.#shown), ({ key }) => key, () => make("li"), showRow);
    setShown(this.#list, matching.length > 0);
    setShown(this.#more, matching.length > this.#shown);
    setShown(this.#older, isHere && matching.length <= this.#shown && isCut());
    setShown(this.#filters, isHere);
    const isKnown = all.length > 0 || store.connection === "live";
    setShown(this.#empty, matching.length === 0 && (isKnown || !isHere));
    this.#showEmpty(!isHere ? "activity.recorder" : all.length === 0 ? "activity.none" : "activity.noMatch");
    return matching.length;
  }

  // A control with its label; whatever is set there shows at once.
  #filter(tag, key, attributes) {
    const control = make(tag, attributes);
    control.addEventListener("input", () => {
      this.#shown = kPage;
      const count = this.#showAll();
      clearTimeout(this.#telling);
      this.#telling = setTimeout(() => announce("activity.matches", { count }), kTypingMs);
    });
    make("label", { class: "field" }, make("span", { text: key }), control);
    return control;
  }

  #matches({ service, kind, name, words, who }) {
    const wanted = this.#words.value.trim().toLowerCase();
    return ["", String(service)].includes(this.#service.value) && ["", kind].includes(this.#kind.value)
      && (wanted === "" || `${name}\n${words}\n${who && text(`who.${who}`)}`.toLowerCase().includes(wanted));
  }

  #showOptions() {
    const services = store.services.map((info) => [info.service, info.name]);
    showOptions(this.#service, [["", text("activity.allServices")], ...services]);
    showOptions(this.#kind, ["", ...kKinds].map((kind) => [kind, text(`activity.kind.${kind}`)]));
  }

  #showMore() {
    const next = this.#list.childElementCount;
    this.#shown += kPage;
    this.#showAll();
    const added = [...this.#list.children].slice(next);
    added.map((row) => row.querySelector("button")).find(Boolean)?.focus();
  }

  #showEmpty(key) {
    const reset = () => {
      [this.#service, this.#kind, this.#words].forEach((control) => (control.value = ""));
      clearTimeout(this.#telling);
      this.#showAll();
      this.#words.focus();
    };
    redraw(this.#empty, key, () => [make("p", { class: "empty-title", text: key }),
      make("p", { class: "quiet", text: `${key}.words` }),
      ...(key === "activity.noMatch" ? [button("activity.reset", reset)] : [])]);
  }
}

// True when the appliance may have older ones, too.
function isCut() {
  return [store.operations.all(), store.entries, store.notifications].some(({ length }) => length === kKept);
}

// `options`: pairs of value and words. What was chosen stays chosen while it is there.
export function showOptions(select, options) {
  const chosen = select.value;
  reconcile(select, options, ([value]) => value, ([value]) => make("option", { value }),
    (element, [, words]) => setText(element, words));
  if (select.value !== chosen) {
    select.value = options.some(([value]) => String(value) === chosen) ? chosen : "";
  }
}

function showRow(row, { kind, id, name, time: when, who, words, outcome }) {
  setAttribute(row, "data-outcome", outcome);
  redraw(row, [today(), when, name, who, words, outcome], () => [
    make("time", { datetime: when }, time(when)),
    make("span", { class: "kind", text: `activity.one.${kind}` }),
    make("span", { class: "service" }, foreign(name)),
    kind === "operation"
      ? make("button", { type: "button", class: "words", onclick: () => void open(id) }, foreign(words))
      : make("span", { class: "words" }, foreign(words)),
    make("span", { class: "who" }, who && text(`who.${who}`)),
    make("span", { class: "outcome" }, outcome && text(`outcome.${outcome}`)),
  ]);
}

async function open(id) {
  (await load("./operationview.js"))?.openOperation(id);
}
