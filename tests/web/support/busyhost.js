// A host of the console's own files on which something happens all the time, faster than on any appliance.
import { readFileSync } from "node:fs";
import { createServer } from "node:http";
import path from "node:path";
import { fileURLToPath } from "node:url";

const kFolder = fileURLToPath(new URL("../../../appliance/console", import.meta.url));
const kTypes = { ".html": "text/html", ".css": "text/css", ".js": "text/javascript", ".svg": "image/svg+xml" };
const kServices = [1, 2, 3, 4, 5, 6];
const kPages = {
  "/appliance": { name: "busy", model: "NVR4", version: "3.2.1-0450", blCmsHost: false },
  "/pairs": { pairs: [] },
  "/operations": { operations: [] },
  "/operationlog": { entries: [] },
};

export class BusyHost {
  #count = 0;
  #isRunning = kServices.map(() => false);
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

  // A service starts or stops: a notification, and the state of all.
  happen() {
    const index = ++this.#count % kServices.length;
    this.#isRunning[index] = !this.#isRunning[index];
    this.#send("notification", { id: this.#count, time: new Date().toISOString(), request: "", type: 24,
      texts: [String(kServices[index]), String(Number(this.#isRunning[index])), "0"] });
    this.#send("state", this.#state());
  }

  #state() {
    const services = kServices.map((service, index) => {
      const isRunning = this.#isRunning[index];
      return { service, name: `Service ${service}`, shortName: `service${service}`, status: Number(isRunning),
        blRunning: isRunning, version: "1.0.0-0001", blHasPackages: true, blFactoryCopy: true, blAutoUpdate: false,
        ...(isRunning && { pid: 100 + service, since: "2026-03-01T12:00:00.000Z" }) };
    });
    return { services, downloads: [], releases: [], operations: [] };
  }

  #send(name, data) {
    for (const stream of this.#streams) {
      stream.write(`event: ${name}\ndata: ${JSON.stringify(data)}\n\n`);
    }
  }

  #answer({ url }, response) {
    const [page] = url.split("?");
    if (page === "/events") {
      response.setHeader("Content-Type", "text/event-stream");
      this.#streams.add(response);
      this.#send("snapshot", { lastNotification: 0, ...this.#state() });
    } else if (page in kPages) {
      response.end(JSON.stringify({ success: true, data: kPages[page] }));
    } else {
      const file = path.join(kFolder, page === "/" ? "index.html" : path.basename(page));
      response.setHeader("Content-Type", kTypes[path.extname(file)]);
      response.end(readFileSync(file));
    }
  }
}
