// Says to screen readers what has changed elsewhere on the page.
import { text } from "./texts.js";

const kRegion = "announcer";

export function announce(key, values) {
  document.getElementById(kRegion).textContent = text(key, values);
}
