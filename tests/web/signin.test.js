// The way in and the way out.
import assert from "node:assert/strict";
import { writeFileSync } from "node:fs";
import { test } from "node:test";

import { Console } from "./support/browser.js";
import { useConsole } from "./support/fixture.js";

const its = useConsole({ isSignedIn: false });

test("a link opens the console once, and leaves no code in the address", async () => {
  const link = await its.appliance.link();
  const first = await Console.open(its.browser, link);
  await first.card("Device Pack").waitFor();
  assert.equal(first.page.url(), `${its.appliance.url}/`);
  await first.page.reload();
  await first.card("Device Pack").waitFor();

  const second = await Console.open(its.browser, link);
  await second.sees(/The code is wrong, was used before/);
  assert.equal(await second.page.getByRole("article").count(), 0);
  const third = await Console.open(its.browser, `${its.appliance.url}/#code=%`);
  await third.sees(/The code is wrong, was used before/);
  await third.close();
  await first.page.goto(link);
  await first.sees(/The code is wrong, was used before/, first.dialog);
  await first.close();
  await second.close();
});

test("without a session nothing but the way in is shown or answered", async () => {
  const stranger = await Console.open(its.browser, its.appliance.url);
  await stranger.sees("camvoractl console");
  assert.equal(await stranger.page.getByRole("article").count(), 0);
  assert.equal(await stranger.button("Sign out").count(), 0);
  const statuses = await stranger.page.evaluate(() => Promise.all(["/appliance", "/events", "/operations", "/log"]
    .map(async (path) => (await fetch(path)).status)));
  assert.deepEqual(statuses, [401, 401, 401, 401]);
  await stranger.close();
});

test("a code can be typed in, and signing out ends the session", async () => {
  await its.user.page.goto(its.appliance.url);
  const code = (await its.appliance.link()).split("=")[1];
  await its.user.page.getByLabel("Or enter the code of the link").fill(` ${code.toLowerCase()} `);
  await its.user.button("Sign in").click();
  await its.user.card("Device Pack").waitFor();
  await its.user.page.route("**/session", (route) => route.abort(), { times: 1 });
  await its.user.button("Sign out").click();
  await its.user.sees("The appliance does not answer.", its.user.dialog);
  await its.user.button("Close", its.user.dialog).click();
  await its.user.button("Sign out").click();
  await its.user.sees("You are signed out.");
  await its.user.page.reload();
  await its.user.sees("Sign in to this appliance");
});

test("a token that is changed ends the session, with words for it", async () => {
  await its.user.page.goto(await its.appliance.link());
  await its.user.isLive();
  await its.appliance.stop();
  writeFileSync(its.appliance.fileOf("token"), `${"a1".repeat(32)}\n`);
  await its.appliance.launch();
  await its.user.sees(/Your session is over/);
  assert.equal(await its.user.page.getByRole("article").count(), 0);
});
