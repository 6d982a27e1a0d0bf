// The log lines of a request, read when somebody unfolds them.
import { page } from "./api.js";
import { foreign, make } from "./dom.js";
import { time } from "./format.js";
import { wordsFor } from "./problems.js";
import { fill } from "./texts.js";

const kShown = 200;

// An element to unfold. `titleKey` is its summary.
export function logLines(request, titleKey) {
  const list = make("ol", { class: "loglines" });
  const details = make("details", { class: "log" }, make("summary", { text: titleKey }), list);
  details.addEventListener("toggle", () => {
    if (details.open && list.childElementCount === 0) {
      void load(list, request);
    }
  });
  return details;
}

async function load(list, request) {
  try {
    const { lines } = await page(`/log?request=${encodeURIComponent(request)}`);
    list.replaceChildren(...lines.slice(-kShown).map(lineOf));
    if (lines.length === 0) {
      list.append(make("li", { text: "log.none" }));
    }
  } catch (error) {
    const line = make("li");
    fill(line, "log.failed", { reason: wordsFor(error) });
    list.replaceChildren(line);
  }
}

function lineOf(line) {
  return make("li", {}, make("time", {}, time(line.time)), " ", foreign(line.text));
}
