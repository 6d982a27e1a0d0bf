// The services' cards: what is asked for in the console, and what happens elsewhere.
import assert from "node:assert/strict";
import { after, afterEach, before, beforeEach, test } from "node:test";

import { Appliance } from "./support/appliance.js";
import { Console, launchBrowser } from "./support/browser.js";
import { eventually } from "./support/eventually.js";

let appliance;
let browser;
let user;

before(async () => {
  [appliance, browser] = await Promise.all([Appliance.start(), launchBrowser()]);
});

after(async () => {
  await browser.close();
  await appliance.end();
});

beforeEach(async () => {
  user = await Console.open(browser, await appliance.link());
  await user.isLive();
});

afterEach(() => user.close());

test("a service starts and stops; its button turns when that is so, and keeps the focus", async () => {
  for (const [action, next, state] of [["Start", "Stop", "Running"], ["Stop", "Start", "Stopped"]]) {
    const power = user.button(`${action}: Local Display`);
    await power.focus();
    await power.press("Enter");
    await user.showsState("Local Display", state);
    assert.equal((await appliance.info(6)).blRunning, state === "Running");
    await user.becomesUsable(user.button(`${next}: Local Display`));
    assert.match(await user.page.evaluate(() => document.activeElement.textContent), new RegExp(`^${next}$`));
  }
});

test("a button does not turn before the state is there, nor does a second click order anything", async () => {
  const restart = user.card("Service 3").getByRole("button", { name: /Restart/ });
  await user.button("Start: Service 3").click();
  await user.showsState("Service 3", "Running");
  await user.becomesUsable(restart);
  await user.card("Service 3").evaluate((card) => {
    const [stop, again] = card.querySelectorAll(".buttons > button");
    [again, again, stop].forEach((button) => button.click());
  });
  await user.showsState("Service 3", "In progress");
  assert.equal(await user.isOff(restart), true);
  await user.showsState("Service 3", "Running");
  await user.becomesUsable(restart);
  const { operations } = await appliance.owner("/operations");
  const methods = operations.filter(({ service }) => service === 3).map(({ method }) => method);
  assert.deepEqual(methods, ["Enable", "Restart"]);
  assert.equal(operations.at(-1).who, "console");
});

test("a start that fails is told in words, with what was logged, until it is put away or a start succeeds", async () => {
  const { mend } = appliance.breakActions("service5");
  const card = user.card("Service 5");
  await user.button("Start: Service 5").click();
  await user.sees("The start failed", card);
  await card.getByText("What the appliance logged").click();
  await user.sees(/Failed to write pid file/, card);
  await user.page.reload();
  await user.sees("The start failed", card);
  await card.getByRole("button", { name: "Put away" }).click();
  await eventually(async () => !(await card.getByText("The start failed").isVisible()), "it is put away");
  await user.button("Start: Service 5").click();
  await user.sees("The start failed", card);
  mend();
  await user.becomesUsable(user.button("Start: Service 5"));
  await user.button("Start: Service 5").click();
  await user.showsState("Service 5", "Running");
  await eventually(async () => !(await card.getByText("The start failed").isVisible()), "it is over");
});

test("a process that dies is told", async () => {
  await appliance.call("Enable", { service: 6 });
  await user.showsState("Local Display", "Running");
  await appliance.killDaemon(6);
  await user.sees(/its process has ended/, user.card("Local Display"));
  await user.showsState("Local Display", "Failed");
  await user.becomesUsable(user.button("Start: Local Display"));
  await user.button("Start: Local Display").click();
  await user.showsState("Local Display", "Running");
});

test("two windows and the client show the same, and nothing can be ordered in one while the other's order runs", async () => {
  const other = await Console.beside(user, appliance.url);
  await other.isLive();
  await user.button("Start: Central Management").click();
  await other.showsState("Central Management", "Running");
  await appliance.client("stop", "cms");
  await Promise.all([user, other].map((one) => one.showsState("Central Management", "Stopped")));
  await other.page.close();
});

test("an operation of somebody else, seen after a reload too, is in progress until it ends", async () => {
  const { filePath } = await appliance.upload("device_pack-2.2.2-0142-hanging", 1);
  const update = appliance.call("Update", { service: 1, filePath });
  for (const look of [() => {}, () => user.page.reload()]) {
    await look();
    await user.showsState("Device Pack", "In progress");
    await user.sees(/by .*a client.*, since/, user.card("Device Pack"));
    assert.equal(await user.isOff(user.button("Start: Device Pack")), true);
    assert.equal(await user.isOff(user.button("Install from file …: Device Pack")), true);
  }
  appliance.endHangingScript();
  await update;
  await user.sees("2.2.2-0142", user.card("Device Pack"));
  await user.becomesUsable(user.button("Install from file …: Device Pack"));
});

test("the automatic update is switched, and every action is there as a line of the client", async () => {
  const card = user.card("Device Pack");
  const auto = card.getByRole("switch", { name: "Automatic update Device Pack" });
  await auto.click();
  await eventually(async () => (await auto.getAttribute("aria-checked")) === "true", "it is on");
  assert.equal((await appliance.info(1)).blAutoUpdate, true);
  await card.getByText("Commands").click();
  const lines = await card.locator("code").allTextContents();
  assert.deepEqual(lines.sort(), ["camvoractl auto-update device_pack off", "camvoractl install FILE.spk",
    "camvoractl restore device_pack", "camvoractl start device_pack", "camvoractl updates"]);
  const commands = await appliance.client("--help");
  for (const line of lines) {
    assert.match(commands, new RegExp(`^ *${line.split(" ")[1]}\\b`, "m"));
  }
  await card.getByRole("button", { name: /Copy: .*start device_pack/ }).click();
  await user.sees("Copied", card);
});

test("German is chosen by the browser, or by hand and for good", async () => {
  const german = await Console.open(browser, await appliance.link(), { locale: "de-DE" });
  await german.sees("Verlauf");
  await german.page.getByLabel("Sprache").selectOption({ label: "English" });
  await german.sees("Activity");
  await german.page.reload();
  await german.sees("Activity");
  await german.close();
});
