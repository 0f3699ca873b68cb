// The start page and the filter dialog: what the report's own dialog decides, lookups, dates, the address, filters by
// name.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {address, beginDesk, isDouble, openFilter, page, reportsOf, settled} from './desk_browser.mjs';

beginDesk();

// The fields of the dialog as they stand there.
const fieldOf = (key) => `.field[data-key="${key}"]`;
const stateOf = (key) =>
  page.evaluate((selector) => {
    const field = document.querySelector(selector);
    const input = field.querySelector('select, input');
    return {
      value: input.value,
      disabled: input.disabled,
      chips: [...field.querySelectorAll('.chip')].length,
      message: field.querySelector('.field-message').textContent,
      refused: field.classList.contains('refused'),
    };
  }, fieldOf(key));

test('the start page shows the account and leads to every report', async () => {
  await page.goto(`${address}/#/`);
  const account = await page.evaluate(async () => (await fetch('/api/account')).json());
  const reports = await reportsOf(page);
  await page.waitForSelector('.reports a');
  assert.equal(await page.locator('.reports a').count(), reports.length);
  const text = await page.innerText('main');
  assert.ok(text.includes(account.name) && text.includes(account.startDate));
  assert.equal(await page.locator('.start table.data').first().locator('tbody tr').count(), account.years.length);
  for (const report of reports) {
    await page.goto(`${address}/#/`);
    await page.click(`.reports a:has-text("${report.title.zh}")`);
    await page.waitForSelector('.field');
    assert.equal(await page.locator('.field').count(), report.items.length, report.name);
    assert.equal(await page.innerText('h1'), report.title.zh);
  }
});

test("a change runs the report's callbacks: availability follows", async () => {
  const report = (await reportsOf(page)).find(({items}) => items.some(({key}) => key === 'iGrade'));
  await openFilter(page, report.name, {cModal: '0'});
  assert.equal((await stateOf('iGrade')).disabled, false);
  await page.selectOption(`${fieldOf('cModal')} select`, '2');
  await page.waitForSelector(`${fieldOf('iGrade')} select[disabled]`);
  await page.selectOption(`${fieldOf('cModal')} select`, '0');
  await page.waitForSelector(`${fieldOf('iGrade')} select:not([disabled])`);
});

test('the whole filter stands in the address, and an address is a filter', async () => {
  const report = (await reportsOf(page)).find(
    ({items}) => items.some(({key, range}) => key === 'dKeepDate' && range) && items.some(({key}) => key === 'cModal'),
  );
  await openFilter(page, report.name);
  await page.fill(`${fieldOf('dKeepDate')} input >> nth=0`, '2024/3/1');
  await page.keyboard.press('Tab');
  await page.waitForFunction(() => location.hash.includes('f.dKeepDate=2024-03-01'));
  await page.fill(`${fieldOf('dKeepDate')} input >> nth=1`, '20240331');
  await page.keyboard.press('Tab');
  await page.waitForFunction(() => location.hash.includes('t.dKeepDate=2024-03-31'));
  await page.selectOption(`${fieldOf('cModal')} select`, '1');
  await page.waitForFunction(() => location.hash.includes('f.cModal=1'));
  const link = page.url();
  await page.goto(`${address}/#/`);
  await page.waitForSelector('.reports');
  await page.goto(link);
  await page.waitForSelector('.field');
  await settled(page);
  assert.equal((await stateOf('dKeepDate')).value, '2024-03-01');
  assert.equal(await page.inputValue(`${fieldOf('dKeepDate')} input >> nth=1`), '2024-03-31');
  assert.equal((await stateOf('cModal')).value, '1');
});

test('what is no date, and what is refused, is said at its item', async () => {
  const report = (await reportsOf(page)).find(({items}) => items.some(({key, range}) => key === 'dKeepDate' && range));
  await openFilter(page, report.name);
  await page.fill(`${fieldOf('dKeepDate')} input >> nth=0`, '2024-02-30');
  await page.keyboard.press('Tab');
  await page.waitForSelector(`${fieldOf('dKeepDate')}.refused`);
  assert.match((await stateOf('dKeepDate')).message, /2024-02-30/);
  assert.ok(!page.url().includes('2024-02-30'));
  await page.fill(`${fieldOf('dKeepDate')} input >> nth=0`, '2024-02-29');
  await page.keyboard.press('Tab');
  await page.waitForFunction(
    (selector) => !document.querySelector(selector).classList.contains('refused'),
    fieldOf('dKeepDate'),
  );
});

test("confirming without what is required shows the callback's words there and runs nothing", async () => {
  const reports = await reportsOf(page);
  const report = reports.find(({items}) => items.some(({key, required}) => key === 'cInvCode' && required));
  await openFilter(page, report.name);
  const runs = await page.evaluate(async () => (await (await fetch('/api/runs')).json()).length);
  await page.click('form button[type=submit]');
  await page.waitForSelector('.field.refused');
  const message = await page.innerText('.field.refused .field-message');
  assert.ok(message.length > 0);
  assert.equal(await page.getAttribute('.field.refused input', 'aria-invalid'), 'true');
  assert.ok(page.url().includes('#/report/'));
  assert.equal(await page.evaluate(async () => (await (await fetch('/api/runs')).json()).length), runs);
  assert.equal(
    await page.evaluate(() => document.querySelector('.field.refused').contains(document.activeElement)),
    true,
  );
});

test('a lookup is searched, paged and chosen from by keyboard alone', async () => {
  const report = (await reportsOf(page)).find(({items}) =>
    items.some(({key, multiple, lookup}) => key === 'cInvCode' && multiple && lookup),
  );
  await openFilter(page, report.name);
  await page.focus(`${fieldOf('cInvCode')} input`);
  await page.keyboard.press('Alt+ArrowDown');
  await page.waitForSelector('.lookup-list [role=option]');
  const first = await page.innerText('.lookup-list [role=option] .code');
  await page.click('.lookup-foot button >> nth=1');
  await page.waitForFunction((code) => !document.querySelector('.lookup-list').textContent.includes(code), first);
  await page.fill('.modal input[type=search]', first.trim());
  await page.waitForFunction(
    (code) => document.querySelector('.lookup-list .code')?.textContent.includes(code),
    first.trim(),
  );
  await page.focus('.modal input[type=search]');
  await page.keyboard.press('Enter');
  await page.waitForSelector('.modal .chips .chip');
  await page.keyboard.press('Control+Enter');
  await page.waitForFunction((key) => location.hash.includes(`f.${key}=`), 'cInvCode');
  assert.equal((await stateOf('cInvCode')).chips, 1);
  assert.equal(await page.evaluate(() => document.activeElement.closest('.field')?.dataset.key), 'cInvCode');
  await page.keyboard.press('Backspace');
  await page.waitForFunction((key) => !location.hash.includes(`f.${key}=`), 'cInvCode');
  assert.equal((await stateOf('cInvCode')).chips, 0);
});

if (!isDouble) {
  test('a lookup finds by a part of the code, of the name and by pinyin initials', async () => {
    await openFilter(page, 'fx-detail');
    await page.click(`${fieldOf('cWhCode')} button.sign`);
    for (const text of ['02', '外购', 'wgj']) {
      await page.fill('.modal input[type=search]', text);
      await page.waitForFunction(() => document.querySelectorAll('.lookup-list [role=option]').length === 1);
      assert.match(await page.innerText('.lookup-list [role=option]'), /02\s+外购件库/);
    }
    await page.keyboard.press('Escape');
  });

  test('what is not enough is said line by line, with what there is to choose from, in both languages', async () => {
    await openFilter(page, 'fx-detail');
    const words = () => page.innerText(`${fieldOf('cWhCode')}.refused .field-message`);
    await page.click('form button[type=submit]');
    await page.waitForSelector('.field.refused');
    assert.match(await words(), /仓库不能为空\n.*01 原材料库、02 外购件库/);
    await page.click('#language');
    await page.waitForFunction(() => document.documentElement.lang === 'en');
    await settled(page);
    await page.click('form button[type=submit]');
    await page.waitForSelector('.field.refused');
    assert.match(await words(), /the warehouse must be given\n.*01 原材料库, 02 外购件库/);
    await page.click('#language');
    await page.waitForFunction(() => document.documentElement.lang === 'zh-CN');
    await settled(page);
    await page.fill(`${fieldOf('cWhCode')} input`, '02');
    await page.keyboard.press('Tab');
    await settled(page);
    await page.click('form button[type=submit]');
    await page.waitForSelector(`${fieldOf('cInvCode')}.refused`);
    assert.match(await page.innerText(`${fieldOf('cInvCode')} .field-message`), /存货不能为空/);
  });
}

test('several values can be pasted as lines', async () => {
  const report = (await reportsOf(page)).find(({items}) =>
    items.some(({key, multiple}) => /batch/i.test(key) && multiple),
  );
  const {key} = report.items.find((item) => /batch/i.test(item.key));
  await openFilter(page, report.name);
  await page.evaluate(() => navigator.clipboard.writeText('B1\r\nB2\r\nB3'));
  await page.focus(`${fieldOf(key)} input`);
  await page.keyboard.press('Control+V');
  await page.waitForFunction(
    (name) => new URLSearchParams(location.hash.split('?')[1]).getAll(`f.${name}`).length === 3,
    key,
  );
  assert.equal((await stateOf(key)).chips, 3);
});

test('the calendar gives a date by keyboard', async () => {
  const report = (await reportsOf(page)).find(({items}) => items.some(({key, range}) => key === 'dKeepDate' && range));
  await openFilter(page, report.name);
  await page.fill(`${fieldOf('dKeepDate')} input >> nth=0`, '2024-02-27');
  await page.keyboard.press('Tab');
  await page.focus(`${fieldOf('dKeepDate')} input >> nth=0`);
  await page.keyboard.press('Alt+ArrowDown');
  await page.waitForSelector('.calendar');
  for (const key of ['ArrowRight', 'ArrowRight', 'ArrowDown', 'PageDown']) await page.keyboard.press(key); // 29 Feb, 7 Mar, 7 Apr
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => location.hash.includes('f.dKeepDate=2024-04-07'));
  assert.equal(await page.locator('.calendar').count(), 0);
});

test('a filter is saved by name, loaded, opened from the start page and deleted', async () => {
  const report = (await reportsOf(page)).find(({items}) => items.some(({key}) => key === 'cModal'));
  const name = `浏览器测试 ${Date.now()}`;
  await openFilter(page, report.name, {cModal: '1'});
  await page.click('.page-head button:has-text("保存为")');
  await page.keyboard.type(name);
  await page.keyboard.press('Enter');
  await page.waitForSelector('.notice');
  await page.selectOption(`${fieldOf('cModal')} select`, '2');
  await page.waitForFunction(() => location.hash.includes('f.cModal=2'));
  await page.click('.page-head button:has-text("载入方案")');
  await page.click(`.saved button:has-text("${name}")`);
  await page.waitForFunction(() => location.hash.includes('f.cModal=1'));
  await page.goto(`${address}/#/`);
  await page.click(`.start button.link:has-text("${name}")`);
  await page.waitForFunction(() => location.hash.includes('f.cModal=1'));
  await page.goto(`${address}/#/`);
  await page.click(`tr:has-text("${name}") button.sign`);
  await page.click('.ask button.danger');
  await page.waitForFunction((text) => !document.querySelector('main').textContent.includes(text), name);
});

test('nothing was said against the pages', () => assert.deepEqual(page.problems, []));
