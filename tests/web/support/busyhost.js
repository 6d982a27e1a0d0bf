// A host of the console's own files on which something happens all the time, faster than on any appliance.
import { readFileSync } from "node:fs";
import { createServer } from "node:http";
import path from "node:path";
import { fileURLToPath } from "node:url";

const kFolder = fileURLToPath(new URL("../../../appliance/console", import.meta.url));
const kTypes = { ".html": "text/html", ".css": "text/css", ".js": "text/javascript", ".svg": "image/svg+xml" };
const kServices = [1, 2, 3, 4, 5, 6];
const kKept = 1000; // operations, and log entries
const kControlled = 0x133000b5;

export class BusyHost {
  #count = 0;
  #isRunning = kServices.map(() => false);
  #operations = [];
  #entries = [];
  #streams = new Set();
  #server = createServer((request, response) => this.#answer(request, response));

  static async start() {
    const host = new BusyHost();
    await new Promise((resolve) => host.#server.listen(0, "127.0.0.1", resolve));
    return host;
  }

  get url() {
    return `http://127.0.0.1:${this.#server.address().port}`;
  }

  end() {
    this.#server.closeAllConnections();
    this.#server.close();
  }

  // A service starts or stops: an operation, an entry of the log, a notification, and the state of all.
  happen() {
    const id = ++this.#count;
    const index = id % kServices.length;
    const service = kServices[index];
    const isRunning = (this.#isRunning[index] = !this.#isRunning[index]);
    const time = new Date().toISOString();
    const common = { id, request: `request-${id}`, who: "client" };
    this.#keep(this.#operations, { ...common, method: isRunning ? "Enable" : "Disable", service, fromVersion: "",
      toVersion: "", outcome: "done", begin: time, durationMs: 5, code: 0, problem: "" });
    this.#keep(this.#entries,
      { ...common, time, event: kControlled, number: 0, texts: [`Service ${service}`, "", ""] });
    this.#send("notification", { id, time, request: common.request, type: 24,
      texts: [String(service), String(Number(isRunning)), "0"] });
    this.#send("state", this.#state());
  }

  #keep(list, one) {
    list.push(one);
    list.splice(0, list.length - kKept);
  }

  #state() {
    const services = kServices.map((service, index) => {
      const isRunning = this.#isRunning[index];
      return { service, name: `Service ${service}`, shortName: `service${service}`, status: Number(isRunning),
        blRunning: isRunning, version: "1.0.0-0001", blHasPackages: true, blFactoryCopy: true, blAutoUpdate: false,
        ...(isRunning && { pid: 100 + service, since: "2026-03-01T12:00:00.000Z" }) };
    });
    return { services, downloads: [], releases: [], operations: [], lastOperation: this.#count };
  }

  #send(name, data) {
    for (const stream of this.#streams) {
      stream.write(`event: ${name}\ndata: ${JSON.stringify(data)}\n\n`);
    }
  }

  #pages(after) {
    const news = (list) => list.filter(({ id }) => id > after);
    return {
      "/appliance": { name: "busy", model: "NVR4", version: "3.2.1-0450", blCmsHost: false },
      "/pairs": { pairs: [] },
      "/operations": { operations: news(this.#operations) },
      "/operationlog": { entries: news(this.#entries) },
    };
  }

  #answer(request, response) {
    const { pathname: page, searchParams } = new URL(request.url, this.url);
    const pages = this.#pages(Number(searchParams.get("after")));
    if (page === "/events") {
      response.setHeader("Content-Type", "text/event-stream");
      this.#streams.add(response);
      this.#send("snapshot", { lastNotification: 0, ...this.#state() });
    } else if (page in pages) {
      response.end(JSON.stringify({ success: true, data: pages[page] }));
    } else {
      const file = path.join(kFolder, page === "/" ? "index.html" : path.basename(page));
      response.setHeader("Content-Type", kTypes[path.extname(file)]);
      response.end(readFileSync(file));
    }
  }
}
