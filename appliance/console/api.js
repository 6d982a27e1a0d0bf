// Calls to the appliance: the module's methods, here or at a paired recorder, and the host's own pages.
const kMethods = "/api/ORVA.Camvora.AddOns/v1/";
const kNotAdmitted = 105;
const kNoSession = 1013;

export const kUploadPath = kMethods + "Upload";
export const kUnreachable = 0; // the code of a call that was not answered

let server = "";
let onSessionEnd = () => {};

// Why a call failed: the code of the answer with its data, and the request's id in the logs.
export class CallError extends Error {
  constructor(code, data, request) {
    super(`error ${code}`);
    this.code = code;
    this.data = data;
    this.request = request;
  }
}

// Methods are called at that paired recorder from now on; "" is the appliance itself.
export function callAt(name) {
  server = name;
}

// `listener` is called when an answer shows that nobody is signed in any more.
export function whenSessionEnds(listener) {
  onSessionEnd = listener;
}

// Calls a method. Returns its data and the request's id; throws a CallError.
export async function call(method, params = {}) {
  const relay = server === "" ? "" : "/servers/" + encodeURIComponent(server);
  try {
    return await exchange(relay + kMethods + method, "POST", params);
  } catch (error) {
    await reportEnd(error, relay !== "");
    throw error;
  }
}

// Reads one of the host's pages. Returns its data; throws a CallError.
export async function page(path) {
  try {
    return (await exchange(path, "GET")).data;
  } catch (error) {
    await reportEnd(error, false);
    throw error;
  }
}

// As `page` and `call`, for signing in and out: refusals end nothing there.
export async function exchange(path, method, params) {
  const options = { method, credentials: "same-origin" };
  if (params !== undefined) {
    options.headers = { "Content-Type": "application/json" };
    options.body = JSON.stringify(params);
  }
  let response;
  let reply;
  try {
    response = await fetch(path, options);
    reply = await response.json();
  } catch {
    throw new CallError(kUnreachable, null, response?.headers.get("X-Request-Id") ?? "");
  }
  return readReply(reply, response.headers.get("X-Request-Id") ?? "");
}

// The data of an answer's document; throws a CallError where it is a refusal.
export function readReply(reply, request) {
  if (reply?.success !== true) {
    throw new CallError(reply?.error?.code ?? kUnreachable, reply?.error?.data ?? null, request);
  }
  return { data: reply.data, request };
}

export function isRefusal(error) {
  return error.code === kNotAdmitted || error.code === kNoSession;
}

// A recorder may refuse the host while the session here is in order.
async function reportEnd(error, isRelayed) {
  if (!isRefusal(error)) {
    return;
  }
  if (isRelayed) {
    await page("/appliance").catch(() => {});
  } else {
    onSessionEnd();
  }
}
