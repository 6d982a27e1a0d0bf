// Sizes, times and durations as people of the present language write them.
import { language, text } from "./texts.js";

const kUnits = ["B", "KiB", "MiB", "GiB"];
const kRateMs = 4000;

const whole = new Intl.NumberFormat(language, { maximumFractionDigits: 0 });
const exact = new Intl.NumberFormat(language, { maximumFractionDigits: 1 });
const clock = new Intl.DateTimeFormat(language, { timeStyle: "medium" });
const calendar = new Intl.DateTimeFormat(language, { dateStyle: "short", timeStyle: "medium" });

export function size(bytes) {
  const unit = bytes < 1 ? 0 : Math.min(kUnits.length - 1, Math.floor(Math.log2(bytes) / 10));
  return `${exact.format(bytes / 1024 ** unit)}\u00a0${kUnits[unit]}`;
}

export function percent(done, all) {
  return `${whole.format(all > 0 ? Math.floor((100 * done) / all) : 0)}\u00a0%`;
}

// Of the user's calendar. What shows times is to be shown anew when it changes.
export function today() {
  return new Date().toDateString();
}

// The clock time of today, the date too of other days.
export function time(iso) {
  const date = new Date(iso);
  if (Number.isNaN(date.getTime())) {
    return String(iso);
  }
  return (date.toDateString() === today() ? clock : calendar).format(date);
}

export function duration(ms) {
  const seconds = ms / 1000;
  return seconds < 60
    ? text("duration.s", { seconds: exact.format(seconds) })
    : text("duration.min", { minutes: whole.format(Math.floor(seconds / 60)), seconds: whole.format(seconds % 60) });
}

// How fast an amount grows, evened out over some seconds.
export class Rate {
  #samples = [];

  // Takes the present amount; returns the growth per second, 0 while that is not known.
  add(amount) {
    const now = performance.now();
    this.#samples = [...this.#samples.filter((sample) => now - sample.now < kRateMs && sample.amount <= amount),
      { now, amount }];
    const [first] = this.#samples;
    return now > first.now ? (1000 * (amount - first.amount)) / (now - first.now) : 0;
  }
}
