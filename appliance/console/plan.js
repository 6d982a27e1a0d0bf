// What an installation or a restore would change, as it is shown before anybody agrees to it.
import { facts } from "./dialog.js";
import { make } from "./dom.js";
import { store } from "./store.js";
import { foreign } from "./texts.js";
import { changeBetween } from "./versions.js";

const kStopsAll = "device_pack";

function stopsFor(info) {
  const names = store.services.filter((other) => other.blRunning).map((other) => other.name).join(", ");
  if (info.shortName === kStopsAll) {
    return make("span", { text: names === "" ? "install.stopsAll" : ["install.stopsAllRunning", { names }] });
  }
  return info.blRunning ? foreign(info.name) : make("span", { text: "install.nothing" });
}

function warning(key, info) {
  return make("p", { text: [key, { installed: info.version }], class: "warning" });
}

export function isDowngrade(info, version) {
  return changeBetween(info.version, version) === "older";
}

// `pack`: {version, maintainer, file}, of which only the version is always there.
export function planFor(info, pack) {
  const change = changeBetween(info.version, pack.version);
  const chip = make("span", { class: `chip change-${change}`, text: `install.change.${change}` });
  const rows = facts([
    ["install.package", pack.file && foreign(pack.file)],
    ["install.maintainer", pack.maintainer && foreign(pack.maintainer)],
    ["install.installed", info.version ? foreign(info.version) : make("span", { text: "version.none" })],
    ["install.toInstall", make("span", {}, foreign(pack.version), " ", chip)],
    ["install.stops", stopsFor(info)],
  ]);
  return change === "older" ? [rows, warning("install.downgrade", info)] : [rows];
}

export function restorePlanFor(info) {
  return [warning(info.version ? "restore.loses" : "restore.losesNothing", info),
    facts([["install.stops", stopsFor(info)]])];
}
