// Releases from a feed: looked for, downloaded, cancelled, installed.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";

import { Appliance } from "./support/appliance.js";
import { Console, launchBrowser } from "./support/browser.js";
import { Feed } from "./support/feed.js";
import { eventually } from "./support/eventually.js";

let appliance;
let browser;
let feed;
let user;

before(async () => {
  [appliance, browser] = await Promise.all([Appliance.start(), launchBrowser()]);
  user = await Console.open(browser, await appliance.link());
  await user.isLive();
});

after(async () => {
  await user.close();
  await browser.close();
  feed.end();
  await appliance.end();
});

test("releases that cannot be asked for are told, and what to look at", async () => {
  await user.button("Look for a release: Device Pack").click();
  await user.sees(/The releases could not be asked for/, user.card("Device Pack"));
  feed = await Feed.start(appliance, ["device_pack-2.2.0-0140", "device_pack-2.3.0-0152", "local_display-1.4.6-0058"]);
  await user.button("Look for new releases").click();
  await user.sees(/New release .*2\.3\.0-0152/, user.card("Device Pack"));
  await user.sees("What is new in device_pack-2.3.0-0152", user.card("Device Pack"));
  await user.sees("Up to date", user.card("Local Display"));
  await user.sees(/1.* with a new release/);
});

test("a download shows its progress and can be cancelled, in whatever window", async () => {
  feed.isSlow = true;
  const card = user.card("Device Pack");
  await user.button("Download: Device Pack").click();
  const bar = card.getByRole("progressbar", { name: "Download" });
  await eventually(async () => Number(await bar.getAttribute("value")) > 0, "something has arrived");
  await user.sees(/% of .* · .*\/s/, card);
  assert.equal(await user.isOff(user.button("Restore …: Device Pack")), true);
  await user.page.reload();
  await user.sees(/Downloading .*2\.3\.0-0152/, card);
  await user.button("Cancel: Device Pack").click();
  await user.becomesUsable(user.button("Download: Device Pack"));
  assert.equal(await card.getByText("The download failed").count(), 0);
});

test("a downloaded release is installed when that is agreed to", async () => {
  feed.isSlow = false;
  await user.button("Download: Device Pack").click();
  await user.becomesUsable(user.button("Install: Device Pack"));
  await user.button("Install: Device Pack").click();
  await user.sees(/Install .*2\.3\.0-0152.* of .*Device Pack.*\?/, user.dialog);
  await user.button("Install", user.dialog).click();
  await eventually(async () => (await appliance.info(1)).version === "2.3.0-0152", "it is installed");
  await user.sees("2.3.0-0152", user.card("Device Pack"));
  await eventually(async () => !(await user.card("Device Pack").locator(".release").isVisible()), "the news is over");
});
