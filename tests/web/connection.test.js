// An appliance that goes away and comes back.
import assert from "node:assert/strict";
import { beforeEach, test } from "node:test";

import { eventually } from "./support/eventually.js";
import { useConsole } from "./support/fixture.js";

const kSilenceMs = 16_000;

const its = useConsole({ prepare });

function prepare({ user }) {
  return user.page.clock.install();
}

beforeEach(async () => {
  await its.user.page.reload();
  await its.user.isLive();
});

const refuse = (code) => (route) => route.fulfill({ status: 503, json: { success: false, error: { code } } });

async function isHeldBack() {
  await its.user.sees("Reconnecting");
  await its.user.sees("The appliance does not answer");
  await its.user.sees("2.1.0-0130", its.user.card("Device Pack"));
  const buttons = its.user.page.getByRole("article").getByRole("button");
  await eventually(async () => (await buttons.evaluateAll((all) => all.every((one) => one.ariaDisabled === "true"))),
    "all is switched off");
}

test("a host that ends holds everything back, with the old data, and all comes back by itself", async () => {
  await its.appliance.stop();
  await isHeldBack();
  await its.user.button("Start: Local Display").click({ force: true });
  await its.appliance.launch();
  await its.user.page.clock.fastForward(kSilenceMs);
  await its.user.isLive();
  await its.user.becomesUsable(its.user.button("Start: Local Display"));
  assert.equal((await its.appliance.info(6)).blRunning, false);
  assert.equal(await its.user.page.getByText("The appliance does not answer").isVisible(), false);
});

test("so does one that keeps its connections but says nothing for fifteen seconds", async () => {
  const thaw = its.appliance.freeze();
  await its.user.page.clock.fastForward(kSilenceMs);
  await isHeldBack().finally(thaw);
  await its.user.button("Try now").click();
  await its.user.isLive();
});

test("nothing can be agreed to while the host is gone", async () => {
  await its.user.button("Restore …: Local Display").click();
  await its.appliance.stop();
  await its.user.sees("The appliance does not answer", its.user.dialog);
  const confirm = its.user.button("Restore the factory copy", its.user.dialog);
  assert.equal(await its.user.isOff(confirm), true);
  await its.appliance.launch();
  await its.user.page.clock.fastForward(kSilenceMs);
  await its.user.becomesUsable(confirm);
});

test("a window that nobody sees keeps no connection, and shows what has happened when it is seen again", async () => {
  const become = (isHidden) => its.user.page.evaluate((hidden) => {
    Object.defineProperty(document, "hidden", { value: hidden, configurable: true });
    document.dispatchEvent(new Event("visibilitychange"));
  }, isHidden);
  await become(true);
  await its.user.sees("Connecting", its.user.page.getByRole("banner"));
  await its.appliance.call("Enable", { service: 4 });
  assert.equal(await its.user.isOff(its.user.button("Start: Service 4")), true);
  await become(false);
  await its.user.isLive();
  await its.user.showsState("Service 4", "Running");
});

test("where the appliance says why it does not answer, so does the banner, on an empty page too", async () => {
  await its.user.page.route("**/appliance", refuse(1015));
  await its.user.page.reload();
  await its.user.sees(/The appliance is starting again/);
  await its.user.page.route("**/events", refuse(1014));
  await its.user.page.unroute("**/appliance");
  await its.user.button("Try now").click();
  await its.user.sees(/Too many consoles are open/);
  assert.equal(await its.user.page.getByText("Nothing has happened yet").isVisible(), false);
  await its.user.page.unroute("**/events");
  await its.user.button("Try now").click();
  await its.user.isLive();
});

test("what was done today has its date tomorrow", async () => {
  await its.appliance.call("Disable", { service: 3 });
  const when = its.user.page.locator(".happenings time").first();
  assert.doesNotMatch(await when.textContent(), /\//);
  await its.user.page.clock.fastForward("24:00:00");
  await eventually(async () => /\//.test(await when.textContent()), "it has a date");
});
