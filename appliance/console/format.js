// Sizes, times and durations as people of the present language write them.
import { language, text } from "./texts.js";

const kUnits = ["B", "KiB", "MiB", "GiB"];
const kStep = 1024;

const formats = new Map();

function format(Kind, options) {
  const key = language + Kind.name + JSON.stringify(options);
  if (!formats.has(key)) {
    formats.set(key, new Kind(language, options));
  }
  return formats.get(key);
}

export function number(value, digits = 0) {
  return format(Intl.NumberFormat, { maximumFractionDigits: digits }).format(value);
}

export function size(bytes) {
  let value = bytes;
  let unit = 0;
  for (; value >= kStep && unit + 1 < kUnits.length; ++unit) {
    value /= kStep;
  }
  return number(value, unit === 0 ? 0 : 1) + "\u00a0" + kUnits[unit];
}

export function percent(done, whole) {
  return number(whole > 0 ? Math.min(100, Math.floor((100 * done) / whole)) : 0) + "\u00a0%";
}

// The clock time of today, the date too of other days.
export function time(iso) {
  const date = new Date(iso);
  if (Number.isNaN(date.getTime())) {
    return String(iso ?? "");
  }
  const isToday = date.toDateString() === new Date().toDateString();
  return format(Intl.DateTimeFormat, isToday ? { timeStyle: "medium" } : { dateStyle: "short", timeStyle: "medium" })
    .format(date);
}

export function duration(milliseconds) {
  const seconds = milliseconds / 1000;
  if (seconds < 60) {
    return text("duration.seconds", { seconds: number(seconds, seconds < 10 ? 1 : 0) });
  }
  return text("duration.minutes", { minutes: number(Math.floor(seconds / 60)), seconds: number(Math.floor(seconds % 60)) });
}
