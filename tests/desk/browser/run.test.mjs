// A run: its progress, stopping it, its statements, several at once, and what is left of a bookmark when it is gone.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {readdirSync} from 'node:fs';
import {
  address,
  beginDesk,
  gridOf,
  isDouble,
  openFilter,
  page,
  reportsOf,
  runReport,
  settled,
  waitForGrid,
} from './desk_browser.mjs';

beginDesk();

test('every report runs to its rows, in every layout', async () => {
  for (const report of await reportsOf(page)) {
    await runReport(page, report.name);
    const links = page.locator('.layout-bar a:not(:last-of-type)');
    const layouts = report.layouts.map(({caption}) => caption.zh);
    assert.deepEqual(await links.allInnerTexts(), [...layouts, '透视表', '对比', '图表'], report.name);
    for (let index = 0; index < report.layouts.length; index += 1) {
      await links.nth(index).click();
      await settled(page);
      await waitForGrid(page);
      const grid = await gridOf(page);
      assert.ok(grid.columnCount > 1, `${report.name} ${report.layouts[index].name}`);
      assert.equal(await page.locator('.layout-bar a[aria-current]').innerText(), report.layouts[index].caption.zh);
      assert.equal(grid.rows.length > 0, grid.rowCount > 0);
    }
  }
});

test('runs stand side by side, and one is closed without the others', async () => {
  const before = await page.locator('.run-tab button').count();
  assert.ok(before >= 4);
  await page.locator('.run-tab button').first().click();
  await page.waitForFunction((count) => document.querySelectorAll('.run-tab button').length === count - 1, before);
  await page.locator('.run-tab > a').last().click();
  await waitForGrid(page);
});

test('the statements come with time and rows, and are copied', async () => {
  await page.locator('.layout-bar a').last().click();
  await page.waitForSelector('.statements tbody tr');
  const count = await page.locator('.statements tbody tr').count();
  assert.ok(count > 0);
  await page.click('.statements .card-head button');
  await page.waitForSelector('.notice');
  const copied = await page.evaluate(() => navigator.clipboard.readText());
  assert.equal(copied.split('\nGO\n').length, count);
  await page.goBack();
  await waitForGrid(page);
});

if (!isDouble) {
  test('a run is stopped in the middle, and nothing of it stays', async () => {
    // What is in the folders for temporary files; the lock that marks a folder as used is empty.
    const temporary = () =>
      !process.env.DESK_TEMPORARY
        ? []
        : readdirSync(process.env.DESK_TEMPORARY, {recursive: true, withFileTypes: true})
            .filter((one) => one.isFile() && !one.name.endsWith('.lock'))
            .map((one) => `${one.path}/${one.name}`);
    await openFilter(page, 'fx-wt');
    const before = temporary();
    await page.click('form button[type=submit]');
    await page.waitForSelector('.under-way li');
    await page.waitForFunction(() => /\d/.test(document.querySelector('.elapsed').textContent));
    await page.click('.progress button.danger');
    await page.waitForFunction(() => !document.querySelector('.progress'));
    const id = /run\/(\w+)/.exec(page.url())[1];
    const {state} = await page.evaluate(async (run) => (await fetch(`/api/runs/${run}`)).json(), id);
    assert.equal(state, 'stopped');
    assert.ok((await page.innerText('main')).includes('报表已停止'));
    await page.waitForSelector('.statements tbody tr');
    assert.deepEqual(
      temporary().filter((file) => !before.includes(file)),
      [],
    );
  });

  test('a run that fails says why', async () => {
    const id = await page.evaluate(async () => {
      const body = {report: 'fx-detail', lang: 'zh', values: {cWhCode: {value: '02', value2: ''}}};
      const answer = await fetch('/api/runs', {
        method: 'POST',
        headers: {'Content-Type': 'application/json'},
        body: JSON.stringify(body),
      });
      return (await answer.json()).id;
    });
    await page.goto(`${address}/#/run/${id}?report=fx-detail`);
    await page.waitForSelector('.card.failed');
    assert.match(await page.innerText('.card.failed'), /cInvCode（存货）：必须给出/);
  });
}

test('the bookmark of a run that is gone leads to its filter', async () => {
  await page.goto(`${address}/#/run/987654?report=${(await reportsOf(page))[0].name}&f.cModal=1`);
  await page.waitForSelector('.primary-link');
  await page.click('.primary-link');
  await page.waitForSelector('.field');
  await settled(page);
  assert.ok(page.url().includes('f.cModal=1'));
});

test('nothing was said against the pages', () => assert.deepEqual(page.problems, []));
