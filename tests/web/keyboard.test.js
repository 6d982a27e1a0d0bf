// All of it without a mouse.
import assert from "node:assert/strict";
import { test } from "node:test";

import { eventually } from "./support/eventually.js";
import { useConsole } from "./support/fixture.js";

const kLongestWay = 80; // stops of the tabulator

const its = useConsole({ isSignedIn: false });

const focused = () => its.user.page.evaluate(() => {
  const element = document.activeElement;
  return (element.getAttribute("aria-label") ?? element.labels?.[0]?.textContent ?? element.textContent)
    .replace(/[\u2066-\u2069]/g, "");
});

async function tabTo(name, key = "Tab") {
  for (let stops = 0; stops < kLongestWay; ++stops) {
    if ((await focused()).startsWith(name)) {
      return;
    }
    await its.user.page.keyboard.press(key);
  }
  assert.fail(`${name} is not to be reached`);
}

test("sign in, start, look at the operation, filter, restore, sign out", async () => {
  const { keyboard } = its.user.page;
  await its.user.sees("Sign in to this appliance");
  assert.match(await focused(), /^Or enter the code/);
  await keyboard.type((await its.appliance.link()).split("=")[1]);
  await keyboard.press("Enter");
  await its.user.isLive();

  await tabTo("Start: Local Display");
  await keyboard.press("Enter");
  await its.user.showsState("Local Display", "Running");
  await eventually(async () => (await focused()) === "Stop: Local Display", "the focus stays");
  await its.user.hears(/Local Display.*: Running/);

  await tabTo("Commands");
  await keyboard.press("Enter");
  await tabTo("Copy: camvoractl stop local_display");
  await keyboard.press("Escape");
  assert.equal(await focused(), "Commands");

  await tabTo("Search");
  await keyboard.type("start");
  await tabTo("Start");
  await keyboard.press("Enter");
  await its.user.sees("Course", its.user.dialog);
  await keyboard.press("Escape");
  assert.equal(await focused(), "Start");

  await tabTo("Restore …: Local Display", "Shift+Tab");
  await keyboard.press("Space");
  await its.user.sees(/is removed/, its.user.dialog);
  await tabTo("Restore the factory copy");
  await keyboard.press("Enter");
  await its.user.sees("1.5.0-0060", its.user.card("Local Display"));
  await eventually(async () => (await focused()) === "Restore …: Local Display", "the focus comes back");

  await tabTo("Sign out", "Shift+Tab");
  await keyboard.press("Enter");
  await its.user.sees("You are signed out.");
  assert.match(await focused(), /^Or enter the code/);
});

test("the way past the bar leaves everything as it is", async () => {
  const { page } = its.user;
  await page.goto(await its.appliance.link());
  await its.user.isLive();
  await page.reload();
  await its.user.isLive();
  const requests = [];
  page.on("request", (request) => requests.push(request.url()));
  await page.keyboard.press("Tab");
  assert.equal(await focused(), "Skip to the services");
  await page.keyboard.press("Enter");
  await eventually(() => page.evaluate(() => document.activeElement.id === "main"), "the services have the focus");
  assert.deepEqual(requests.filter((url) => /events|appliance$/.test(url)), []);
});
