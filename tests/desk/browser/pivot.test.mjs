// The pivot: choosing what stands down and across, the rows behind a figure, folding, files of what is shown, by keyboard
// alone as well. At the server: the figures are the account's.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {mkdirSync, readFileSync} from 'node:fs';
import {
  allRows,
  address,
  beginDesk,
  browser,
  exported,
  gridOf,
  obstacles,
  openDesk,
  page,
  runReport,
  waitForGrid,
} from './desk_browser.mjs';
import {sheetRows} from './workbook.mjs';

const pictures = process.env.DESK_PICTURES; // a folder for one picture of each state, to be looked at
if (pictures) mkdirSync(pictures, {recursive: true});

let run = ''; // the address of the run, without what is shown of it
let views = []; // that the page has opened, the newest last
beginDesk(async () => {
  page.on('response', async (response) => {
    if (response.request().method() !== 'POST' || !/\/(views|pivots)$/.test(response.url())) return;
    const view = await response.json().catch(() => null);
    if (view?.id) views.push({...view, path: new URL(response.url()).pathname.replace(/\w+$/, `views/${view.id}`)});
  });
  await runReport(page, 'outsum-item', {cModal: '1'});
  [run] = new URL(page.url()).hash.split('?');
});

// An exact number of hundredths.
const hundredths = (text) => BigInt((text ?? '0.00').replaceAll(/[,.]/g, ''));

const rowsOf = (view) => allRows(page, view.path);

async function showPivot(rows, across, figures, more = '') {
  await page.goto(
    `${address}/${run}?report=outsum-item&layout=pivot&rows=${rows}&across=${across}&figures=${figures}${more}`,
  );
  await page.waitForSelector('.grid-area.pivot .grid');
  await waitForGrid(page);
  return views.at(-1);
}

// Goes to a cell of the pivot by the keyboard.
async function goTo(index, column) {
  await page.fill('.go-to', String(index + 1));
  await page.press('.go-to', 'Enter');
  await page.waitForFunction(() => document.activeElement?.tagName === 'TABLE');
  await page.keyboard.press('Home');
  for (let step = 0; step < column; step += 1) await page.keyboard.press('ArrowRight');
  await page.waitForFunction(
    (id) => document.querySelector('regular-table table').getAttribute('aria-activedescendant') === id,
    `cell-${index}-${column}`,
  );
}

async function listBehind(act) {
  const known = views.length;
  await act();
  await page.waitForFunction(() => /layout=lines/.test(location.hash));
  await page.waitForSelector('.grid-area:not(.pivot) .grid');
  await waitForGrid(page);
  assert.ok(views.length > known);
  return views.at(-1);
}

test('the tab shows a pivot of the report, and the address names it', async () => {
  await page.click('.layout-bar a:has-text("透视表")');
  await page.waitForSelector('.grid-area.pivot .grid');
  await waitForGrid(page);
  const query = new URLSearchParams(new URL(page.url()).hash.split('?')[1]);
  assert.equal(query.get('layout'), 'pivot');
  assert.equal(query.get('rows'), 'costItemClass1');
  assert.equal(query.get('across'), 'month');
  assert.equal(query.get('figures'), 'amount');
  const grid = await gridOf(page);
  assert.equal(grid.rows.at(-1).kind, 'total');
});

test('the rows behind a cell, a subtotal and the totals sum to them, and Back leads to the cell', async () => {
  const pivot = await showPivot('costItemClass1,cFXCode', 'month', 'amount,quantity');
  const rows = await rowsOf(pivot);
  const kinds = rows.map(({kind}) => kind);
  const total = pivot.columns.length - 2;
  assert.equal(pivot.columns[total].name, 'total/amount');
  const places = [
    [0, 2], // a cell
    [kinds.lastIndexOf('line'), 5], // of what has no cost item
    [kinds.indexOf('subtotal'), 3], // a subtotal of a month
    [kinds.lastIndexOf('subtotal'), total], // and of the year
    [rows.length - 1, 4], // the total of a month
    [rows.length - 1, total + 1], // the grand total
  ];
  for (const [n, column] of places) {
    const what = `row ${n}, ${pivot.columns[column].name}`;
    await goTo(n, column);
    const listed = await listBehind(() => page.keyboard.press('Enter'));
    const lines = await rowsOf(listed);
    const name = pivot.columns[column].name.endsWith('amount') ? 'iMoney' : 'iQuantity';
    const at = listed.columns.findIndex((one) => one.name === name);
    const sum = lines.reduce((all, {cells}) => all + hundredths(cells[at]), 0n);
    assert.ok(lines.length > 0, what);
    assert.equal(sum, hundredths(rows[n].cells[column]), what);
    await page.goBack();
    await page.waitForSelector('.grid-area.pivot .grid');
    await waitForGrid(page);
    assert.equal((await gridOf(page)).active?.id, `cell-${n}-${column}`, what);
  }
});

test('totals are sums of what is shown, and a click on a name lists its rows', async () => {
  const pivot = await showPivot('costItemClass1,cFXCode', 'month', 'amount');
  const rows = await rowsOf(pivot);
  const lines = rows.filter(({kind}) => kind === 'line');
  const total = rows.at(-1);
  for (let column = 2; column < pivot.columns.length; column += 1) {
    const sum = lines.reduce((all, {cells}) => all + hundredths(cells[column]), 0n);
    assert.equal(sum, hundredths(total.cells[column]), pivot.columns[column].name);
  }
  const listed = await listBehind(() => page.click('regular-table tbody tr.kind-line >> nth=1 >> [aria-colindex="2"]'));
  const at = listed.columns.findIndex((one) => one.name === 'iMoney');
  const sum = (await rowsOf(listed)).reduce((all, {cells}) => all + hundredths(cells[at]), 0n);
  assert.equal(sum, hundredths(lines[1].cells.at(-1)));
  const chips = await page.locator('.chips .chip').allInnerTexts();
  assert.ok(
    chips.some((text) => text.includes('成本项目')),
    chips.join(),
  );
  await page.click('.layout-bar a:has-text("透视表")');
  await page.waitForSelector('.grid-area.pivot .grid');
  assert.match(page.url(), /rows=costItemClass1%2CcFXCode/);
});

// Files differ in how they write a number: with separators, or without the zeros at its end.
const canonical = (text) => {
  const number = (text ?? '').replaceAll(',', '');
  if (!/^-?\d+\.\d+$/.test(number)) return number;
  // A workbook has the digits of a binary number: the shortest that give the same are meant.
  return (/\.\d{6,}$/.test(number) ? String(Number(number)) : number).replace(/\.?0+$/, '');
};

async function shownRows() {
  const {rows, rowCount} = await gridOf(page);
  assert.equal(rows.length, rowCount, 'all rows are in sight');
  return rows;
}

test('rows chosen by a state say which in words', async () => {
  const other = await openDesk(browser);
  await runReport(other, 'sfc-item');
  const [path] = new URL(other.url()).hash.split('?');
  await other.goto(`${address}/${path}?report=sfc-item&layout=lines&where=iState:equals:1`);
  await waitForGrid(other);
  await other.waitForSelector('.chips .chip:has-text("收发状态 = 期初结存")');
  await other.context().close();
});

test('outer values are folded away; files have what is shown', async () => {
  const pivot = await showPivot('costItemClass1,cWhCode', '', 'amount');
  const length = pivot.columns.length;
  const all = await rowsOf(pivot);
  const first = all.findIndex(({kind}) => kind === 'subtotal');
  await goTo(first, 0);
  await page.keyboard.press('Space');
  await page.waitForFunction(
    (count) => document.querySelector('.counts').textContent && location.hash.includes(`folded=${count}`),
    first,
  );
  await page.waitForSelector('tr.folded-in');
  const folded = await gridOf(page);
  assert.equal(folded.rowCount, all.length - first);
  assert.equal(folded.rows[0].cells[1], all[first].cells[0]);
  await page.reload();
  await waitForGrid(page);
  await page.waitForSelector('tr.folded-in');
  assert.equal((await gridOf(page)).rowCount, all.length - first);

  await page.click('.tools button:has-text("全部收起")');
  await page.waitForFunction(() => !document.querySelector('tr.kind-line'));
  const wanted = (await shownRows()).map(({cells}) => Array.from({length}, (_, at) => canonical(cells[at + 1])));
  const csv = readFileSync(await exported('csv'), 'utf8')
    .replace(/^\uFEFF/, '')
    .trim()
    .split('\r\n');
  const fields = csv
    .slice(1)
    .map((line) =>
      [...line.matchAll(/"((?:[^"]|"")*)"|([^",]+)|(?<=,|^)(?=,|$)/g)].map((one) => canonical(one[1] ?? one[2] ?? '')),
    );
  assert.deepEqual(
    fields.map((cells) => cells.slice(cells.length - length)),
    wanted,
  );
  const sheet = sheetRows(readFileSync(await exported('xlsx'))).map((cells) =>
    Array.from({length}, (_, at) => canonical(cells[at])),
  );
  const from = sheet.findIndex((cells) => cells.join() === wanted[0].join());
  assert.ok(from >= 0, 'the workbook has the first row');
  assert.deepEqual(sheet.slice(from, from + wanted.length), wanted);
  const paper = await browser.newPage();
  await paper.setContent(readFileSync(await exported('html'), 'utf8'));
  const html = await paper.evaluate(() =>
    [...document.querySelectorAll('table.rows tbody tr, table.rows tfoot tr')].map((tr) =>
      [...tr.cells].map((cell) => cell.textContent.trim()),
    ),
  );
  await paper.close();
  assert.deepEqual(
    html.map((cells) => canonical(cells.at(-1))),
    wanted.map((cells) => cells.at(-1)),
  );

  await page.click('.tools button:has-text("全部展开")');
  await page.waitForFunction(
    (count) => Number(document.querySelector('regular-table table').getAttribute('aria-rowcount')) >= count,
    all.length,
  );
  assert.doesNotMatch(page.url(), /folded/);
});

test('all is done with the keyboard: adding, moving, removing, ordering', async () => {
  await showPivot('cWhCode', '', 'amount');
  await page.focus('[data-axis="rows"] .add');
  await page.keyboard.press('Enter');
  await page.keyboard.type('月份');
  await page.keyboard.press('ArrowDown');
  await page.keyboard.press('ArrowDown');
  const chosen = await page.evaluate(() => document.activeElement.textContent);
  assert.match(chosen, /月份/);
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => /rows=cWhCode%2C\w*[mM]onth/.test(location.hash));
  await waitForGrid(page);
  assert.match(await page.evaluate(() => document.activeElement.getAttribute('aria-label') ?? ''), /月份/);
  // Its buttons: forward, back, across, remove.
  await page.keyboard.press('Tab');
  await page.keyboard.press('Enter');
  await page.waitForFunction(
    () => /rows=cWhCode&/.test(`${location.hash}&`) && /across=\w*[mM]onth/.test(location.hash),
  );
  await waitForGrid(page);
  const grid = await gridOf(page);
  assert.ok(grid.columnCount > 3);
  await page.focus('[data-axis="measures"] .add');
  await page.keyboard.press('Enter');
  await page.keyboard.type('金额占列');
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => /figures=amount%2Camount%3Acolumn/.test(location.hash));
  await waitForGrid(page);
  assert.match((await gridOf(page)).rows.at(-1).cells[3], /100\.00/);
  await page.focus('[data-axis="measures"] li:last-child button:last-child');
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => /figures=amount(&|$)/.test(location.hash));
  await waitForGrid(page);
  await page.focus('regular-table table');
  await page.keyboard.press('End');
  await page.keyboard.press('Control+ArrowUp');
  await page.keyboard.press('ArrowUp');
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => /order=amount/.test(location.hash));
  await waitForGrid(page);
  const rows = (await rowsOf(views.at(-1))).filter(({kind}) => kind === 'line');
  const totals = rows.map(({cells}) => hundredths(cells.at(-1)));
  assert.deepEqual(
    totals,
    totals.toSorted((a, b) => (a < b ? -1 : Number(a > b))),
  );
});

test('a pivot that cannot be shown says why', async () => {
  await page.goto(`${address}/${run}?report=outsum-item&layout=pivot&rows=noSuch&figures=amount`);
  await page.waitForSelector('.grid-area .message');
  assert.match(await page.innerText('.grid-area .message'), /noSuch/);
  await page.click('[data-axis="rows"] .add');
  await page.fill('.popup input', '仓库');
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => /cWhCode/.test(location.hash));
  await page.click('[data-axis="rows"] [data-name="noSuch"] button:last-child');
  await page.waitForSelector('.grid-area.pivot .grid');
  await waitForGrid(page);
});

test('every look has no obstacle and stays within the window', async () => {
  const {hash} = new URL(page.url());
  const [path] = hash.split('?');
  for (const {lang, scheme, size} of [
    {lang: 'zh', scheme: 'light', size: {width: 1400, height: 900}},
    {lang: 'en', scheme: 'dark', size: {width: 1400, height: 900}},
    {lang: 'en', scheme: 'light', size: {width: 900, height: 700}},
  ]) {
    const other = await openDesk(browser, {lang, scheme, size});
    const look = async (name) => {
      if (pictures) await other.screenshot({path: `${pictures}/pivot-${name}-${lang}-${scheme}-${size.width}.png`});
      assert.deepEqual(await obstacles(other), [], name);
      const wide = await other.evaluate(
        () => document.querySelector('main').scrollWidth > document.querySelector('main').clientWidth + 1,
      );
      assert.ok(!wide, `${name} is wider than the window`);
    };
    await other.goto(
      `${address}/${path}?report=outsum-item&layout=pivot&rows=costItemClass1,cWhCode,cInvCCode&across=month&figures=amount,amount:column,unitCost&order=-amount`,
    );
    await other.waitForSelector('.grid-area.pivot .grid');
    await waitForGrid(other);
    await look('grid');
    await other.locator('.tools button').first().click();
    await other.waitForSelector('tr.folded-in');
    await look('folded');
    await other.click('[data-axis="columns"] .add');
    await look('choices');
    await other.keyboard.press('Escape');
    if (lang === 'en') assert.doesNotMatch(await other.innerText('.pivot-panel'), /[\u4e00-\u9fff]/);
    assert.deepEqual(other.problems, []);
    await other.context().close();
  }
  assert.deepEqual(page.problems, []);
});
