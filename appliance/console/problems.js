// Why something failed, in words.
import { kUnreachable } from "./api.js";
import { hasText, text } from "./texts.js";

// What the store keeps of a failure of `method`. `isOpen`: the answer was lost, not necessarily the operation.
export function problemOf(error, method) {
  const isOpen = isCut(error) && hasText(`operation.${method}`);
  const words = error.code === undefined ? error.message : wordsFor(error);
  const begin = new Date().toISOString();
  return { method, begin, text: isOpen ? "" : words, request: error.request, isOpen };
}

// The words for a CallError: the console's where it knows the code, else the appliance's.
export function wordsFor({ code, data }) {
  const key = `error.${code}`;
  return hasText(key) ? text(key) : data?.text ?? text("error.unknown", { code });
}

// For a package that is not taken: the key of why, that of what to do about it, and their values.
export function refusalOf(error) {
  const info = error.data?.errinfo;
  if (!info) {
    return { why: "refusal.call", advice: "advice.other", values: { reason: wordsFor(error) } };
  }
  const reason = `${info.sec}.${info.key}`;
  const name = hasText(`refusal.${reason}`) ? reason : "other";
  return { why: `refusal.${name}`, advice: `advice.${name}`, values: { ...info, reason } };
}

export function isCut(error) {
  return error.code === kUnreachable;
}
