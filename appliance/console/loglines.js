// The log lines of a request, read when somebody unfolds them.
import { page } from "./api.js";
import { make } from "./dom.js";
import { time } from "./format.js";
import { wordsFor } from "./problems.js";
import { foreign } from "./texts.js";

const kShown = 200;

export function logLines(request) {
  const list = make("ol", { class: "loglines", tabindex: "0", label: "log.title" });
  const details = make("details", { class: "log" }, make("summary", { text: "log.title" }), list);
  details.addEventListener("toggle", async () => {
    if (details.open && list.childElementCount === 0) {
      list.replaceChildren(...(await read(request)));
    }
  });
  return details;
}

async function read(request) {
  try {
    const { lines } = await page(`/log?request=${request}`);
    return lines.length === 0
      ? [make("li", { text: "log.none" })]
      : lines.slice(-kShown).map((line) => make("li", {}, make("time", {}, time(line.time)), " ", foreign(line.text)));
  } catch (error) {
    return [make("li", { text: ["log.failed", { reason: wordsFor(error) }] })];
  }
}
