// The bar at the top: which appliance this is, whether it answers, the language, the way out.
import { make, reconcile, setAttribute, setShown, setText } from "./dom.js";
import { store } from "./store.js";
import { fill, language, languageName, languages, setLanguage, text } from "./texts.js";

const kAppliance = "";

const byId = (id) => document.getElementById(id);

// `onChoose` is called with the name of a recorder, "" for the appliance itself.
export function prepareHeader({ onChoose, onSignOut, onLanguage }) {
  byId("shown").addEventListener("change", (event) => onChoose(event.target.value));
  byId("sign-out").addEventListener("click", onSignOut);
  const choice = byId("language");
  for (const code of languages) {
    choice.append(make("option", { value: code, lang: code }, languageName(code)));
  }
  choice.value = language;
  choice.addEventListener("change", () => {
    setLanguage(choice.value);
    onLanguage();
  });
}

export function showHeader(isSignedIn, recorders) {
  const { appliance, connection } = store;
  document.title = appliance.name === "" ? "Camvora" : `${appliance.name} – Camvora`;
  for (const id of ["appliance", "connection", "sign-out"]) {
    setShown(byId(id), isSignedIn);
  }
  setText(byId("appliance-name"), appliance.name);
  fill(byId("appliance-facts"), "appliance.facts", { model: appliance.model, version: appliance.version });
  setShown(byId("cms-host"), appliance.blCmsHost);
  setAttribute(byId("connection"), "data-connection", connection);
  fill(byId("connection"), `connection.${connection}`);
  showChoice(isSignedIn && recorders.length > 0, recorders);
}

function showChoice(isThere, recorders) {
  setShown(byId("shown-field"), isThere);
  const options = [{ value: kAppliance, words: text("appliance.this") },
    ...recorders.map((name) => ({ value: name, words: name }))];
  reconcile(byId("shown"), options, (option) => option.value, (option) => make("option", { value: option.value }),
    (element, option) => setText(element, option.words));
  if (byId("shown").value !== store.recorder) {
    byId("shown").value = store.recorder;
  }
}
