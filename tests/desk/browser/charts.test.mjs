// Charts: what the table beside one says are the figures of the report's pivots, to the last digit; the picture of it can be
// taken away, and is to be read without colours.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {mkdirSync, readFileSync} from 'node:fs';
import {address, beginDesk, browser, obstacles, openDesk, page, runReport} from './desk_browser.mjs';

const pictures = process.env.DESK_PICTURES; // a folder for one picture of each state, to be looked at
if (pictures) mkdirSync(pictures, {recursive: true});

const runs = {}; // of a report: the address of a run of it, and its number
beginDesk(async () => {
  for (const [report, filter] of [
    ['outsum-item', {cModal: '1'}],
    ['fx-wt', {}],
    ['sfc-item', {cModal: '1'}],
    ['fx-detail', undefined],
  ]) {
    await runReport(page, report, filter);
    runs[report] = new URL(page.url()).hash.split('?')[0];
  }
});

const numberOf = (report) => runs[report].split('/').at(-1);

async function chartShown(on) {
  await on.waitForFunction(() => document.querySelector('.charts:not([aria-busy]) canvas, .charts .message'));
  const refused = await on.locator('.charts .message').allInnerTexts();
  assert.deepEqual(refused, []);
  await on.waitForFunction(() => globalThis.Chart?.getChart(document.querySelector('.charts canvas')));
}
async function showChart(report, query, on = page) {
  await on.goto(`${address}/${runs[report]}?report=${report}&layout=chart&${query}`);
  await chartShown(on);
  return tableOf(on);
}
async function tableOf(on) {
  return on.evaluate(() => {
    const texts = (tr) => [...tr.cells].map((cell) => cell.textContent);
    const table = document.querySelector('.chart-table table');
    return {
      head: texts(table.tHead.rows[0]),
      rows: [...table.tBodies[0].rows].map(texts),
      total: texts(table.tFoot.rows[0]),
    };
  });
}

// A pivot of the run, straight from the server.
async function viewOf(report, asked, kind = 'pivots') {
  return page.evaluate(
    async ([run, body, what]) => {
      const call = async (path, options) => (await fetch(`/api/runs/${run}/${path}`, options)).json();
      const headers = {'Content-Type': 'application/json'};
      const view = await call(what, {method: 'POST', headers, body: JSON.stringify({lang: 'zh', ...body})});
      const rows = [];
      for (;;) {
        const answer = await call(`views/${view.id}/rows?offset=${rows.length}&limit=1000`);
        rows.push(...answer.rows);
        if (answer.complete && rows.length === answer.rowCount) break;
      }
      await call(`views/${view.id}`, {method: 'DELETE', headers, body: '{}'});
      return {...view, rows};
    },
    [numberOf(report), asked, kind],
  );
}

// An exact number in units of 10^-decimals.
const unitsOf = (text, decimals = 2) => {
  if (!text) return 0n;
  const [whole, fraction = ''] = text.replaceAll(',', '').split('.');
  assert.ok(fraction.length <= decimals, text);
  return BigInt(whole + fraction.padEnd(decimals, '0'));
};
const sumOf = (texts, decimals) => texts.reduce((sum, text) => sum + unitsOf(text, decimals), 0n);

test('only charts that a report has figures for are offered', async () => {
  const kinds = {};
  for (const report of Object.keys(runs)) {
    await showChart(report, '');
    kinds[report] = await page.locator('.chart-kinds a').evaluateAll((all) =>
      all.map((one) => new URLSearchParams(one.hash.split('?')[1]).get('chart')),
    );
  }
  assert.deepEqual(kinds, {
    'outsum-item': ['structure', 'months', 'top', 'unitCost'],
    'fx-wt': ['structure', 'months', 'top', 'unitCost'],
    'sfc-item': ['structure', 'top'],
    'fx-detail': ['structure', 'months', 'balance', 'top', 'unitCost'],
  });
});

test('a cost structure has the figures of the pivot by cost item, the smallest as one', async () => {
  const shown = await showChart('outsum-item', 'chart=structure');
  const sort = [{column: 'amount', descending: true}];
  const {rows} = await viewOf('outsum-item', {rows: ['cFXCode'], measures: ['amount', 'amount:total'], sort});
  const cells = rows.map((row) => row.cells);
  assert.ok(cells.length > 14, 'there are cost items to be summed');
  assert.deepEqual(shown.rows.slice(0, 12), cells.slice(0, 12));
  assert.equal(shown.rows.length, 13);
  const rest = cells.slice(12, -1);
  assert.equal(shown.rows[12][0], `其余 ${rest.length} 项`);
  assert.equal(unitsOf(shown.rows[12][1]), sumOf(rest.map(([, amount]) => amount)));
  assert.deepEqual(shown.total, cells.at(-1));
});

test('the largest of any dimension and the rest sum to the total', async () => {
  const shown = await showChart('sfc-item', 'chart=top&of=receiptAmount&by=cInvCode&top=5');
  const sort = [{column: 'receiptAmount', descending: true}];
  const {rows, lineCount} = await viewOf('sfc-item', {rows: ['cInvCode'], measures: ['receiptAmount'], sort});
  assert.deepEqual(
    shown.rows.slice(0, 5).map(([name, amount]) => [name, amount]),
    rows.slice(0, 5).map(({cells}) => cells),
  );
  assert.equal(shown.rows[5][0], `其余 ${lineCount - 5} 项`);
  assert.equal(shown.total[1], rows.at(-1).cells[1]);
  assert.equal(sumOf(shown.rows.map((cells) => cells[1])), unitsOf(shown.total[1]));
});

test('months have the pivot’s figures in every cell', async () => {
  const shown = await showChart('fx-wt', 'chart=months&of=issueAmount&by=cfxCode');
  const pivot = await viewOf('fx-wt', {rows: ['month'], columns: ['cfxCode'], measures: ['issueAmount']});
  assert.equal(shown.rows.length, 36);
  const place = new Map(pivot.columns.map((column, at) => [column.caption, at]));
  const names = shown.head.slice(1, 8);
  const others = pivot.columns.slice(1, -1).filter((column) => !names.includes(column.caption));
  assert.equal(shown.head[8], `其余 ${others.length} 项`);
  for (const [number, row] of [...shown.rows, shown.total].entries()) {
    const {cells} = pivot.rows[number];
    if (number < shown.rows.length) assert.equal(row[0], cells[0]);
    assert.deepEqual(
      row.slice(1, 8),
      names.map((name) => cells[place.get(name)] ?? ''),
    );
    assert.equal(unitsOf(row[8]), sumOf(others.map((column) => cells[place.get(column.caption)])), row[0]);
    assert.equal(row[9], cells.at(-1));
  }
});

test('a balance over time is that of the ledger', async () => {
  const ledger = await viewOf('fx-detail', {layout: 'ledger'}, 'views');
  for (const [of, name] of [
    ['amount', 'iBalancePrice'],
    ['quantity', 'iBalanceQuantity'],
  ]) {
    const shown = await showChart('fx-detail', `chart=balance&of=${of}`);
    const at = ledger.columns.findIndex((column) => column.name === name);
    const month = ledger.columns.findIndex((column) => column.name === 'iMonth');
    const opening = ledger.rows.find(({kind}) => kind === 'opening');
    assert.equal(shown.rows[0].at(-1), opening.cells[at]);
    const totals = ledger.rows.filter(({kind}) => kind === 'monthTotal');
    assert.ok(totals.length > 6);
    const balances = new Map(shown.rows.slice(1).map((row) => [Number(row[0].slice(5)), row.at(-1)]));
    for (const {cells} of totals) assert.equal(balances.get(Number(cells[month])), cells[at], `month ${cells[month]}`);
    assert.equal(shown.total.at(-1), ledger.totals.find(({kind}) => kind === 'closing').cells[at]);
  }
});

test('a unit cost falls into what each cost item adds, by months and by documents', async () => {
  const where = [{column: 'cInvCode', kind: 'equals', values: ['0401-00016']}];
  const measures = ['amount', 'quantity', 'unitCost'];
  for (const [per, rows] of [
    ['month', ['month']],
    ['document', ['dKeepDate', 'cVouCode']],
  ]) {
    const shown = await showChart('outsum-item', `chart=unitCost&per=${per}&item=0401-00016 单级离心泵`);
    const pivot = await viewOf('outsum-item', {rows, columns: ['cFXCode'], measures, where});
    const place = new Map(pivot.columns.map((column, at) => [column.name, at]));
    const lines = pivot.rows.filter(({kind}) => kind === 'line');
    // A month without rows stands among them with nothing in it.
    shown.rows = shown.rows.filter((row) => row.slice(1).some(Boolean));
    assert.equal(shown.rows.length, Math.min(lines.length, 60));
    const items = shown.head.slice(1, -2);
    assert.ok(items.length > 3);
    for (const [number, row] of shown.rows.entries()) {
      const {cells} = lines[lines.length - shown.rows.length + number];
      assert.equal(row[0], cells.slice(0, rows.length).join(' '));
      assert.equal(row.at(-2), cells[place.get('total/unitCost')]);
      assert.equal(row.at(-1), cells[place.get('total/quantity')]);
      const quantity = unitsOf(row.at(-1));
      for (const [at, item] of items.entries()) {
        const amount = unitsOf(cells[place.get(`${item}/amount`)]);
        // Within half of the last of four digits: |part * quantity - amount| <= quantity * 0.00005.
        const off = unitsOf(row[at + 1], 4) * quantity - amount * 10000n;
        assert.ok(2n * (off < 0n ? -off : off) <= (quantity < 0n ? -quantity : quantity), `${row[0]} ${item}`);
      }
      const parts = sumOf(row.slice(1, -2), 4) - unitsOf(row.at(-2), 4);
      assert.ok(parts >= -BigInt(items.length) && parts <= BigInt(items.length), row[0]);
    }
  }
});

test('what is chosen stands in the address, and Back takes it back', async () => {
  await page.goto(`${address}/${runs['fx-wt']}?report=fx-wt`);
  await page.click('.layout-bar a:has-text("图表")');
  await chartShown(page);
  await page.click('.chart-kinds a:has-text("各月金额")');
  await page.waitForFunction(() => document.querySelector('.chart-kinds [aria-current]')?.id === 'chart-kind-months');
  await chartShown(page);
  const before = await tableOf(page);
  await page.focus('#chart-choice-by');
  await page.selectOption('#chart-choice-by', 'costItemClass1');
  await page.waitForFunction(() => /by=costItemClass1/.test(location.hash));
  await page.waitForFunction(
    (head) => document.querySelector('.chart-table thead th:nth-child(2)').textContent !== head,
    before.head[1],
  );
  await chartShown(page);
  assert.equal(await page.evaluate(() => document.activeElement.id), 'chart-choice-by');
  const byClass = await tableOf(page);
  await page.reload();
  await chartShown(page);
  assert.deepEqual(await tableOf(page), byClass);
  await page.goBack();
  await page.waitForFunction(
    (head) => document.querySelector('.chart-table thead th:nth-child(2)').textContent === head,
    before.head[1],
  );
  assert.deepEqual(await tableOf(page), before);
  await page.click('.chart-bar a:has-text("透视表")');
  await page.waitForSelector('.grid-area.pivot .grid');
  assert.match(page.url(), /rows=month&across=cfxCode&figures=receiptAmount/);
});

test('another product is shown by its code', async () => {
  await showChart('fx-wt', 'chart=unitCost');
  await page.fill('#chart-choice-item', '0101-00002');
  await page.press('#chart-choice-item', 'Enter');
  await page.waitForFunction(() => document.querySelector('.chart-table caption')?.textContent.includes('0101-00002 '));
  await chartShown(page);
  assert.equal(new URLSearchParams(new URL(page.url()).hash.split('?')[1]).get('item'), '0101-00002 45号圆钢');
});

test('the picture is a PNG of what is drawn', async () => {
  await showChart('outsum-item', 'chart=structure');
  const [download] = await Promise.all([page.waitForEvent('download'), page.click('.chart-bar button')]);
  assert.equal(download.suggestedFilename(), 'outsum-item-structure.png');
  const bytes = readFileSync(await download.path());
  assert.deepEqual([...bytes.subarray(0, 8)], [0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a]);
  const size = await page.evaluate(() => {
    const {width, height} = document.querySelector('.charts canvas');
    return [width, height];
  });
  assert.deepEqual([bytes.readUInt32BE(16), bytes.readUInt32BE(20)], size);
  const dots = await page.evaluate(async (text) => {
    const data = Uint8Array.from(atob(text), (character) => character.charCodeAt(0));
    const picture = await createImageBitmap(new Blob([data], {type: 'image/png'}));
    const canvas = new OffscreenCanvas(picture.width, picture.height);
    const context = canvas.getContext('2d');
    context.drawImage(picture, 0, 0);
    const {data: all} = context.getImageData(0, 0, picture.width, picture.height);
    const found = {};
    for (let at = 0; at < all.length; at += 4) {
      const colour = all.slice(at, at + 4).join();
      found[colour] = (found[colour] ?? 0) + 1;
    }
    return found;
  }, bytes.toString('base64'));
  assert.ok(dots['255,255,255,255'] > 10000, 'paper');
  assert.ok(dots['11,92,173,255'] > 10000, 'bars');
});

test('series differ by more than colour', async () => {
  const series = () =>
    page.evaluate(() =>
      globalThis.Chart.getChart(document.querySelector('.charts canvas')).data.datasets.map((one) => ({
        isPattern: one.backgroundColor instanceof CanvasPattern,
        look: `${one.pointStyle} ${one.borderDash}`,
      })),
    );
  await showChart('outsum-item', 'chart=months');
  const stack = await series();
  assert.equal(stack.length, 8);
  assert.deepEqual(
    stack.map(({isPattern}) => isPattern),
    stack.map((_, at) => at > 0),
  );
  await showChart('outsum-item', 'chart=months&form=lines');
  assert.equal(new Set((await series()).map(({look}) => look)).size, 8);
});

test('a chart follows the colours of the desk', async () => {
  await showChart('outsum-item', 'chart=months');
  const paper = () =>
    page.evaluate(() => [...document.querySelector('.charts canvas').getContext('2d').getImageData(2, 2, 1, 1).data]);
  assert.deepEqual(await paper(), [255, 255, 255, 255]);
  await page.emulateMedia({colorScheme: 'dark'});
  await page.waitForFunction(
    () => document.querySelector('.charts canvas').getContext('2d').getImageData(2, 2, 1, 1).data[0] < 64,
  );
  await page.emulateMedia({colorScheme: 'light'});
});

test('every look has no obstacle and stays within the window', async () => {
  for (const {lang, scheme, size} of [
    {lang: 'zh', scheme: 'light', size: {width: 1400, height: 900}},
    {lang: 'en', scheme: 'dark', size: {width: 1400, height: 900}},
    {lang: 'en', scheme: 'light', size: {width: 900, height: 700}},
  ]) {
    const other = await openDesk(browser, {lang, scheme, size});
    for (const [report, query] of [
      ['outsum-item', 'chart=structure'],
      ['outsum-item', 'chart=months&form=lines'],
      ['fx-detail', 'chart=balance'],
      ['sfc-item', 'chart=top&by=cWhCode'],
      ['fx-wt', 'chart=unitCost&per=document'],
    ]) {
      await showChart(report, query, other);
      const name = `${report}-${query.replaceAll(/[&=]/g, '-')}`;
      if (pictures) await other.screenshot({path: `${pictures}/chart-${name}-${lang}-${scheme}-${size.width}.png`});
      assert.deepEqual(await obstacles(other), [], name);
      const wide = await other.evaluate(() =>
        ['main', '.chart-area'].filter((one) => {
          const element = document.querySelector(one);
          return element.scrollWidth > element.clientWidth + 1;
        }),
      );
      assert.deepEqual(wide, [], name);
      const label = await other.getAttribute('.charts canvas', 'aria-label');
      assert.equal(label.startsWith(await other.innerText('.chart-table caption')), true, name);
      if (lang === 'en') assert.doesNotMatch(await other.innerText('.chart-kinds'), /[\u4e00-\u9fff]/);
    }
    assert.deepEqual(other.problems, []);
    await other.context().close();
  }
  assert.deepEqual(page.problems, []);
});
