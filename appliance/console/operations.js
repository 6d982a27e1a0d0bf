// The operations that the appliance has recorded, by their ids: those that run, and the last that have ended.
import { page } from "./api.js";

const kKept = 300;
const kLookMs = 500;
const kChanging = ["Enable", "Disable", "Restart", "Update", "Restore"];

const isRunning = (operation) => operation.outcome === "running";

export class Operations {
  #byId = new Map();
  #streamed = []; // those that the stream last named as running
  #onChange;
  #timer;

  constructor(onChange) {
    this.#onChange = onChange;
  }

  clear() {
    this.#byId.clear();
  }

  all() {
    return [...this.#byId.values()];
  }

  get(id) {
    return this.#byId.get(id);
  }

  ofRequest(request) {
    return this.all().find((operation) => operation.request === request);
  }

  running(service) {
    return this.all().find((operation) => operation.service === service && isRunning(operation));
  }

  // The last that has ended of those that change the service.
  lastChange(service) {
    return this.all().findLast((operation) =>
      operation.service === service && !isRunning(operation) && kChanging.includes(operation.method));
  }

  // Reads all of them, or only the one with that id. Returns whether there was any.
  async read(id) {
    const { operations } = await page(id === undefined ? "/operations" : `/operations?id=${id}`);
    this.#keep(operations);
    return operations.length > 0;
  }

  // `running`: those that run, as the stream has it. The ends of others that did are asked for.
  see(running) {
    this.#streamed = running.map((operation) => operation.id);
    this.#keep(running);
    this.look();
  }

  // Reads those that have begun since.
  async catchUp() {
    while (await this.read(Math.max(0, ...this.#byId.keys()) + 1));
  }

  // Reads what is not known yet: begins, and ends.
  look(pauseMs = 0) {
    this.#timer ??= setTimeout(async () => {
      try {
        await this.catchUp();
        await Promise.all(this.#unseen().map((operation) => this.read(operation.id)));
      } catch {
        // the next event, or the next connection, brings another look
      }
      this.#timer = undefined;
      this.#lookIfUnseen();
    }, pauseMs);
  }

  #lookIfUnseen() {
    if (this.#unseen().length > 0) {
      this.look(kLookMs);
    }
  }

  #unseen() {
    return this.all().filter((operation) => isRunning(operation) && !this.#streamed.includes(operation.id));
  }

  // Answers may come out of order, but nothing that has ended runs again.
  #keep(operations) {
    const news = operations.filter(({ id, outcome }) => outcome !== "running" || isRunning(this.get(id) ?? { outcome }));
    const merged = new Map([...this.#byId, ...news.map((operation) => [operation.id, operation])]);
    this.#byId = new Map([...merged].sort(([a], [b]) => a - b).slice(-kKept));
    this.#lookIfUnseen();
    this.#onChange();
  }
}
