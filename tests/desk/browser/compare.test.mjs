// Comparing: two runs of a report side by side, on every level, with the rows behind a figure of either and files of what is
// shown.
import assert from 'node:assert/strict';
import {after, before, test} from 'node:test';
import {mkdirSync, readFileSync} from 'node:fs';
import {address, allRows, gridOf, obstacles, openDesk, runReport, startBrowser, waitForGrid} from './desk_browser.mjs';

const pictures = process.env.DESK_PICTURES; // a folder for one picture of each state, to be looked at
if (pictures) mkdirSync(pictures, {recursive: true});

let browser;
let page;
const numbers = []; // of the two runs
before(async () => {
  browser = await startBrowser();
  page = await openDesk(browser);
});
after(() => browser.close());

const runNumber = () => /#\/run\/(\d+)/.exec(page.url())[1];
const hundredths = (text) => BigInt((text ?? '0.00').replaceAll(/[,.]/g, ''));

// The view that the page opens by what is done, and its path.
async function viewOpenedBy(kind, act, on = page) {
  const isIt = (response) => response.request().method() === 'POST' && response.url().endsWith(`/${kind}`);
  const [response] = await Promise.all([on.waitForResponse(isIt), act()]);
  const view = await response.json();
  return {...view, path: new URL(response.url()).pathname.replace(/\w+$/, `views/${view.id}`)};
}

const rowsOf = (view) => allRows(page, view.path);

// A pivot of a run, straight from the server.
async function pivotOf(run, asked) {
  const view = await page.evaluate(
    async ([path, body]) => {
      const headers = {'Content-Type': 'application/json'};
      return (await fetch(path, {method: 'POST', headers, body: JSON.stringify({lang: 'zh', ...body})})).json();
    },
    [`/api/runs/${run}/pivots`, asked],
  );
  return rowsOf({path: `/api/runs/${run}/views/${view.id}`});
}

async function showComparison(query, on = page) {
  const hash = `#/run/${numbers[0]}?report=outsum-item&layout=compare&with=${numbers[1]}&${query}`;
  const view = await viewOpenedBy('comparisons', () => on.goto(`${address}/${hash}`), on);
  await on.waitForSelector('.grid-area.pivot .grid');
  await waitForGrid(on);
  return view;
}

test('without another run of the report, it says how to get one', async () => {
  await runReport(page, 'outsum-item', {cModal: '1', iYear: '2023'});
  numbers[1] = runNumber();
  await page.click('.layout-bar a:has-text("对比")');
  await page.waitForSelector('.grid-area .card .message');
  assert.match(await page.innerText('.grid-area .message'), /再运行一次/);
  await page.click('.grid-area .primary-link');
  await page.waitForURL(/#\/report\/outsum-item/);
  // The next run has a dialog of its own, not this one with its year.
  await page.goto(`${address}/#/`);
  await page.waitForSelector('.reports');
});

test('the tab compares with the other run of the report, and the address says which', async () => {
  await runReport(page, 'outsum-item', {cModal: '1', iYear: '2024'});
  numbers[0] = runNumber();
  await runReport(page, 'sfc-item', {cModal: '1'});
  await page.goto(`${address}/#/run/${numbers[0]}?report=outsum-item`);
  await page.click('.layout-bar a:has-text("对比")');
  await page.waitForSelector('.grid-area.pivot .grid');
  await waitForGrid(page);
  const query = new URLSearchParams(new URL(page.url()).hash.split('?')[1]);
  assert.equal(query.get('layout'), 'compare');
  assert.equal(query.get('with'), numbers[1]);
  assert.deepEqual(await page.locator('#compare-with option').evaluateAll((all) => all.map((one) => one.value)), [
    numbers[1],
  ]);
  const head = await page.locator('regular-table thead').innerText();
  assert.match(head, /2024/);
  assert.match(head, /2023/);
  assert.match(head, /差额/);
  assert.equal((await gridOf(page)).rows.at(-1).kind, 'total');
});

test('figures are those of both runs on every level, with difference and percentage', async () => {
  const shown = await rowsOf(await showComparison('rows=costItemClass1,cInvCCode&figures=amount'));
  const asked = {rows: ['costItemClass1', 'cInvCCode'], measures: ['amount']};
  const byName = async (run) => new Map((await pivotOf(run, asked)).map(({cells}) => [`${cells[0]}|${cells[1]}`, cells[2]]));
  const [one, other] = [await byName(numbers[0]), await byName(numbers[1])];
  assert.equal(shown.length, new Set([...one.keys(), ...other.keys()]).size);
  const kinds = new Set();
  for (const {kind, cells} of shown) {
    const name = `${cells[0]}|${cells[1]}`;
    assert.equal(cells[2], one.get(name) ?? null, name);
    assert.equal(cells[3], other.get(name) ?? null, name);
    const difference = hundredths(cells[2]) - hundredths(cells[3]);
    assert.equal(hundredths(cells[4]), difference, name);
    const base = hundredths(cells[3]);
    if (base === 0n) assert.equal(cells[5], null, name);
    else {
      // |percent * base - difference * 100%| is at most half of the last digit.
      const off = hundredths(cells[5].replace('%', '')) * base - difference * 10000n;
      assert.ok(2n * (off < 0n ? -off : off) <= base, `${name}: ${cells[5]}`);
    }
    kinds.add(kind);
  }
  assert.deepEqual([...kinds].toSorted(), ['line', 'subtotal', 'total']);
});

test('months of two years stand side by side', async () => {
  const shown = await rowsOf(await showComparison('rows=month&figures=amount,unitCost'));
  const lines = shown.filter(({kind}) => kind === 'line');
  assert.deepEqual(
    lines.map(({cells}) => cells[0]),
    Array.from({length: 12}, (_, at) => String(at + 1).padStart(2, '0')),
  );
  for (const {cells} of lines) assert.ok(cells[1] && cells[2] && cells[3] && cells[4], cells[0]);
});

test('the rows behind a figure are those of its run, and Back leads to it', async () => {
  const shown = await rowsOf(await showComparison('rows=costItemClass1&figures=amount'));
  for (const [column, run] of [
    [1, numbers[0]],
    [2, numbers[1]],
  ]) {
    const cell = `regular-table tbody tr.kind-line >> nth=0 >> [aria-colindex="${column + 1}"]`;
    const listed = await viewOpenedBy('views', () => page.click(cell));
    await page.waitForURL(new RegExp(`#/run/${run}\\?.*layout=lines`));
    await page.waitForSelector('.grid-area:not(.pivot) .grid >> visible=true');
    const at = listed.columns.findIndex(({name}) => name === 'iMoney');
    const sum = (await rowsOf(listed)).reduce((all, {cells}) => all + hundredths(cells[at]), 0n);
    assert.equal(sum, hundredths(shown[0].cells[column]));
    await page.goBack();
    await page.waitForURL(/layout=compare/);
    await page.waitForSelector('.grid-area.pivot .grid >> visible=true');
    await waitForGrid(page);
  }
});

test('a heading orders by its column, and the file has what is shown', async () => {
  const shown = await rowsOf(await showComparison('rows=cInvCCode&figures=amount&order=-difference/amount'));
  const differences = shown.slice(0, -1).map(({cells}) => hundredths(cells[3]));
  assert.deepEqual(
    differences,
    differences.toSorted((a, b) => (a < b ? 1 : -Number(a > b))),
  );
  await page.click('.tools button:has-text("导出")');
  const [download] = await Promise.all([page.waitForEvent('download'), page.click('.exports a[href*="format=csv"]')]);
  const lines = readFileSync(await download.path(), 'utf8').replace(/^\uFEFF/, '').trim().split('\r\n');
  assert.equal(lines.length, shown.length + 1);
  assert.match(lines[0], /差额/);
  // Kind and level stand first; numbers have no separators and more decimals, shares are parts of one.
  for (const [at, {cells}] of shown.entries()) {
    const fields = lines[at + 1].split(',').slice(2);
    assert.equal(fields[0], cells[0]);
    for (const column of [1, 2, 3])
      assert.equal(fields[column].replace(/00$/, ''), (cells[column] ?? '').replaceAll(',', ''), lines[at + 1]);
    if (cells[4]) assert.equal(Math.round(Number(fields[4]) * 10000), Math.round(Number.parseFloat(cells[4].replaceAll(',', '')) * 100));
  }
});

test('every look has no obstacle and stays within the window', async () => {
  for (const {lang, scheme, size} of [
    {lang: 'zh', scheme: 'light', size: {width: 1400, height: 900}},
    {lang: 'en', scheme: 'dark', size: {width: 1400, height: 900}},
    {lang: 'en', scheme: 'light', size: {width: 900, height: 700}},
  ]) {
    const other = await openDesk(browser, {lang, scheme, size});
    await showComparison('rows=costItemClass1,cWhCode&figures=amount,quantity&order=-difference/amount', other);
    if (pictures) await other.screenshot({path: `${pictures}/compare-${lang}-${scheme}-${size.width}.png`});
    assert.deepEqual(await obstacles(other), []);
    const wide = await other.evaluate(
      () => document.querySelector('main').scrollWidth > document.querySelector('main').clientWidth + 1,
    );
    assert.ok(!wide, 'it is wider than the window');
    assert.equal(await other.locator('[data-axis="columns"]').count(), 0);
    await other.click('[data-axis="measures"] .add');
    assert.doesNotMatch(await other.innerText('.popup'), /%/, 'shares are not compared');
    assert.deepEqual(other.problems, []);
    await other.context().close();
  }
  assert.deepEqual(page.problems, []);
});
