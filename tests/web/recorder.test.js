// A CMS host, and a recorder that is seen through it.
import assert from "node:assert/strict";
import { after, test } from "node:test";
import { setTimeout as sleep } from "node:timers/promises";

import { Appliance, samplePath } from "./support/appliance.js";
import { eventually } from "./support/eventually.js";
import { useConsole } from "./support/fixture.js";

const kLookMs = 1000; // the console looks at what it knows more often
const kSilenceMs = 16_000;
const kSilentPauseMs = 60_000;
const kRecorder = "gate.house-2";

const its = useConsole({ prepare });

let recorder;

async function prepare({ appliance, user }) {
  recorder = await Appliance.start();
  await appliance.pairWith(recorder, kRecorder);
  appliance.breakActions("service4");
  await appliance.call("Enable", { service: 4 });
  await user.sees("CMS host");
  await user.page.clock.install();
  await user.page.getByLabel("Shown").selectOption(kRecorder);
  await user.sees(new RegExp(`You see the recorder .*${kRecorder}`));
}

after(() => recorder?.end());

test("its services start and stop, and what is not passed on is said", async () => {
  await its.user.sees("The recorder keeps its own activity");
  assert.equal(await its.user.card("Service 4").getByText("The start failed").isVisible(), false);
  await its.user.button("Start: Service 3").click();
  await its.user.showsState("Service 3", "Running");
  assert.equal((await recorder.info(3)).blRunning, true);
  assert.equal((await its.appliance.info(3)).blRunning, false);
  await its.user.card("Service 3").getByText("Commands").click();
  await its.user.sees(`camvoractl --server ${kRecorder} stop service3`, its.user.card("Service 3"));
});

test("a package reaches it by way of the host", async () => {
  const chooser = its.user.page.waitForEvent("filechooser");
  await its.user.button("Install from file …: Local Display").click();
  await (await chooser).setFiles(samplePath("local_display-1.6.0-0071"));
  await its.user.sees("To install", its.user.dialog);
  await its.user.button("Install", its.user.dialog).click();
  await its.user.sees("1.6.0-0071", its.user.card("Local Display"));
  assert.equal((await recorder.info(6)).version, "1.6.0-0071");
  assert.equal((await its.appliance.info(6)).version, "1.5.2-0064");
});

test("a late answer of a recorder leaves the view of the appliance alone", async () => {
  const { page } = its.user;
  const isLate = (url) => url.pathname.startsWith("/servers/");
  const late = [];
  await page.route(isLate, (route) => void late.push(route));
  await its.user.becomesUsable(its.user.button("Start: Service 5"));
  await eventually(() => late.length > 0, "the recorder is asked");
  await its.user.button("Start: Service 5").click();
  await eventually(() => late.length > 1, "so it is for the start");
  await page.getByLabel("Shown").selectOption("This appliance");
  await its.user.isLive();
  await its.user.becomesUsable(its.user.button("Start: Service 5"));
  const isStart = (route) => route.request().url().endsWith("/Enable");
  await Promise.all(late.map((route) => (isStart(route) ? route.abort() : route.continue())));
  await sleep(kLookMs);
  assert.equal(await its.user.card("Local Display").getByText("1.5.2-0064").count(), 1);
  assert.equal(await its.user.card("Service 5").locator(".failure").isVisible(), false);
  await page.unroute(isLate);
  await page.getByLabel("Shown").selectOption(kRecorder);
});

test("one that is away is named, and comes back by itself", async () => {
  await its.user.becomesUsable(its.user.button("Start: Service 4"));
  await recorder.stop();
  await its.user.sees(new RegExp(`The recorder .*${kRecorder}.* does not answer`));
  assert.equal(await its.user.isOff(its.user.button("Start: Service 4")), true);
  await recorder.launch();
  await its.user.becomesUsable(its.user.button("Start: Service 4"));
});

test("so is one that keeps its connections but says nothing for fifteen seconds", async () => {
  const { clock } = its.user.page;
  const thaw = recorder.freeze();
  const isNamed = async () => {
    await clock.fastForward(kSilenceMs);
    return its.user.page.getByText(new RegExp(`The recorder .*${kRecorder}.* does not answer`)).isVisible();
  };
  await eventually(isNamed, "it is named").finally(thaw);
  await its.user.page.clock.fastForward(kSilentPauseMs);
  await its.user.becomesUsable(its.user.button("Start: Service 4"));
});

test("one that refuses the host holds back its own view only", async () => {
  await recorder.client("pair", "remove", "host");
  await its.user.sees("The recorder does not admit this appliance");
  assert.equal(await its.user.isOff(its.user.button("Start: Service 4")), true);
  await its.user.page.getByLabel("Shown").selectOption("This appliance");
  await its.user.isLive();
  await its.user.becomesUsable(its.user.button("Start: Service 4"));
  await its.user.sees("1.5.2-0064", its.user.card("Local Display"));
  await its.user.sees("The start failed", its.user.card("Service 4"));
});
