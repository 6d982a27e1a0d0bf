// The operations that the appliance has recorded, running and ended ones, by their ids.
import { page } from "./api.js";

const kPage = "/operations";
const kKept = 300;
const kLookMs = 1000;
const kInstalling = ["Enable", "Disable", "Restart", "Update", "Restore"];

const isRunning = (operation) => operation.outcome === "running";

export class Operations {
  #byId = new Map();
  #streamed = new Set(); // ids that the stream last named as running
  #onChange;
  #isLooking = false;

  constructor(onChange) {
    this.#onChange = onChange;
  }

  clear() {
    this.#byId.clear();
    this.#streamed.clear();
  }

  all() {
    return [...this.#byId.values()];
  }

  get(id) {
    return this.#byId.get(id);
  }

  running(service) {
    return this.all().find((operation) => operation.service === service && isRunning(operation));
  }

  ofRequest(request) {
    return this.all().find((operation) => operation.request === request);
  }

  // The last that has ended of those that change the service.
  lastEnded(service) {
    return this.all().filter((operation) => operation.service === service && !isRunning(operation)
      && kInstalling.includes(operation.method)).at(-1);
  }

  async load() {
    this.#keep((await page(kPage)).operations);
  }

  // `running`: those that run, as the stream has it. Of others that were running the end is asked for.
  see(running) {
    this.#streamed = new Set(running.map((operation) => operation.id));
    this.#keep(running);
    void this.#look();
  }

  async read(id) {
    this.#keep((await page(`${kPage}?id=${id}`)).operations);
  }

  // Reads those that have begun since, which may be over before the stream names them.
  async catchUp() {
    for (;;) {
      const next = Math.max(0, ...this.#byId.keys()) + 1;
      const found = (await page(`${kPage}?id=${next}`)).operations;
      if (found.length === 0) {
        return;
      }
      this.#keep(found);
    }
  }

  async #look() {
    if (this.#isLooking) {
      return;
    }
    this.#isLooking = true;
    try {
      await this.catchUp();
      for (const operation of this.#unseen()) {
        await this.read(operation.id);
      }
    } catch {
      // the next event or the next connection brings another look
    } finally {
      this.#isLooking = false;
    }
    if (this.#unseen().length > 0) {
      setTimeout(() => this.#look(), kLookMs);
    }
  }

  #unseen() {
    return this.all().filter((operation) => isRunning(operation) && !this.#streamed.has(operation.id));
  }

  #keep(operations) {
    for (const operation of operations) {
      this.#byId.set(operation.id, operation);
    }
    const ids = [...this.#byId.keys()].sort((a, b) => a - b);
    this.#byId = new Map(ids.slice(-kKept).map((id) => [id, this.#byId.get(id)]));
    this.#onChange();
  }
}
