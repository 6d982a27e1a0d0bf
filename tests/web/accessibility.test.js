// What a checker of accessibility finds, at widths from a telephone's to a wide screen's, in light and dark.
import assert from "node:assert/strict";
import { test } from "node:test";

import axe from "axe-core";

import { Console } from "./support/browser.js";
import { useConsole } from "./support/fixture.js";

const kGrave = ["serious", "critical"];

const its = useConsole({ isSignedIn: false, prepare });

async function prepare({ appliance }) {
  await appliance.call("Enable", { service: 3 });
  appliance.breakActions("service5");
  await appliance.call("Enable", { service: 5 });
}

async function isInOrder(user, what) {
  await user.page.evaluate(axe.source);
  const { violations } = await user.page.evaluate(() => window.axe.run());
  const grave = violations.filter(({ impact }) => kGrave.includes(impact));
  assert.deepEqual(grave.map(({ id, nodes }) => `${what}: ${id}: ${nodes.map(({ html }) => html)}`), []);
  const isTooWide = await user.page.evaluate(() => document.documentElement.scrollWidth > innerWidth);
  assert.equal(isTooWide, false, `${what} is wider than its window`);
}

for (const [colorScheme, width, locale] of [
  ["light", 360, "de-DE"], ["light", 1600, "en-GB"], ["dark", 360, "en-GB"], ["dark", 1600, "de-DE"],
]) {
  test(`${colorScheme}, ${width} pixels wide, ${locale}`, async () => {
    const options = { colorScheme, locale, viewport: { width, height: 900 } };
    const user = await Console.open(its.browser, its.appliance.url, options);
    await user.page.getByRole("heading", { level: 1 }).waitFor();
    await isInOrder(user, "the way in");
    await user.page.goto(await its.appliance.link());
    await user.isLive();
    const failed = user.card("Service 5");
    await failed.locator(".log summary").click();
    await failed.locator(".loglines li").first().waitFor();
    await failed.locator(".commands summary").click();
    await isInOrder(user, "the services");
    await user.page.locator(".happenings button").first().click();
    await user.page.locator(".timeline time").first().waitFor();
    await isInOrder(user, "an operation");
    await user.page.keyboard.press("Escape");
    await user.card("Device Pack").locator(".quiet-buttons button").last().click();
    await user.dialog.waitFor();
    await isInOrder(user, "a question");
    await user.close();
  });
}

test("text of twice the size fits a telephone's screen", async () => {
  const user = await Console.open(its.browser, await its.appliance.link(), { viewport: { width: 360, height: 900 } });
  await user.isLive();
  await user.page.evaluate(() => (document.documentElement.style.fontSize = "200%"));
  await isInOrder(user, "large text");
  await user.close();
});
