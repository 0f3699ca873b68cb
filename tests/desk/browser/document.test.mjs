// The ledger and the documents behind its rows.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {beginDesk, gridOf, page, rearrange, reportsOf, runReport, waitForGrid} from './desk_browser.mjs';

beginDesk(async () => {
  const report = (await reportsOf(page)).find(({layouts}) => layouts.some(({name}) => name === 'ledger'));
  await runReport(page, report.name);
});

test('a ledger begins and ends with a balance and has month sums', async () => {
  await page.focus('regular-table table');
  await page.keyboard.press('Control+Home');
  assert.equal((await gridOf(page)).rows[0].kind, 'opening');
  const kinds = new Set();
  for (let step = 0; step < 40; step += 1) {
    for (const {kind} of (await gridOf(page)).rows) kinds.add(kind);
    await page.keyboard.press('PageDown');
    await page.waitForTimeout(30);
  }
  assert.ok(kinds.has('line') && kinds.has('monthTotal'), [...kinds].join());
  await page.keyboard.press('Control+Home');
});

test('figures, dates and numbers of documents are shown in full, though the rows come bit by bit', async () => {
  const cut = await page.evaluate(() =>
    [...document.querySelectorAll('regular-table tbody .number, .totals .number, regular-table tbody .first')]
      .filter((cell) => cell.scrollWidth > cell.clientWidth + 1)
      .map((cell) => cell.textContent),
  );
  assert.deepEqual(cut, []);
});

test('cost items fold out for all lines at once', async () => {
  const before = (await gridOf(page)).rowCount;
  await rearrange(page, () => page.click('.tools .check input'));
  assert.ok(page.url().includes('details=1'));
  const grid = await gridOf(page);
  assert.ok(grid.rowCount > before);
  assert.ok(grid.rows.some(({kind}) => kind === 'detail'));
  await rearrange(page, () => page.click('.tools .check input'));
  assert.equal((await gridOf(page)).rowCount, before);
});

test('and for one line, by key and by mouse', async () => {
  await page.focus('regular-table table');
  await page.keyboard.press('Control+Home');
  await page.keyboard.press('ArrowDown');
  const before = await gridOf(page);
  await page.keyboard.press('Space');
  await page.waitForSelector('tr.folded-out');
  let grid = await gridOf(page);
  const below = grid.rowCount - before.rowCount;
  assert.ok(below > 0);
  assert.ok(grid.rows.slice(2, 2 + below).every(({kind}) => kind === 'detail'));
  // The cost items' columns have come in behind the line's own.
  const own = ({cells}) => [1, 2, 3, 4, 5, 6].map((column) => cells[column]);
  assert.deepEqual(own(grid.rows[2 + below]), own(before.rows[2]));
  assert.equal(grid.columnCount, before.columnCount + 2);
  assert.equal(await page.getAttribute('tr.folded-out', 'aria-expanded'), 'true');
  await page
    .locator('tr.folded-in > .first')
    .nth(2)
    .click({position: {x: 12, y: 14}});
  await page.waitForFunction(() => document.querySelectorAll('tr.folded-out').length === 2);
  await page.focus('regular-table table');
  await page.keyboard.press('Space');
  await page.waitForFunction(() => document.querySelectorAll('tr.folded-out').length < 2);
  grid = await gridOf(page);
  assert.match(grid.totals.at(-1).join(), /期末结存/);
  await page.keyboard.press('Control+Home');
});

test('Enter opens the document of a row, and Back returns to the same place', async () => {
  await page.focus('regular-table table');
  await page.keyboard.press('PageDown');
  await page.waitForTimeout(200);
  for (let step = 0; step < 30; step += 1) {
    if (await page.locator('tr.opens > .at').count()) break;
    await page.keyboard.press('ArrowDown');
    await page.waitForTimeout(30);
  }
  const before = await gridOf(page);
  await page.keyboard.press('Enter');
  await page.waitForSelector('dialog.modal');
  assert.match(page.url(), /\/document\/\d+\?/);
  assert.ok((await page.locator('dialog .document, dialog .message').count()) > 0);
  await page.goBack();
  await page.waitForSelector('dialog.modal', {state: 'detached'});
  const after = await gridOf(page);
  assert.equal(after.active.id, before.active.id);
  assert.deepEqual(
    after.rows.map(({index}) => index),
    before.rows.map(({index}) => index),
  );
  assert.equal(await page.evaluate(() => document.activeElement.matches('regular-table table')), true);
  // The same by the window's own way out, by double click, and opened anew from its address.
  await page.keyboard.press('Enter');
  await page.waitForSelector('dialog.modal');
  await page.keyboard.press('Escape');
  await page.waitForSelector('dialog.modal', {state: 'detached'});
  await page.waitForFunction(() => !location.hash.includes('/document/'));
  assert.equal((await gridOf(page)).active.id, before.active.id);
  await page.dblclick('tr.opens > .at');
  await page.waitForSelector('dialog.modal');
  const link = page.url();
  await page.goto('about:blank');
  await page.goto(link);
  await page.waitForSelector('dialog.modal');
  await page.keyboard.press('Escape');
  await waitForGrid(page);
  await page.waitForFunction(() => !location.hash.includes('/document/'));
});

test('what the component says beside a document is shown with it', async () => {
  await page.focus('regular-table table');
  // The last lines of the year have no voucher yet.
  await page.keyboard.press('Control+End');
  await page.waitForTimeout(200);
  for (let step = 0; step < 6 && !(await page.locator('tr.opens > .at').count()); step += 1) {
    await page.keyboard.press('ArrowUp');
    await page.waitForTimeout(50);
  }
  await page.keyboard.press('Enter');
  await page.waitForSelector('dialog .message');
  assert.equal(await page.innerText('dialog .message'), '该记录没有生成凭证');
  assert.match(await page.innerText('dialog'), /源单据/);
  assert.doesNotMatch(await page.innerText('dialog'), /记账凭证/);
  await page.keyboard.press('Escape');
});

test('nothing was said against the pages', () => assert.deepEqual(page.problems, []));
