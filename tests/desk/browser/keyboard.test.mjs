// From the start page to a document and back without a mouse: Tab, arrows, Enter and Escape alone.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {beginDesk, filterFor, isDouble, page, reportsOf, settled, waitForGrid} from './desk_browser.mjs';

beginDesk();

// Presses Tab until the focus is on something that `selector` takes; it must be seen to be there.
async function tabTo(selector, most = 150) {
  for (let step = 0; step < most; step += 1) {
    await page.keyboard.press('Tab');
    const there = await page.evaluate((wanted) => {
      const at = document.activeElement;
      if (!at?.matches(wanted)) return null;
      const box = at.getBoundingClientRect();
      const shown = at.matches('table') || getComputedStyle(at).outlineStyle !== 'none' || at.matches('.menu button');
      return {shown, inSight: box.width > 0 && box.bottom > 0 && box.top < innerHeight};
    }, selector);
    if (there) {
      assert.ok(there.shown && there.inSight, `the focus on ${selector} is not to be seen`);
      return;
    }
  }
  assert.fail(`Tab does not lead to ${selector}`);
}

test('from the start page to a document and back', async () => {
  const report = (await reportsOf(page)).find(({layouts}) => layouts.some(({name}) => name === 'ledger'));
  await tabTo(`.reports a[href*="${report.name}"]`);
  await page.keyboard.press('Enter');
  await page.waitForSelector('.field');
  await settled(page);
  // A code by its lookup.
  const {cInvCode, cWhCode} = filterFor(report.name);
  await tabTo('.field[data-key="cInvCode"] input');
  await page.keyboard.press('F4');
  await page.waitForSelector('.lookup-list [role=option]');
  if (!isDouble) {
    await page.keyboard.type(cInvCode);
    await page.waitForFunction((code) => {
      const codes = [...document.querySelectorAll('.lookup-list .code')].map((one) => one.textContent.trim());
      return codes.length === 1 && codes[0] === code;
    }, cInvCode);
  }
  await page.keyboard.press('ArrowDown');
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => location.hash.includes('f.cInvCode='));
  assert.equal(await page.evaluate(() => document.activeElement.closest('.field')?.dataset.key), 'cInvCode');
  // A code that is known is typed.
  if (cWhCode) {
    await tabTo('.field[data-key="cWhCode"] input');
    await page.keyboard.type(cWhCode);
  }
  // Enter in a field runs the report.
  await page.keyboard.press('Enter');
  await waitForGrid(page);
  // The grid is one stop of Tab; within it go the arrows.
  if (!(await page.evaluate(() => document.activeElement.matches('regular-table table'))))
    await tabTo('regular-table table');
  for (let step = 0; step < 60 && !(await page.locator('tr.opens > .at').count()); step += 1) {
    await page.keyboard.press('ArrowDown');
    await page.waitForTimeout(30);
  }
  await page.keyboard.press('Enter');
  await page.waitForSelector('dialog.modal');
  await page.keyboard.press('Escape');
  await page.waitForSelector('dialog.modal', {state: 'detached'});
  assert.equal(await page.evaluate(() => document.activeElement.matches('regular-table table')), true);
  // Out of the grid again, forwards and backwards.
  await page.keyboard.press('Tab');
  assert.equal(await page.evaluate(() => document.activeElement.matches('regular-table table')), false);
  await page.keyboard.press('Shift+Tab');
  await page.keyboard.press('Shift+Tab');
  assert.equal(await page.evaluate(() => document.activeElement.matches('regular-table table')), false);
});

test('the cell at hand is named to a screen reader', async () => {
  await page.focus('regular-table table');
  await page.keyboard.press('Control+Home');
  const named = () =>
    page.evaluate(() => {
      const table = document.querySelector('regular-table table');
      const cell = document.getElementById(table.getAttribute('aria-activedescendant'));
      return {
        role: table.getAttribute('role'),
        name: table.getAttribute('aria-label'),
        rows: table.getAttribute('aria-rowcount'),
        columns: table.getAttribute('aria-colcount'),
        row: cell?.parentElement.getAttribute('aria-rowindex'),
        column: cell?.getAttribute('aria-colindex'),
        id: cell?.id,
      };
    });
  const first = await named();
  assert.match(first.role, /grid/);
  assert.ok(first.name.length > 0 && Number(first.rows) > 0 && Number(first.columns) > 0);
  await page.keyboard.press('PageDown');
  await page.waitForTimeout(200);
  const later = await named();
  assert.notEqual(later.id, first.id);
  assert.ok(Number(later.row) > Number(first.row));
});

test('menus and windows give the focus back', async () => {
  await page.focus('regular-table table');
  await page.keyboard.press('Alt+ArrowDown');
  await page.waitForSelector('.menu');
  assert.equal(await page.evaluate(() => document.activeElement.getAttribute('role')), 'menuitem');
  await page.keyboard.press('Escape');
  await page.waitForSelector('.menu', {state: 'detached'});
  assert.equal(await page.evaluate(() => document.activeElement.matches('regular-table table')), true);
  await page.focus('.tools button >> nth=0');
  await page.keyboard.press('Enter');
  await page.waitForSelector('dialog.modal');
  await page.keyboard.press('Escape');
  await page.waitForSelector('dialog.modal', {state: 'detached'});
  assert.equal(await page.evaluate(() => document.activeElement.matches('.tools button')), true);
});

test('nothing was said against the pages', () => assert.deepEqual(page.problems, []));
