// An appliance, a browser, and a window of the console, for all tests of a file. They end with the tests, whatever
// became of these.
import { after, before } from "node:test";

import { Appliance } from "./appliance.js";
import { Console, launchBrowser } from "./browser.js";

// `options` are the host's; `prepare` does the rest, with what is returned: {appliance, browser, user}, which are there
// when the tests begin.
export function useConsole({ options = [], isSignedIn = true, prepare = () => {} } = {}) {
  const its = {};
  before(async () => {
    its.browser = await launchBrowser();
    its.appliance = await Appliance.start(options);
    its.user = await Console.open(its.browser, isSignedIn ? await its.appliance.link() : its.appliance.url);
    await (isSignedIn && its.user.isLive());
    await prepare(its);
  });
  after(async () => {
    const ends = await Promise.allSettled([its.user?.close(), its.appliance?.end()]);
    await its.browser?.close();
    for (const { reason } of ends) {
      if (reason) {
        throw reason;
      }
    }
  });
  return its;
}
