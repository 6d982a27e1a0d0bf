// The stream of events, read for as long as it is wanted: one that fails or falls silent is opened again.
import { isRefusal, readReply } from "./api.js";
import { EventParser } from "./eventparser.js";

const kPath = "/events";
const kSilenceMs = 15_000;
const kFirstPauseMs = 500;
const kLongestPauseMs = 15_000;

export class EventStream {
  #handlers;
  #isWanted = false;
  #lastId = "";
  #pauseMs = kFirstPauseMs;
  #abort = null;
  #wake = () => {};

  // `handlers`: onEvent(name, data), onLost(), called at each failure, onRefused() when nobody is signed in.
  constructor(handlers) {
    this.#handlers = handlers;
  }

  async run() {
    this.#isWanted = true;
    while (this.#isWanted) {
      await this.#readOnce();
      if (this.#isWanted) {
        this.#handlers.onLost();
        await this.#pause();
      }
    }
  }

  stop() {
    this.#isWanted = false;
    this.drop();
    this.#wake();
  }

  // Gives the present stream up, for the next one.
  drop() {
    this.#abort?.abort();
  }

  // Ends the present pause between two attempts.
  retryNow() {
    this.#pauseMs = kFirstPauseMs;
    this.#wake();
  }

  async #readOnce() {
    this.#abort = new AbortController();
    const watch = new SilenceWatch(kSilenceMs, () => this.#abort.abort());
    try {
      const response = await fetch(kPath, {
        headers: this.#lastId === "" ? {} : { "Last-Event-ID": this.#lastId },
        signal: this.#abort.signal,
      });
      if (response.ok) {
        await this.#readAll(response.body.getReader(), watch);
      } else {
        readReply(await response.json(), "");
      }
    } catch (error) {
      if (isRefusal(error)) {
        this.#isWanted = false;
        this.#handlers.onRefused();
      }
    } finally {
      watch.end();
    }
  }

  async #readAll(reader, watch) {
    const decoder = new TextDecoder();
    const parser = new EventParser();
    for (;;) {
      const { done, value } = await reader.read();
      if (done) {
        return;
      }
      watch.heard();
      for (const event of parser.push(decoder.decode(value, { stream: true }))) {
        this.#pass(event);
      }
    }
  }

  #pass(event) {
    this.#pauseMs = kFirstPauseMs;
    this.#lastId = event.id || this.#lastId;
    this.#handlers.onEvent(event.name, JSON.parse(event.data));
  }

  async #pause() {
    const spread = 0.8 + 0.4 * Math.random(); // or many windows would come back at the same moment
    await new Promise((resolve) => {
      const timer = setTimeout(resolve, this.#pauseMs * spread);
      this.#wake = () => {
        clearTimeout(timer);
        resolve();
      };
    });
    this.#pauseMs = Math.min(kLongestPauseMs, this.#pauseMs * 2);
  }
}

// Calls `onSilence` when nothing was heard for that long.
class SilenceWatch {
  #heardAt = performance.now();
  #timer;

  constructor(limitMs, onSilence) {
    const look = () => {
      const leftMs = this.#heardAt + limitMs - performance.now();
      if (leftMs <= 0) {
        onSilence();
      } else {
        this.#timer = setTimeout(look, leftMs);
      }
    };
    this.#timer = setTimeout(look, limitMs);
  }

  heard() {
    this.#heardAt = performance.now();
  }

  end() {
    clearTimeout(this.#timer);
  }
}
