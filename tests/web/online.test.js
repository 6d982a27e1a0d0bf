// Releases from a feed: looked for, downloaded, cancelled, installed.
import assert from "node:assert/strict";
import { after, test } from "node:test";

import { Feed } from "./support/feed.js";
import { eventually } from "./support/eventually.js";
import { useConsole } from "./support/fixture.js";

const kBusy = { success: false, error: { code: 1008 } };

const its = useConsole();
let feed;

after(() => feed.end());

test("releases that cannot be asked for are told, and what to look at", async () => {
  await its.user.button("Check for update: Device Pack").click();
  await its.user.sees(/The releases could not be asked for/, its.user.card("Device Pack"));
  feed = await Feed.start(its.appliance, ["device_pack-2.3.0-0152", "local_display-1.4.6-0058"]);
  await its.user.button("Look for new releases").click();
  await its.user.sees(/New release .*2\.3\.0-0152/, its.user.card("Device Pack"));
  await its.user.sees("What is new in device_pack-2.3.0-0152", its.user.card("Device Pack"));
  await its.user.sees("Up to date", its.user.card("Local Display"));
  await its.user.sees(/1.* with a new release/);
});

test("a download shows its progress and can be cancelled, in whatever window", async () => {
  feed.isSlow = true;
  const card = its.user.card("Device Pack");
  await its.user.button("Download: Device Pack").click();
  const cancels = [];
  its.user.page.on("request", (request) => request.url().endsWith("/DownloadCancel") && cancels.push(request));
  const bar = card.getByRole("progressbar", { name: "Download" });
  await eventually(async () => Number(await bar.getAttribute("value")) > 0, "something has arrived");
  await its.user.sees(/% of .* · .*\/s/, card);
  assert.equal(await its.user.isOff(its.user.button("Restore …: Device Pack")), true);
  await its.user.page.reload();
  await its.user.sees(/Downloading .*2\.3\.0-0152/, card);
  await its.user.page.route("**/DownloadCancel", (route) => route.fulfill({ json: kBusy }), { times: 1 });
  await its.user.button("Cancel: Device Pack").click();
  await its.user.sees("The download could not be cancelled", card);
  await its.user.becomesUsable(its.user.button("Cancel: Device Pack"));
  await its.user.button("Cancel: Device Pack").evaluate((cancel) => [1, 2].forEach(() => cancel.click()));
  await its.user.becomesUsable(its.user.button("Download: Device Pack"));
  assert.equal(cancels.length, 2);
  assert.equal(await card.getByText("The download failed").count(), 0);
});

test("a download that another one has followed is not installed unseen", async () => {
  feed.isSlow = false;
  await its.user.button("Download: Device Pack").click();
  await its.user.becomesUsable(its.user.button("Install: Device Pack"));
  const downloads = [{ service: 1, version: "2.3.1-0160" }];
  await its.user.page.route("**/downloads", (route) => route.fulfill({ json: { success: true, data: { downloads } } }));
  await its.user.button("Install: Device Pack").click();
  await its.user.button("Install", its.user.dialog).click();
  await its.user.sees("Another package came in meanwhile. Look at it again.", its.user.card("Device Pack"));
  await its.user.page.unroute("**/downloads");
  assert.equal((await its.appliance.info(1)).version, "2.1.0-0130");
});

test("a downloaded release is installed when that is agreed to", async () => {
  await its.user.button("Install: Device Pack").click();
  await its.user.sees(/Install .*2\.3\.0-0152.* of .*Device Pack.*\?/, its.user.dialog);
  await its.user.button("Install", its.user.dialog).click();
  await eventually(async () => (await its.appliance.info(1)).version === "2.3.0-0152", "it is installed");
  await its.user.sees("2.3.0-0152", its.user.card("Device Pack"));
  const news = its.user.card("Device Pack").locator(".release");
  await eventually(async () => !(await news.isVisible()), "the news is over");
});
