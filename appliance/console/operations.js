// The operations that the appliance has recorded, by their ids: those that run, and the last that have ended.
import { page } from "./api.js";

export const kKept = 300; // of each kind of what has happened

const kLookMs = 500;
const kRetryMs = 5000;
const kChanging = ["Enable", "Disable", "Restart", "Update", "Restore"];

const isRunning = (operation) => operation.outcome === "running";

// "change" for what changes the service, which is one kind; else the method.
export function kindOf(method) {
  return kChanging.includes(method) ? "change" : method;
}

export class Operations {
  #all = []; // by their ids
  #streamed = []; // those that the stream last named as running
  #readTo = 0; // the newest of those that were read as a list
  #onChange;
  #onCaughtUp;
  #timer;
  #era = 0; // grows when all is forgotten

  constructor(onChange, onCaughtUp) {
    this.#onChange = onChange;
    this.#onCaughtUp = onCaughtUp;
  }

  // Forgets all of them, and what is still being asked for.
  clear() {
    this.#all = [];
    this.#streamed = [];
    this.#readTo = 0;
    ++this.#era;
  }

  all() {
    return this.#all;
  }

  get(id) {
    return this.#all.find((operation) => operation.id === id);
  }

  ofRequest(request) {
    return this.#all.find((operation) => operation.request === request);
  }

  running(service) {
    return this.#all.find((operation) => operation.service === service && isRunning(operation));
  }

  // The last that has ended of those of that kind.
  last(service, kind) {
    return this.#all.findLast((operation) =>
      operation.service === service && !isRunning(operation) && kindOf(operation.method) === kind);
  }

  // Reads the one with that id.
  async read(id) {
    await this.#fetch(`?id=${id}`);
  }

  // `running` and `lastId`: those that run, and the newest, as the stream has it. The ends of others that did run,
  // and those that were over at once, are asked for.
  see(running, lastId) {
    const before = String(this.#streamed);
    this.#streamed = running.map((operation) => operation.id);
    this.#keep(running);
    if (lastId > this.#readTo || String(this.#streamed) !== before) {
      this.#look();
    }
  }

  // Reads those that have begun since the last time.
  async catchUp() {
    const news = await this.#fetch(this.#readTo === 0 ? "" : `?after=${this.#readTo}`);
    this.#readTo = news.at(-1)?.id ?? this.#readTo;
    this.#onCaughtUp();
  }

  async #fetch(query) {
    const era = this.#era;
    const { operations } = await page(`/operations${query}`);
    if (era !== this.#era) {
      return [];
    }
    this.#keep(operations);
    return operations;
  }

  // Reads what is not known yet: begins, and ends.
  #look() {
    const era = this.#era;
    this.#timer ??= setTimeout(async () => {
      this.#timer = undefined;
      if (era !== this.#era) {
        return;
      }
      try {
        await this.catchUp();
        await Promise.all(this.#unseen().map((operation) => this.read(operation.id)));
        this.#lookIfUnseen();
      } catch {
        setTimeout(() => era === this.#era && this.#look(), kRetryMs);
      }
    }, kLookMs);
  }

  #lookIfUnseen() {
    if (this.#unseen().length > 0) {
      this.#look();
    }
  }

  #unseen() {
    return this.#all.filter((operation) => isRunning(operation) && !this.#streamed.includes(operation.id));
  }

  // Answers may come out of order, but nothing that has ended runs again.
  #keep(operations) {
    const known = new Map(this.#all.map((operation) => [operation.id, operation]));
    const isNews = (operation) => !known.has(operation.id) || isRunning(known.get(operation.id));
    const news = operations.filter(isNews);
    if (news.length > 0) {
      news.forEach((operation) => known.set(operation.id, operation));
      this.#all = [...known.values()].sort((a, b) => a.id - b.id).slice(-kKept);
      this.#onChange();
    }
    this.#lookIfUnseen();
  }
}
