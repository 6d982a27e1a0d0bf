// The line of `camvoractl` that does what an action of the console does.
const kLines = {
  start: (service) => ["start", service],
  stop: (service) => ["stop", service],
  restart: (service) => ["restart", service],
  check: () => ["updates"],
  download: (service) => ["download", service],
  cancel: (service) => ["cancel", service],
  update: (service) => ["update", service],
  restore: (service) => ["restore", service],
  install: () => ["install", "FILE.spk"],
  autoOn: (service) => ["auto-update", service, "on"],
  autoOff: (service) => ["auto-update", service, "off"],
};

// The client has no records of a recorder, and leaves there what needs them.
const kLinesAtRecorder = {
  ...kLines,
  check: (service, number) => ["call", "CheckUpdateInfo", `service=${number}`],
  download: (service, number) => ["call", "DownloadStart", `service=${number}`],
  cancel: (service, number) => ["call", "DownloadCancel", `service=${number}`],
  update: (service, number) => ["call", "Update", `service=${number}`],
};

function quoted(word) {
  return /^[\w.=-]+$/.test(word) ? word : `'${word.replaceAll("'", "'\\''")}'`;
}

// `info`: the service as the appliance describes it; `recorder`: the name of the paired recorder, "" for none.
export function commandFor(action, info, recorder) {
  const line = (recorder === "" ? kLines : kLinesAtRecorder)[action](info.shortName, info.service);
  const server = recorder === "" ? [] : ["--server", recorder];
  return ["camvoractl", ...server, ...line].map(quoted).join(" ");
}
