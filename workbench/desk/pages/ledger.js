// A ledger's lines fold out to their cost items: one by one, as rows put between the rows of the view. (All at once is
// the server's view with `details`.)

const foldedOutAtMost = 500;

// Has what Rows has, over rows with folded-out ones between them.
export class Folds {
  // fetchDetails(n) answers the rows below the line with that number.
  constructor(rows, fetchDetails) {
    this.rows = rows;
    this.fetchDetails = fetchDetails;
    this.open = []; // {base, details, before}: the row folded out, what is below it, how many such rows come earlier
    this.extra = 0;
    this.onchange = () => {};
    rows.onchange = () => this.onchange();
  }

  // Whether any line is folded out.
  get anyOpen() {
    return this.open.length > 0;
  }
  get rowCount() {
    return this.rows.rowCount + this.extra;
  }
  get complete() {
    return this.rows.complete;
  }

  // Which row of the view `index` is or belongs to, and which of its details (-1: the row itself).
  find(index) {
    let low = 0;
    let high = this.open.length;
    while (low < high) {
      // the first that begins behind `index`
      const middle = (low + high) >> 1;
      if (this.open[middle].base + this.open[middle].before < index) low = middle + 1;
      else high = middle;
    }
    const last = this.open[low - 1];
    if (!last) return {base: index, detail: -1};
    const behind = index - (last.base + last.before);
    if (behind <= last.details.length) return {base: last.base, detail: behind - 1};
    return {base: index - last.before - last.details.length, detail: -1};
  }

  at(index) {
    const {base, detail} = this.find(index);
    return detail < 0 ? this.rows.at(base) : this.open.find((one) => one.base === base)?.details[detail];
  }
  has(from, to) {
    return this.rows.has(this.find(from).base, this.find(Math.max(from, to - 1)).base + 1);
  }
  ensure(from, to) {
    return this.rows.ensure(
      this.find(from).base,
      Math.min(this.rows.rowCount, this.find(Math.max(from, to - 1)).base + 1),
    );
  }

  // Whether the row can be folded out, and is: undefined, false, true.
  state(index) {
    const {base, detail} = this.find(index);
    if (detail >= 0 || !(this.rows.at(base)?.details > 0)) return undefined;
    return this.open.some((one) => one.base === base);
  }

  async toggle(index) {
    const {base, detail} = this.find(index);
    const at = this.open.findIndex((one) => one.base === base);
    if (at >= 0) this.open.splice(at, 1);
    else if (detail < 0 && this.rows.at(base)?.details > 0) {
      if (this.open.length >= foldedOutAtMost) this.open.shift();
      const {rows} = await this.fetchDetails(this.rows.at(base).n);
      if (!this.open.some((one) => one.base === base)) this.open.push({base, details: rows, before: 0});
      this.open.sort((a, b) => a.base - b.base);
    }
    this.extra = 0;
    for (const one of this.open) {
      one.before = this.extra;
      this.extra += one.details.length;
    }
    this.onchange();
  }

  count() {
    return this.rows.count();
  }
  close() {
    this.rows.close();
  }
}
