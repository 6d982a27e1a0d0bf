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

test("what is no package for here is refused, with the reason, and another can be chosen at once", async () => {
  for (const [file, words] of [
    [sample("local_display-other-platform"), /not for the platform of this appliance, which is .*plat1/],
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

test("an upload shows how far it is, and can be cancelled", async () => {
  const session = await its.user.page.context().newCDPSession(its.user.page);
  await session.send("Network.enable");
  await session.send("Network.emulateNetworkConditions",
    { offline: false, latency: 0, downloadThroughput: -1, uploadThroughput: 100_000 });
  await its.user.drop(its.user.card("Local Display"), [{ name: "local_display.spk", size: 600_000 }]);
  const bar = its.user.dialog.getByRole("progressbar", { name: "Sending a package" });
  await eventually(async () => (await bar.getAttribute("value")) > 0, "something was sent");
  await its.user.sees(/% of .* · .*\/s/, its.user.dialog);
  await its.user.button("Cancel", its.user.dialog).click();
  await its.user.becomesUsable(its.user.button("Install from file …: Local Display"));
  await session.detach();
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
