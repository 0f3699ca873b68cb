// The grid: what a reader does with rows and columns, with the keyboard alone where nothing else is said.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {readFileSync} from 'node:fs';
import {
  address,
  beginDesk,
  exported,
  focusHeading,
  gridOf,
  isDouble,
  obstacles,
  page,
  rearrange,
  runReport,
  waitForGrid,
} from './desk_browser.mjs';

beginDesk(async () => {
  await runReport(page, isDouble ? 'outsum-item' : 'fx-wt');
  await rearrange(page, () => page.locator('.layout-bar a', {hasText: '明细'}).last().click());
});

const textOf = (grid, row, column) => grid.rows[row].cells[column.index];
const isText = (column) => !column.number;
// A column of words that has one in the first row: an account compares dates as dates, so they do not take any text.
const isWord = (column, text) => column.index > 2 && isText(column) && text && !/^\d{4}-\d\d-\d\d/.test(text);
// Whether figures stand in this order: compared as texts of equal length, never as binary numbers.
const units = (text) => {
  const [, sign, whole, part = ''] = /^(-?)([\d,]+)(?:\.(\d+))?$/.exec(text);
  return BigInt(sign + whole.replaceAll(',', '') + part.padEnd(8, '0'));
};

test('headings, rows and totals stand in the same columns', async () => {
  const places = await page.evaluate(() => ({
    heads: [...document.querySelectorAll('thead tr:last-child th')].map((th) =>
      Math.round(th.getBoundingClientRect().right),
    ),
    first: [...document.querySelector('regular-table tbody tr').cells].map((cell) =>
      Math.round(cell.getBoundingClientRect().right),
    ),
    totals: [...document.querySelectorAll('.totals tr:first-child td')].map((cell) =>
      Math.round(cell.getBoundingClientRect().right),
    ),
  }));
  assert.deepEqual(places.first, places.heads);
  assert.deepEqual(places.totals, places.heads);
});

test('arrows, pages, Home and End go through all rows; the address keeps the place', async () => {
  await page.focus('regular-table table');
  await page.keyboard.press('Control+Home');
  const {rowCount, columnCount} = await gridOf(page);
  await page.keyboard.press('ArrowDown');
  await page.keyboard.press('ArrowRight');
  assert.equal((await gridOf(page)).active.id, 'cell-1-1');
  await page.keyboard.press('Control+End');
  await page.waitForFunction((id) => document.getElementById(id), `cell-${rowCount - 1}-${columnCount - 1}`);
  // The last row stands above the totals, not below them.
  const clear = await page.evaluate(() => {
    const at = document.querySelector('regular-table td.at').getBoundingClientRect();
    const box = document.querySelector('regular-table').getBoundingClientRect();
    return at.bottom <= document.querySelector('.totals').getBoundingClientRect().top + 1 && at.right <= box.right + 1;
  });
  assert.ok(clear);
  await page.waitForFunction((row) => location.hash.includes(`row=${row}`), rowCount);
  await page.keyboard.press('PageUp');
  const {active} = await gridOf(page);
  assert.notEqual(active.id, `cell-${rowCount - 1}-${columnCount - 1}`);
  await page.keyboard.press('Control+Home');
  await page.waitForFunction(() => document.getElementById('cell-0-0'));
});

test('key columns stay while the others scroll', async () => {
  const before = await gridOf(page);
  await page.keyboard.press('End');
  await page.waitForFunction(
    (index) => document.querySelector(`thead th[aria-colindex="${index}"]`),
    before.columnCount,
  );
  const scrolled = await gridOf(page);
  assert.equal(scrolled.columns[0].index, 1);
  assert.equal(scrolled.columns[0].left, before.columns[0].left);
  assert.ok(scrolled.columns.at(-1).index === before.columnCount);
  await page.keyboard.press('Home');
  await page.waitForTimeout(100);
});

test('rows are sorted over the whole result, by several columns', async () => {
  const column = await focusHeading(page, isText);
  await rearrange(page, () => page.keyboard.press('Enter'));
  let grid = await gridOf(page);
  assert.equal(grid.columns.find(({index}) => index === column.index).sort, 'ascending');
  const first = textOf(grid, 0, column);
  await rearrange(page, () => page.keyboard.press('Enter'));
  grid = await gridOf(page);
  assert.equal(grid.columns.find(({index}) => index === column.index).sort, 'descending');
  assert.ok(textOf(grid, 0, column) >= first);
  // Once more by another column behind it.
  await page.keyboard.press('ArrowRight');
  await rearrange(page, () => page.keyboard.press('Shift+Enter'));
  grid = await gridOf(page);
  assert.equal(grid.columns.filter(({sort}) => sort !== 'none').length, 2);
  assert.match(grid.hash, /sort=-\w+%2C\w+/);
  assert.equal(await page.locator('.chips .chip').count(), 2);
  await rearrange(page, () => page.goBack());
  assert.equal((await gridOf(page)).columns.filter(({sort}) => sort !== 'none').length, 1);
  await rearrange(page, () => page.click('.chips .remove'));
});

test('figures are sorted as numbers', async () => {
  // Go right until a heading of figures is in sight.
  await page.focus('regular-table table');
  await page.keyboard.press('Control+Home');
  await page.keyboard.press('ArrowUp');
  let column;
  for (let step = 0; step < 60; step += 1) {
    const grid = await gridOf(page);
    column = grid.columns.find(({index, number}) => number && index === grid.active.column);
    if (column) break;
    await page.keyboard.press('ArrowRight');
    await page.waitForTimeout(30);
  }
  await rearrange(page, () => page.keyboard.press('Enter'));
  await rearrange(page, () => page.keyboard.press('Enter'));
  const grid = await gridOf(page);
  const figures = grid.rows
    .map((row) => row.cells[column.index])
    .filter(Boolean)
    .map(units);
  assert.ok(figures.length > 1);
  for (let at = 1; at < figures.length; at += 1) assert.ok(figures[at] <= figures[at - 1]);
  await rearrange(page, () => page.click('.chips .remove'));
});

test('a column is filtered by what it contains, equals, and by a range; count and totals are of what is left', async () => {
  const whole = await gridOf(page);
  const column = await focusHeading(page, isWord);
  const value = column.text;
  const filter = async (kind, fill) => {
    await page.keyboard.press('Alt+ArrowDown');
    await page.waitForSelector('.column-filter');
    await page.selectOption('.column-filter select', kind);
    await fill();
    await rearrange(page, () => page.click('.column-filter button[type=submit]'));
    return gridOf(page);
  };
  let grid = await filter('contains', () => page.fill('.column-filter .values input', value.slice(0, 1)));
  assert.ok(grid.rowCount > 0 && grid.rowCount <= whole.rowCount);
  assert.ok(grid.rows.every((row) => row.cells[column.index].includes(value.slice(0, 1))));
  grid = await filter('equals', () => page.fill('.column-filter textarea', `${value}\nno such value`));
  assert.ok(grid.rows.length > 0 && grid.rows.every((row) => row.cells[column.index] === value));
  assert.ok((await page.innerText('.counts')).includes(grid.rowCount.toLocaleString('zh-CN')));
  grid = await filter('range', async () => {
    await page.fill('.column-filter .values input >> nth=0', value);
    await page.fill('.column-filter .values input >> nth=1', value);
  });
  assert.ok(grid.rows.length > 0 && grid.rows.every((row) => row.cells[column.index] === value));
  assert.equal(grid.columns.find(({index}) => index === column.index).caption, column.caption);
  await rearrange(page, () => page.click('.chips .remove'));
  assert.equal((await gridOf(page)).rowCount, whole.rowCount);
});

test('columns are hidden, moved and widened; the layout gives them back', async () => {
  const before = await gridOf(page);
  const column = await focusHeading(page, ({index}) => index === 2);
  await rearrange(page, () => page.keyboard.press('Alt+ArrowRight'));
  let grid = await gridOf(page);
  assert.equal(grid.columns[2].caption, column.caption);
  await page.keyboard.press('Alt+ArrowDown');
  await rearrange(page, () => page.click('.menu button:has-text("隐藏此列")'));
  grid = await gridOf(page);
  assert.equal(grid.columnCount, before.columnCount - 1);
  assert.ok(!grid.columns.some(({caption}) => caption === column.caption));
  const width = grid.columns[0].width;
  await focusHeading(page, ({index}) => index === 1);
  await page.keyboard.press('Alt+ArrowDown');
  await page.click('.menu button:has-text("加宽")');
  await page.waitForFunction(
    (old) => document.querySelector('thead tr:last-child th').getBoundingClientRect().width > old,
    width,
  );
  await page.click('.tools button:has-text("列")');
  await page.waitForSelector('.column-lists');
  await page.fill('.column-search input[type=search]', column.caption);
  await page.click('.column-lists section:last-child li button');
  await rearrange(page, () => page.click('.modal-foot button.primary'));
  assert.equal((await gridOf(page)).columnCount, before.columnCount);
  await page.click('.tools button:has-text("列")');
  await rearrange(page, () => page.click('.modal-foot button >> nth=0'));
  grid = await gridOf(page);
  assert.deepEqual(
    grid.columns.slice(0, 3).map(({caption}) => caption),
    before.columns.slice(0, 3).map(({caption}) => caption),
  );
});

test('a heading is dragged by the mouse, and its border makes it wider', async () => {
  const before = await gridOf(page);
  const box = async (index) => page.locator(`thead th[aria-colindex="${index}"]`).last().boundingBox();
  const from = await box(3);
  const to = await box(5);
  await rearrange(page, async () => {
    await page.mouse.move(from.x + 20, from.y + 12);
    await page.mouse.down();
    await page.mouse.move(to.x + 10, to.y + 12, {steps: 5});
    await page.mouse.up();
  });
  assert.equal((await gridOf(page)).columns[4].caption, before.columns[2].caption);
  const edge = await box(4);
  await page.mouse.move(edge.x + edge.width - 2, edge.y + 12);
  await page.mouse.down();
  await page.mouse.move(edge.x + edge.width + 60, edge.y + 12, {steps: 4});
  await page.mouse.up();
  await page.waitForTimeout(200);
  assert.ok((await box(4)).width > edge.width + 40);
  const aligned = await page.evaluate(() =>
    [...document.querySelectorAll('.totals tr:first-child td')].map((cell, at) =>
      Math.abs(
        cell.getBoundingClientRect().right -
          document.querySelectorAll('thead tr:last-child th')[at].getBoundingClientRect().right,
      ),
    ),
  );
  assert.ok(aligned.every((gap) => gap <= 1));
  await rearrange(page, () => page.goBack());
});

test('rows are grouped, with subtotals', async () => {
  await focusHeading(page, (one) => isText(one) && one.index > 2);
  await page.keyboard.press('Alt+ArrowDown');
  await rearrange(page, () => page.click('.menu button:has-text("按此列分组")'));
  assert.match(page.url(), /group=/);
  await page.keyboard.press('Control+End');
  await page.waitForTimeout(300);
  const grid = await gridOf(page);
  assert.ok(
    grid.rows.some(({kind}) => kind === 'subtotal'),
    JSON.stringify(grid.rows.at(-1)),
  );
  await rearrange(page, () => page.click('.chips .remove'));
});

test('go to row puts that row in sight and the keyboard on it', async () => {
  const {rowCount} = await gridOf(page);
  const row = Math.ceil(rowCount * 0.6);
  await page.focus('regular-table table');
  await page.keyboard.press('Control+g');
  await page.keyboard.type(String(row));
  await page.keyboard.press('Enter');
  await page.waitForFunction(
    (number) => document.querySelector(`tr[aria-rowindex="${number}"] .at`),
    row + (await page.locator('thead tr').count()),
  );
  await page.keyboard.press('Control+g');
  await page.keyboard.type(String(rowCount + 1));
  await page.keyboard.press('Enter');
  await page.waitForSelector('.notice.error');
  await page.click('.notice button');
});

test('a block is copied as text for a spreadsheet', async () => {
  await page.focus('regular-table table');
  await page.keyboard.press('Control+Home');
  await page.waitForTimeout(200);
  for (const key of ['Shift+ArrowDown', 'Shift+ArrowDown', 'Shift+ArrowRight']) await page.keyboard.press(key);
  const grid = await gridOf(page);
  await page.keyboard.press('Control+c');
  await page.waitForSelector('.notice');
  const text = await page.evaluate(() => navigator.clipboard.readText());
  assert.equal(
    text,
    grid.rows
      .slice(0, 3)
      .map((row) => `${row.cells[1]}\t${row.cells[2]}`)
      .join('\n'),
  );
  assert.equal(await page.locator('[aria-selected=true]').count(), 6);
});

test('exports are of exactly what is shown', async () => {
  const column = await focusHeading(page, isWord);
  const value = column.text;
  await page.keyboard.press('Alt+ArrowDown');
  await page.selectOption('.column-filter select', 'equals');
  await page.fill('.column-filter textarea', value);
  await rearrange(page, () => page.click('.column-filter button[type=submit]'));
  const grid = await gridOf(page);
  for (const format of ['csv', 'xlsx', 'html']) {
    const content = readFileSync(await exported(format));
    assert.ok(content.length > 0, format);
    if (format === 'csv') {
      const heading = content
        .toString('utf8')
        .replace(/^\uFEFF/, '')
        .split(/\r?\n/)[0];
      assert.ok(heading.includes(grid.columns[0].caption), heading);
      assert.ok(heading.split(',').length >= grid.columnCount);
    }
  }
  await rearrange(page, () => page.click('.chips .remove'));
});

test('Back from elsewhere finds the grid as it was left', async () => {
  await page.focus('regular-table table');
  await page.keyboard.press('Control+Home');
  for (let step = 0; step < 3; step += 1) await page.keyboard.press('PageDown');
  await page.keyboard.press('ArrowRight');
  await page.waitForTimeout(400);
  const before = await gridOf(page);
  await page.click('.brand');
  await page.waitForSelector('.reports');
  await page.goBack();
  await waitForGrid(page);
  await page.waitForTimeout(200);
  const after = await gridOf(page);
  assert.equal(after.active.id, before.active.id);
  assert.deepEqual(
    after.rows.map(({index}) => index),
    before.rows.map(({index}) => index),
  );
  // And so does the address, opened anew.
  await page.goto('about:blank');
  await page.goto(`${address}/${before.hash}`);
  await waitForGrid(page);
  await page.waitForFunction((id) => document.getElementById(id), before.active.id);
});

test('a layout that cannot be shown as asked says so and offers the way out', async () => {
  const {hash} = await gridOf(page);
  const query = new URLSearchParams(hash.split('?')[1]);
  query.set('columns', 'noSuchColumn');
  await page.goto(`${address}/${hash.split('?')[0]}?${query}`);
  await page.waitForSelector('.grid-area .message');
  await page.click('.grid-area .card > button');
  await waitForGrid(page);
});

test('a filter that is refused says so at the column, and the rows stay with their other filters', async () => {
  const isDate = (column, text) => /^\d{4}-\d\d-\d\d$/.test(text);
  const word = await focusHeading(page, isWord);
  await page.keyboard.press('Alt+ArrowDown');
  await page.selectOption('.column-filter select', 'equals');
  await page.fill('.column-filter textarea', word.text);
  await rearrange(page, () => page.click('.column-filter button[type=submit]'));
  const before = await gridOf(page);
  await focusHeading(page, isDate);
  await page.keyboard.press('Alt+ArrowDown');
  await page.selectOption('.column-filter select', 'range');
  await page.fill('.column-filter .values input >> nth=0', 'yesterday');
  await page.keyboard.press('Enter');
  await page.waitForSelector('.column-filter .message:not([hidden])');
  assert.match(await page.innerText('.column-filter .message'), /yesterday/);
  assert.equal(await page.getAttribute('.column-filter .values input >> nth=0', 'aria-invalid'), 'true');
  assert.deepEqual(await obstacles(page), []);
  assert.deepEqual((await gridOf(page)).rows, before.rows);
  await page.fill('.column-filter .values input >> nth=0', '2000-01-01');
  await rearrange(page, () => page.keyboard.press('Enter'));
  const after = await gridOf(page);
  assert.equal(after.rowCount, before.rowCount);
  assert.equal(await page.locator('.chips .chip').count(), 2);
  await rearrange(page, () => page.click('.chips button.quiet'));
});

test('nothing was said against the pages', () => assert.deepEqual(page.problems, []));
