// A long and wide result: how soon its first rows are there, how fast it is drawn again while scrolling, what a sort
// takes, and that a page's memory does not grow with it.
import assert from 'node:assert/strict';
import {after, before, test} from 'node:test';
import {availableParallelism, loadavg} from 'node:os';
import {address, focusHeading, gridOf, isDouble, openDesk, rearrange, runReport, startBrowser, waitForGrid} from './desk_browser.mjs';

const longest = 600000; // ms
let browser;
let page;
let query; // of the address that shows every column
let path;
const views = []; // that the page has opened
const call = (method, route) =>
  page.evaluate(
    async ([how, where]) => {
      const headers = {'Content-Type': 'application/json'};
      return (await fetch(`/api/${where}`, {method: how, headers})).json();
    },
    [method, route],
  );

// What else the machine does is no fault of the desk: where more wants to run than there are processors, everything takes
// longer by as much.
const busy = () => Math.max(1, loadavg()[0] / availableParallelism());
const atMost = (limit) => limit * busy();

before(async () => {
  browser = await startBrowser();
  page = await openDesk(browser);
  page.setDefaultTimeout(longest);
  page.on('response', async (response) => {
    if (response.request().method() !== 'POST' || !response.url().endsWith('/views')) return;
    const view = await response.json().catch(() => null);
    if (view?.id) views.push(view.id);
  });
  await runReport(page, 'fx-wt', {}, longest);
  const [run, asked] = (await gridOf(page)).hash.split('?');
  path = run;
  query = new URLSearchParams(asked);
  query.set('layout', 'lines');
  query.set('all', '1');
  query.delete('at');
});
after(() => browser.close());

// Opens the result anew, and gives the milliseconds until rows are to be seen.
async function show() {
  await page.goto(`${address}/#/`);
  await page.waitForSelector('.reports');
  await page.reload(); // the page lets go of the grid
  await page.waitForSelector('.reports');
  for (const view of views.splice(0)) await call('DELETE', `${path.replace('#/run/', 'runs/')}/views/${view}`);
  return page.evaluate(async (hash) => {
    const began = performance.now();
    location.hash = hash;
    const isShown = () =>
      document.querySelector('regular-table tbody td')?.textContent &&
      !document.querySelector('.grid-area[aria-busy]');
    while (!isShown()) await new Promise((go) => setTimeout(go, 5));
    return performance.now() - began;
  }, `${path}?${query}`);
}

// Until the account has put all rows in order: from then on each is at hand.
async function ordered() {
  await waitForGrid(page, longest);
  const run = path.replace('#/run/', 'runs/');
  for (;;) {
    const {rowCount, complete} = await call('GET', `${run}/views/${views.at(-1)}/rows?offset=0&limit=1`);
    const last = await call('GET', `${run}/views/${views.at(-1)}/rows?offset=${rowCount - 1}&limit=1`);
    if (complete && last.rows.length === 1) return;
    await page.waitForTimeout(100);
  }
}

// Scrolls to `count` places and gives the milliseconds from each scroll to the rows drawn, what is fetched included.
const redraws = (count, salt) =>
  page.evaluate(
    async ({number, first}) => {
      const scroller = document.querySelector('regular-table');
      const times = [];
      let seed = first;
      const random = () => (seed = (seed * 1103515245 + 12345) % 2147483648) / 2147483648;
      for (let index = 0; index < number; index += 1) {
        const began = performance.now();
        const drawn = new Promise((go) => scroller.addEventListener('regular-table-scroll', go, {once: true}));
        // Mostly by the page, as readers do; now and then somewhere else, and to the side.
        if (index % 5 === 4) scroller.scrollTop = random() * (scroller.scrollHeight - scroller.clientHeight);
        else scroller.scrollTop += 400;
        if (index % 3 === 2) scroller.scrollLeft = random() * (scroller.scrollWidth - scroller.clientWidth);
        await drawn;
        times.push(performance.now() - began);
      }
      return times.sort((a, b) => a - b);
    },
    {number: count, first: salt},
  );

test('the first rows are there within a second', async (t) => {
  const times = [];
  while (times.length < 3 && !(Math.min(...times) < atMost(1000))) {
    times.push(await show());
    await ordered();
  }
  const grid = await gridOf(page);
  assert.ok(grid.columnCount >= 100, `${grid.columnCount} columns`);
  t.diagnostic(
    `${grid.rowCount} rows x ${grid.columnCount} columns: first rows after ${times.map((ms) => ms.toFixed(0)).join(', ')} ms, others take ${busy().toFixed(1)} times the processors`,
  );
  assert.ok(Math.min(...times) < atMost(1000), `${times} ms`);
});

test('the rows are drawn again below 100 ms in the median', async (t) => {
  const grid = await gridOf(page);
  if (isDouble) assert.deepEqual([grid.rowCount, grid.columnCount], [700000, 100]);
  const times = await redraws(100, 7);
  const median = times[50];
  t.diagnostic(
    `median ${median.toFixed(0)} ms, 9 of 10 below ${times[90].toFixed(0)} ms, worst ${times.at(-1).toFixed(0)} ms`,
  );
  assert.ok(median < atMost(100), `${median} ms`);
  const nodes = await page.evaluate(() => document.querySelectorAll('*').length);
  assert.ok(nodes < 4000, `${nodes} elements`);
});

test("the page's memory stays flat", async (t) => {
  const session = await page.context().newCDPSession(page);
  await session.send('Performance.enable');
  const measure = async () => {
    await session.send('HeapProfiler.collectGarbage');
    const {metrics} = await session.send('Performance.getMetrics');
    const of = (name) => metrics.find((one) => one.name === name).value;
    return {heap: of('JSHeapUsedSize') / 1e6, nodes: of('Nodes'), listeners: of('JSEventListeners')};
  };
  await redraws(150, 11); // until as many rows are kept as ever will be
  const first = await measure();
  await redraws(200, 13);
  const second = await measure();
  await redraws(200, 17);
  const last = await measure();
  t.diagnostic(
    `heap ${first.heap.toFixed(1)}, ${second.heap.toFixed(1)}, ${last.heap.toFixed(1)} MB; nodes ${first.nodes}, ${last.nodes}; listeners ${first.listeners}, ${last.listeners}`,
  );
  assert.ok(last.heap < first.heap * 1.15 + 5, `${first.heap} MB, then ${last.heap} MB`);
  assert.ok(last.nodes < first.nodes * 1.2 + 500);
  assert.ok(last.listeners < first.listeners * 1.2 + 100);
});

test('every row can be gone to exactly, though the scroll area is cut off', async () => {
  const {rowCount} = await gridOf(page);
  const heads = await page.locator('thead tr').count();
  for (const row of [1, 2, Math.ceil(rowCount / 3), rowCount - 1, rowCount]) {
    await page.focus('regular-table table');
    await page.keyboard.press('Control+g');
    await page.keyboard.type(String(row));
    await page.keyboard.press('Enter');
    await page.waitForFunction((number) => document.querySelector(`tr[aria-rowindex="${number}"] .at`), row + heads);
  }
  await page.keyboard.press('ArrowUp');
  await page.waitForFunction(
    (number) => document.querySelector(`tr[aria-rowindex="${number}"] .at`),
    rowCount - 1 + heads,
  );
});

if (!isDouble) {
  test('a sort over all rows takes less than three times the query alone', async (t) => {
    // The report itself has read the whole result once, in the order that it gives it.
    const alone = await page.evaluate(async (run) => {
      const {statements, rowCount} = await (await fetch(`/api/${run}`)).json();
      return statements.filter(({sql, rows}) => /^\s*select/i.test(sql) && rows === rowCount).at(-1).ms;
    }, path.replace('#/run/', 'runs/'));
    const column = await focusHeading(page, ({index}) => index === 2);
    const times = [];
    for (let attempt = 0; attempt < 2; attempt += 1) {
      const began = performance.now();
      await rearrange(page, () => page.keyboard.press('Enter'), longest);
      times.push(performance.now() - began);
    }
    const grid = await gridOf(page);
    assert.equal(grid.columns.find(({index}) => index === column.index).sort, 'descending');
    const codes = grid.rows.map((row) => row.cells[column.index]);
    assert.deepEqual(codes, [...codes].sort().reverse());
    t.diagnostic(`query ${alone.toFixed(0)} ms, sorts ${times.map((ms) => ms.toFixed(0)).join(', ')} ms`);
    assert.ok(Math.max(...times) < 3 * alone);
  });
}

test('nothing was said against the pages', () => assert.deepEqual(page.problems, []));
