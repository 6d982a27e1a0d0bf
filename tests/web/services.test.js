// The services' cards: what is asked for in the console, and what happens elsewhere.
import assert from "node:assert/strict";
import { rmSync, writeFileSync } from "node:fs";
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
  await its.user.hears(/Service 5.*: The start failed/);
  await card.getByText("What the appliance logged").click();
  await its.user.sees(/Failed to write pid file/, card);
  await its.user.page.reload();
  await its.user.sees("The start failed", card);
  await card.getByRole("button", { name: "Put away" }).click();
  await eventually(async () => !(await card.getByText("The start failed").isVisible()), "it is put away");
  assert.equal(await card.evaluate((element) => element === document.activeElement), true);
  await its.user.button("Start: Service 5").click();
  await its.user.sees("The start failed", card);
  mend();
  await its.user.becomesUsable(its.user.button("Start: Service 5"));
  await its.user.button("Start: Service 5").click();
  await its.user.showsState("Service 5", "Running");
  await eventually(async () => !(await card.getByText("The start failed").isVisible()), "it is over");
});

test("an answer that is lost says nothing of the end, and gives way to what was recorded", async () => {
  const card = its.user.card("Service 4");
  await its.user.page.route("**/Enable", (route) => route.abort("connectionreset"), { times: 1 });
  await its.user.button("Start: Service 4").click();
  await its.user.sees(/Nobody knows yet how this ended: .*Start/, card);
  await its.user.button("Put away", card).click();
  await its.user.page.route("**/Enable", async (route) => {
    await route.fetch();
    await route.abort("connectionreset");
  }, { times: 1 });
  await its.user.button("Start: Service 4").click();
  await its.user.showsState("Service 4", "Running");
  await eventually(async () => !(await card.locator(".failure").isVisible()), "the record says that it is done");
  await its.appliance.call("Disable", { service: 4 });
});

test("a process that dies is told", async () => {
  await its.appliance.call("Enable", { service: 6 });
  await its.user.showsState("Local Display", "Running");
  await its.appliance.killDaemon(6);
  await its.user.sees(/its process has ended/, its.user.card("Local Display"));
  await its.user.showsState("Local Display", "Failed");
  await its.user.becomesUsable(its.user.button("Start: Local Display"));
  await its.user.button("Start: Local Display").click();
  await its.user.showsState("Local Display", "Running");
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

test("a package that is stopped is told, until it is started", async () => {
  const mark = its.appliance.pathOf("@CVData/run/started");
  rmSync(mark);
  await its.user.sees("Camvora is stopped");
  writeFileSync(mark, "");
  await eventually(async () => !(await its.user.page.getByText("Camvora is stopped").isVisible()), "it is started");
});

test("the automatic update is switched, and every action is there as a line of the client", async () => {
  const card = its.user.card("Device Pack");
  const auto = card.getByRole("switch", { name: "Auto-update Device Pack" });
  await auto.click();
  await eventually(async () => (await auto.getAttribute("aria-checked")) === "true", "it is on");
  assert.equal((await its.appliance.info(1)).blAutoUpdate, true);
  await card.getByText("Commands").click();
  const lines = await card.locator("code").allTextContents();
  assert.deepEqual(lines.sort(), ["camvoractl auto-update device_pack off", "camvoractl install FILE.spk",
    "camvoractl restore device_pack", "camvoractl start device_pack", "camvoractl updates"]);
  const commands = await its.appliance.client("--help");
  for (const line of lines) {
    assert.match(commands, new RegExp(`^ *${line.split(" ")[1]}\\b`, "m"));
  }
  await card.getByRole("button", { name: /Copy: .*start device_pack/ }).click();
  await its.user.sees("Copied", card);
});

test("German is chosen by the browser, or by hand and for good", async () => {
  const german = await Console.open(its.browser, await its.appliance.link(), { locale: "de-DE" });
  await german.sees("Verlauf");
  await german.page.getByLabel("Sprache").selectOption({ label: "English" });
  await german.sees("Activity");
  await german.page.reload();
  await german.sees("Activity");
  await german.close();
});
