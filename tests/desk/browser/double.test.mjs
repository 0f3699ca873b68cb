// What no sample account has, so that only the test double can play it: tens of thousands of codes, a run that lasts as
// long as it has to, a statement that the account refuses.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {beginDesk, openFilter, page} from './desk_browser.mjs';

beginDesk();

test('a lookup finds by pinyin initials among tens of thousands', async () => {
  await openFilter(page, 'sfc-item');
  await page.click('.field[data-key="cInvCode"] button.sign');
  await page.waitForFunction(() => /30,000/.test(document.querySelector('.lookup-foot')?.textContent ?? ''));
  await page.keyboard.type('ljls');
  await page.waitForFunction(() => /3,000/.test(document.querySelector('.lookup-foot').textContent));
  assert.match(await page.innerText('.lookup-list [role=option]'), /六角螺栓/);
  await page.keyboard.press('Escape');
});

test('a run shows its statements while it goes, and the button stops it', async () => {
  await openFilter(page, 'outsum-item', {cVouCode: 'slow'});
  await page.click('form button[type=submit]');
  await page.waitForURL(/#\/run\//);
  await page.waitForSelector('.under-way li:nth-child(3)');
  assert.match(await page.innerText('.elapsed'), /[\d.]+ 秒/);
  await page.click('.progress button.danger');
  await page.waitForFunction(() => !document.querySelector('.progress'));
  assert.ok((await page.innerText('main')).includes('报表已停止'));
});

test('a run that fails says why, with the statements so far', async () => {
  await openFilter(page, 'outsum-item', {cVouCode: 'broken'});
  await page.click('form button[type=submit]');
  await page.waitForSelector('.card.failed');
  assert.ok((await page.innerText('.card.failed')).includes("Invalid object name 'Ca_FxDef'."));
  assert.equal(await page.locator('.statements tbody tr').count(), 5);
});

test('nothing was said against the pages', () => assert.deepEqual(page.problems, []));
