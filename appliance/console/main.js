// Starts the console: signs in, then shows the appliance for as long as the session lasts.
import { Activity } from "./activity.js";
import { exchange, isRefusal, page, whenSessionEnds } from "./api.js";
import { Banner } from "./banner.js";
import { guardClicks } from "./dom.js";
import { prepareHeader, showHeader } from "./header.js";
import { Services } from "./services.js";
import { signIn, SignInView, signOut, takeCode } from "./signin.js";
import { hideAppliance, showAppliance } from "./source.js";
import { changed, setConnection, store, whenChanged } from "./store.js";
import { translate } from "./texts.js";

const kRetryMs = 2000;

const main = document.getElementById("main");
const signInView = new SignInView(() => void open());
const views = [new Banner(), new Services(), new Activity()];

let isSignedIn = false;
let recorders = [];

function show() {
  showHeader(isSignedIn, recorders);
  if (isSignedIn) {
    for (const view of views) {
      view.show();
    }
  }
}

// Shows how to get in. `reason` is a text's key, "" for none.
function shut(reason) {
  isSignedIn = false;
  recorders = [];
  hideAppliance();
  store.appliance = { name: "", model: "", version: "", blCmsHost: false };
  for (const dialog of document.querySelectorAll("dialog")) {
    dialog.close();
  }
  signInView.note(reason);
  enter(signInView);
}

// Puts the views on the page, in the present language.
function enter(...shown) {
  main.replaceChildren(...shown.map((view) => view.element));
  translate(main);
}

function end() {
  if (isSignedIn) {
    shut("signin.ended");
  }
}

// Shows the appliance, where somebody is signed in.
async function open() {
  try {
    store.appliance = (await exchange("/appliance", "GET")).data;
  } catch (error) {
    if (isRefusal(error)) {
      shut("");
    } else {
      setConnection("lost");
      setTimeout(() => void open(), kRetryMs);
    }
    return;
  }
  isSignedIn = true;
  enter(...views);
  choose("");
  const { pairs } = await page("/pairs").catch(() => ({ pairs: [] }));
  recorders = pairs.filter((pair) => pair.role === "server").map((pair) => pair.name);
  changed();
}

function choose(recorder) {
  showAppliance(recorder, end);
  show();
}

async function leave() {
  await signOut().catch(() => {});
  shut("signin.out");
}

async function begin() {
  const code = takeCode();
  if (code !== "") {
    try {
      await signIn(code);
    } catch (error) {
      await open();
      signInView.showRefusal(error);
      return;
    }
  }
  await open();
}

guardClicks(document);
whenChanged(show);
whenSessionEnds(end);
prepareHeader({ onChoose: choose, onSignOut: () => void leave(), onLanguage: show });
translate(document);
addEventListener("hashchange", () => void begin());
void begin();
