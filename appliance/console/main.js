// Signs in, then shows the appliance for as long as the session lasts.
import { Activity } from "./activity.js";
import { callAt, isRefusal, whenSessionEnds } from "./api.js";
import { guardClicks } from "./dom.js";
import { Banner, prepareHeader, showHeader } from "./header.js";
import * as live from "./live.js";
import { wordsFor } from "./problems.js";
import * as recorder from "./recorder.js";
import { Services } from "./services.js";
import { signIn, SignInView, signOut, takeCode } from "./signin.js";
import { changed, forget, forgetAppliance, setConnection, store, whenChanged } from "./store.js";

const kRetryMs = 2000;
const kLookMs = 60_000; // another day may have begun

const signInView = new SignInView(open);
const banner = new Banner(() => (source ? source.retryNow() : open()));
const views = [banner, new Services(), new Activity()];

let retryTimer;
let source; // what follows the appliance that is shown: `live`, or `recorder`
let isSignedIn = false;

function show() {
  showHeader(isSignedIn);
  (isSignedIn ? views : [banner]).forEach((view) => view.show());
}

function enter(...entered) {
  document.getElementById("main").replaceChildren(...entered.map((view) => view.element));
}

// Shows how to get in. `reason` is a text's key, "" for none.
function shut(reason) {
  isSignedIn = false;
  source?.stop();
  source = undefined;
  forgetAppliance();
  document.querySelectorAll("dialog").forEach((dialog) => dialog.close());
  signInView.note(reason);
  enter(signInView);
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
  choose("");
}

// Shows the paired recorder of that name, "" for the appliance itself.
function choose(name) {
  source?.stop();
  forget();
  store.recorder = name;
  callAt(name);
  source = name === "" ? live : recorder;
  source.start(end);
}

async function leave() {
  await signOut().catch(() => {});
  shut("signin.out");
}

async function begin() {
  const code = takeCode();
  const refusal = code && (await signIn(code).then(() => undefined, (error) => error));
  await open();
  if (refusal && isSignedIn) {
    (await import("./dialog.js")).tell("signin.title", {}, ["refusal.call", { reason: wordsFor(refusal) }]);
  } else if (refusal) {
    signInView.noteRefusal(refusal);
  }
}

guardClicks();
whenChanged(show);
whenSessionEnds(end);
prepareHeader(choose, leave);
addEventListener("hashchange", begin);
setInterval(changed, kLookMs);
void begin();
