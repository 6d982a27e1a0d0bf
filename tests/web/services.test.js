// The services' cards: what is asked for in the console, and what happens elsewhere.
import assert from "node:assert/strict";
import { beforeEach, test } from "node:test";

import { Console } from "./support/browser.js";
import { eventually } from "./support/eventually.js";
import { useConsole } from "./support/fixture.js";

const its = useConsole();

beforeEach(async () => {
  await its.user.page.reload();
  await its.user.isLive();
});

test("a service starts and stops; its button turns when that is so, and keeps the focus", async () => {
  for (const [action, next, state] of [["Start", "Stop", "Running"], ["Stop", "Start", "Stopped"]]) {
    const power = its.user.button(`${action}: Local Display`);
    await power.focus();
    await power.press("Enter");
    await its.user.showsState("Local Display", state);
    assert.equal((await its.appliance.info(6)).blRunning, state === "Running");
    await its.user.becomesUsable(its.user.button(`${next}: Local Display`));
    assert.match(await its.user.page.evaluate(() => document.activeElement.textContent), new RegExp(`^${next}$`));
  }
});

test("a button does not turn before the state is there, nor does a second click order anything", async () => {
  const restart = its.user.card("Service 3").getByRole("button", { name: /Restart/ });
  await its.user.button("Start: Service 3").click();
  await its.user.showsState("Service 3", "Running");
  await its.user.becomesUsable(restart);
  await its.user.card("Service 3").evaluate((card) => {
    const [stop, again] = card.querySelectorAll(".buttons > button");
    [again, again, stop].forEach((button) => button.click());
  });
  await its.user.showsState("Service 3", "In progress");
  assert.equal(await its.user.isOff(restart), true);
  await its.user.showsState("Service 3", "Running");
  await its.user.becomesUsable(restart);
  const { operations } = await its.appliance.owner("/operations");
  const methods = operations.filter(({ service }) => service === 3).map(({ method }) => method);
  assert.deepEqual(methods, ["Enable", "Restart"]);
  assert.equal(operations.at(-1).who, "console");
});

test("a start that fails is told, with what was logged, until it is put away or a start succeeds", async () => {
  const { mend } = its.appliance.breakActions("service5");
  const card = its.user.card("Service 5");
  await its.user.button("Start: Service 5").click();
  await its.user.sees("The start failed", card);
  await card.getByText("What the appliance logged").click();
  await its.user.sees(/Failed to write pid file/, card);
  await its.user.page.reload();
  await its.user.sees("The start failed", card);
  await card.getByRole("button", { name: "Put away" }).click();
  await eventually(async () => !(await card.getByText("The start failed").isVisible()), "it is put away");
  await its.user.button("Start: Service 5").click();
  await its.user.sees("The start failed", card);
  mend();
  await its.user.becomesUsable(its.user.button("Start: Service 5"));
  await its.user.button("Start: Service 5").click();
  await its.user.showsState("Service 5", "Running");
  await eventually(async () => !(await card.getByText("The start failed").isVisible()), "it is over");
});

test("what is done in another window, or by the client, is shown in all", async () => {
  const other = await Console.beside(its.user, its.appliance.url);
  await other.isLive();
  await its.user.button("Start: Central Management").click();
  await other.showsState("Central Management", "Running");
  await its.appliance.call("Disable", { service: 2 });
  const unnamed = its.user.page.locator(".happenings li", { hasText: "Log entry" }).first();
  await eventually(async () => /Central Management.*Stop/.test(await unnamed.textContent()), "the entry has a name");
  await its.appliance.call("Enable", { service: 2 });
  await other.showsState("Central Management", "Running");
  await its.appliance.client("stop", "cms");
  await Promise.all([its.user, other].map((one) => one.showsState("Central Management", "Stopped")));
  await other.page.close();
});

test("an operation of somebody else, seen after a reload too, is in progress until it ends", async () => {
  const { filePath } = await its.appliance.upload("device_pack-2.2.2-0142-hanging", "device_pack");
  await its.user.button("Restore …: Device Pack").click();
  const update = its.appliance.call("Update", { service: 1, filePath });
  await its.user.showsState("Device Pack", "In progress");
  await its.user.button("Restore the factory copy", its.user.dialog).click();
  await its.user.sees(/Something is under way for .*Device Pack/, its.user.dialog);
  await its.user.button("Close", its.user.dialog).click();
  for (const look of [() => {}, () => its.user.page.reload()]) {
    await look();
    await its.user.showsState("Device Pack", "In progress");
    await its.user.sees(/by .*a client.*, since/, its.user.card("Device Pack"));
    assert.equal(await its.user.isOff(its.user.button("Start: Device Pack")), true);
    assert.equal(await its.user.isOff(its.user.button("Install from file …: Device Pack")), true);
  }
  its.appliance.endHangingScript();
  await update;
  await its.user.sees("2.2.2-0142", its.user.card("Device Pack"));
  await its.user.becomesUsable(its.user.button("Install from file …: Device Pack"));
});
