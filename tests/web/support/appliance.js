// A real appliance in a folder of its own, for a test, and what a test does to it from outside.
import { execFile, spawn } from "node:child_process";
import { existsSync, mkdirSync, mkdtempSync, readdirSync, readFileSync, rmSync, statSync } from "node:fs";
import { tmpdir } from "node:os";
import path from "node:path";
import { fileURLToPath } from "node:url";
import { promisify } from "node:util";

import { eventually } from "./eventually.js";

const kRoot = fileURLToPath(new URL("../../..", import.meta.url));
const kBuild = path.join(kRoot, "build/release");
const kPackage = "var/packages/Camvora/target";
const kMethods = "/api/ORVA.Camvora.AddOns/v1/";

const run = promisify(execFile);

function read(file) {
  try {
    return readFileSync(file, "utf8");
  } catch {
    return ""; // of a process that has ended
  }
}

function inodeOf(file) {
  try {
    return statSync(file).ino;
  } catch {
    return undefined;
  }
}

export const samplePath = (name) => path.join(kBuild, "packages", `${name}.spk`);

export class Appliance {
  #folder = mkdtempSync(path.join(tmpdir(), "camvora-web-"));
  #launcher = null;
  #port = 0;

  // Lays it out and launches it; `options` are the host's.
  static async start(options = []) {
    const appliance = new Appliance();
    await run(path.join(kRoot, "tools/lay-out"), [kBuild, appliance.#folder]);
    await appliance.launch(options);
    return appliance;
  }

  // Once more at the address that it had.
  async launch(options = []) {
    rmSync(this.pathOf("@CVData/run/address"), { force: true });
    this.#launcher = spawn(path.join(this.#folder, "launch"), ["--port", String(this.#port), ...options], {
      stdio: ["pipe", "ignore", "pipe"],
    });
    this.#launcher.stderr.resume();
    await eventually(() => existsSync(this.pathOf("@CVData/run/address")), "the appliance serves", 20_000);
    this.#port = Number(new URL(this.url).port);
  }

  // Ends it, if it has not ended; its state stays.
  async stop() {
    if (this.#launcher.exitCode !== null || this.#launcher.signalCode !== null) {
      return;
    }
    const ended = new Promise((resolve) => this.#launcher.once("exit", resolve));
    this.#launcher.kill("SIGTERM");
    await ended;
  }

  async end() {
    await this.stop();
    rmSync(this.#folder, { recursive: true, force: true });
  }

  get url() {
    return readFileSync(this.pathOf("@CVData/run/address"), "utf8").trim();
  }

  get token() {
    return readFileSync(this.fileOf("token"), "utf8").trim();
  }

  // In the package's folder.
  pathOf(name) {
    return path.join(this.#folder, kPackage, name);
  }

  fileOf(name) {
    return path.join(this.#folder, name);
  }

  // From now on each action on the service fails, until `mend` is called.
  breakActions(shortName) {
    const inTheWay = this.fileOf(`tmp/cv_${shortName}.pid`);
    mkdirSync(path.join(inTheWay, "full"), { recursive: true });
    return { mend: () => rmSync(inTheWay, { recursive: true }) };
  }

  // Kills the daemon of the service, as the kernel would that has no memory left.
  async killDaemon(service) {
    const { pid } = await this.info(service);
    this.#kill((status) => new RegExp(`^NSpid:.*\\t${pid}$`, "m").test(status));
  }

  // Ends the script that hangs in the sample package made for that.
  endHangingScript() {
    this.#kill((status) => /^Name:\tpostinst$/m.test(status));
  }

  // The host answers nobody, and closes no connection, until what this returns is called.
  freeze() {
    const pids = this.#processes((status) => /^Name:\tcamvora-host$/m.test(status));
    pids.forEach((pid) => process.kill(pid, "SIGSTOP"));
    return () => pids.forEach((pid) => process.kill(pid, "SIGCONT"));
  }

  #kill(isWanted) {
    process.kill(this.#processes(isWanted)[0], "SIGKILL");
  }

  #processes(isWanted) {
    const isMine = (pid) => inodeOf(`/proc/${pid}/root/tmp`) === inodeOf(this.fileOf("tmp"));
    return readdirSync("/proc").filter((name) => /^\d+$/.test(name) && isWanted(read(`/proc/${name}/status`)))
      .filter(isMine).map(Number);
  }

  // Sends a sample package and has it checked, not by the console. Returns what "GetPkgInfo" answers.
  async upload(sample, shortName) {
    return JSON.parse(await this.client("--json", "upload", samplePath(sample), shortName));
  }

  // What the owner asks for, beside the browser.
  async owner(page, params, method = params === undefined ? "GET" : "POST") {
    const reply = await fetch(this.url + page, {
      method,
      headers: { Authorization: `Bearer ${this.token}`, "Content-Type": "application/json" },
      body: params && JSON.stringify(params),
    });
    const { success, data, error } = await reply.json();
    if (!success) {
      throw new Error(`${page}: ${JSON.stringify(error)}`);
    }
    return data;
  }

  call(method, params = {}) {
    return this.owner(kMethods + method, params);
  }

  info(service) {
    return this.call("GetInfo", { service });
  }

  // A link to the console, good for one session.
  async link() {
    const { code } = await this.owner("/session/codes", {});
    return `${this.url}/#code=${code}`;
  }

  async client(...args) {
    return (await run(this.fileOf("camvoractl"), args)).stdout;
  }

  // Makes this one a CMS host, and the other one its recorder of that name.
  async pairWith(recorder, name) {
    const { code } = JSON.parse(await this.client("--json", "pair", "code", name));
    await recorder.client("pair", "join", this.url, code);
  }
}
