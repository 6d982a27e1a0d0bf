// Makes the images of the console for the documentation: screenshots.js FOLDER
import { mkdirSync } from "node:fs";
import path from "node:path";

import { Appliance, samplePath } from "./support/appliance.js";
import { Console, launchBrowser } from "./support/browser.js";
import { eventually } from "./support/eventually.js";
import { Feed } from "./support/feed.js";

const [folder] = process.argv.slice(2);
const kWide = { viewport: { width: 1280, height: 780 } };
const kNarrow = { viewport: { width: 380, height: 820 } };

// An ordinary evening: some services run, a start has failed, there is a newer release.
async function makeHistory(appliance) {
  const named = { 2: "Central Management", 3: "Service 3", 6: "Local Display" };
  for (const [service, serviceName] of Object.entries(named)) {
    await appliance.call("Enable", { service: Number(service), serviceName, description: "started by camvoractl" });
    await eventually(async () => (await appliance.info(Number(service))).blRunning, serviceName);
  }
  await appliance.call("SetAutoUpdate", { service: 1, blEnable: true });
  const { filePath } = await appliance.upload("device_pack-2.2.1-0141-failing", "device_pack");
  await appliance.call("Update", { service: 1, filePath });
  await appliance.call("CheckUpdateInfo", { service: 1 });
  const { mend } = appliance.breakActions("service5");
  await appliance.call("Enable", { service: 5, serviceName: "Service 5" });
  return mend;
}

async function shoot(user, name) {
  await user.page.evaluate(() => document.fonts.ready);
  await user.page.screenshot({ path: path.join(folder, `console-${name}.png`) });
}

mkdirSync(folder, { recursive: true });
const [appliance, browser] = await Promise.all([Appliance.start(), launchBrowser()]);
const feed = await Feed.start(appliance, ["device_pack-2.2.0-0140", "device_pack-2.3.0-0152"]);
await makeHistory(appliance);

for (const [name, options] of [
  ["light", { ...kWide, colorScheme: "light" }],
  ["dark", { ...kWide, colorScheme: "dark" }],
  ["narrow", { ...kNarrow, colorScheme: "light" }],
]) {
  const user = await Console.open(browser, await appliance.link(), options);
  await user.sees("The start failed");
  await shoot(user, name);
  await user.close();
}

const user = await Console.open(browser, await appliance.link(), kWide);
await user.sees("The start failed");
const chooser = user.page.waitForEvent("filechooser");
await user.button("Install from file …: Device Pack").click();
await (await chooser).setFiles(samplePath("device_pack-2.0.4-0118"));
await user.sees("To install", user.dialog);
await shoot(user, "upload");
await user.button("Cancel", user.dialog).click();
await user.page.getByRole("button", { name: /^Installation/ }).click();
await user.sees(/ended with status/, user.dialog);
await shoot(user, "log");
await user.close();

feed.end();
await browser.close();
await appliance.end();
