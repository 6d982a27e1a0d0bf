// A feed of releases on this machine, which sends package files at a pace that a test chooses.
import { copyFileSync, createReadStream, mkdtempSync, readFileSync, rmSync, statSync, writeFileSync } from "node:fs";
import { createServer } from "node:http";
import { tmpdir } from "node:os";
import path from "node:path";
import { setTimeout as sleep } from "node:timers/promises";

import { samplePath } from "./appliance.js";

const kPieces = 80; // of a slow package file
const kPieceMs = 250;

export class Feed {
  #folder = mkdtempSync(path.join(tmpdir(), "camvora-feed-"));
  #server = createServer((request, response) => void this.#answer(request, response));
  isSlow = false;

  // Publishes the sample packages for the appliance, and makes it ask here.
  static async start(appliance, samples) {
    const feed = new Feed();
    const key = path.join(feed.#folder, "key");
    for (const sample of samples) {
      copyFileSync(samplePath(sample), path.join(feed.#folder, `${sample}.spk`));
      writeFileSync(path.join(feed.#folder, `${sample}.notes`), `What is new in ${sample}\n`);
    }
    await appliance.client("feed", "key", key);
    await appliance.client("feed", "build", feed.#folder, "--key", key);
    await new Promise((resolve) => feed.#server.listen(0, "127.0.0.1", resolve));
    copyFileSync(`${key}.pub`, appliance.pathOf("etc/feed.pem"));
    const url = `http://127.0.0.1:${feed.#server.address().port}`;
    const settings = `feed_url="${url}"\nfeed_key="/var/packages/Camvora/target/etc/feed.pem"\n`;
    writeFileSync(appliance.pathOf("etc/releases.conf"), settings);
    return feed;
  }

  end() {
    this.#server.closeAllConnections();
    this.#server.close();
    rmSync(this.#folder, { recursive: true });
  }

  async #answer(request, response) {
    const file = path.join(this.#folder, path.basename(request.url));
    response.setHeader("Content-Length", statSync(file).size);
    if (!this.isSlow || !file.endsWith(".spk")) {
      createReadStream(file).pipe(response);
      return;
    }
    const bytes = readFileSync(file);
    const pieceBytes = Math.ceil(bytes.length / kPieces);
    for (let at = 0; at < bytes.length && !response.destroyed; at += pieceBytes) {
      response.write(bytes.subarray(at, at + pieceBytes));
      await sleep(kPieceMs);
    }
    response.end();
  }
}
