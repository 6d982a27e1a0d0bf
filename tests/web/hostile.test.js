// Texts that would be more than texts.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import path from "node:path";
import { after, test } from "node:test";

import { useConsole } from "./support/fixture.js";

const kMarkup = "<img src=x onerror=window.taken=1><script>window.taken=1</script>'&amp;";
const kBackwards = "\u202Egpj.\u05E9\u05DC\u05D5\u05DD";
const kHostile = kMarkup + kBackwards;

const its = useConsole();
const folder = mkdtempSync(path.join(tmpdir(), "camvora-hostile-"));

after(() => rmSync(folder, { recursive: true }));

// A package whose every text is hostile.
function makePackage() {
  const tree = path.join(folder, "tree");
  mkdirSync(tree);
  writeFileSync(path.join(tree, "conf"),
    `version="9.0.0-${kHostile}"\nmaintainer="${kHostile}"\ncv_min_ver="3.0.0-0300"\n`);
  writeFileSync(path.join(folder, "INFO"), `package="CamvoraLocalDisplay"\narch="plat1 plat2"\n`);
  execFileSync("tar", ["-C", tree, "-czf", path.join(folder, "package.tgz"), "."]);
  execFileSync("tar", ["-C", folder, "-cf", path.join(folder, "all.spk"), "INFO", "package.tgz"]);
  return [...readFileSync(path.join(folder, "all.spk"))];
}

// That the text stands there in an element of its own, with its own direction, and nothing came of it.
async function isOnlyText(words, within) {
  const shown = within.getByText(words, { exact: true }).first();
  await shown.waitFor();
  assert.equal(await shown.evaluate((element) => element.closest("bdi, [dir=auto]") !== null), true);
  assert.equal(await its.user.page.evaluate(() => window.taken), undefined);
  assert.equal(await its.user.page.locator("main img, main script, dialog img, dialog script").count(), 0);
}

test("the texts of a package, of its file and of the operation log are shown as they are", async () => {
  await its.user.drop(its.user.card("Local Display"), [{ name: `${kMarkup}.spk`, bytes: makePackage() }]);
  await its.user.sees("To install", its.user.dialog);
  await isOnlyText(kHostile, its.user.dialog);
  await isOnlyText(`9.0.0-${kHostile}`, its.user.dialog);
  await isOnlyText(`${kMarkup}.spk`, its.user.dialog);
  await its.user.button("Install", its.user.dialog).click();
  await isOnlyText(`9.0.0-${kHostile}`, its.user.card("Local Display"));

  await its.appliance.call("Enable", { service: 4, serviceName: kHostile, description: kHostile });
  await isOnlyText(kHostile, its.user.page.locator(".happenings .service"));
  await isOnlyText(kHostile, its.user.page.locator(".happenings .words"));
});

test("so are the texts that the log has of a request", async () => {
  const { mend } = its.appliance.breakActions("service5");
  await its.appliance.call("Enable", { service: 5, serviceName: kHostile });
  const card = its.user.card("Service 5");
  await its.user.page.route("**/log?request=*", async (route) => {
    const lines = [{ time: new Date().toISOString(), text: kHostile }];
    await route.fulfill({ json: { success: true, data: { lines } } });
  });
  await card.getByText("What the appliance logged").click();
  await isOnlyText(kHostile, card);
  mend();
});

test("so are the names of the appliance and of a recorder, in the switch, the banners and the commands", async () => {
  const { page } = its.user;
  const appliance = { name: kHostile, model: kHostile, version: kHostile, blCmsHost: true, blStarted: true };
  const list = (await its.appliance.call("List")).list;
  await page.route("**/appliance", (route) => route.fulfill({ json: { success: true, data: appliance } }));
  await page.route("**/pairs", (route) => route.fulfill({
    json: { success: true, data: { pairs: [{ name: kHostile, role: "server" }] } } }));
  await page.route((url) => url.pathname.startsWith("/servers/"), (route) => route.fulfill({
    json: { success: true, data: { list } } }));
  await page.reload();
  await isOnlyText(kHostile, page.getByRole("banner"));
  await page.getByLabel("Shown").selectOption({ label: kHostile });
  await isOnlyText(kHostile, page.locator(".banner"));
  const card = its.user.card("Service 3");
  await card.getByText("Commands").click();
  const quoted = `'${kHostile.replaceAll("'", "'\\''")}'`;
  await isOnlyText(`camvoractl --server ${quoted} start service3`, card);
  await page.unrouteAll();
});
