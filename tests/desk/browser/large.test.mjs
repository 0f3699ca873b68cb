// A long and wide result: how fast it is drawn again while scrolling, and that a page's memory does not grow with it.
import assert from 'node:assert/strict';
import {after, before, test} from 'node:test';
import {address, gridOf, isDouble, openDesk, runReport, startBrowser, waitForGrid} from './desk_browser.mjs';

let browser;
let page;
before(async () => {
  browser = await startBrowser();
  page = await openDesk(browser);
  page.setDefaultTimeout(120000);
  await runReport(page, 'fx-wt');
  const [path, query] = (await gridOf(page)).hash.split('?');
  const wide = new URLSearchParams(query);
  wide.set('layout', 'lines');
  wide.set('all', '1');
  wide.delete('at');
  await page.goto(`${address}/${path}?${wide}`);
  await page.waitForSelector('.layout-bar a[aria-current][href*="layout=lines"]');
  await waitForGrid(page, 120000);
  await page.waitForTimeout(500);
});
after(() => browser.close());

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

test('the rows are drawn again below 100 ms in the median', async (t) => {
  const grid = await gridOf(page);
  if (isDouble) assert.deepEqual([grid.rowCount, grid.columnCount], [700000, 100]);
  const times = await redraws(100, 7);
  const median = times[50];
  t.diagnostic(
    `${grid.rowCount} rows x ${grid.columnCount} columns: median ${median.toFixed(0)} ms, 9 of 10 below ${times[90].toFixed(0)} ms, worst ${times.at(-1).toFixed(0)} ms`,
  );
  assert.ok(median < 100, `${median} ms`);
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

test('nothing was said against the pages', () => assert.deepEqual(page.problems, []));
