// The stream of events, read for as long as it is wanted and its window is seen: browsers have few connections to a
// host, for all of its windows together. One that breaks or falls silent is opened again.
import { isRefusal, readReply } from "./api.js";

const kSilenceMs = 15_000;
const kFirstPauseMs = 500;
const kLongestPauseMs = 15_000;

export class EventStream {
  #handlers;
  #isWanted = true;
  #lastId = "0"; // what is still kept of the notifications comes first
  #pauseMs = kFirstPauseMs;
  #abort;
  #wake = () => {};
  #dropHidden = () => document.hidden && this.drop();

  // `handlers`: onEvent(name, data); onHidden(), when the window is seen no more; onLost(error), at each failure;
  // onRefused(), when nobody is signed in.
  constructor(handlers) {
    this.#handlers = handlers;
    document.addEventListener("visibilitychange", this.#dropHidden);
    void this.#run();
  }

  stop() {
    this.#isWanted = false;
    document.removeEventListener("visibilitychange", this.#dropHidden);
    this.drop();
    this.#wake();
  }

  // Gives the present connection up, for the next one; `error` says why.
  drop(error) {
    this.#abort?.abort(error);
  }

  // Ends the present pause between two attempts.
  retryNow() {
    this.#pauseMs = kFirstPauseMs;
    this.#wake();
  }

  async #run() {
    for (await whenSeen(); this.#isWanted; await whenSeen()) {
      const error = await this.#connect().catch((problem) => problem);
      if (isRefusal(error)) {
        this.#isWanted = false;
        this.#handlers.onRefused();
      }
      if (this.#isWanted && document.hidden) {
        this.#handlers.onHidden();
      } else if (this.#isWanted) {
        this.#handlers.onLost(error);
        await this.#pause();
      }
    }
  }

  async #connect() {
    this.#abort = new AbortController();
    const { signal } = this.#abort;
    const watch = watchForSilence(() => this.drop());
    try {
      const headers = { "Last-Event-ID": this.#lastId };
      const response = await fetch("/events", { headers, signal });
      if (!response.ok) {
        readReply(await response.json());
      }
      await this.#read(response.body.getReader(), watch);
    } finally {
      watch.end();
    }
  }

  async #read(reader, watch) {
    const decoder = new TextDecoder();
    let rest = "";
    for (let piece = await reader.read(); !piece.done; piece = await reader.read()) {
      watch.heard();
      const blocks = (rest + decoder.decode(piece.value, { stream: true })).split("\n\n");
      rest = blocks.pop();
      blocks.map(parseEvent).filter((event) => event.data).forEach((event) => this.#pass(event));
    }
  }

  #pass({ event, data, id }) {
    this.#pauseMs = kFirstPauseMs;
    this.#lastId = id ?? this.#lastId;
    this.#handlers.onEvent(event, JSON.parse(data));
  }

  async #pause() {
    const spread = 0.8 + 0.4 * Math.random(); // or many windows would come back at the same moment
    await new Promise((resolve) => {
      this.#wake = resolve;
      setTimeout(resolve, this.#pauseMs * spread);
    });
    this.#pauseMs = Math.min(kLongestPauseMs, this.#pauseMs * 2);
  }
}

// The fields of an event by their names; a comment has none.
export function parseEvent(block) {
  return Object.fromEntries(block.split("\n").map((line) => /^(\w+): ?(.*)$/.exec(line)).filter(Boolean)
    .map(([, name, value]) => [name, value]));
}

function whenSeen() {
  return new Promise((resolve) => {
    const look = () => {
      if (!document.hidden) {
        document.removeEventListener("visibilitychange", look);
        resolve();
      }
    };
    document.addEventListener("visibilitychange", look);
    look();
  });
}

function watchForSilence(onSilence) {
  let heardAt = performance.now();
  const timer = setInterval(() => {
    if (performance.now() - heardAt > kSilenceMs) {
      onSilence();
    }
  }, 1000);
  return { heard: () => (heardAt = performance.now()), end: () => clearInterval(timer) };
}
