// A result as a chart: which charts it can be shown as, and the figures of each, exact texts out of pivots of the result.
// What is not a pivot's own figure, a rest or a running balance, is reckoned in exact decimals.
import {api} from './api.js';
import {bySize, exact, exactText, minus, plus, quotient, zero} from './exact.js';
import {caption, count, language, t} from './texts.js';

// --- in the address: chart=..&of=..&by=..&form=..&top=..&per=..&item=..

export const chartNames = ['chart', 'of', 'by', 'form', 'top', 'per', 'item'];

// What the address asks for, with the chart's own choice where it says nothing that the chart has.
export function chartIn(query, offered) {
  const chart = offered.find(({name}) => name === query.get('chart')) ?? offered[0];
  const chosen = {chart: chart.name, item: query.get('item') ?? ''};
  for (const [name, choices] of Object.entries(chart.choices))
    chosen[name] = (choices.find((one) => one.name === query.get(name)) ?? choices[0]).name;
  return chosen;
}
export function putChart(query, chosen) {
  for (const name of chartNames) {
    if (chosen[name]) query.set(name, chosen[name]);
    else query.delete(name);
  }
  return query;
}

// --- which charts

const mostBars = 12;
const mostSeries = 7;
const mostReceipts = 60;
const product = 'cInvCode';
const preferred = (names, list) => {
  const first = names.map((name) => list.find((one) => one.name === name)).find(Boolean);
  return first ? [first, ...list.filter((one) => one !== first)] : list;
};
const isCostItem = ({name}) => /^(cfxCode|costItemClass\d+)$/i.test(name);

// The charts that a result has, by what a pivot of it can be asked for; with the names of its layouts. Of each `name` and
// `choices`: of what can be chosen, the names and captions, the first being taken unless another is.
export function chartsOffered({dimensions, measures}, layouts) {
  const figures = (kind) => measures.filter(({name}) => name.toLowerCase().endsWith(kind));
  const amounts = preferred(['closingAmount'], figures('amount'));
  const unitCosts = figures('unitcost');
  const costItems = dimensions.filter(isCostItem);
  const others = preferred(
    [product, 'cWhCode', 'cCusCode', 'cVenCode'],
    dimensions.filter((one) => !one.state && !isCostItem(one) && !/month$/i.test(one.name)),
  );
  const has = (name) => dimensions.some((one) => one.name === name);
  // A balance is not of a month, and the rows of a report with balances are of none.
  const overMonths = has('month') && !measures.some(({name}) => name === 'openingAmount');
  const hasMovements = ['receiptAmount', 'issueAmount'].every((name) => measures.some((one) => one.name === name));
  const words = (name, ...texts) => texts.map((text) => ({name: text, caption: t(`${name}_${text}`)}));
  const top = ['10', '5', '20', '40'].map((name) => ({name, caption: name}));
  const per = [
    ...words('chartPer', 'month'),
    ...(has('dKeepDate') && has('cVouCode') ? words('chartPer', 'document') : []),
  ];
  const all = [
    costItems.length > 0 && amounts.length > 0 && {name: 'structure', choices: {of: amounts, by: costItems}},
    overMonths &&
      costItems.length > 0 && {
        name: 'months',
        choices: {of: amounts, by: costItems, form: words('chartForm', 'stack', 'lines')},
      },
    overMonths &&
      hasMovements &&
      layouts.includes('ledger') && {name: 'balance', choices: {of: words('chartBalance', 'amount', 'quantity')}},
    others.length > 0 && amounts.length > 0 && {name: 'top', choices: {of: amounts, by: others, top}},
    overMonths &&
      costItems.length > 0 &&
      unitCosts.length > 0 && {
        name: 'unitCost',
        choices: {of: unitCosts, by: costItems, per},
        item: has(product),
      },
  ];
  return all.filter(Boolean);
}

// The pivot with the figures of a chart; of a balance, with its movements.
export function pivotOfChart(chosen) {
  const amount = chosen.of.replace(/unitCost$/, 'amount').replace(/UnitCost$/, 'Amount');
  const quantity = amount.replace(/amount$/, 'quantity').replace(/Amount$/, 'Quantity');
  switch (chosen.chart) {
    case 'months':
      return {rows: ['month'], columns: [chosen.by], measures: [chosen.of], sort: []};
    case 'balance': {
      const movements = ['receiptAmount', 'issueAmount'];
      const measures = chosen.of === 'amount' ? movements : movements.map((name) => name.replace('Amount', 'Quantity'));
      return {rows: ['month'], columns: [], measures, sort: []};
    }
    case 'unitCost': {
      const rows = chosen.per === 'document' ? ['dKeepDate', 'cVouCode'] : ['month'];
      return {rows, columns: [chosen.by], measures: [amount, quantity, chosen.of], sort: []};
    }
    default:
      return {
        rows: [chosen.by],
        columns: [],
        measures: [chosen.of, `${chosen.of}:total`],
        sort: [{column: chosen.of, descending: true}],
      };
  }
}

// --- their figures

// Makes a pivot, lets `read` have its description and a way to its rows, and closes it.
async function withPivot(run, asked, read) {
  const view = await api.makePivot(run, {where: [], ...asked, lang: language()});
  try {
    const rowsOf = async (from, to) => {
      const rows = [];
      for (let isLast = false; from + rows.length < to && !isLast;) {
        const answer = await api.rows(run, view.id, from + rows.length, Math.min(1000, to - from - rows.length));
        rows.push(...answer.rows);
        isLast = answer.complete && from + rows.length >= answer.rowCount;
      }
      return rows;
    };
    return await read(view, rowsOf);
  } finally {
    api.closeView(run, view.id).catch(() => {});
  }
}

const exactOr = (text) => (text === null ? zero : exact(text));
const sumOf = (texts) => texts.reduce((sum, text) => plus(sum, exactOr(text)), zero);
const othersText = (n) => t('chartOthers', {n: count(n)});

// The rows of a time axis; a month without rows lies between others, with nothing in it.
export function withAllMonths(rows) {
  const all = [];
  for (const row of rows) {
    for (;;) {
      const before = /^(\d{4})-(\d\d)$/.exec(all.at(-1)?.label ?? '');
      if (!before || !/^\d{4}-\d\d$/.test(row.label)) break;
      const number = Number(before[1]) * 12 + Number(before[2]);
      const next = `${Math.floor(number / 12)}-${String((number % 12) + 1).padStart(2, '0')}`;
      if (next >= row.label) break;
      all.push({label: next, texts: row.texts.map(() => null)});
    }
    all.push(row);
  }
  return all;
}

// Figures of a chart: `labels`, what the rows are of; `columns`, of each a caption; `rows`, of each a label and a text for
// each column, and a shorter label for the axis where it is long; `total`, a row that is not drawn. `drawn`: the columns that
// are, as bars, a stack or lines, and whether the last of them is a rest. `note` says what is left out.

async function largest(run, chosen) {
  return withPivot(run, pivotOfChart(chosen), async (view, rowsOf) => {
    const most = chosen.chart === 'top' ? Number(chosen.top) : mostBars;
    const lines = view.lineCount;
    const shown = lines > most + 1 ? most : lines;
    const rowOf = ({cells}) => ({label: cells[0], texts: [cells[1], cells[2]]});
    const rows = (await rowsOf(0, shown)).map(rowOf);
    const [last] = await rowsOf(view.rowCount - 1, view.rowCount);
    const total = rowOf(last);
    if (shown < lines) {
      const rest = minus(exactOr(total.texts[0]), sumOf(rows.map(({texts}) => texts[0])));
      const share = quotient({units: rest.units * 100n, scale: rest.scale}, exactOr(total.texts[0]), 2);
      rows.push({label: othersText(lines - shown), texts: [exactText(rest), share && `${exactText(share)}%`], rest: true});
    }
    const columns = view.columns.slice(1).map((column) => ({caption: column.caption}));
    return {labels: view.columns[0].caption, columns, rows, total, drawn: {kind: 'bars', columns: [0]}};
  });
}

// Of a pivot with several values across: the columns of a figure, the last being the totals.
function columnsOf(view, measure, isOnly) {
  return view.columns.flatMap((column, at) =>
    column.name.endsWith(`/${measure}`) ? [{at, caption: isOnly ? column.caption : column.group}] : [],
  );
}

// The values across that are shown, the largest of all rows first: those of the others are summed.
function largestSeries(columns, totals) {
  const sorted = columns.toSorted((one, other) => bySize(exactOr(totals[one.at]), exactOr(totals[other.at])));
  return sorted.slice(0, sorted.length > mostSeries + 1 ? mostSeries : sorted.length);
}

async function overMonths(run, chosen) {
  return withPivot(run, pivotOfChart(chosen), async (view, rowsOf) => {
    const read = await rowsOf(0, view.rowCount);
    const columns = columnsOf(view, chosen.of, true);
    const whole = columns.pop();
    const series = largestSeries(columns, read.at(-1).cells);
    const others = columns.length - series.length;
    const rowOf = ({cells}) => {
      const texts = series.map(({at}) => cells[at]);
      const rest = () => exactText(minus(exactOr(cells[whole.at]), sumOf(texts)));
      return {label: cells[0], texts: [...texts, ...(others > 0 ? [rest()] : []), cells[whole.at]]};
    };
    const captions = [...series.map((one) => one.caption), ...(others > 0 ? [othersText(others)] : [])];
    return {
      labels: view.columns[0].caption,
      columns: [...captions, t('chartTotal')].map((text) => ({caption: text})),
      rows: withAllMonths(read.slice(0, -1).map(rowOf)),
      total: rowOf(read.at(-1)),
      drawn: {kind: chosen.form, columns: captions.map((_, at) => at), rest: others > 0},
    };
  });
}

// The balance at the end of the report is the ledger's own; what went in and out before it leads back to the opening.
async function balance(run, chosen) {
  const ledger = await api.makeView(run, {layout: 'ledger', lang: language()});
  api.closeView(run, ledger.id).catch(() => {});
  const column = ledger.columns.findIndex(
    ({name}) => name === (chosen.of === 'amount' ? 'iBalancePrice' : 'iBalanceQuantity'),
  );
  const closing = exactOr(ledger.totals.find(({kind}) => kind === 'closing').cells[column]);
  return withPivot(run, pivotOfChart(chosen), async (view, rowsOf) => {
    const read = await rowsOf(0, view.rowCount);
    const {cells: all} = read.pop();
    let now = plus(minus(closing, exactOr(all[1])), exactOr(all[2]));
    const opening = {label: t('chartOpening'), texts: [null, null, exactText(now)]};
    const rows = withAllMonths(read.map(({cells}) => ({label: cells[0], texts: [cells[1], cells[2]]})));
    for (const row of rows) {
      now = minus(plus(now, exactOr(row.texts[0])), exactOr(row.texts[1]));
      row.texts = [row.texts[0], row.texts[1], exactText(now)];
    }
    return {
      labels: view.columns[0].caption,
      columns: [...view.columns.slice(1), {caption: t(`chartBalance_${chosen.of}`)}].map((one) => ({
        caption: one.caption,
      })),
      rows: [opening, ...rows],
      total: {label: t('chartTotal'), texts: [all[1], all[2], exactText(closing)]},
      drawn: {kind: 'lines', columns: [2]},
    };
  });
}

// The products, by amount, and the conditions of the rows of the one that is asked for, or else of the first.
async function products(run, chosen) {
  const [amount] = pivotOfChart(chosen).measures;
  const asked = {rows: [product], columns: [], measures: [amount], sort: [{column: amount, descending: true}]};
  return withPivot(run, asked, async (view, rowsOf) => {
    const rows = await rowsOf(0, view.lineCount);
    const row = rows.find(({cells}) => cells[0] === chosen.item) ?? rows[0];
    const {where} = await api.behind(run, view.id, row.n, 0);
    return {items: rows.map(({cells}) => cells[0]), item: row.cells[0], where};
  });
}

// What a unit of a product costs, parted by cost items: the amount of each by the quantity of all.
async function unitCost(run, chosen, hasProducts) {
  const {items, item, where} = hasProducts ? await products(run, chosen) : {items: null, item: '', where: []};
  const asked = pivotOfChart(chosen);
  const figures = await withPivot(run, {...asked, where}, async (view, rowsOf) => {
    const [amounts, quantities, costs] = asked.measures.map((name) => columnsOf(view, name, false));
    const down = asked.rows.length;
    const read = await rowsOf(0, view.rowCount);
    const total = read.pop();
    const whole = amounts.pop();
    const quantity = quantities.at(-1);
    const cost = costs.at(-1);
    const decimals = /\.(\d+)$/.exec(total.cells[cost.at] ?? '')?.[1].length ?? 4;
    const series = largestSeries(amounts, total.cells);
    const others = amounts.length - series.length;
    const rowOf = ({cells}) => {
      const by = exactOr(cells[quantity.at]);
      const part = (amount) => {
        const found = quotient(amount, by, decimals);
        return found && exactText(found);
      };
      const parts = series.map(({at}) => (cells[at] === null ? null : part(exact(cells[at]))));
      const rest = minus(exactOr(cells[whole.at]), sumOf(series.map(({at}) => cells[at])));
      return {
        label: cells.slice(0, down).filter(Boolean).join(' '),
        short: cells[0],
        texts: [...parts, ...(others > 0 ? [part(rest)] : []), cells[cost.at], cells[quantity.at]],
      };
    };
    // A line of this state has a quantity or an amount: documents of the other have neither.
    const isOfState = ({kind, cells}) =>
      kind === 'line' && [whole.at, quantity.at].some((at) => exactOr(cells[at]).units !== 0n);
    const all = read.filter(isOfState);
    const lines = chosen.per === 'document' ? all.slice(-mostReceipts) : all;
    const captions = [...series.map((one) => one.caption), ...(others > 0 ? [othersText(others)] : [])];
    return {
      labels: t(`chartPer_${chosen.per}`),
      columns: [...captions, view.columns[cost.at].caption, view.columns[quantity.at].caption].map((text) => ({
        caption: text,
      })),
      rows: chosen.per === 'document' ? lines.map(rowOf) : withAllMonths(lines.map(rowOf)),
      total: {...rowOf(total), label: t('chartTotal')},
      drawn: {kind: 'stack', columns: captions.map((_, at) => at), rest: others > 0},
      note: lines.length < all.length ? t('chartLast', {n: count(lines.length), of: count(all.length)}) : '',
    };
  });
  return {...figures, items, item, where};
}

export async function figuresOf(run, chosen, offered) {
  switch (chosen.chart) {
    case 'months':
      return overMonths(run, chosen);
    case 'balance':
      return balance(run, chosen);
    case 'unitCost':
      return unitCost(run, chosen, offered.find(({name}) => name === 'unitCost').item);
    default:
      return largest(run, chosen);
  }
}

// "Months of a year · Receipt amount · Cost item"
export function chartTitle(chosen, offered, figures) {
  const {choices} = offered.find(({name}) => name === chosen.chart);
  const words = ['of', 'by'].flatMap((name) => {
    const found = choices[name]?.find((one) => one.name === chosen[name]);
    return found ? [caption(found.caption)] : [];
  });
  return [t(`chart_${chosen.chart}`), figures.item, ...words].filter(Boolean).join(' · ');
}
