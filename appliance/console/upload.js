// Sends a package file to the appliance, which stores it.
import { CallError, kUnreachable, kUploadPath, readReply } from "./api.js";

const kField = "addonsSpkFile";

// Why nothing came of an upload that its user has ended.
export class UploadCancelled extends Error {}

// Begins at once. `onProgress` is called with the bytes that were sent.
// Returns {done, cancel}: a promise of the answer's "pkgInfo", and what ends the upload.
export function upload(file, onProgress) {
  const request = new XMLHttpRequest();
  const id = () => request.getResponseHeader("X-Request-Id") ?? "";
  const answer = new Promise((resolve, reject) => {
    request.upload.onprogress = ({ loaded }) => onProgress(Math.min(loaded, file.size));
    request.onload = () => resolve(request.response);
    request.onerror = () => resolve(null);
    request.onabort = () => reject(new UploadCancelled());
  });
  const form = new FormData();
  form.append(kField, file, file.name);
  request.open("POST", kUploadPath);
  request.responseType = "json";
  request.send(form);
  return { done: answer.then((reply) => pkgInfoIn(reply, id())), cancel: () => request.abort() };
}

function pkgInfoIn(reply, request) {
  if (reply === null) {
    throw new CallError(kUnreachable, null, request);
  }
  return readReply(reply, request).data.pkgInfo;
}
