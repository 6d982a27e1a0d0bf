// A CMS host, and a recorder that is seen through it.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";

import { Appliance, samplePath } from "./support/appliance.js";
import { Console, launchBrowser } from "./support/browser.js";

const kRecorder = "gate.house-2";

let host;
let recorder;
let browser;
let user;

before(async () => {
  [host, recorder, browser] = await Promise.all([Appliance.start(), Appliance.start(), launchBrowser()]);
  await host.pairWith(recorder, kRecorder);
  user = await Console.open(browser, await host.link());
  await user.isLive();
  await user.sees("CMS host");
  await user.page.getByLabel("Shown").selectOption(kRecorder);
  await user.sees(new RegExp(`You see the recorder .*${kRecorder}`));
});

after(async () => {
  await user.close();
  await browser.close();
  await Promise.all([host.end(), recorder.end()]);
});

test("its services start and stop, and what is not passed on is said", async () => {
  await user.sees("The recorder keeps its own activity");
  await user.button("Start: Service 3").click();
  await user.showsState("Service 3", "Running");
  assert.equal((await recorder.info(3)).blRunning, true);
  assert.equal((await host.info(3)).blRunning, false);
  await user.card("Service 3").getByText("Commands").click();
  await user.sees(`camvoractl --server ${kRecorder} stop service3`, user.card("Service 3"));
});

test("a package reaches it by way of the host", async () => {
  const chooser = user.page.waitForEvent("filechooser");
  await user.button("Install from file …: Local Display").click();
  await (await chooser).setFiles(samplePath("local_display-1.6.0-0071"));
  await user.sees("To install", user.dialog);
  await user.button("Install", user.dialog).click();
  await user.sees("1.6.0-0071", user.card("Local Display"));
  assert.equal((await recorder.info(6)).version, "1.6.0-0071");
  assert.equal((await host.info(6)).version, "1.5.2-0064");
});

test("one that refuses the host, or is away, holds back its own view only", async () => {
  await recorder.client("pair", "remove", "host");
  await user.sees("The recorder does not admit this appliance");
  assert.equal(await user.isOff(user.button("Start: Service 4")), true);
  await user.page.getByLabel("Shown").selectOption("This appliance");
  await user.isLive();
  await user.becomesUsable(user.button("Start: Service 4"));
  await user.sees("1.5.2-0064", user.card("Local Display"));
});
