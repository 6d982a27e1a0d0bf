// The console in a browser, by what its users see and reach.
import assert from "node:assert/strict";
import { accessSync, constants } from "node:fs";
import path from "node:path";

import { chromium } from "playwright-core";

import { eventually } from "./eventually.js";

const kNames = ["chromium", "chromium-browser", "google-chrome"];
const kLimitMs = 10_000;

function findBrowser() {
  const files = process.env.PATH.split(":").flatMap((folder) => kNames.map((name) => path.join(folder, name)));
  const found = files.find((file) => {
    try {
      accessSync(file, constants.X_OK);
      return true;
    } catch {
      return false;
    }
  });
  assert.ok(found, `none of ${kNames} is in PATH`);
  return found;
}

export function launchBrowser() {
  return chromium.launch({
    executablePath: findBrowser(),
    args: process.getuid() === 0 ? ["--no-sandbox"] : [],
  });
}

// One window of the console. What goes wrong in its scripts, or is kept from running by the policy of the page, fails
// the test at `close`.
export class Console {
  #context;
  #errors = [];
  page;

  static async open(browser, url, options = {}) {
    const opened = new Console();
    opened.#context = await browser.newContext({ locale: "en-GB", reducedMotion: "reduce", ...options });
    await opened.addPage(url);
    return opened;
  }

  // Another window of the same browser session.
  static async beside(other, url) {
    const opened = new Console();
    opened.#context = other.#context;
    await opened.addPage(url);
    return opened;
  }

  async addPage(url) {
    this.page = await this.#context.newPage();
    this.page.setDefaultTimeout(kLimitMs);
    this.page.on("pageerror", (error) => this.#errors.push(error.message));
    this.page.on("console", (message) => {
      if (/Content Security Policy/.test(message.text())) {
        this.#errors.push(message.text());
      }
    });
    await this.page.goto(url);
  }

  async close() {
    await this.#context.close();
    assert.deepEqual(this.#errors, []);
  }

  card(name) {
    return this.page.getByRole("article", { name, exact: true });
  }

  button(name, within = this.page) {
    return within.getByRole("button", { name: clean(name) });
  }

  get dialog() {
    return this.page.getByRole("dialog");
  }

  // What is only said to screen readers does not count.
  async sees(words, within = this.page.locator("body > :not(#announcer)")) {
    await within.getByText(words).first().waitFor();
  }

  // Waits until a screen reader is told so.
  async hears(words) {
    await eventually(async () => words.test(await this.page.locator("#announcer").textContent()), `${words} is said`);
  }

  // Waits until the card shows that state.
  async showsState(name, state) {
    await eventually(async () => (await this.card(name).locator(".state").textContent()) === state,
      `${name} shows ${state}`);
  }

  async isLive() {
    await this.sees(/^(Live|Verbunden)$/, this.page.getByRole("banner"));
  }

  // That the control cannot be used now.
  async isOff(locator) {
    return (await locator.getAttribute("aria-disabled")) === "true";
  }

  async becomesUsable(locator) {
    await eventually(async () => (await locator.count()) > 0 && !(await this.isOff(locator)), `${locator} can be used`);
  }

  // Drops files on the element, as from another window: of these bytes, or so many of no meaning.
  async drop(locator, files) {
    const transfer = await this.page.evaluateHandle((given) => {
      const data = new DataTransfer();
      for (const { name, bytes, size } of given) {
        data.items.add(new File([bytes ? Uint8Array.from(bytes) : new Uint8Array(size)], name));
      }
      return data;
    }, files);
    await locator.dispatchEvent("dragover", { dataTransfer: transfer });
    await locator.dispatchEvent("drop", { dataTransfer: transfer });
  }
}

// A name as it is read out: values in it are kept apart by characters that nobody sees.
function clean(name) {
  if (typeof name !== "string") {
    return name;
  }
  const parts = name.split(": ").map((part) => part.replace(/[.*+?^${}()|[\]\\]/g, "\\$&"));
  return new RegExp(`^${parts.map((part) => `[\u2066-\u2069]?${part}[\u2066-\u2069]?`).join(": ")}$`);
}
