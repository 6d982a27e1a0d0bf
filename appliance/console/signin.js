// The way in: a link with a code that works once. Without a session nothing else is shown.
import { exchange } from "./api.js";
import { button, make, setShown } from "./dom.js";
import { wordsFor } from "./problems.js";
import { fill } from "./texts.js";

const kPath = "/session";
const kCodeInLink = "#code=";

export function hasCode() {
  return location.hash.startsWith(kCodeInLink);
}

// The code of the link that the page was opened with, else "". It is taken off the address.
export function takeCode() {
  const { hash, pathname } = location;
  if (!hasCode()) {
    return "";
  }
  history.replaceState(null, "", pathname);
  return hash.slice(kCodeInLink.length);
}

// Throws a CallError where the code is refused.
export function signIn(code) {
  return exchange(kPath, "POST", { code });
}

export function signOut() {
  return exchange(kPath, "DELETE");
}

export class SignInView {
  #note = make("p", { class: "note", role: "status", hidden: true });
  #code = make("input", { id: "code", autocomplete: "one-time-code", autocapitalize: "characters", spellcheck: "false",
    placeholder: "ABCD-EFGH-JKLM", required: true });
  #onSignedIn;
  element = make("section", { class: "signin", "aria-labelledby": "signin-title" },
    make("h1", { id: "signin-title", text: "signin.title" }), this.#note, make("p", { text: "signin.words" }),
    make("pre", {}, make("code", {}, "camvoractl console")),
    make("form", { onsubmit: (event) => this.#submit(event) },
      make("label", { for: "code", text: "signin.code" }),
      make("div", { class: "signin-row" }, this.#code,
        button("signin.submit", () => {}, { class: "primary", type: "submit" }))));

  // `onSignedIn` is called when a code that was typed in has been accepted.
  constructor(onSignedIn) {
    this.#onSignedIn = onSignedIn;
  }

  // Called when it is shown. `reason`: the key of why nobody is signed in, "" for none.
  begin(reason) {
    this.note(reason);
    this.#code.focus();
  }

  note(key, values) {
    setShown(this.#note, key !== "");
    fill(this.#note, key, values);
  }

  noteRefusal(error) {
    this.note("refusal.call", { reason: wordsFor(error) });
  }

  async #submit(event) {
    event.preventDefault();
    try {
      await signIn(this.#code.value.trim().toUpperCase());
      this.#code.value = "";
      this.#onSignedIn();
    } catch (error) {
      this.noteRefusal(error);
    }
  }
}
