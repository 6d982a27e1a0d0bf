// The parts of the console that come when they are wanted.
import { reconnect } from "./live.js";

// Returns the module of that file; undefined where it cannot be loaded. Then it shows soon whether the appliance still
// answers.
export async function load(file) {
  try {
    return await import(file);
  } catch {
    reconnect();
    return undefined;
  }
}
