// Every page in both languages, light and dark, wide and narrow: nothing that axe finds worse than minor, nothing that
// leaves the window, no word of the other language among the pages' own.
import assert from 'node:assert/strict';
import {after, before, test} from 'node:test';
import {mkdirSync} from 'node:fs';
import {
  address,
  obstacles,
  openDesk,
  openFilter,
  reportsOf,
  runReport,
  settled,
  startBrowser,
  waitForGrid,
} from './desk_browser.mjs';

const pictures = process.env.DESK_PICTURES; // a folder: there the pages are put as pictures, to be looked at
if (pictures) mkdirSync(pictures, {recursive: true});

const runs = new Map(); // the address of each report's run, in each language

let browser;
before(async () => {
  browser = await startBrowser();
});
after(() => browser.close());

for (const {lang, scheme, size} of [
  {lang: 'zh', scheme: 'light', size: {width: 1400, height: 900}},
  {lang: 'en', scheme: 'dark', size: {width: 1400, height: 900}},
  {lang: 'zh', scheme: 'dark', size: {width: 900, height: 700}},
  {lang: 'en', scheme: 'light', size: {width: 900, height: 700}},
]) {
  test(`every page: ${lang}, ${scheme}, ${size.width}x${size.height}`, async () => {
    const page = await openDesk(browser, {lang, scheme, size});
    const look = async (name) => {
      await page.waitForTimeout(pictures ? 250 : 60);
      if (pictures) await page.screenshot({path: `${pictures}/${name}-${lang}-${scheme}-${size.width}.png`});
      assert.deepEqual(await obstacles(page), [], name);
      const wide = await page.evaluate(
        () =>
          document.documentElement.scrollWidth > innerWidth ||
          document.querySelector('main').scrollWidth > document.querySelector('main').clientWidth + 1,
      );
      assert.ok(!wide, `${name} is wider than the window`);
      const hidden = await page.evaluate(() => {
        const cut = [...document.querySelectorAll('.modal, .modal *')].filter(
          (one) => /auto|scroll/.test(getComputedStyle(one).overflowX) && one.scrollWidth > one.clientWidth + 1,
        );
        const tab = document.querySelector('.run-tab [aria-current=page]')?.getBoundingClientRect();
        return [...cut.map((one) => one.className), ...(tab && tab.right > innerWidth ? ['run-tab'] : [])];
      });
      assert.deepEqual(hidden, [], `${name}: what goes on beyond an edge`);
    };
    assert.equal(await page.getAttribute('html', 'lang'), lang === 'zh' ? 'zh-CN' : 'en');
    const dark = await page.evaluate(
      () =>
        getComputedStyle(document.body)
          .backgroundColor.match(/\d+/g)
          .map(Number)
          .reduce((sum, part) => sum + part) < 382,
    );
    assert.equal(dark, scheme === 'dark');
    const reports = await reportsOf(page);
    for (const report of reports) {
      await openFilter(page, report.name);
      await page.locator('details.fields-more > summary').first().click();
      await look(`filter-${report.name}`);
    }
    const ledger = reports.find(({layouts}) => layouts.some(({name}) => name === 'ledger'));
    await openFilter(page, ledger.name);
    await page.click('form .page-head button[type=submit]');
    await page.waitForSelector('.field.refused');
    await look('refused');
    await page.click('.field.refused .joined > button.sign');
    await page.waitForSelector('.lookup-list [role=option]');
    await look('lookup');
    await page.keyboard.press('Escape');
    await page.click('.field[data-key="dKeepDate"] button.sign >> nth=0');
    await page.waitForSelector('.calendar');
    await look('calendar');
    await page.keyboard.press('Escape');
    for (const report of reports) {
      const key = `${report.name} ${lang}`;
      const kept = runs.get(key);
      if (kept) {
        await page.goto(`${address}/${kept}`);
        await waitForGrid(page);
      } else {
        await runReport(page, report.name);
        runs.set(key, new URL(page.url()).hash);
      }
      for (let index = 0; index < report.layouts.length; index += 1) {
        await page.locator('.layout-bar a').nth(index).click();
        await settled(page);
        await waitForGrid(page);
        await look(`${report.name}-${report.layouts[index].name}`);
      }
    }
    await page.focus('regular-table table');
    await page.keyboard.press('Alt+ArrowDown');
    await page.waitForSelector('.menu');
    await look('column-menu');
    await page.keyboard.press('Escape');
    await page.locator('.tools button').first().click();
    await page.waitForSelector('.column-lists');
    await look('columns');
    await page.keyboard.press('Escape');
    await page.locator('.tools button').last().click();
    await page.waitForSelector('.exports');
    await look('export');
    await page.keyboard.press('Escape');
    await page.focus('regular-table table');
    for (let step = 0; step < 60 && !(await page.locator('tr.opens > .at').count()); step += 1) {
      await page.keyboard.press('ArrowDown');
      await page.waitForTimeout(30);
    }
    await page.keyboard.press('Enter');
    await page.waitForSelector('dialog.modal');
    await look('document');
    await page.keyboard.press('Escape');
    await page.waitForSelector('dialog.modal', {state: 'detached'});
    await page.locator('.layout-bar a').last().click();
    await page.waitForSelector('.statements');
    await look('statements');
    await page.goto(`${address}/#/`);
    await page.waitForSelector('.reports');
    await look('start');
    await page.goto(`${address}/#/checks`);
    await page.waitForSelector('.checks .actions');
    await look('checks');
    await page.locator('#header button').first().click();
    await page.waitForSelector('dialog .keys');
    await look('keys');
    await page.keyboard.press('Escape');
    if (lang === 'en') {
      const own = await page.evaluate(() =>
        [...document.querySelectorAll('button:not(#language), h2, label, .tools')]
          .map((one) => one.textContent)
          .join(' '),
      );
      assert.doesNotMatch(own, /[\u4e00-\u9fff]/);
    }
    assert.deepEqual(page.problems, []);
    await page.context().close();
  });
}

test('language and colours are switched on the page, and kept', async () => {
  const page = await openDesk(browser, {lang: 'zh', scheme: 'light'});
  const report = (await reportsOf(page))[0];
  await runReport(page, report.name);
  await page.click('#language');
  await page.waitForFunction((title) => document.querySelector('h1').textContent === title, report.title.en);
  await waitForGrid(page);
  assert.equal(await page.getAttribute('html', 'lang'), 'en');
  assert.equal(await page.locator('.layout-bar a').first().innerText(), report.layouts[0].caption.en);
  await page.click('#header button[aria-haspopup=menu]');
  await page.click('.menu button:has-text("Dark")');
  const colour = () => page.evaluate(() => getComputedStyle(document.body).backgroundColor);
  const dark = await colour();
  await page.reload();
  await waitForGrid(page);
  assert.equal(await colour(), dark);
  assert.equal(await page.getAttribute('html', 'lang'), 'en');
  await page.click('#header button[aria-haspopup=menu]');
  await page.click('.menu button:has-text("Light")');
  assert.notEqual(await colour(), dark);
  await page.goto(`${address}/#/report/${report.name}`);
  await page.waitForSelector('.field');
  await page.click('#language');
  await page.waitForFunction((title) => document.querySelector('h1').textContent === title, report.title.zh);
  assert.deepEqual(page.problems, []);
});
