// An appliance that goes away and comes back.
import assert from "node:assert/strict";
import { after, before, beforeEach, test } from "node:test";

import { Appliance } from "./support/appliance.js";
import { Console, launchBrowser } from "./support/browser.js";
import { eventually } from "./support/eventually.js";

const kSilenceMs = 16_000;

let appliance;
let browser;
let user;

before(async () => {
  [appliance, browser] = await Promise.all([Appliance.start(), launchBrowser()]);
  user = await Console.open(browser, await appliance.link());
  await user.isLive();
  await user.page.clock.install();
});

after(async () => {
  await user.close();
  await browser.close();
  await appliance.end();
});

beforeEach(async () => {
  await user.page.reload();
  await user.isLive();
});

async function isHeldBack() {
  await user.sees("Reconnecting");
  await user.sees("The appliance does not answer");
  await user.sees("2.1.0-0130", user.card("Device Pack"));
  const buttons = user.page.getByRole("article").getByRole("button");
  await eventually(async () => (await buttons.evaluateAll((all) => all.every((one) => one.ariaDisabled === "true"))),
    "all is switched off");
}

test("a host that ends holds everything back, with the old data, and all comes back by itself", async () => {
  await appliance.stop();
  await isHeldBack();
  await user.button("Start: Local Display").click({ force: true });
  await appliance.launch();
  await user.button("Try now").click();
  await user.isLive();
  await user.becomesUsable(user.button("Start: Local Display"));
  assert.equal((await appliance.info(6)).blRunning, false);
  assert.equal(await user.page.getByText("The appliance does not answer").isVisible(), false);
});

test("so does one that keeps its connections but says nothing for fifteen seconds", async () => {
  const thaw = appliance.freeze();
  await user.page.clock.fastForward(kSilenceMs);
  await isHeldBack().finally(thaw);
  await user.button("Try now").click();
  await user.isLive();
});
