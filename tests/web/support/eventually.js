// Waits for what comes about by itself.
import assert from "node:assert/strict";
import { setTimeout as sleep } from "node:timers/promises";

const kLimitMs = 10_000;
const kStepMs = 25;

// Returns the first value of `look` that counts as true.
export async function eventually(look, what, limitMs = kLimitMs) {
  const until = Date.now() + limitMs;
  for (;;) {
    const value = await look();
    if (value) {
      return value;
    }
    assert.ok(Date.now() < until, `not in time: ${what}`);
    await sleep(kStepMs);
  }
}
