// Why something failed, in words: of calls to the appliance, and of packages that it refuses.
import { CallError, kUnreachable } from "./api.js";
import { hasText, text } from "./texts.js";

// What the store keeps of a failure of `method`.
export function problemOf(error, method) {
  if (!(error instanceof CallError)) {
    return { method, code: 0, text: error.message, request: "" };
  }
  return { method, code: error.code, text: wordsFor(error), request: error.request };
}

// The words for a CallError: those of the console where it knows the code, else those of the appliance.
export function wordsFor(error) {
  const key = error.code === kUnreachable ? "error.unreachable" : `error.${error.code}`;
  if (hasText(key)) {
    return text(key);
  }
  return error.data?.text ?? text("error.unknown", { code: error.code });
}

// The keys and values for a refused package, by the module's error object: why, and what to do about it.
export function refusalOf(error) {
  const info = error.data?.errinfo;
  const name = `${info?.sec}.${info?.key}`;
  const values = { param1: info?.param1, param2: info?.param2, param3: info?.param3, reason: name };
  if (info && hasText(`refusal.${name}`)) {
    return { why: `refusal.${name}`, advice: `advice.${name}`, values };
  }
  return info
    ? { why: "refusal.other", advice: "advice.other", values }
    : { why: "refusal.call", advice: "advice.other", values: { reason: wordsFor(error) } };
}
