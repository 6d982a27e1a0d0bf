// The bar at the top: which appliance this is, whether it answers, the language, the way out. Below it, what is wrong.
import { showOptions } from "./activity.js";
import { CallError, kRecorderAway, kUnreachable } from "./api.js";
import { announce, button, make, setAttribute, setShown, setText } from "./dom.js";
import { wordsFor } from "./problems.js";
import { store } from "./store.js";
import { fill, language, languages, setLanguage, text } from "./texts.js";

const byId = (id) => document.getElementById(id);

// Says everything of the page that is there from the beginning. `onChoose` is called with the name of a recorder, ""
// for the appliance itself.
export function prepareHeader(onChoose, onSignOut) {
  document.documentElement.lang = language;
  document.querySelectorAll("[data-text]").forEach((element) => fill(element, element.dataset.text));
  byId("shown").addEventListener("change", (event) => onChoose(event.target.value));
  byId("sign-out").addEventListener("click", onSignOut);
  showOptions(byId("language"), Object.entries(languages));
  byId("language").value = language;
  byId("language").setAttribute("aria-label", text("language"));
  byId("language").addEventListener("change", (event) => setLanguage(event.target.value));
}

export function showHeader(isSignedIn) {
  const { appliance, connection, recorder, recorders } = store;
  document.title = appliance.name ? `${appliance.name} – Camvora` : "Camvora";
  for (const id of ["appliance", "connection", "sign-out"]) {
    setShown(byId(id), isSignedIn);
  }
  setText(byId("appliance-name"), appliance.name);
  setText(byId("appliance-facts"), `${appliance.model} · Camvora ${appliance.version}`);
  setShown(byId("cms-host"), appliance.blCmsHost);
  if (byId("connection").dataset.connection !== connection) {
    setAttribute(byId("connection"), "data-connection", connection);
    fill(byId("connection"), `connection.${connection}`);
    announce(`connection.${connection}`);
  }
  setShown(byId("shown-field"), isSignedIn && recorders.length > 0);
  showOptions(byId("shown"), [["", text("appliance.this")], ...recorders.map((name) => [name, name])]);
  byId("shown").value = recorder;
}

export class Banner {
  #title = make("p", { class: "strip-title" });
  #words = make("p");
  #retry;
  #trouble = make("div", { class: "banner trouble" }, make("div", {}, this.#title, this.#words));
  #recorder = make("p", { class: "banner" });
  element = make("div", {}, this.#trouble, this.#recorder);

  constructor(onRetry) {
    this.#retry = button("lost.retry", onRetry);
    this.#trouble.append(this.#retry);
  }

  show() {
    const { appliance, connection, recorder } = store;
    const trouble = troubleOf(store);
    setShown(this.#trouble, trouble !== "");
    setShown(this.#retry, trouble === connection);
    if (trouble !== "") {
      fill(this.#title, ...titleOf(trouble, store));
      fill(this.#words, `${trouble}.words`, { name: recorder });
      setShown(this.#words, appliance.model); // before that nothing is known
    }
    setShown(this.#recorder, recorder !== "");
    fill(this.#recorder, "recorder.note", { name: recorder });
  }
}

// `trouble`: "lost", "refused" or "halted". Returns a key of the texts, with its values.
export function titleOf(trouble, { error, recorder }) {
  if (trouble !== "lost" || !(error instanceof CallError) || error.code === kUnreachable) {
    return [`${trouble}.title`];
  }
  return error.code === kRecorderAway
    ? ["lost.recorder", { name: recorder }]
    : ["refusal.call", { reason: wordsFor(error) }];
}

function troubleOf({ connection, recorder, appliance }) {
  if (connection === "lost" || connection === "refused") {
    return connection;
  }
  return recorder === "" && appliance.blStarted === false ? "halted" : "";
}
