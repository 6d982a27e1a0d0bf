// The way in and the way out.
import assert from "node:assert/strict";
import { writeFileSync } from "node:fs";
import { after, before, test } from "node:test";

import { Appliance } from "./support/appliance.js";
import { Console, launchBrowser } from "./support/browser.js";

let appliance;
let browser;

before(async () => {
  [appliance, browser] = await Promise.all([Appliance.start(), launchBrowser()]);
});

after(async () => {
  await browser.close();
  await appliance.end();
});

test("a link opens the console once, and leaves no code in the address", async () => {
  const link = await appliance.link();
  const first = await Console.open(browser, link);
  await first.card("Device Pack").waitFor();
  assert.equal(first.page.url(), `${appliance.url}/`);
  await first.page.reload();
  await first.card("Device Pack").waitFor();

  const second = await Console.open(browser, link);
  await second.sees(/The code is wrong, was used before/);
  assert.equal(await second.page.getByRole("article").count(), 0);
  await first.close();
  await second.close();
});

test("without a session nothing but the way in is shown or answered", async () => {
  const stranger = await Console.open(browser, appliance.url);
  await stranger.sees("camvoractl console");
  assert.equal(await stranger.page.getByRole("article").count(), 0);
  assert.equal(await stranger.button("Sign out").count(), 0);
  const statuses = await stranger.page.evaluate(() => Promise.all(["/appliance", "/events", "/operations", "/log"]
    .map(async (path) => (await fetch(path)).status)));
  assert.deepEqual(statuses, [401, 401, 401, 401]);
  await stranger.close();
});

test("a code can be typed in, and signing out ends the session", async () => {
  const user = await Console.open(browser, appliance.url);
  const code = (await appliance.link()).split("=")[1];
  await user.page.getByLabel("Or enter the code of the link").fill(` ${code.toLowerCase()} `);
  await user.button("Sign in").click();
  await user.card("Device Pack").waitFor();
  await user.button("Sign out").click();
  await user.sees("You are signed out.");
  await user.page.reload();
  await user.sees("Sign in to this appliance");
  await user.close();
});

test("a token that is changed ends the session, with words for it", async () => {
  const user = await Console.open(browser, await appliance.link());
  await user.isLive();
  await appliance.stop();
  writeFileSync(appliance.fileOf("token"), `${"a1".repeat(32)}\n`);
  await appliance.launch();
  await user.sees(/Your session is over/);
  assert.equal(await user.page.getByRole("article").count(), 0);
  await user.close();
});
