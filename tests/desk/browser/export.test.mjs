// Files of what is shown, cell by cell: the same rows, columns, order and groups, in every format.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {readFileSync} from 'node:fs';
import {
  beginDesk,
  browser,
  exported,
  gridOf,
  page,
  rearrange,
  reportsOf,
  runReport,
  waitForGrid,
} from './desk_browser.mjs';
import {sheetRows} from './workbook.mjs';

let views = []; // that the page has opened, the newest last
beginDesk(async () => {
  page.on('response', async (response) => {
    if (response.request().method() !== 'POST' || !response.url().endsWith('/views')) return;
    const view = await response.json().catch(() => null);
    if (view?.id) views.push({...view, path: `${new URL(response.url()).pathname}/${view.id}`});
  });
});

// Files differ in how they write a number: with separators, or without the zeros at its end.
const canonical = (text) => {
  const number = (text ?? '').replaceAll(',', '');
  if (!/^-?\d+\.\d+$/.test(number)) return /^-?\d+$/.test(number) ? number : (text ?? '');
  return number.replace(/\.?0+$/, '');
};
const filled = (cells, length) => Array.from({length}, (_, index) => canonical(cells[index]));

// A workbook has dates as days, and of a number the digits of a binary one: the shortest that give the same are meant.
function ofSheet(text, role) {
  if (role === 'date' && /^\d{5}$/.test(text))
    return new Date(Date.UTC(1899, 11, 30) + Number(text) * 86400000).toISOString().slice(0, 10);
  return /^-?\d+\.\d{6,}$/.test(text) ? String(Number(text)) : text;
}

function csvRows(text) {
  const rows = [[]];
  for (const [, quoted, bare, end] of text.matchAll(/(?:"((?:[^"]|"")*)"|([^",\r\n]*))(,|\r?\n|$)/g)) {
    rows.at(-1).push(quoted === undefined ? bare : quoted.replaceAll('""', '"'));
    if (end === ',') continue;
    if (end === '') break;
    rows.push([]);
  }
  return rows.filter((row) => row.length > 1 || row[0] !== '');
}

// The tables of a page, of each its rows. A wide view goes onto paper as several tables side by side.
async function htmlTables(path) {
  const paper = await browser.newPage();
  await paper.setContent(readFileSync(path, 'utf8'));
  const tables = await paper.evaluate(() =>
    [...document.querySelectorAll('table.rows')].map((table) =>
      [...table.querySelectorAll('tbody tr, tfoot tr')].map((tr) =>
        [...tr.cells].flatMap((cell) => [cell.textContent.replace(/\n$/, ''), ...Array(cell.colSpan - 1).fill('')]),
      ),
    ),
  );
  await paper.close();
  return tables;
}

// All that the view has, as the grid gets it.
async function rowsShown(view) {
  const rows = [];
  for (let complete = false; !complete || rows.length === 0; ) {
    const answer = await page.evaluate(
      async (address) => (await fetch(address)).json(),
      `${view.path}/rows?offset=${rows.length}&limit=1000`,
    );
    rows.push(...answer.rows);
    complete = answer.complete && rows.length === answer.rowCount;
    if (answer.rowCount === 0) break;
  }
  return rows;
}

async function expectExportsOfWhatIsShown(what) {
  await waitForGrid(page);
  const made = views.at(-1);
  // What only cost items fill that are folded away is not shown.
  const at = made.columns.flatMap((column, index) => (column.ofDetails ? [] : [index]));
  const shownOf = (row) => ({...row, cells: at.map((index) => row.cells[index])});
  const view = {...made, columns: at.map((index) => made.columns[index]), totals: made.totals.map(shownOf)};
  const length = view.columns.length;
  const rows = (await rowsShown(made)).map(shownOf);
  assert.ok(rows.length > 0, what);
  const grid = await gridOf(page);
  for (const row of grid.rows)
    for (const [column, text] of Object.entries(row.cells))
      assert.equal(text, rows[row.index - 1].cells[column - 1] ?? '', `${what}: row ${row.index}`);
  const wanted = [...rows, ...view.totals].map(({cells}) => filled(cells, length));

  const [heading, ...inCsv] = csvRows(readFileSync(await exported('csv'), 'utf8').replace(/^\uFEFF/, ''));
  const own = heading.length - length; // kind and level of a row stand in front where there are several
  assert.deepEqual(
    heading.slice(own),
    view.columns.map(({caption, group}) => (group ?? '') + caption),
    what,
  );
  const lines = inCsv.map((cells) => filled(cells.slice(own), length));
  assert.deepEqual(lines, wanted.slice(0, lines.length), `${what}: CSV`);
  assert.ok(lines.length === wanted.length || lines.length === rows.length, `${what}: ${lines.length} lines of CSV`);

  const tables = await htmlTables(await exported('html'));
  if (tables.length === 1) {
    const inHtml = tables[0].map((cells) => filled(cells, length));
    assert.deepEqual(inHtml, wanted, `${what}: page for the printer`);
  } else {
    // Each table has the number of the row and the keys again.
    const texts = (cells) => [...new Set(cells.map(canonical).filter(Boolean))].sort();
    wanted.slice(0, rows.length).forEach((cells, index) => {
      const printed = tables.flatMap((table) => table[index]);
      assert.deepEqual(texts(printed), texts([...cells, String(index + 1)]), `${what}: page for the printer`);
    });
  }

  const inSheet = sheetRows(readFileSync(await exported('xlsx'))).map((cells) =>
    filled(
      cells.map((text, index) => ofSheet(text, view.columns[index]?.role)),
      length,
    ),
  );
  const first = inSheet.findIndex((cells) => cells.join('\t') === wanted[0].join('\t'));
  assert.ok(first > 0, `${what}: the workbook has no first row ${wanted[0]}`);
  assert.deepEqual(inSheet.slice(first, first + rows.length), wanted.slice(0, rows.length), `${what}: workbook`);
}

const filters = {
  'sfc-item': {cWhCode: '02', cInvCode: ['0201-00156', '0201-00107']},
  'outsum-item': {cWhCode: '02', cInvCode: ['0201-00156', '0201-00107']},
  'fx-wt': {'Inventory.cInvCode': ['0201-00156', '0201-00107']},
};

test('each layout of every report', async () => {
  for (const report of await reportsOf(page)) {
    views = [];
    await runReport(page, report.name, filters[report.name]);
    for (let index = 0; index < report.layouts.length; index += 1) {
      if (index > 0) await rearrange(page, () => page.locator('.layout-bar a').nth(index).click());
      await expectExportsOfWhatIsShown(`${report.name} ${report.layouts[index].name}`);
    }
  }
});

test('sorted, filtered, grouped, with columns hidden and moved', async () => {
  await runReport(page, 'fx-wt', filters['fx-wt']);
  const {hash} = await gridOf(page);
  const [path, asked] = hash.split('?');
  const query = new URLSearchParams(asked);
  query.set('layout', 'lines');
  query.set('columns', 'cVouCode,cVouType,cInvCode,dKeepDate,iAInQuantity,iAInPrice');
  query.set('sort', '-dKeepDate,iAInPrice');
  query.set('group', 'cInvCode');
  query.append('where', 'dKeepDate:range:2023-01-01\t2024-06-30');
  await rearrange(page, () =>
    page.evaluate((to) => {
      location.hash = to;
    }, `${path}?${query}`),
  );
  const grid = await gridOf(page);
  assert.ok(grid.rowCount > 4);
  assert.equal(grid.columnCount, 6);
  await expectExportsOfWhatIsShown('arranged');
  const shown = await rowsShown(views.at(-1));
  assert.ok(shown.some(({kind}) => kind === 'subtotal'));
  const dates = shown.filter(({kind}) => kind === 'line').map(({cells}) => cells[3]);
  assert.ok(dates.every((date) => date >= '2023-01-01' && date <= '2024-06-30'));
});

test('what is folded out goes into the files', async () => {
  await runReport(page, 'fx-detail');
  const folded = (await gridOf(page)).rowCount;
  await rearrange(page, () => page.click('.tools .check input'));
  assert.ok((await gridOf(page)).rowCount > folded);
  await expectExportsOfWhatIsShown('ledger with cost items');
});

test('nothing was said against the pages', () => assert.deepEqual(page.problems, []));

test('an export that fails says why on the page', async () => {
  const refusal = {error: {code: 'account', message: '磁盘已满', item: null}};
  await page.route(/\/export\?/, (route) => route.fulfill({status: 503, json: refusal}));
  const open = async () => {
    await page.click('.tools button:has-text("导出")');
    await page.click('.exports a[href*="format=csv"]');
  };
  await open();
  await page.waitForSelector('.notice.error:has-text("导出失败：磁盘已满")');
  await page.click('.notice.error button');
  await page.unrouteAll();

  // One that is under way says so, and ends when its message is closed.
  let held;
  const release = new Promise((go) => (held = go));
  await page.route(/\/export\?/, async (route) => {
    await release;
    await route.abort().catch(() => {}); // the page has ended it
  });
  const ended = page.waitForEvent('requestfailed');
  await open();
  await page.waitForSelector('.notice:has-text("正在导出：CSV 文件")');
  await page.click('.notice.lasting button');
  await ended;
  held();
  await page.unrouteAll();
  assert.equal(await page.locator('.notice').count(), 0);

  // The server itself: the run is closed while its file is asked for.
  await page.evaluate(async () => {
    const runs = await (await fetch('/api/runs')).json();
    for (const {id} of runs)
      await fetch(`/api/runs/${id}`, {
        method: 'DELETE',
        headers: {'Content-Type': 'application/json'},
        body: '{}',
      });
  });
  await open();
  await page.waitForSelector('.notice.error:has-text("导出失败：没有运行")');
  assert.equal(page.problems.filter((text) => !/status of 503/.test(text)).join(), '');
});
