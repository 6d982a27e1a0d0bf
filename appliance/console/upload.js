// Sends a package file to the appliance, which stores it.
import { CallError, kUnreachable, kUploadPath, readReply } from "./api.js";

const kField = "addonsSpkFile";

// Why nothing came of an upload that its user has ended.
export class UploadCancelled extends Error {}

// Begins at once. `onProgress` is called with the bytes sent and their whole number.
// Returns {done, cancel}: a promise of the answer's "pkgInfo", and what ends the upload.
export function upload(file, onProgress) {
  const request = new XMLHttpRequest();
  const done = new Promise((resolve, reject) => {
    request.upload.onprogress = (event) => onProgress(Math.min(event.loaded, file.size), file.size);
    request.onload = () => finish(request, resolve, reject);
    request.onerror = () => reject(new CallError(kUnreachable, null, ""));
    request.onabort = () => reject(new UploadCancelled());
  });
  const form = new FormData();
  form.append(kField, file, file.name);
  request.open("POST", kUploadPath);
  request.send(form);
  return { done, cancel: () => request.abort() };
}

function finish(request, resolve, reject) {
  const id = request.getResponseHeader("X-Request-Id") ?? "";
  try {
    resolve(readReply(JSON.parse(request.responseText), id).data.pkgInfo);
  } catch (error) {
    reject(error instanceof CallError ? error : new CallError(kUnreachable, null, id));
  }
}
