// Takes a stream of server-sent events apart.
export class EventParser {
  #rest = "";
  #event = { name: "", data: "", id: "" };

  // Returns the events that `piece` completes, as {name, data, id} with the data's text.
  push(piece) {
    const lines = (this.#rest + piece).split("\n");
    this.#rest = lines.pop();
    const events = [];
    for (const line of lines) {
      this.#take(line.endsWith("\r") ? line.slice(0, -1) : line, events);
    }
    return events;
  }

  #take(line, events) {
    if (line === "") {
      if (this.#event.data !== "") {
        events.push(this.#event);
      }
      this.#event = { name: "", data: "", id: "" };
      return;
    }
    const colon = line.indexOf(":");
    if (colon === 0) {
      return;
    }
    const field = colon < 0 ? line : line.slice(0, colon);
    const value = colon < 0 ? "" : line.slice(colon + 1).replace(/^ /, "");
    if (field === "event") {
      this.#event.name = value;
    } else if (field === "id") {
      this.#event.id = value;
    } else if (field === "data") {
      this.#event.data += (this.#event.data === "" ? "" : "\n") + value;
    }
  }
}
