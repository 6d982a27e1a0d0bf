// A list of facts: what something is called, and what it is.
import { make } from "./dom.js";

// `rows`: pairs of a text's key and the content; those without content are left out.
export function facts(rows) {
  const list = make("dl", { class: "facts" });
  for (const [key, content] of rows) {
    if (content) {
      list.append(make("div", {}, make("dt", { text: key }), make("dd", { dir: "auto" }, content)));
    }
  }
  return list;
}
