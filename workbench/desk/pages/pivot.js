// A result as a pivot: what stands down and across, which figures, and the rows behind each of them.
import {button, fill, h, signButton} from './dom.js';
import {menu, popup} from './popup.js';
import {caption, t} from './texts.js';

// --- in the address: rows=..&across=..&figures=..&order=..&folded=..

export const pivotNames = ['rows', 'across', 'figures', 'order', 'folded'];
const listIn = (query, name) => (query.get(name) ?? '').split(',').filter(Boolean);

export function pivotIn(query) {
  return {
    rows: listIn(query, 'rows'),
    columns: listIn(query, 'across'),
    measures: listIn(query, 'figures'),
    sort: listIn(query, 'order').map((key) => ({column: key.replace(/^-/, ''), descending: key.startsWith('-')})),
  };
}
export function putPivot(query, {rows, columns, measures, sort}) {
  const put = (name, list) => (list.length > 0 ? query.set(name, list.join(',')) : query.delete(name));
  put('rows', rows);
  put('across', columns);
  put('figures', measures);
  put(
    'order',
    sort.map((key) => (key.descending ? '-' : '') + key.column),
  );
  query.delete('folded'); // rows have other numbers now
  return query;
}
export function foldedIn(query) {
  return listIn(query, 'folded').map(Number);
}

// What a report shows first: amounts over the months, where rows are of months; of a ledger and of documents by cost
// item, of summaries, which have many, by its class.
export function firstPivot({dimensions, measures}) {
  const names = dimensions.map(({name}) => name);
  const row = ['cfxCode', 'costItemClass1', 'cWhCode', ...names].find((name) => names.includes(name));
  const overMonths = !dimensions.some(({state}) => state) && names.includes('month');
  return {
    rows: row ? [row] : [],
    columns: overMonths ? ['month'] : [],
    measures: measures.map(({name}) => name).filter((name) => /amount$/i.test(name)),
    sort: [],
  };
}

// --- rows

// Rows of a pivot, those of outer values folded away under their subtotals where the reader wants it. Has what Rows has.
export class PivotRows {
  constructor(rows) {
    this.rows = rows;
    this.folded = new Map(); // number of a subtotal -> the first row that it sums
    this.spans = []; // {first, end, before}: rows that are not shown, how many of these come earlier
    this.onchange = () => {};
    rows.onchange = () => this.onchange();
  }

  get rowCount() {
    return this.rows.rowCount - this.hidden;
  }
  get complete() {
    return this.rows.complete;
  }
  get hidden() {
    const last = this.spans.at(-1);
    return last ? last.before + last.end - last.first : 0;
  }

  // The number of the row that stands at `index`.
  number(index) {
    let low = 0;
    let high = this.spans.length;
    while (low < high) {
      // the first span that begins behind it
      const middle = (low + high) >> 1;
      if (this.spans[middle].first - this.spans[middle].before <= index) low = middle + 1;
      else high = middle;
    }
    const span = this.spans[low - 1];
    return span ? index + span.before + span.end - span.first : index;
  }

  // Where the row of a number stands, or the subtotal that it is folded away under.
  indexOf(number) {
    let before = 0;
    for (const span of this.spans) {
      if (number < span.first) break;
      if (number < span.end) return span.first - span.before;
      before = span.before + span.end - span.first;
    }
    return number - before;
  }

  at(index) {
    return this.rows.at(this.number(index));
  }
  has(from, to) {
    for (let index = from; index < to; index += 1) if (this.rows.at(this.number(index)) === undefined) return false;
    return true;
  }
  async ensure(from, to) {
    const numbers = [];
    for (let index = from; index < Math.min(to, this.rowCount); index += 1) numbers.push(this.number(index));
    await Promise.all(numbers.map((number) => this.rows.ensure(number, number + 1)));
  }

  // Whether what the row sums can be folded away, and is to be seen: undefined, false, true.
  state(index) {
    const row = this.at(index);
    return row?.first === undefined ? undefined : !this.folded.has(row.n);
  }
  async toggle(index) {
    const row = this.at(index);
    if (!this.folded.delete(row.n)) this.folded.set(row.n, row.first);
    this.place();
  }

  // Folds away what these subtotals sum, and nothing else.
  async fold(numbers) {
    const folded = new Map();
    for (const number of numbers) {
      await this.rows.ensure(number, number + 1);
      const row = this.rows.at(number);
      if (row?.first !== undefined) folded.set(row.n, row.first);
    }
    this.folded = folded;
    this.place();
  }
  // All outermost values: from the last to the first, each subtotal saying where its rows begin.
  async foldAll() {
    const numbers = [];
    for (let number = this.rows.rowCount - 1; number >= 0;) {
      await this.rows.ensure(number, number + 1);
      const row = this.rows.at(number);
      if (row?.first !== undefined) numbers.push(number);
      number = (row?.first ?? number) - 1;
    }
    await this.fold(numbers);
  }

  place() {
    const spans = [...this.folded]
      .map(([end, first]) => ({first, end}))
      .sort((a, b) => a.first - b.first || b.end - a.end);
    this.spans = [];
    let before = 0;
    for (const span of spans) {
      if (this.spans.length > 0 && span.end <= this.spans.at(-1).end) continue; // within one that is folded
      this.spans.push({...span, before});
      before += span.end - span.first;
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

// --- order

// By what of a pivot a column of its view can order: a dimension down, or a figure's total. Nothing of other columns.
export function sortNameOf(column, pivot) {
  if (pivot.rows.includes(column.name)) return column.name;
  if (pivot.other) return column.number ? column.name : null; // a comparison has an order by each
  const [name, ...before] = column.name.split('/').reverse();
  const isTotal = pivot.columns.length === 0 || (before.length === 1 && before[0] === 'total');
  return isTotal && column.number ? name.split(':')[0] : null;
}

export function openPivotMenu(anchor, {column, pivot, arrange, widen}) {
  const name = sortNameOf(column, pivot);
  const mine = pivot.sort.find((key) => key.column === name);
  const mark = (on, text) => `${on ? '✓ ' : '  '}${text}`;
  const sorted = (sort) => () =>
    arrange((next) => {
      next.sort = sort;
    });
  menu(anchor, t('columnMenu', {caption: column.caption}), [
    {
      text: mark(mine && !mine.descending, t('sortAscending')),
      disabled: !name,
      act: sorted([{column: name, descending: false}]),
    },
    {
      text: mark(mine?.descending, t('sortDescending')),
      disabled: !name,
      act: sorted([{column: name, descending: true}]),
    },
    {text: mark(false, t('noSort')), disabled: pivot.sort.length === 0, act: sorted([])},
    null,
    {text: mark(false, t('wider')), act: () => widen(32)},
    {text: mark(false, t('narrower')), act: () => widen(-32)},
  ]);
}

// --- choosing what is shown

const axes = ['rows', 'columns', 'measures'];
const axisTexts = {rows: 'pivotRows', columns: 'pivotColumns', measures: 'pivotMeasures'};
const shares = ['row', 'column', 'total'];

// The figures that can be chosen while these dimensions are: with the state among them, those of each row's state, too.
function measuresFor(choices, pivot) {
  const chosen = new Set([...pivot.rows, ...pivot.columns]);
  const hasState = choices.dimensions.some(({name, state}) => state && chosen.has(name));
  const all = hasState ? [...choices.ownMeasures, ...choices.measures] : choices.measures;
  return all.flatMap((measure) => [
    measure,
    ...(measure.shares ? shares : []).map((share) => ({
      name: `${measure.name}:${share}`,
      caption: `${caption(measure.caption)}${t(`share_${share}`)}`,
    })),
  ]);
}

// Lists of what stands down, across and in the cells, or of some of these, with shares of figures or without; change(pivot)
// shows another arrangement.
export class PivotPanel {
  constructor(choices, change, {axes: shown = axes, shares: withShares = true} = {}) {
    this.choices = choices;
    this.change = change;
    this.axes = shown;
    this.withShares = withShares;
    this.element = h('section', {class: 'pivot-panel', 'aria-label': t('pivotArrange')});
  }

  show(pivot) {
    if (this.pivot && JSON.stringify(pivot) === JSON.stringify(this.pivot)) return;
    this.pivot = structuredClone(pivot);
    this.draw();
  }

  measures() {
    const all = measuresFor(this.choices, this.pivot);
    return this.withShares ? all : all.filter(({name}) => !name.includes(':'));
  }

  captionOf(axis, name) {
    const all = axis === 'measures' ? this.measures() : this.choices.dimensions;
    return caption(all.find((one) => one.name === name)?.caption) || name;
  }

  // What can be added to an axis.
  offered(axis) {
    if (axis === 'measures')
      return this.measures().filter(({name}) => !this.pivot.measures.includes(name));
    return this.choices.dimensions.filter(
      ({name}) => !this.pivot.rows.includes(name) && !this.pivot.columns.includes(name),
    );
  }

  // `focus`: the axis, the name and which of its buttons the keyboard then is on.
  changed(focus) {
    const known = new Set(this.measures().map(({name}) => name));
    const kept = this.pivot.measures.filter((name) => known.has(name));
    this.pivot.measures = kept.length > 0 ? kept : firstPivot(this.choices).measures;
    const sortable = new Set([
      ...this.pivot.rows,
      ...this.pivot.columns,
      ...this.pivot.measures.map((name) => name.split(':')[0]),
    ]);
    this.pivot.sort = this.pivot.sort.filter(({column}) => sortable.has(column.split('/').at(-1)));
    this.draw();
    if (focus) {
      const [axis, name, which] = focus;
      const part = this.element.querySelector(`[data-axis="${axis}"]`);
      const item = name === null ? null : part.querySelector(`[data-name="${CSS.escape(name)}"]`);
      const wanted = item?.querySelectorAll('button')[which];
      const usable = wanted && !wanted.disabled ? wanted : item?.querySelector('button:not(:disabled)');
      (usable ?? part.querySelector('button.add')).focus();
    }
    this.change(structuredClone(this.pivot));
  }

  draw() {
    fill(
      this.element,
      this.axes.map((axis) => this.axis(axis)),
    );
  }

  axis(axis) {
    const names = this.pivot[axis];
    const add = button(`＋ ${t('pivotAdd')}`, () => this.openChoices(add, axis), {
      class: 'add',
      'aria-haspopup': 'dialog',
      'aria-label': t('pivotAddTo', {axis: t(axisTexts[axis])}),
      disabled: this.offered(axis).length === 0,
    });
    return h(
      'div',
      {class: 'pivot-axis', 'data-axis': axis, role: 'group', 'aria-label': t(axisTexts[axis])},
      h('span', {class: 'pivot-axis-name', 'aria-hidden': 'true'}, t(axisTexts[axis])),
      h(
        'ul',
        {},
        names.map((name, at) => this.item(axis, name, at)),
      ),
      add,
    );
  }

  item(axis, name, at) {
    const names = this.pivot[axis];
    const text = this.captionOf(axis, name);
    const step = (by, which) => () => {
      const [one] = names.splice(at, 1);
      names.splice(at + by, 0, one);
      this.changed([axis, name, which]);
    };
    const other = axis === 'rows' ? 'columns' : 'rows';
    // A pivot has something down, and figures.
    const isLast = axis !== 'columns' && names.length === 1;
    return h(
      'li',
      {'data-name': name},
      h('span', {class: 'ellipsis', title: text}, text),
      names.length > 1 && [
        signButton('←', t('pivotEarlier', {caption: text}), step(-1, 0), {disabled: at === 0}),
        signButton('→', t('pivotLater', {caption: text}), step(1, 1), {disabled: at === names.length - 1}),
      ],
      axis !== 'measures' &&
        this.axes.includes(other) &&
        signButton(
          '⇄',
          t(axis === 'rows' ? 'pivotToColumns' : 'pivotToRows', {caption: text}),
          () => {
            names.splice(at, 1);
            this.pivot[other].push(name);
            this.changed([other, name, 0]);
          },
          {disabled: isLast},
        ),
      signButton(
        '✕',
        t('remove', {what: text}),
        () => {
          names.splice(at, 1);
          this.changed([axis, null, 0]);
        },
        {disabled: isLast},
      ),
    );
  }

  openChoices(anchor, axis) {
    const offered = this.offered(axis);
    const list = h('ul', {class: 'pivot-choices'});
    const search = h('input', {
      type: 'search',
      'aria-label': t('search'),
      placeholder: t('search'),
      autocomplete: 'off',
      oninput: () => draw(),
    });
    const choose = (name) => {
      shown.close();
      this.pivot[axis].push(name);
      this.changed([axis, name, 0]);
    };
    const draw = () => {
      const wanted = search.value.trim().toLowerCase();
      const found = offered.filter((one) => `${caption(one.caption)} ${one.name}`.toLowerCase().includes(wanted));
      fill(
        list,
        found.length === 0 && h('li', {class: 'muted'}, t('nothingFound')),
        found.map((one) =>
          h(
            'li',
            {},
            button(caption(one.caption), () => choose(one.name), {class: 'plain'}),
          ),
        ),
      );
    };
    draw();
    const shown = popup(
      anchor,
      h(
        'div',
        {
          onkeydown: (event) => {
            const buttons = [...list.querySelectorAll('button')];
            const at = buttons.indexOf(document.activeElement);
            if (event.key === 'Enter' && document.activeElement === search && buttons[0]) {
              event.preventDefault();
              buttons[0].click();
              return;
            }
            const to = {ArrowDown: at + 1, ArrowUp: at - 1}[event.key];
            if (to === undefined) return;
            event.preventDefault();
            (buttons[Math.min(to, buttons.length - 1)] ?? search).focus();
          },
        },
        search,
        list,
      ),
      {name: t('pivotAddTo', {axis: t(axisTexts[axis])})},
    );
    search.focus();
  }
}
