// The way in and the way out.
import assert from "node:assert/strict";
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

test("a code can be typed in, and signing out ends the session", async () => {
  await its.user.page.goto(its.appliance.url);
  const code = (await its.appliance.link()).split("=")[1];
  await its.user.page.getByLabel("Or enter the code of the link").fill(` ${code.toLowerCase()} `);
  await its.user.button("Sign in").click();
  await its.user.card("Device Pack").waitFor();
  await its.user.button("Sign out").click();
  await its.user.sees("You are signed out.");
  await its.user.page.reload();
  await its.user.sees("Sign in to this appliance");
});
