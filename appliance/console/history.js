// The appliance's operation log and notifications, as many as are worth showing.
import { page } from "./api.js";

const kKept = 300;

export class History {
  entries = []; // of the operation log
  notifications = [];

  clear() {
    this.entries = [];
    this.notifications = [];
  }

  addNotification(notification) {
    this.notifications = [...this.notifications, notification].slice(-kKept);
  }

  // Reads what the operation log has gained.
  async readLog() {
    const last = this.entries.at(-1)?.id;
    const path = "/operationlog" + (last === undefined ? "" : `?after=${last}`);
    const fresh = (await page(path)).entries.filter((entry) => last === undefined || entry.id > last);
    this.entries = [...this.entries, ...fresh].slice(-kKept);
  }
}
