// A browser at the desk, for the tests of this folder. DESK_ADDRESS and DESK_COOKIE ("name=value") say which desk;
// run.mjs sets them, for a link that it is given or for the test double.
import {readFileSync} from 'node:fs';
import {createRequire} from 'node:module';
import {after, before} from 'node:test';
import {fileURLToPath} from 'node:url';

const libraries = fileURLToPath(new URL('../../../.deps/browser/node_modules/', import.meta.url));
const require = createRequire(libraries);
const {chromium} = require(`${libraries}playwright-core`);

export const address = process.env.DESK_ADDRESS;
export const isDouble = process.env.DESK_DOUBLE === '1';

export async function startBrowser() {
  return chromium.launch({
    executablePath: process.env.DESK_BROWSER ?? '/usr/bin/chromium',
    ignoreDefaultArgs: ['--hide-scrollbars'],
    args: [
      ...(process.getuid() === 0 ? ['--no-sandbox'] : []),
      '--js-flags=--expose-gc',
      '--enable-precise-memory-info',
    ],
  });
}

// A page of its own context, signed in. What the console says that is an error or of the Content-Security-Policy is
// collected in `page.problems`; a test looks at them at its end.
export async function openDesk(
  browser,
  {lang = 'zh', scheme = 'light', size = {width: 1400, height: 900}, hash = '#/'} = {},
) {
  const context = await browser.newContext({
    viewport: size,
    colorScheme: scheme,
    locale: lang === 'zh' ? 'zh-CN' : 'en-GB',
    acceptDownloads: true,
    permissions: ['clipboard-read', 'clipboard-write'],
  });
  const [name, value] = process.env.DESK_COOKIE.split('=');
  await context.addCookies([{name, value, url: address, httpOnly: true, sameSite: 'Strict'}]);
  const page = await context.newPage();
  page.setDefaultTimeout(Number(process.env.DESK_TIMEOUT ?? 15000));
  page.problems = [];
  // What the server has not answered yet; a stream of events never ends.
  page.asked = new Set();
  page.on('request', (request) => {
    if (!request.url().endsWith('/events')) page.asked.add(request);
  });
  for (const end of ['requestfinished', 'requestfailed']) page.on(end, (request) => page.asked.delete(request));
  page.on('pageerror', (error) => page.problems.push(`error: ${error.stack ?? error}`));
  page.on('console', (message) => {
    // A refusal of a filter value is an answer of status 422, which the browser reports by itself.
    if (message.type() === 'error' && !/status of 4(04|22)/.test(message.text()))
      page.problems.push(`console: ${message.text()}`);
  });
  await page.addInitScript(() =>
    document.addEventListener('securitypolicyviolation', (event) =>
      console.error(`policy: ${event.violatedDirective} ${event.blockedURI} ${event.sourceFile}:${event.lineNumber}`),
    ),
  );
  await page.goto(`${address}/${hash}`);
  await page.waitForSelector('#main > *');
  return page;
}

// The browser and the page of a file's tests: there from before the first test until behind the last. `prepare` does what all
// of them need.
export let browser;
export let page;
export function beginDesk(prepare) {
  before(async () => {
    browser = await startBrowser();
    page = await openDesk(browser);
    await prepare?.();
  });
  after(() => browser.close());
}

// What axe finds that is worse than minor, a line each. The library is put in from outside, past the policy.
export async function obstacles(page) {
  await page.evaluate(readFileSync(`${libraries}axe-core/axe.min.js`, 'utf8'));
  const found = await page.evaluate(() => window.axe.run(document, {resultTypes: ['violations']}));
  return found.violations
    .filter(({impact}) => impact !== 'minor')
    .map(
      ({id, impact, nodes}) =>
        `${id} (${impact}): ${nodes
          .map((node) => node.target.join(' '))
          .slice(0, 4)
          .join('; ')}`,
    );
}

// The reports that the desk has, as its interface describes them.
export async function reportsOf(page) {
  return page.evaluate(async () => (await fetch('/api/reports')).json());
}

export async function openFilter(page, report, filter = {}) {
  const query = new URLSearchParams();
  for (const [key, values] of Object.entries(filter))
    for (const value of [values].flat()) query.append(`f.${key}`, value);
  await page.goto(`${address}/#/report/${report}?${query}`);
  await page.waitForSelector('main:not([aria-busy]) .field');
  await settled(page);
}

const gridLimit = Number(process.env.DESK_TIMEOUT ?? 60000);

// Until nothing is asked of the server any more, and nothing has been for a moment: what an answer changes may ask again.
export async function settled(page) {
  const moment = 120;
  for (let quiet = 0; quiet < moment; quiet = page.asked.size > 0 ? 0 : quiet + 30) await page.waitForTimeout(30);
}

// An inventory and its warehouse that have many lines in the sample account. DESK_LEDGER names others, for another account.
const ledger = new URLSearchParams(process.env.DESK_LEDGER ?? 'cWhCode=01&cInvCode=0103-00026');
export const filterFor = (report) => (report === 'fx-detail' && !isDouble ? Object.fromEntries(ledger) : {});

// Runs a report from its filter. What is refused for want of a code gets the first that its lookup offers.
export async function runReport(page, report, filter = filterFor(report), timeout = gridLimit) {
  await openFilter(page, report, filter);
  for (let attempt = 0; attempt < 4; attempt += 1) {
    await page.click('form .page-head button[type=submit]');
    const what = await Promise.race([
      page.waitForURL(/#\/run\//).then(() => 'run'),
      page.waitForSelector('.field.refused').then(() => 'refused'),
    ]);
    if (what === 'run') break;
    for (const opener of await page.$$('.field.refused .joined > button.sign:not([disabled])')) {
      await opener.click();
      await page.click('.lookup-list [role=option]');
      const ok = await page.$('.modal-foot button.primary');
      if (ok) await ok.click();
      await settled(page);
    }
  }
  await waitForGrid(page, timeout);
}

export async function waitForGrid(page, timeout = gridLimit) {
  await orSayWhatIsShown(page, async () => {
    await page.waitForSelector('regular-table thead th', {timeout});
    await page.waitForFunction(() => !document.querySelector('.grid-area[aria-busy]'), null, {timeout});
    await page.waitForSelector('regular-table tbody tr', {timeout});
    // Rows may still be on their way when the first are there.
    await page.waitForFunction(() => /\d/.test(document.querySelector('.counts').textContent), null, {timeout});
  });
  await page.waitForTimeout(60);
}

// A time-out alone does not tell what the page showed instead.
async function orSayWhatIsShown(page, act) {
  try {
    await act();
  } catch (error) {
    const shown = await page.innerText('main').catch(() => '');
    throw new Error(`${error.message}\nat ${page.url()}:\n${shown.slice(0, 1500)}`);
  }
}

// Does what changes the arrangement of the rows, and waits for the grid that shows it.
export async function rearrange(page, act, timeout = gridLimit) {
  await page.evaluate(() => {
    document.querySelector('regular-table').dataset.old = '1';
  });
  await act();
  await orSayWhatIsShown(page, () =>
    page.waitForFunction(
      () => document.querySelector('regular-table') && !document.querySelector('regular-table').dataset.old,
      null,
      {timeout},
    ),
  );
  await waitForGrid(page, timeout);
}

// What is to be seen of the grid: columns in sight {index, name, sort}, rows {index, kind, cells: {column index:
// text}}, totals.
export async function gridOf(page) {
  return page.evaluate(() => {
    const table = document.querySelector('regular-table table');
    const head = [...table.tHead.rows].at(-1);
    const caption = (th) => th.querySelector('span').textContent;
    const rows = [...table.tBodies[0].rows].filter((tr) => tr.getAttribute('aria-hidden') !== 'true');
    const active = document.getElementById(table.getAttribute('aria-activedescendant'));
    return {
      rowCount: Number(table.getAttribute('aria-rowcount')) - table.tHead.rows.length,
      columnCount: Number(table.getAttribute('aria-colcount')),
      columns: [...head.cells].map((th) => ({
        index: Number(th.getAttribute('aria-colindex')),
        caption: caption(th),
        sort: th.getAttribute('aria-sort'),
        number: th.classList.contains('number'),
        left: th.getBoundingClientRect().left,
        width: th.getBoundingClientRect().width,
      })),
      rows: rows.map((tr) => ({
        index: Number(tr.getAttribute('aria-rowindex')) - table.tHead.rows.length,
        kind: /kind-(\w+)/.exec(tr.className)?.[1],
        cells: Object.fromEntries([...tr.cells].map((cell) => [cell.getAttribute('aria-colindex'), cell.textContent])),
      })),
      totals: [...document.querySelectorAll('.totals tr')].map((tr) => [...tr.cells].map((cell) => cell.textContent)),
      active: active && {text: active.textContent, column: Number(active.getAttribute('aria-colindex')), id: active.id},
      hash: location.hash,
    };
  });
}

// Goes to the heading of the first column in sight that `wanted(column, text)` takes, where `text` is what the first row
// has in it, and gives the column with that text.
export async function focusHeading(page, wanted) {
  await page.focus('regular-table table');
  await page.keyboard.press('Control+Home');
  await page.keyboard.press('ArrowUp');
  await page.waitForFunction(() => document.querySelector('thead .at')?.getAttribute('aria-colindex') === '1');
  await page.waitForTimeout(100);
  const {columns, rows} = await gridOf(page);
  const textIn = (column) => rows[0]?.cells[column.index] ?? '';
  const column = columns.find((one) => wanted(one, textIn(one)));
  for (let step = 1; step < column.index; step += 1) await page.keyboard.press('ArrowRight');
  return {...column, text: textIn(column)};
}

// The file that the page's export gives of what it shows.
export async function exported(format) {
  await page.click('.tools button:has-text("导出")');
  const [download] = await Promise.all([
    page.waitForEvent('download'),
    page.click(`.exports a[href*="format=${format}"]`),
  ]);
  return download.path();
}

// All rows of the view at this path of the interface, page by page.
export async function allRows(page, view) {
  const rows = [];
  for (;;) {
    const answer = await page.evaluate(
      async (path) => (await fetch(path)).json(),
      `${view}/rows?offset=${rows.length}&limit=1000`,
    );
    rows.push(...answer.rows);
    if (answer.complete && rows.length === answer.rowCount) return rows;
  }
}
