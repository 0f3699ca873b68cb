// Layouts kept by name: what is shown is saved, opened over another run, replaced and deleted, with the keyboard alone;
// screen readers are told; and the command line's own files open as well.
import assert from 'node:assert/strict';
import {after, before, test} from 'node:test';
import {address, gridOf, obstacles, openDesk, rearrange, runReport, startBrowser, waitForGrid} from './desk_browser.mjs';

let browser;
let page;
let run = ''; // the address of the run, without what is shown of it
before(async () => {
  browser = await startBrowser();
  page = await openDesk(browser);
  await runReport(page, 'outsum-item');
  [run] = new URL(page.url()).hash.split('?');
});
after(() => browser.close());

const name = `月末 ${Date.now()}`;
const opener = '.tools button:has-text("保存的格式")';
const arranged = 'layout=lines&columns=cInvCode,iMoney,cWhCode&sort=-iMoney';
const query = () => new URLSearchParams(new URL(page.url()).hash.split('?')[1]);
const focused = () =>
  page.evaluate(() => ({
    text: document.activeElement.textContent,
    label: document.activeElement.getAttribute('aria-label'),
  }));

async function show(view) {
  await page.goto(`${address}/${run}?report=outsum-item&${view}`);
  await waitForGrid(page);
}
async function openMenu() {
  await page.focus(opener);
  await page.keyboard.press('Enter');
  await page.waitForSelector('.popup form.save');
}
const names = () => page.locator('.popup ul.saved .plain span:first-child').allTextContents();
const columnsOf = async () => (await gridOf(page)).columns.map(({caption}) => caption);

test('what is shown is saved under a name, without the rows that were chosen', async () => {
  await show(`${arranged}&where=${encodeURIComponent('iMoney:range:100\t')}`);
  await openMenu();
  assert.deepEqual(await names(), []);
  assert.equal((await focused()).label, '保存为');
  await page.keyboard.type(name);
  await page.keyboard.press('Enter');
  await page.waitForSelector(`.notice:has-text("${name}")`);
  await page.waitForSelector('.popup', {state: 'detached'});
  assert.ok((await focused()).text.startsWith('保存的格式'), 'the keyboard is where it was');
  const kept = await page.evaluate(async (path) => (await fetch(path)).json(), `/api/layouts/${encodeURIComponent(name)}`);
  assert.equal(kept.layout, 'lines');
  assert.equal(kept.report, 'outsum-item');
  assert.deepEqual(kept.columns, ['cInvCode', 'iMoney', 'cWhCode']);
  assert.deepEqual(kept.sort, [{column: 'iMoney', descending: true}]);
  assert.equal(kept.where, undefined);
});

test('it is opened over another layout, and Back leads there again', async () => {
  await show(arranged);
  const wanted = await columnsOf();
  await show('layout=summary');
  assert.notDeepEqual(await columnsOf(), wanted);
  await openMenu();
  assert.deepEqual(await names(), [name]);
  await page.keyboard.press('Tab'); // past saving
  await page.keyboard.press('Tab');
  assert.ok((await focused()).text.startsWith(name));
  await rearrange(page, () => page.keyboard.press('Enter'));
  assert.deepEqual(await columnsOf(), wanted);
  assert.equal(query().get('sort'), '-iMoney');
  assert.equal(query().get('report'), 'outsum-item');
  await rearrange(page, () => page.goBack());
  assert.equal(query().get('layout'), 'summary');
});

test('rows that are chosen stay chosen in the same layout', async () => {
  await show(`layout=lines&where=${encodeURIComponent('iMoney:range:100\t')}`);
  await openMenu();
  await rearrange(page, () => page.click(`.popup .plain:has-text("${name}")`));
  assert.equal(query().get('where'), 'iMoney:range:100\t');
  assert.equal(query().get('columns'), 'cInvCode,iMoney,cWhCode');
});

test('a name that is taken is replaced only when that is said again', async () => {
  await show('layout=lines&columns=cInvCode,iMoney');
  await openMenu();
  await page.keyboard.type(name);
  await page.keyboard.press('Enter');
  await page.waitForSelector(`.popup [role=alert]:has-text("${name}")`);
  assert.equal(await page.innerText('.popup form.save button'), '替换');
  await page.keyboard.press('Enter');
  await page.waitForSelector(`.notice:has-text("${name}")`);
  const kept = await page.evaluate(async (path) => (await fetch(path)).json(), `/api/layouts/${encodeURIComponent(name)}`);
  assert.deepEqual(kept.columns, ['cInvCode', 'iMoney']);
});

test('a name that cannot be is refused in the menu', async () => {
  await openMenu();
  await page.keyboard.type('Tree');
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => document.querySelector('.popup [role=alert]').textContent.includes('Tree'));
  await page.keyboard.press('Escape');
  await page.waitForSelector('.popup', {state: 'detached'});
});

test('a pivot is kept with its order', async () => {
  const pivot = 'rows=cWhCode&across=cFXCode&figures=amount&order=-amount';
  await show(`layout=pivot&${pivot}`);
  await openMenu();
  await page.keyboard.type(`${name} 透视`);
  await page.keyboard.press('Enter');
  await page.waitForSelector('.notice');
  await show('layout=summary');
  await openMenu();
  await rearrange(page, () => page.click('.popup .plain:has-text("透视")'));
  assert.equal(query().get('layout'), 'pivot');
  for (const [key, value] of new URLSearchParams(pivot)) assert.equal(query().get(key).toLowerCase(), value.toLowerCase(), key);
});

test('the menu has no obstacle, in both languages and in the dark', async () => {
  for (const look of [{}, {lang: 'en', scheme: 'dark'}]) {
    const other = await openDesk(browser, look);
    await other.goto(`${address}/${run}?report=outsum-item&${arranged}`);
    await waitForGrid(other);
    const text = look.lang === 'en' ? 'Saved layouts' : '保存的格式';
    await other.click(`.tools button:has-text("${text}")`);
    await other.waitForSelector('.popup .saved-row');
    assert.deepEqual(await obstacles(other), []);
    await other.click('.popup .saved-row .sign');
    await other.waitForSelector('.saved-ask');
    assert.deepEqual(await obstacles(other), []);
    assert.deepEqual(other.problems, []);
    await other.context().close();
  }
});

test('it is deleted after a question, and the keyboard stays in the list', async () => {
  await show(arranged);
  await openMenu();
  const count = (await names()).length;
  await page.locator('.popup .saved-row .sign').first().focus();
  await page.keyboard.press('Enter');
  assert.equal((await focused()).text, '删除');
  await page.keyboard.press('Tab');
  await page.keyboard.press('Enter'); // Cancel
  assert.ok((await focused()).label.startsWith('删除 '));
  for (let left = count - 1; left >= 0; left -= 1) {
    await page.keyboard.press('Enter');
    await page.keyboard.press('Enter');
    await page.waitForFunction((all) => document.querySelectorAll('.popup .saved-row').length === all, left);
    assert.match(await page.textContent('#status'), /已删除/);
  }
  assert.equal((await focused()).label, '保存为');
  assert.deepEqual(await page.evaluate(async () => (await fetch('/api/layouts')).json()), []);
});

test('nothing was said against the pages', () => assert.deepEqual(page.problems, []));
