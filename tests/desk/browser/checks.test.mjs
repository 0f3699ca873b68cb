// The checks of the account: the list, the rows of each, and what a report says that their errors touch. The account has
// the faults that run.mjs names.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {address, beginDesk, obstacles, page, runReport, settled, waitForGrid} from './desk_browser.mjs';

beginDesk();

const lineOf = (words) => page.locator('.found-by', {hasText: words});
const openerOf = (words) => lineOf(words).locator('button');
const rowsBeneath = (words) => lineOf(words).locator('xpath=following-sibling::tr[1]');
const lineSum = '成本项目之和不等于明细账记录';

test('the start page leads to the checks, which are made and told one by one', async () => {
  await page.click('.to-checks a');
  await page.waitForSelector('.found-by');
  assert.equal(await page.title(), '账套检查 – sample-faulty.account');
  assert.equal(await page.locator('.found-by').count(), 16);
  assert.equal(await page.innerText('.checks > .message'), '16 项检查中有 2 项发现错误。');
  assert.deepEqual(await lineOf(lineSum).locator('td').allInnerTexts(), [
    '✕ 错误',
    '150',
    '-9.375',
    '收发存汇总表（按成本项目）、发出汇总表（按成本项目）、明细账（按成本项目）、凭证明细表（按成本项目）',
  ]);
  const clean = lineOf('所属记录不存在的成本项目');
  assert.equal((await clean.locator('td').first().innerText()).trim(), '✓ 通过');
  assert.equal(await clean.locator('button').count(), 0);
  assert.deepEqual(await obstacles(page), []);
});

test('the keyboard folds out the rows of a check, page by page', async () => {
  const opener = openerOf(lineSum);
  assert.equal(await opener.getAttribute('aria-expanded'), 'false');
  await opener.focus();
  await page.keyboard.press('Enter');
  const beneath = rowsBeneath(lineSum);
  await beneath.locator('tbody tr').first().waitFor();
  assert.equal(await opener.getAttribute('aria-expanded'), 'true');
  assert.equal(await beneath.locator('tbody tr').count(), 100);
  assert.match(await beneath.innerText(), /请重新分摊这些记录/);
  assert.equal(await beneath.locator('.pager span').innerText(), '第 1–100 条，共 150 条');
  const firstLines = await beneath.locator('tbody tr td:first-child').allInnerTexts();
  assert.deepEqual(await obstacles(page), []);
  await beneath.locator('.pager button:has-text("下一页")').focus();
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => /101/.test(document.querySelector('.pager span').textContent));
  assert.equal(await beneath.locator('tbody tr').count(), 50);
  assert.equal(await page.evaluate(() => document.activeElement.textContent), '上一页');
  const lastLines = await beneath.locator('tbody tr td:first-child').allInnerTexts();
  assert.equal(new Set([...firstLines, ...lastLines]).size, 150);
  // Of each row the amount, too.
  assert.ok((await beneath.locator('tbody tr td:last-child').allInnerTexts()).every((text) => text === '-0.0625'));
});

test('what is folded out stands in the address, in both languages', async () => {
  assert.match(page.url(), /#\/checks\?check=line-sum$/);
  await page.reload();
  await rowsBeneath(lineSum).locator('tbody tr').first().waitFor();
  await page.click('#language');
  const words = 'cost items that do not sum to their ledger line';
  await rowsBeneath(words).locator('tbody tr').first().waitFor();
  assert.equal(await page.innerText('h1'), 'Checks of the account');
  assert.match(await rowsBeneath(words).innerText(), /line [\d.]+, cost items [\d.]+/);
  await page.click('#language');
  await openerOf(lineSum).click();
  assert.ok(await rowsBeneath(lineSum).isHidden());
  assert.match(page.url(), /#\/checks$/);
});

test('a report whose rows are touched says so at its head, with the way to the rows', async () => {
  await runReport(page, 'sfc-item', {iYear: '2024'});
  const line = page.locator('.touched');
  await line.waitFor();
  const links = line.locator('a');
  assert.equal(await line.getAttribute('role'), 'status');
  assert.equal(await links.first().innerText(), `${lineSum}（150 行，金额 -9.375）`);
  assert.deepEqual(await obstacles(page), []);
  // It stays beside every layout.
  await page.locator('.layout-bar a').nth(1).click();
  await settled(page);
  await waitForGrid(page);
  assert.equal(await links.first().innerText(), `${lineSum}（150 行，金额 -9.375）`);
  await links.first().click();
  await rowsBeneath(lineSum).locator('tbody tr').first().waitFor();
  await page.goBack();
  await waitForGrid(page);
  assert.ok(await line.isVisible());
});

test('a report of other years is not touched', async () => {
  await runReport(page, 'sfc-item', {iYear: '2023'});
  const path = `/api/runs/${/run\/(\d+)/.exec(page.url())[1]}/checks`;
  const info = await page.evaluate(async (address) => {
    for (;;) {
      const answer = await (await fetch(address)).json();
      if (answer.state !== 'running') return answer;
    }
  }, path);
  assert.deepEqual(
    info.checks.map(({name}) => name),
    ['class-tree'],
    'which is of no year',
  );
  await page.locator('.touched', {hasText: '分类树以外'}).waitFor();
  assert.equal(await page.locator('.touched', {hasText: lineSum}).count(), 0);
});

test('the checks are made again, and stopped', async () => {
  await page.goto(`${address}/#/checks`);
  await page.waitForSelector('.found-by');
  // Held back, so that the state in between is seen for sure.
  let stopped = false;
  await page.route(/\/account\/checks$/, async (route) => {
    const answer = await route.fetch();
    const info = await answer.json();
    await route.fulfill({response: answer, json: {...info, state: stopped ? 'stopped' : 'running', checks: []}});
  });
  await page.route(/\/account\/checks\/stop$/, (route) => {
    stopped = true;
    return route.continue();
  });
  await page.click('.actions button:has-text("重新检查")');
  await page.waitForSelector('.progress .bar');
  assert.equal(await page.evaluate(() => document.activeElement.textContent), '停止');
  await page.keyboard.press('Enter');
  await page.waitForSelector('.checks > .message:has-text("检查已停止。")');
  await page.unrouteAll();
  await page.click('.actions button:has-text("重新检查")');
  await page.waitForSelector('.found-by');
  assert.deepEqual(page.problems, []);
});
