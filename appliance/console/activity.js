// What was done on the appliance: operations, its operation log and notifications in one list, newest first.
import { button, foreign, make, reconcile, setAttribute, setShown, setText } from "./dom.js";
import { time } from "./format.js";
import { describe, kKinds } from "./happenings.js";
import { openOperation } from "./operationview.js";
import { store } from "./store.js";
import { fill, language, text } from "./texts.js";

const kPage = 40;

export class Activity {
  element;
  #filters = { service: "", kind: "", words: "" };
  #shown = kPage;
  #service = make("select", { id: "filter-service", onchange: (event) => this.#filter("service", event.target.value) });
  #kind = make("select", { id: "filter-kind", onchange: (event) => this.#filter("kind", event.target.value) });
  #search = make("input", { id: "filter-words", type: "search", autocomplete: "off",
    oninput: (event) => this.#filter("words", event.target.value) });
  #list = make("ol", { class: "happenings" });
  #more = button("activity.more", () => this.#showMore());
  #empty = make("div", { class: "empty" });
  #filterBar;

  constructor() {
    this.#filterBar = make("div", { class: "filters", role: "search" },
      field("activity.service", this.#service), field("activity.kind", this.#kind),
      field("activity.search", this.#search));
    this.element = make("section", { class: "activity", "aria-labelledby": "activity-title" },
      make("header", { class: "section-head" },
        make("div", {}, make("h2", { id: "activity-title", text: "activity.title" }),
          make("p", { class: "quiet", text: "activity.words" })),
        this.#filterBar),
      this.#list, this.#empty, this.#more);
  }

  // Shows what the store has.
  show() {
    this.#showFilters();
    const isHere = store.recorder === "";
    const all = isHere ? describe(store) : [];
    const matching = all.filter((happening) => this.#matches(happening));
    reconcile(this.#list, matching.slice(0, this.#shown), (happening) => happening.key, rowOf, updateRow);
    setShown(this.#list, matching.length > 0);
    setShown(this.#more, matching.length > this.#shown);
    setShown(this.#filterBar, isHere);
    this.#showEmpty(isHere, all.length, matching.length);
  }

  #filter(name, value) {
    this.#filters[name] = value;
    this.#shown = kPage;
    this.show();
  }

  #showMore() {
    const next = this.#list.childElementCount;
    this.#shown += kPage;
    this.show();
    this.#list.children[next]?.querySelector("button, [tabindex]")?.focus();
  }

  #matches(happening) {
    const { service, kind, words } = this.#filters;
    return (service === "" || String(happening.service) === service)
      && (kind === "" || happening.kind === kind)
      && happening.searched().includes(words.toLowerCase().trim());
  }

  #showFilters() {
    const services = store.services.map((info) => ({ value: String(info.service), words: info.name }));
    showOptions(this.#service, [{ value: "", words: text("activity.allServices") }, ...services]);
    const kinds = kKinds.map((kind) => ({ value: kind, words: text(`activity.kind.${kind}`) }));
    showOptions(this.#kind, [{ value: "", words: text("activity.allKinds") }, ...kinds]);
  }

  #showEmpty(isHere, all, matching) {
    setShown(this.#empty, matching === 0);
    const key = !isHere ? "activity.recorder" : all === 0 ? "activity.none" : "activity.noMatch";
    if (matching > 0 || this.#empty.dataset.key === key) {
      return;
    }
    this.#empty.dataset.key = key;
    const reset = button("activity.reset", () => this.#reset());
    this.#empty.replaceChildren(make("p", { class: "empty-title", text: key }),
      make("p", { class: "quiet", text: `${key}.words` }), ...(key === "activity.noMatch" ? [reset] : []));
  }

  #reset() {
    this.#service.value = "";
    this.#kind.value = "";
    this.#search.value = "";
    this.#filters = { service: "", kind: "", words: "" };
    this.show();
    this.#search.focus();
  }
}

function field(key, control) {
  return make("div", { class: "field" }, make("label", { for: control.id, text: key }), control);
}

function showOptions(select, options) {
  const chosen = select.value;
  reconcile(select, options, (option) => option.value, (option) => make("option", { value: option.value }),
    (element, option) => setText(element, option.words));
  if (select.value !== chosen) {
    select.value = options.some((option) => option.value === chosen) ? chosen : "";
  }
}

function rowOf(happening) {
  const open = happening.kind === "operation"
    ? make("button", { type: "button", class: "row-open", onclick: () => openOperation(happening.id) })
    : make("span", { class: "row-open" });
  return make("li", { class: "happening" },
    make("time", { class: "number" }), make("span", { class: "kind" }), make("span", { class: "service" }),
    open, make("span", { class: "who" }), make("span", { class: "outcome" }));
}

function updateRow(row, happening) {
  const signature = language + happening.signature();
  if (row.dataset.signature === signature) {
    return;
  }
  row.dataset.signature = signature;
  const [when, kind, service, what, who, outcome] = row.children;
  setText(when, time(happening.time));
  setAttribute(when, "datetime", happening.time);
  fill(kind, `activity.one.${happening.kind}`);
  service.replaceChildren(foreign(happening.serviceName));
  what.replaceChildren(foreign(happening.words));
  setText(who, happening.who === "" ? "" : text(`who.${happening.who}`));
  setText(outcome, happening.outcome === "" ? "" : text(`outcome.${happening.outcome}`));
  setAttribute(row, "data-outcome", happening.outcome);
}
