// The way in: a link with a code that works once. Without a session nothing else is shown.
import { exchange } from "./api.js";
import { button, make, setShown, setText } from "./dom.js";
import { wordsFor } from "./problems.js";
import { fill } from "./texts.js";

const kCodeInLink = /^#code=(.+)$/;
const kPath = "/session";

// The code of the link that the page was opened with, "" for none. It is taken off the address.
export function takeCode() {
  const found = kCodeInLink.exec(location.hash);
  if (found === null) {
    return "";
  }
  history.replaceState(null, "", location.pathname);
  return decodeURIComponent(found[1]);
}

// Throws a CallError where the code is refused.
export async function signIn(code) {
  await exchange(kPath, "POST", { code });
}

export async function signOut() {
  await exchange(kPath, "DELETE");
}

// `onSignedIn` is called when a code that was typed in was accepted.
export class SignInView {
  element;
  #note = make("p", { class: "signin-note", role: "status", hidden: true });
  #code = make("input", { id: "code", name: "code", autocomplete: "one-time-code", spellcheck: "false",
    autocapitalize: "characters", placeholder: "ABCD-EFGH-JKLM", required: true });
  #onSignedIn;

  constructor(onSignedIn) {
    this.#onSignedIn = onSignedIn;
    const form = make("form", { onsubmit: (event) => this.#submit(event) },
      make("label", { for: "code", text: "signin.code" }),
      make("div", { class: "signin-row" }, this.#code,
        button("signin.submit", undefined, { class: "primary", type: "submit" })));
    this.element = make("section", { class: "signin", "aria-labelledby": "signin-title" },
      make("h1", { id: "signin-title", text: "signin.title", tabindex: "-1" }), this.#note,
      make("p", { text: "signin.words" }),
      make("pre", {}, make("code", {}, "camvoractl console")), form);
  }

  // `key`: why nobody is signed in.
  note(key) {
    setShown(this.#note, key !== "");
    if (key !== "") {
      fill(this.#note, key);
    }
  }

  showRefusal(error) {
    setShown(this.#note, true);
    delete this.#note.dataset.text;
    delete this.#note.dataset.written;
    setText(this.#note, wordsFor(error));
  }

  async #submit(event) {
    event.preventDefault();
    this.note("signin.working");
    try {
      await signIn(this.#code.value.trim().toUpperCase());
      this.note("");
      this.#onSignedIn();
    } catch (error) {
      this.showRefusal(error);
    }
    this.#code.value = "";
  }
}
