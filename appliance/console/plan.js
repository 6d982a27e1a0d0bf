// What an installation would change, as it is shown before anybody agrees to it.
import { foreign, make } from "./dom.js";
import { facts } from "./facts.js";
import { store } from "./store.js";
import { fill } from "./texts.js";
import { changeBetween } from "./versions.js";

const kDevicePack = "device_pack"; // its installation stops everything

function sentence(key, values, attributes) {
  const element = make("p", attributes);
  fill(element, key, values);
  return element;
}

function words(key, values) {
  const element = make("span");
  fill(element, key, values);
  return element;
}

// What does not run while the add-on of `info` is replaced.
export function stopsFor(info) {
  const names = store.services.filter((other) => other.blRunning).map((other) => other.name).join(", ");
  if (info.shortName === kDevicePack) {
    return names === "" ? words("install.stopsAll") : words("install.stopsAllRunning", { names });
  }
  return info.blRunning ? foreign(info.name) : words("install.nothing");
}

// Elements that show it; `pack`: {version, maintainer, file}, of which only the version is always there.
export function planFor(info, pack) {
  const change = changeBetween(info.version, pack.version);
  const next = make("span", {}, foreign(pack.version), " ",
    make("span", { class: `chip change-${change}`, text: `install.change.${change}` }));
  const rows = facts([
    ["install.package", pack.file && foreign(pack.file)],
    ["install.maintainer", pack.maintainer && foreign(pack.maintainer)],
    ["install.installed", info.version ? foreign(info.version) : words("version.none")],
    ["install.toInstall", next],
    ["install.stops", stopsFor(info)],
  ]);
  return isDowngrade(info, pack.version)
    ? [rows, sentence("install.downgrade", { installed: info.version }, { class: "warning" })]
    : [rows];
}

export function isDowngrade(info, version) {
  return changeBetween(info.version, version) === "older";
}

// Elements that say what a restore takes away.
export function restorePlanFor(info) {
  const loss = info.version
    ? sentence("restore.loses", { installed: info.version }, { class: "warning" })
    : sentence("restore.losesNothing");
  return [loss, facts([["install.stops", stopsFor(info)]])];
}
