// Calls to the appliance: the module's methods, here or at a paired recorder, and the host's own pages.
const kMethods = "/api/ORVA.Camvora.AddOns/v1/";
const kRefusals = [105, 1013]; // not admitted, nobody is signed in

export const kUploadPath = `${kMethods}Upload`;
export const kRecorderAway = 1023;
export const kUnreachable = 0; // the code of a call without an answer

let relay = "";
let onSessionEnd = () => {};

// Why a call failed: the code and the data of the answer, and the request's id in the logs.
export class CallError extends Error {
  constructor(code, data, request) {
    super(`error ${code}`);
    Object.assign(this, { code, data, request });
  }
}

// Methods are called at that paired recorder from now on; "" is the appliance itself.
export function callAt(recorder) {
  relay = recorder && `/servers/${encodeURIComponent(recorder)}`;
}

export function whenSessionEnds(listener) {
  onSessionEnd = listener;
}

// Calls a method. Returns its data and the request's id; throws a CallError, or what `signal` aborts it with.
export function call(method, params = {}, signal = undefined) {
  return watched(relay + kMethods + method, "POST", params, signal);
}

// The data of one of the host's pages; throws a CallError.
export async function page(path) {
  return (await watched(path, "GET")).data;
}

// As both of them, where a refusal does not mean that the session is over.
export async function exchange(path, method, params, signal) {
  const body = params && JSON.stringify(params);
  let response;
  try {
    response = await fetch(path, { method, body, signal, headers: body && { "Content-Type": "application/json" } });
    return readReply(await response.json(), idOf(response));
  } catch (error) {
    throw error instanceof CallError ? error : new CallError(kUnreachable, null, response ? idOf(response) : "");
  }
}

// The data of an answer; throws a CallError where that is a refusal.
export function readReply({ success, data, error }, request) {
  if (!success) {
    throw new CallError(error.code, error.data, request);
  }
  return { data, request };
}

export function isRefusal(error) {
  return kRefusals.includes(error?.code);
}

function idOf(response) {
  return response.headers.get("X-Request-Id") ?? "";
}

// A recorder may refuse the host while the session here is in order.
async function watched(path, ...request) {
  try {
    return await exchange(path, ...request);
  } catch (error) {
    if (isRefusal(error)) {
      void (path.startsWith("/servers/") ? page("/appliance").catch(() => {}) : onSessionEnd());
    }
    throw error;
  }
}
