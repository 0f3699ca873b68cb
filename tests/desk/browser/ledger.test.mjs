// A ledger: the cost items beneath its lines, and what a reader sees while it is being made.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {readFileSync} from 'node:fs';
import {beginDesk, exported, gridOf, page, rearrange, runReport, waitForGrid} from './desk_browser.mjs';

beginDesk();

const captionsOf = async () =>
  page.evaluate(() => [...[...document.querySelector('regular-table thead').rows].at(-1).cells].map((th) => th.title));
const hasCostItems = async () => (await captionsOf()).some((text) => text.startsWith('成本项目'));

test('while a report runs its head says what is known of its conditions, and then a sign tells of the rows', async () => {
  // What is on its way is held back, so that the state in between is seen for sure.
  let release;
  const held = new Promise((go) => (release = go));
  let hold = true;
  await page.route(/\/api\/runs\/\d+$/, async (route) => {
    const answer = await route.fetch();
    const info = await answer.json();
    if (hold && info.state) Object.assign(info, {state: 'running', conditions: [], elapsedMs: 40});
    await route.fulfill({response: answer, json: info});
  });
  await page.route(/\/events$/, (route) => (hold ? undefined : route.continue()));
  await page.route(/\/views$/, async (route) => {
    await held;
    await route.continue();
  });
  const done = runReport(page, 'fx-detail');
  await page.waitForSelector('.card.progress');
  const head = await page.innerText('.page-head .titles');
  assert.doesNotMatch(head, /没有条件/);
  assert.match(head, /0103-00026/);
  assert.match(await page.innerText('.elapsed'), /毫秒|秒/);
  hold = false;
  await page.reload();
  await page.waitForSelector('.grid-area[aria-busy=true] .busy-sign');
  assert.match(await page.innerText('.busy-sign'), /正在整理/);
  release();
  await done;
  assert.equal(await page.locator('.busy-sign').count(), 0);
  await page.unroute(/./);
});

test('columns of cost items come with the first line that is folded out, and go with the last', async () => {
  await page.unrouteAll();
  assert.ok(!(await hasCostItems()));
  const before = await gridOf(page);
  assert.ok(before.columns.length > 5);
  await page.focus('regular-table table');
  await page.keyboard.press('Control+Home');
  for (let step = 0; step < 30 && !(await page.locator('tr.folded-in > .at').count()); step += 1) {
    await page.keyboard.press('ArrowDown');
    await page.waitForTimeout(30);
  }
  await page.keyboard.press('Space');
  await page.waitForSelector('tr.kind-detail');
  await page.waitForFunction(() => [...document.querySelectorAll('thead th')].some((th) => th.title === '成本项目'));
  const open = await gridOf(page);
  assert.equal(open.columnCount, before.columnCount + 2);
  assert.ok(open.rows.find(({kind}) => kind === 'detail'));
  await page.keyboard.press('Space');
  await page.waitForFunction(() => ![...document.querySelectorAll('thead th')].some((th) => th.title === '成本项目'));
  assert.deepEqual(
    (await gridOf(page)).columns.map(({caption}) => caption),
    before.columns.map(({caption}) => caption),
  );
  assert.doesNotMatch(readFileSync(await exported('csv'), 'utf8').split('\r\n')[0], /成本项目/);
  await rearrange(page, () => page.click('.tools input[type=checkbox]'));
  assert.ok(await hasCostItems());
  await rearrange(page, () => page.click('.tools input[type=checkbox]'));
  await waitForGrid(page);
  assert.deepEqual(page.problems, []);
});
