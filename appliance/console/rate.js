// How fast something grows, evened out over some seconds.
const kWindowMs = 4000;

export class Rate {
  #samples = [];

  // Takes the present amount; returns the growth per second, 0 as long as that is not known.
  add(amount) {
    const now = performance.now();
    const first = this.#samples[0];
    if (first !== undefined && amount < first.amount) {
      this.#samples = [];
    }
    this.#samples.push({ now, amount });
    while (this.#samples.length > 2 && now - this.#samples[0].now > kWindowMs) {
      this.#samples.shift();
    }
    const [oldest] = this.#samples;
    const seconds = (now - oldest.now) / 1000;
    return seconds > 0 ? (amount - oldest.amount) / seconds : 0;
  }
}
