// Packages from a file, factory copies.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { after, afterEach, before, beforeEach, test } from "node:test";

import { Appliance, samplePath } from "./support/appliance.js";
import { Console, launchBrowser } from "./support/browser.js";
import { eventually } from "./support/eventually.js";

let appliance;
let browser;
let user;

before(async () => {
  [appliance, browser] = await Promise.all([Appliance.start(["--upload-limit", "1048576"]), launchBrowser()]);
  user = await Console.open(browser, await appliance.link());
});

after(async () => {
  await user.close();
  await browser.close();
  await appliance.end();
});

beforeEach(async () => {
  await user.page.goto(appliance.url);
  await user.isLive();
});

afterEach(async () => {
  if (await user.dialog.isVisible()) {
    await user.page.keyboard.press("Escape");
  }
});

const sample = (name) => ({ name: `${name}.spk`, bytes: [...readFileSync(samplePath(name))] });

async function choose(card, files) {
  const chooser = user.page.waitForEvent("filechooser");
  await user.button(`Install from file …: ${card}`).click();
  await (await chooser).setFiles(files);
}

const facts = () => user.dialog.locator("dd").allTextContents();

for (const [name, words, advice] of [
  ["local_display-other-platform", /not for the platform of this appliance, which is .*plat1/, /made for .*plat1/],
  ["local_display-needs-newer-camvora", /needs Camvora .* or newer/, /Update Camvora first/],
  ["local_display-too-old", /Local Display.* has to be .*1\.4\.0-0050.* or newer, and this is/, /or a newer release/],
]) {
  test(`${name} is refused, with the reason and what to do`, async () => {
    await choose("Local Display", samplePath(name));
    await user.sees("The package was not taken", user.dialog);
    await user.sees(words, user.dialog);
    await user.sees(advice, user.dialog);
    await user.button("Close", user.dialog).click();
    assert.equal((await appliance.info(6)).version, "1.5.2-0064");
  });
}

test("damaged, misnamed and too large files are refused, and another can be chosen at once", async () => {
  for (const [file, words] of [
    [{ name: "local_display.spk", bytes: [1, 2, 3] }, "It is no valid package for this service."],
    [{ name: "holiday.mp4", bytes: [1] }, "The name of a package ends in .spk."],
    [{ name: "local_display.spk", size: 1_100_000 }, /larger than the appliance takes|The connection broke/],
  ]) {
    await user.drop(user.card("Local Display"), [file]);
    await user.sees(words, user.dialog);
    await user.button("Close", user.dialog).click();
  }
  await user.drop(user.card("Local Display"), [{ name: "local_display.spk", bytes: [1] }]);
  const chooser = user.page.waitForEvent("filechooser");
  await user.button("Choose another file …", user.dialog).click();
  await (await chooser).setFiles(samplePath("local_display-1.6.1-0075"));
  await user.sees("To install", user.dialog);
});

test("the file's name chooses the service before the place where it was dropped; without either it is said", async () => {
  await user.drop(user.card("Device Pack"), [sample("local_display-1.6.0-0071")]);
  await user.sees(/Install a package: .*Local Display/, user.dialog);
  await user.sees("To install", user.dialog);
  await user.button("Cancel", user.dialog).click();
  await user.drop(user.page.getByRole("heading", { name: "Activity" }), [{ ...sample("local_display-1.6.0-0071"), name: "new.spk" }]);
  await user.sees(/does not say for which service/, user.dialog);
});

test("a package is shown, then installed when that is agreed to; a downgrade says what is lost", async () => {
  for (const [name, version, change, confirm] of [
    ["local_display-1.6.0-0071", "1.6.0-0071", "newer", "Install"],
    ["local_display-1.4.6-0058", "1.4.6-0058", "older: a downgrade", "Install the older version"],
  ]) {
    const before = (await appliance.info(6)).version;
    await choose("Local Display", samplePath(name));
    await user.sees("To install", user.dialog);
    assert.deepEqual(await facts(), [`${name}.spk`, "Camvora", before, `${version} ${change}`, "nothing"]);
    assert.equal(await user.dialog.getByText(/This is a downgrade/).count(), change === "newer" ? 0 : 1);
    assert.equal((await appliance.info(6)).version, before);
    await user.button(confirm, user.dialog).click();
    await user.sees(version, user.card("Local Display"));
    await user.becomesUsable(user.button("Install from file …: Local Display"));
    assert.equal((await appliance.info(6)).version, version);
  }
});

test("an installation of the Device Pack says that all stops, and its course can be looked at", async () => {
  await appliance.call("Enable", { service: 3 });
  await user.showsState("Service 3", "Running");
  await choose("Device Pack", samplePath("device_pack-2.2.1-0141-failing"));
  await user.sees(/all of Camvora, recording too\. Running now: .*Service 3/, user.dialog);
  await user.button("Install", user.dialog).click();
  await user.sees("2.2.1-0141", user.card("Device Pack"));
  await user.page.getByRole("button", { name: /Installation .*2\.1\.0-0130.* → .*2\.2\.1-0141/ }).click();
  await user.sees("done", user.dialog);
  await user.sees(/ended with status .*3/, user.dialog.getByRole("listitem").filter({ hasText: "script/postinst" }));
});

test("an upload shows how far it is, and can be cancelled; one that is cut can be sent again", async () => {
  const session = await user.page.context().newCDPSession(user.page);
  const slow = (bytesPerS) => session.send("Network.emulateNetworkConditions",
    { offline: false, latency: 0, downloadThroughput: -1, uploadThroughput: bytesPerS });
  await session.send("Network.enable");
  const large = { name: "local_display.spk", size: 600_000 };
  await slow(100_000);
  await user.drop(user.card("Local Display"), [large]);
  const bar = user.dialog.getByRole("progressbar", { name: "Sending a package" });
  await eventually(async () => (await bar.getAttribute("value")) > 0, "something was sent");
  await user.sees(/% of .* · .*\/s/, user.dialog);
  await user.button("Cancel", user.dialog).click();
  await user.becomesUsable(user.button("Install from file …: Local Display"));

  await user.page.route("**/Upload", (route) => route.abort("connectionreset"), { times: 1 });
  await user.drop(user.card("Local Display"), [sample("local_display-1.6.1-0075")]);
  await user.sees(/The connection broke before the file was there/, user.dialog);
  await slow(-1);
  await user.button("Send it again", user.dialog).click();
  await user.sees("To install", user.dialog);
});

test("a restore asks first, says what is lost, and puts the factory copy back", async () => {
  const { version } = await appliance.info(6);
  const restore = user.button("Restore …: Local Display");
  await restore.click();
  await user.sees(new RegExp(`Version .*${version}.* is removed`), user.dialog);
  await user.button("Cancel", user.dialog).click();
  assert.equal(await user.page.evaluate(() => document.activeElement.textContent), "Restore …");
  assert.equal((await appliance.info(6)).version, version);
  await restore.click();
  await user.button("Restore the factory copy", user.dialog).click();
  await user.sees("1.5.0-0060", user.card("Local Display"));
  assert.equal((await appliance.info(6)).version, "1.5.0-0060");
});
