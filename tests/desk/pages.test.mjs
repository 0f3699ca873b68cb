// Of the pages what needs no browser: addresses, rows in bounded memory, folding, and the catalogue of texts.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {readFileSync, readdirSync} from 'node:fs';
import {fileURLToPath} from 'node:url';
import {filterIn, placeIn, putFilter, putPlace, putView, viewIn} from '../../workbench/desk/pages/address.js';
import {Folds} from '../../workbench/desk/pages/ledger.js';
import {Picked, Rows} from '../../workbench/desk/pages/rows.js';

// Texts ask the browser which language is kept.
globalThis.localStorage = {getItem: () => null, setItem() {}};
globalThis.navigator ??= {language: 'zh-CN'};
const {PivotRows, firstPivot, foldedIn, pivotIn, putPivot, sortNameOf} =
  await import('../../workbench/desk/pages/pivot.js');
const {grouped} = await import('../../workbench/desk/pages/checks.js');
const {comparable, compareIn, firstComparison} = await import('../../workbench/desk/pages/compare.js');
const {chartIn, chartsOffered, pivotOfChart, putChart, withAllMonths} = await import('../../workbench/desk/pages/charts.js');
const {bySize, exact, exactText, minus, plus, quotient} = await import('../../workbench/desk/pages/exact.js');
const {keptOf, putKept} = await import('../../workbench/desk/pages/layouts.js');
const {seconds} = await import('../../workbench/desk/pages/texts.js');

const again = (query) => new URLSearchParams(query.toString());

test('a filter goes into the address and comes out of it', () => {
  const values = {
    iYear: {value: '2024'},
    cInvCode: {value: 'a&b\t0101 00002\t,'},
    dKeepDate: {value: '', value2: '2024-03-31'},
    'Inventory.cInvCCode': {value: '01', value2: '02'},
  };
  const query = again(putFilter(new URLSearchParams({report: 'fx-wt', 'f.old': '1'}), values));
  assert.deepEqual(filterIn(query), values);
  assert.equal(query.get('report'), 'fx-wt');
});

test('so does what is shown, and the place', () => {
  const view = {
    layout: 'lines',
    columns: ['cInvCode', 'iMoney'],
    sort: [
      {column: 'iMoney', descending: true},
      {column: 'cInvCode', descending: false},
    ],
    groupBy: ['cWhCode'],
    where: [
      {column: 'cInvName', kind: 'contains', values: ['a:b']},
      {column: 'iMoney', kind: 'range', values: ['', '12.50']},
      {column: 'cWhCode', kind: 'equals', values: ['01', '02']},
    ],
    allColumns: true,
    details: true,
    frozen: 0,
  };
  assert.deepEqual(viewIn(again(putView(new URLSearchParams(), view))), view);
  const plain = {
    layout: '',
    columns: [],
    sort: [],
    groupBy: [],
    where: [],
    allColumns: false,
    details: false,
    frozen: null,
  };
  assert.equal(putView(again(putView(new URLSearchParams(), view)), plain).toString(), '');
  assert.deepEqual(placeIn(again(putPlace(new URLSearchParams(), 699999, 'cMemo'))), {row: 699999, column: 'cMemo'});
  assert.deepEqual(placeIn(new URLSearchParams('row=x')), {row: 0, column: ''});
});

test('a layout is kept without its rows, and put over another', () => {
  const shown = new URLSearchParams(
    'report=outsum-item&f.iYear=2024&layout=lines&columns=a,b&sort=-b&group=c&where=b:range:1\t&all=1&row=9&at=b&frozen=1',
  );
  const kept = keptOf(shown, 'summary');
  const sort = [{column: 'b', descending: true}];
  assert.deepEqual(kept, {layout: 'lines', columns: ['a', 'b'], sort, groupBy: ['c'], allColumns: true, details: false});
  assert.equal(keptOf(new URLSearchParams(), 'summary').layout, 'summary');

  const filter = 'report=outsum-item&f.iYear=2023';
  const over = again(putKept(new URLSearchParams(`${filter}&layout=tree&where=x:equals:1&row=3`), kept, 'summary'));
  assert.equal(over.toString(), `${new URLSearchParams(`${filter}&layout=lines&columns=a,b&sort=-b&group=c&all=1`)}`);
  const same = putKept(new URLSearchParams(`${filter}&layout=lines&where=x:equals:1&frozen=2`), kept, 'summary');
  assert.equal(same.get('where'), 'x:equals:1');
  assert.equal(same.get('frozen'), null);

  const pivot = {rows: ['r'], columns: ['c'], measures: ['amount'], sort: []};
  const asPivot = putKept(shown, {...kept, layout: 'pivot', columns: [], sort: [], groupBy: [], allColumns: false, pivot}, 'summary');
  assert.deepEqual(pivotIn(asPivot), pivot);
  assert.deepEqual(keptOf(asPivot, 'summary'), {layout: 'pivot', pivot});
  const compared = keptOf(new URLSearchParams('layout=compare&with=2&rows=r&figures=amount&order=difference'), 'summary');
  assert.deepEqual(compared, {layout: 'pivot', pivot: {...pivot, columns: []}});
});

const answering =
  (count, more = {}) =>
  async (offset, limit) => ({
    rowCount: count,
    complete: true,
    ...more,
    rows: Array.from({length: Math.max(0, Math.min(limit, count - offset))}, (_, at) => ({
      n: offset + at,
      kind: 'line',
      cells: [String(offset + at)],
      details: 3,
    })),
  });

test('rows come page by page, each once, and old ones go', async () => {
  let asked = 0;
  const fetchPage = answering(100000);
  const rows = new Rows(
    (offset, limit) => {
      asked += 1;
      return fetchPage(offset, limit);
    },
    100000,
    100,
  );
  await Promise.all([rows.ensure(190, 230), rows.ensure(190, 230)]);
  assert.equal(asked, 2);
  assert.equal(rows.at(199).n, 199);
  assert.equal(rows.at(200).n, 200);
  assert.equal(rows.at(5000), undefined);
  for (let row = 0; row < 100000; row += 200) await rows.ensure(row, row + 1);
  assert.ok(rows.pages.size <= 20);
  assert.equal(rows.at(0), undefined);
  assert.equal(rows.at(99999).n, 99999);
});

test('a number of rows that is not known yet is asked for until it is', async () => {
  let known = 0;
  let changes = 0;
  const rows = new Rows(
    async () => {
      known = Math.min(600, known + 300);
      return {rowCount: known, complete: known === 600, rows: []};
    },
    -1,
    10,
  );
  rows.onchange = () => {
    changes += 1;
  };
  assert.equal(rows.complete, false);
  await rows.count();
  assert.deepEqual([rows.rowCount, rows.complete, changes], [600, true, 2]);
});

test('rows that are not there yet are waited for', async () => {
  let asked = 0;
  const rows = new Rows(
    async () => {
      asked += 1;
      return asked < 3
        ? {rowCount: 0, complete: false, rows: []}
        : {rowCount: 1, complete: true, rows: [{n: 0, cells: ['a']}]};
    },
    -1,
    1,
  );
  await rows.begin();
  assert.deepEqual([asked, rows.rowCount, rows.at(0).cells], [3, 1, ['a']]);
  const none = new Rows(async () => ({rowCount: 0, complete: true, rows: []}), -1, 1);
  await none.begin();
  assert.deepEqual([none.rowCount, none.complete], [0, true]);
});

test('a page that was cut short by what was known is fetched again once more is known', async () => {
  let known = 150;
  const rows = new Rows(
    async (offset, limit) => ({...(await answering(known)(offset, limit)), rowCount: known, complete: known === 500}),
    -1,
    10,
  );
  await rows.ensure(0, 1);
  assert.deepEqual([rows.rowCount, rows.at(149).n, rows.at(150)], [150, 149, undefined]);
  known = 500;
  await rows.count();
  assert.equal(rows.rowCount, 500);
  assert.equal(rows.has(0, 1), false);
  await rows.ensure(0, 500);
  assert.deepEqual([rows.at(150).n, rows.at(499).n], [150, 499]);
});

test('rows that are refused are said to be', async () => {
  const rows = new Rows(
    async () => {
      throw new Error('gone');
    },
    10,
    1,
  );
  await assert.rejects(rows.ensure(0, 1), /gone/);
});

test('lines fold out and in again, in any order', async () => {
  const rows = new Rows(answering(1000), 1000, 2);
  await rows.ensure(0, 1000);
  const folds = new Folds(rows, async (n) => ({
    rows: [0, 1, 2].map((at) => ({n, kind: 'detail', cells: [`${n}.${at}`]})),
  }));
  const texts = (from, to) => Array.from({length: to - from}, (_, at) => folds.at(from + at).cells[0]);
  await folds.toggle(5);
  await folds.toggle(2);
  assert.equal(folds.rowCount, 1006);
  assert.deepEqual(texts(0, 14), ['0', '1', '2', '2.0', '2.1', '2.2', '3', '4', '5', '5.0', '5.1', '5.2', '6', '7']);
  assert.deepEqual([folds.state(2), folds.state(3), folds.state(6), folds.state(8)], [true, undefined, false, true]);
  assert.equal(folds.at(1005).n, 999);
  await folds.toggle(4); // a row of the second line's: folds that line in
  assert.deepEqual(texts(1, 9), ['1', '2', '3', '4', '5', '5.0', '5.1', '5.2']);
  await folds.toggle(5);
  assert.equal(folds.rowCount, 1000);
  assert.deepEqual(texts(4, 8), ['4', '5', '6', '7']);
});

test('a grid may show some of the columns of rows', async () => {
  const rows = new Rows(answering(1000), 1000, 2);
  await rows.ensure(0, 10);
  const picked = new Picked(rows, []);
  assert.deepEqual(picked.at(3).cells, []);
  assert.equal(picked.at(3).n, rows.at(3).n);
  picked.pick([0, 0]);
  assert.deepEqual(picked.at(3).cells, ['3', '3']);
  assert.equal(picked.at(999), undefined);
});

test('a time below a tenth of a second is told in milliseconds', () => {
  assert.match(seconds(4.2), /^4 (ms|毫秒)$/);
  assert.match(seconds(99), /^99 (ms|毫秒)$/);
  assert.match(seconds(100), /^0\.1 (s|秒)$/);
});

test('a pivot goes into the address and comes out of it', () => {
  const pivot = {
    rows: ['costItemClass1', 'cWhCode'],
    columns: ['month'],
    measures: ['amount', 'amount:row'],
    sort: [{column: 'amount', descending: true}],
  };
  const query = again(putPivot(new URLSearchParams({folded: '4,9', report: 'fx-wt'}), pivot));
  assert.deepEqual(pivotIn(query), pivot);
  assert.equal(query.get('report'), 'fx-wt');
  assert.deepEqual(foldedIn(query), [], 'rows have other numbers');
  assert.deepEqual(foldedIn(new URLSearchParams({folded: '4,9'})), [4, 9]);
});

test('a pivot begins with amounts, over months where rows are of months', () => {
  const named = (...names) => names.map((name) => ({name, state: name === 'cState'}));
  const months = firstPivot({dimensions: named('cWhCode', 'month'), measures: named('quantity', 'amount')});
  assert.deepEqual(months, {rows: ['cWhCode'], columns: ['month'], measures: ['amount'], sort: []});
  const ledger = firstPivot({dimensions: named('cWhCode', 'cfxCode', 'costItemClass1'), measures: named('amount')});
  assert.deepEqual(ledger.rows, ['cfxCode']);
  const states = firstPivot({
    dimensions: named('cInvCode', 'month', 'cState'),
    measures: named('openingAmount', 'closingAmount', 'closingUnitCost'),
  });
  assert.deepEqual(states.columns, []);
  assert.deepEqual(states.rows, ['cInvCode']);
  assert.deepEqual(states.measures, ['openingAmount', 'closingAmount']);
});

test('a pivot is ordered by what stands down, and by totals', () => {
  const pivot = {rows: ['cWhCode'], columns: ['month']};
  assert.equal(sortNameOf({name: 'cWhCode', number: false}, pivot), 'cWhCode');
  assert.equal(sortNameOf({name: 'total/amount:row', number: true}, pivot), 'amount');
  assert.equal(sortNameOf({name: '2024-01/amount', number: true}, pivot), null);
  assert.equal(sortNameOf({name: 'amount', number: true}, {rows: ['cWhCode'], columns: []}), 'amount');
});

test('outer values of a pivot are folded away under their subtotals', async () => {
  // Of two outer values with two inner ones of two lines each: 2 lines, their subtotal, 2 lines, theirs, that of the outer.
  const firsts = {2: 0, 5: 3, 6: 0, 9: 7, 12: 10, 13: 7};
  const fetchPage = async (offset, limit) => ({
    rowCount: 15,
    complete: true,
    rows: Array.from({length: Math.min(limit, 15 - offset)}, (_, at) => ({n: offset + at, first: firsts[offset + at]})),
  });
  const rows = new PivotRows(new Rows(fetchPage, 15, 1));
  await rows.ensure(0, 15);
  const shown = () => Array.from({length: rows.rowCount}, (_, at) => rows.at(at).n);
  await rows.toggle(5);
  assert.deepEqual(shown(), [0, 1, 2, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14]);
  assert.deepEqual([rows.state(0), rows.state(3), rows.state(4)], [undefined, false, true]);
  await rows.toggle(4);
  assert.deepEqual(shown(), [6, 7, 8, 9, 10, 11, 12, 13, 14], 'the inner one is within the outer');
  assert.deepEqual([rows.indexOf(4), rows.indexOf(6), rows.indexOf(13)], [0, 0, 7]);
  await rows.foldAll();
  assert.deepEqual(shown(), [6, 13, 14]);
  await rows.fold([]);
  assert.equal(rows.rowCount, 15);
  await rows.fold([5, 1]);
  assert.deepEqual([...rows.folded], [[5, 3]], 'a line sums nothing');
});

test('every text is there in both languages, and used', () => {
  const folder = fileURLToPath(new URL('../../workbench/desk/pages/', import.meta.url));
  const source = (name) => readFileSync(folder + name, 'utf8');
  const catalogue = source('texts.js');
  const keys = [...catalogue.matchAll(/^ {2}(\w+): \[/gm)].map(([, key]) => key);
  const entries = [...catalogue.matchAll(/^ {2}(\w+): \[\s*'[^']+',\s+(?:'(?:[^'\\]|\\.)+'|"[^"]+"),?\s*\],/gm)].map(
    ([, key]) => key,
  );
  assert.deepEqual(entries, keys);
  assert.equal(new Set(keys).size, keys.length);
  const code = readdirSync(folder)
    .filter((name) => name.endsWith('.js'))
    .map(source)
    .join('\n');
  for (const [, key] of code.matchAll(/\bt\('(\w+)'/g)) assert.ok(keys.includes(key), key);
  const madeUp = /^(state_|kind_|share_|chart(Form|Per|Balance)?_|key[A-Z]|theme)/;
  for (const key of keys) if (!madeUp.test(key)) assert.ok(new RegExp(`'${key}'`).test(code), `${key} is not used`);
});

test('the pages bring no inline style or script, which their policy forbids', () => {
  const folder = fileURLToPath(new URL('../../workbench/desk/pages/', import.meta.url));
  for (const name of readdirSync(folder).filter((one) => /\.(js|html)$/.test(one))) {
    const text = readFileSync(folder + name, 'utf8');
    assert.doesNotMatch(
      text,
      /innerHTML|insertAdjacentHTML|setAttribute\('style'|style: '|\beval\(|new Function|https?:\/\/(?!www\.w3\.org)/,
      name,
    );
  }
});

test('exact decimals are added, parted and written without a binary number', () => {
  const texts = ['0.00', '-0.05', '1,234.50', '-1,234,567,890,123,456,789.01', '12', '0.1234'];
  for (const text of texts) assert.equal(exactText(exact(text)), text.replace(/^-(0\.0+)$/, '$1'));
  assert.equal(exactText(plus(exact('0.1'), exact('0.2'))), '0.3');
  assert.equal(exactText(minus(exact('1,000.00'), exact('0.001'))), '999.999');
  assert.equal(exactText(minus(exact('12'), exact('12.50'))), '-0.50');
  assert.equal(exactText(quotient(exact('10.00'), exact('3'), 4)), '3.3333');
  // Half away from zero, on either side.
  assert.equal(exactText(quotient(exact('1'), exact('8'), 2)), '0.13');
  assert.equal(exactText(quotient(exact('-1.00'), exact('8'), 2)), '-0.13');
  assert.equal(exactText(quotient(exact('1'), exact('-8.0'), 2)), '-0.13');
  assert.equal(quotient(exact('1'), exact('0.00'), 2), null);
  assert.deepEqual(['2', '-10', '0.5'].map(exact).toSorted(bySize).map(exactText), ['-10', '2', '0.5']);
  for (const text of ['', '1.', '1,23', 'x', '1e3', '--1']) assert.throws(() => exact(text), text);
});

test('charts are those that a report has figures for, and stand in the address', () => {
  const named = (...names) => names.map((name) => ({name, caption: name, state: name === 'cState'}));
  const kinds = (dimensions, measures, layouts) =>
    chartsOffered({dimensions: named(...dimensions), measures: named(...measures)}, layouts).map(({name}) => name);
  const movements = ['receiptQuantity', 'receiptAmount', 'receiptUnitCost', 'issueAmount'];
  assert.deepEqual(kinds([], [], []), []);
  assert.deepEqual(kinds(['cfxCode', 'month', 'cInvCode'], movements, ['vouchers']), [
    'structure',
    'months',
    'top',
    'unitCost',
  ]);
  assert.deepEqual(kinds(['cfxCode', 'month'], movements, ['ledger']), ['structure', 'months', 'balance', 'unitCost']);
  assert.deepEqual(kinds(['cFXCode', 'month', 'cWhCode', 'cState'], ['openingAmount', 'closingAmount'], ['tree']), [
    'structure',
    'top',
  ]);
  const offered = chartsOffered(
    {dimensions: named('cWhCode', 'cInvCode', 'cfxCode', 'month'), measures: named(...movements)},
    [],
  );
  assert.deepEqual(chartIn(new URLSearchParams(), offered), {
    chart: 'structure',
    item: '',
    of: 'receiptAmount',
    by: 'cfxCode',
  });
  const query = new URLSearchParams('report=x&chart=top&of=issueAmount&by=nothing&top=5&form=lines');
  const chosen = chartIn(query, offered);
  assert.deepEqual(chosen, {chart: 'top', item: '', of: 'issueAmount', by: 'cInvCode', top: '5'});
  assert.deepEqual(Object.fromEntries(putChart(query, chosen)), {
    report: 'x',
    chart: 'top',
    of: 'issueAmount',
    by: 'cInvCode',
    top: '5',
  });
  assert.deepEqual(pivotOfChart(chosen), {
    rows: ['cInvCode'],
    columns: [],
    measures: ['issueAmount', 'issueAmount:total'],
    sort: [{column: 'issueAmount', descending: true}],
  });
  const parted = {chart: 'unitCost', of: 'receiptUnitCost', by: 'cfxCode', per: 'month'};
  assert.deepEqual(pivotOfChart(parted).measures, ['receiptAmount', 'receiptQuantity', 'receiptUnitCost']);
  assert.deepEqual(pivotOfChart({...parted, of: 'unitCost'}).measures, ['amount', 'quantity', 'unitCost']);
});

test('months without rows lie among those that have some', () => {
  const rows = ['2023-11', '2024-02', '（无）'].map((label) => ({label, texts: ['1']}));
  assert.deepEqual(
    withAllMonths(rows).map(({label, texts}) => `${label} ${texts[0]}`),
    ['2023-11 1', '2023-12 null', '2024-01 null', '2024-02 1', '（无） 1'],
  );
});

test('amounts of checks get their thousands apart, with every digit', () => {
  for (const [amount, shown] of [
    ['0.00', '0.00'],
    ['-352.98', '-352.98'],
    ['1234.5625', '1,234.5625'],
    ['-12345678901234567890.123456', '-12,345,678,901,234,567,890.123456'],
  ])
    assert.equal(grouped(amount), shown);
});

test('a comparison is a pivot without anything across and without shares, with another run of the report', () => {
  const query = new URLSearchParams(
    'layout=compare&with=4&rows=cWhCode&across=month&figures=amount,amount:row&order=-difference/amount',
  );
  const asked = {
    rows: ['cWhCode'],
    columns: [],
    measures: ['amount'],
    sort: [{column: 'difference/amount', descending: true}],
    other: 4,
  };
  assert.deepEqual(compareIn(query), asked);
  assert.equal(compareIn(new URLSearchParams('with=x')).other, null);
  assert.deepEqual(
    firstComparison({dimensions: [{name: 'costItemClass1'}, {name: 'month'}], measures: [{name: 'amount'}]}),
    {rows: ['costItemClass1'], columns: [], measures: ['amount'], sort: []},
  );
  const ofComparison = {...asked, rows: ['cWhCode']};
  assert.equal(sortNameOf({name: 'percent/amount', number: true}, ofComparison), 'percent/amount');
  assert.equal(sortNameOf({name: 'cWhCode', number: false}, ofComparison), 'cWhCode');
  const runs = [
    {id: 1, report: 'a', state: 'done'},
    {id: 2, report: 'b', state: 'done'},
    {id: 3, report: 'a', state: 'running'},
    {id: 4, report: 'a', state: 'done'},
  ];
  assert.deepEqual(
    comparable(runs, '1').map(({id}) => id),
    [4],
  );
  assert.deepEqual(comparable(runs, '2'), []);
});
