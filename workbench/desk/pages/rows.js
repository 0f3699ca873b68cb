// The rows of a view, fetched page by page and kept in bounded memory, however long the view is.

const pageSize = 200;
const cellsKept = 400000;

export class Rows {
  // fetchPage(offset, limit) answers {rowCount, complete, rows}; `rowCount` may still be unknown, -1.
  constructor(fetchPage, rowCount, columnCount) {
    this.fetchPage = fetchPage;
    this.rowCount = Math.max(0, rowCount);
    this.complete = rowCount >= 0;
    this.pagesKept = Math.max(8, Math.min(100, Math.floor(cellsKept / (pageSize * Math.max(1, columnCount)))));
    this.pages = new Map(); // in the order of their last use
    this.waiting = new Map(); // those that are under way
    this.onchange = () => {}; // called when the number of rows has changed
  }

  // Row `index`, or nothing when it is not there yet.
  at(index) {
    return this.pages.get(Math.floor(index / pageSize))?.[index % pageSize];
  }

  has(from, to) {
    for (let page = Math.floor(from / pageSize); page * pageSize < to; page += 1)
      if (!this.pages.has(page)) return false;
    return true;
  }

  // Fetches what is not there of the rows `from` to below `to`. Throws what the server refuses.
  async ensure(from, to) {
    const wanted = [];
    for (let page = Math.floor(from / pageSize); page * pageSize < to; page += 1) wanted.push(page);
    await Promise.all(wanted.map((page) => this.page(page)));
  }

  async page(number) {
    const kept = this.pages.get(number);
    if (kept) {
      this.pages.delete(number);
      this.pages.set(number, kept);
      return;
    }
    if (!this.waiting.has(number)) {
      this.waiting.set(
        number,
        this.load(number).finally(() => this.waiting.delete(number)),
      );
    }
    await this.waiting.get(number);
  }

  async load(number) {
    const answer = await this.fetchPage(number * pageSize, pageSize);
    this.pages.set(number, answer.rows);
    while (this.pages.size > this.pagesKept) this.pages.delete(this.pages.keys().next().value);
    this.counted(answer, number);
  }

  // `number`: the page that the answer brought.
  counted({rowCount, complete}, number = -1) {
    const changed = rowCount >= 0 && (rowCount !== this.rowCount || complete !== this.complete);
    if (!changed) return;
    // A page that ended where the rows then ended goes on now.
    const last = Math.floor(this.rowCount / pageSize);
    if (rowCount > this.rowCount && last !== number) this.pages.delete(last);
    this.rowCount = rowCount;
    this.complete = complete;
    this.onchange();
  }

  // Until the first rows are there, or it is known that there are none.
  async begin() {
    while (this.rowCount === 0 && !this.complete && !this.closed) {
      await this.load(0);
      if (this.rowCount === 0 && !this.complete) await new Promise((go) => setTimeout(go, 50));
    }
  }

  // Asks for the number of rows again until the server knows it.
  async count() {
    while (!this.complete && !this.closed) {
      this.counted(await this.fetchPage(Math.max(0, this.rowCount - 1), 1));
      if (!this.complete) await new Promise((go) => setTimeout(go, 400));
    }
  }

  close() {
    this.closed = true;
    this.pages.clear();
  }
}

// Some of the columns of rows, for a grid that does not show them all.
export class Picked {
  // `indexes`: which cells of a row, in their order.
  constructor(rows, indexes) {
    this.rows = rows;
    this.pick(indexes);
  }

  pick(indexes) {
    this.indexes = indexes;
    this.kept = new WeakMap();
  }

  get rowCount() {
    return this.rows.rowCount;
  }
  get complete() {
    return this.rows.complete;
  }

  at(index) {
    const row = this.rows.at(index);
    if (!row) return row;
    let picked = this.kept.get(row);
    if (!picked) {
      picked = {...row, cells: this.indexes.map((one) => row.cells[one])};
      this.kept.set(row, picked);
    }
    return picked;
  }
  has(from, to) {
    return this.rows.has(from, to);
  }
  ensure(from, to) {
    return this.rows.ensure(from, to);
  }
  indexOf(number) {
    return this.rows.indexOf?.(number);
  }
  state(index) {
    return this.rows.state?.(index);
  }
  toggle(index) {
    return this.rows.toggle(index);
  }
  close() {
    this.rows.close();
  }
}
