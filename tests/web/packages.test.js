// Packages from a file, factory copies.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { afterEach, beforeEach, test } from "node:test";

import { samplePath } from "./support/appliance.js";
import { eventually } from "./support/eventually.js";
import { useConsole } from "./support/fixture.js";

const its = useConsole({ options: ["--upload-limit", "1048576"] });

beforeEach(async () => {
  await its.user.page.goto(its.appliance.url);
  await its.user.isLive();
});

afterEach(async () => {
  if (await its.user.dialog.isVisible()) {
    await its.user.page.keyboard.press("Escape");
  }
});

const sample = (name) => ({ name: `${name}.spk`, bytes: [...readFileSync(samplePath(name))] });

async function choose(card, files) {
  const chooser = its.user.page.waitForEvent("filechooser");
  await its.user.button(`Install from file …: ${card}`).click();
  await (await chooser).setFiles(files);
}

const facts = () => its.user.dialog.locator("dd").allTextContents();

for (const [name, words, advice] of [
  ["local_display-other-platform", /not for the platform of this appliance, which is .*plat1/, /made for .*plat1/],
  ["local_display-needs-newer-camvora", /needs Camvora .* or newer/, /Update Camvora first/],
  ["local_display-too-old", /Local Display.* has to be .*1\.4\.0-0050.* or newer, and this is/, /or a newer release/],
]) {
  test(`${name} is refused, with the reason and what to do`, async () => {
    await choose("Local Display", samplePath(name));
    await its.user.sees("The package was not taken", its.user.dialog);
    await its.user.sees(words, its.user.dialog);
    await its.user.sees(advice, its.user.dialog);
    await its.user.button("Close", its.user.dialog).click();
    assert.equal((await its.appliance.info(6)).version, "1.5.2-0064");
  });
}

test("damaged, misnamed and too large files are refused, and another can be chosen at once", async () => {
  for (const [file, words] of [
    [{ name: "local_display.spk", bytes: [1, 2, 3] }, "It is no valid package for this service."],
    [{ name: "holiday.mp4", bytes: [1] }, "The name of a package ends in .spk."],
    [{ name: "local_display.spk", size: 1_100_000 }, /larger than the appliance takes|The connection broke/],
  ]) {
    await its.user.drop(its.user.card("Local Display"), [file]);
    await its.user.sees(words, its.user.dialog);
    await its.user.button("Close", its.user.dialog).click();
  }
  await its.user.drop(its.user.card("Local Display"), [{ name: "local_display.spk", bytes: [1] }]);
  const chooser = its.user.page.waitForEvent("filechooser");
  await its.user.button("Choose another file …", its.user.dialog).click();
  await (await chooser).setFiles(samplePath("local_display-1.6.1-0075"));
  await its.user.sees("To install", its.user.dialog);
});

test("a file's name chooses the service before the place where it is dropped; neither is told", async () => {
  await its.user.drop(its.user.card("Device Pack"), [sample("local_display-1.6.0-0071")]);
  await its.user.sees(/Install a package: .*Local Display/, its.user.dialog);
  await its.user.sees("To install", its.user.dialog);
  await its.user.button("Cancel", its.user.dialog).click();
  const elsewhere = its.user.page.getByRole("heading", { name: "Activity" });
  await its.user.drop(elsewhere, [{ ...sample("local_display-1.6.0-0071"), name: "new.spk" }]);
  await its.user.sees(/does not say for which service/, its.user.dialog);
});

test("a package is shown, then installed when that is agreed to; a downgrade says what is lost", async () => {
  for (const [name, version, change, confirm] of [
    ["local_display-1.6.0-0071", "1.6.0-0071", "newer", "Install"],
    ["local_display-1.4.6-0058", "1.4.6-0058", "older: a downgrade", "Install the older version"],
  ]) {
    const before = (await its.appliance.info(6)).version;
    await choose("Local Display", samplePath(name));
    await its.user.sees("To install", its.user.dialog);
    assert.deepEqual(await facts(), [`${name}.spk`, "Camvora", before, `${version} ${change}`, "nothing"]);
    assert.equal(await its.user.dialog.getByText(/This is a downgrade/).count(), change === "newer" ? 0 : 1);
    assert.equal((await its.appliance.info(6)).version, before);
    await its.user.button(confirm, its.user.dialog).click();
    await its.user.sees(version, its.user.card("Local Display"));
    await its.user.becomesUsable(its.user.button("Install from file …: Local Display"));
    assert.equal((await its.appliance.info(6)).version, version);
  }
});

test("another package that comes in after one was shown is not installed in its place", async () => {
  const before = (await its.appliance.info(6)).version;
  await choose("Local Display", samplePath("local_display-1.6.0-0071"));
  await its.user.sees("To install", its.user.dialog);
  await its.appliance.upload("local_display-1.6.1-0075", "local_display");
  await its.user.button("Install", its.user.dialog).click();
  await its.user.sees(/^Another package came in/, its.user.card("Local Display"));
  await its.user.button("Put away", its.user.card("Local Display")).click();
  assert.equal((await its.appliance.info(6)).version, before);
});

test("an installation of the Device Pack says that all stops, and its course can be looked at", async () => {
  await its.appliance.call("Enable", { service: 3 });
  await its.user.showsState("Service 3", "Running");
  await choose("Device Pack", samplePath("device_pack-2.2.1-0141-failing"));
  await its.user.sees(/all of Camvora, recording too\. Running now: .*Service 3/, its.user.dialog);
  await its.user.button("Install", its.user.dialog).click();
  await its.user.sees("2.2.1-0141", its.user.card("Device Pack"));
  await its.user.page.getByRole("button", { name: /Installation .*2\.1\.0-0130.* → .*2\.2\.1-0141/ }).click();
  await its.user.sees("done", its.user.dialog);
  const script = its.user.dialog.getByRole("listitem").filter({ hasText: "script/postinst" });
  await its.user.sees(/ended with status .*3/, script);
});

test("an upload shows how far it is, and can be cancelled; one that is cut can be sent again", async () => {
  const session = await its.user.page.context().newCDPSession(its.user.page);
  const slow = (bytesPerS) => session.send("Network.emulateNetworkConditions",
    { offline: false, latency: 0, downloadThroughput: -1, uploadThroughput: bytesPerS });
  await session.send("Network.enable");
  const large = { name: "local_display.spk", size: 600_000 };
  await slow(100_000);
  await its.user.drop(its.user.card("Local Display"), [large]);
  const bar = its.user.dialog.getByRole("progressbar", { name: "Sending a package" });
  await eventually(async () => (await bar.getAttribute("value")) > 0, "something was sent");
  await its.user.sees(/% of .* · .*\/s/, its.user.dialog);
  await its.user.button("Cancel", its.user.dialog).click();
  await its.user.becomesUsable(its.user.button("Install from file …: Local Display"));

  await its.user.page.route("**/Upload", (route) => route.abort("connectionreset"), { times: 1 });
  await its.user.drop(its.user.card("Local Display"), [sample("local_display-1.6.1-0075")]);
  await its.user.sees(/The connection broke before the file was there/, its.user.dialog);
  await slow(-1);
  await its.user.page.route("**/GetPkgInfo", (route) => route.abort("connectionreset"), { times: 1 });
  await its.user.button("Send it again", its.user.dialog).click();
  await its.user.sees("The package was not taken", its.user.dialog);
  await its.user.sees("The appliance does not answer.", its.user.dialog);
  await its.user.button("Close", its.user.dialog).click();
  await its.user.drop(its.user.card("Local Display"), [sample("local_display-1.6.1-0075")]);
  await its.user.sees("To install", its.user.dialog);
});

test("a restore asks first, says what is lost, and puts the factory copy back", async () => {
  const { version } = await its.appliance.info(6);
  const restore = its.user.button("Restore …: Local Display");
  await restore.click();
  await its.user.sees(new RegExp(`Version .*${version}.* is removed`), its.user.dialog);
  await its.user.button("Cancel", its.user.dialog).click();
  assert.equal(await its.user.page.evaluate(() => document.activeElement.textContent), "Restore …");
  assert.equal((await its.appliance.info(6)).version, version);
  await restore.click();
  await its.user.button("Restore the factory copy", its.user.dialog).click();
  await its.user.sees("1.5.0-0060", its.user.card("Local Display"));
  assert.equal((await its.appliance.info(6)).version, "1.5.0-0060");
});
