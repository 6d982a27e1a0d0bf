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
  await its.user.button("Try now").click();
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
