// Signs in, then shows the appliance for as long as the session lasts.
import { Activity } from "./activity.js";
import { callAt, isRefusal, whenSessionEnds } from "./api.js";
import { guardClicks } from "./dom.js";
import { Banner, prepareHeader, showHeader } from "./header.js";
import * as live from "./live.js";
import { load } from "./load.js";
import { wordsFor } from "./problems.js";
import { Services } from "./services.js";
import { kDownload } from "./servicestate.js";
import { hasCode, signIn, SignInView, signOut, takeCode } from "./signin.js";
import { changed, forget, forgetAppliance, setConnection, store, whenChanged } from "./store.js";

const kRetryMs = 2000;
const kLookMs = 60_000; // another day may have begun

const main = document.getElementById("main");

const signInView = new SignInView(async () => {
  await open();
  main.focus();
});
const banner = new Banner(() => (source ? source.retryNow() : open()));
const views = [banner, new Services(), new Activity()];

let retryTimer;
let source; // what follows the appliance that is shown: `live`, or recorder.js
let wanted = ""; // what was chosen last to be shown
let isSignedIn = false;

function show() {
  showHeader(isSignedIn);
  (isSignedIn ? views : [banner]).forEach((view) => view.show());
  if (store.downloads.some(({ status }) => status === kDownload.running)) {
    changed(); // the rate of one that stands still
  }
}

function enter(...entered) {
  main.replaceChildren(...entered.map((view) => view.element));
}

// Shows how to get in. `reason` is a text's key, "" for none.
function shut(reason) {
  isSignedIn = false;
  source?.stop();
  source = undefined;
  forgetAppliance();
  document.querySelectorAll("dialog").forEach((dialog) => dialog.close());
  enter(signInView);
  signInView.begin(reason);
}

function end() {
  if (isSignedIn) {
    shut("signin.ended");
  }
}

// Shows the appliance where somebody is signed in, else the way in.
async function open() {
  clearTimeout(retryTimer);
  try {
    await live.readAppliance();
  } catch (error) {
    if (isRefusal(error)) {
      shut("");
    } else {
      setConnection("lost", error);
      retryTimer = setTimeout(open, kRetryMs);
      enter(...(isSignedIn ? views : [banner]));
    }
    return;
  }
  isSignedIn = true;
  enter(...views);
  await choose("");
}

// Shows the paired recorder of that name, "" for the appliance itself.
async function choose(name) {
  wanted = name;
  const next = name === "" ? live : await load("./recorder.js");
  if (next && isSignedIn && wanted === name) {
    source?.stop();
    forget();
    store.recorder = name;
    callAt(name);
    source = next;
    source.start(end);
  }
  changed(true); // the choice, too, goes back where nothing came of it
}

async function leave() {
  try {
    await signOut();
    shut("signin.out");
  } catch (error) {
    await tellRefusal("signout", error);
  }
}

async function tellRefusal(title, error) {
  (await load("./dialog.js"))?.tell(title, {}, ["refusal.call", { reason: wordsFor(error) }]);
}

async function begin() {
  const code = takeCode();
  const refusal = code && (await signIn(code).then(() => undefined, (error) => error));
  await open();
  if (refusal && isSignedIn) {
    await tellRefusal("signin.title", refusal);
  } else if (refusal) {
    signInView.noteRefusal(refusal);
  }
}

guardClicks();
whenChanged(show);
whenSessionEnds(end);
prepareHeader(choose, leave);
addEventListener("hashchange", () => hasCode() && begin());
setInterval(changed, kLookMs);
void begin();
