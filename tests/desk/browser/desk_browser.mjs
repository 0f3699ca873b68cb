// A browser at the desk, for the tests of this folder. DESK_ADDRESS and DESK_COOKIE ("name=value") say which desk; run.mjs sets
// them, for a link that it is given or for the test double.
import {readFileSync} from 'node:fs';
import {createRequire} from 'node:module';
import {fileURLToPath} from 'node:url';

const libraries = fileURLToPath(new URL('../../../.deps/browser/node_modules/', import.meta.url));
const require = createRequire(libraries);
const {chromium} = require(`${libraries}playwright-core`);

export const address = process.env.DESK_ADDRESS;
export const isDouble = process.env.DESK_DOUBLE === '1';

export async function startBrowser() {
  return chromium.launch({executablePath: process.env.DESK_BROWSER ?? '/usr/bin/chromium',
    args: [...(process.getuid() === 0 ? ['--no-sandbox'] : []), '--js-flags=--expose-gc', '--enable-precise-memory-info']});
}

// A page of its own context, signed in. What the console says that is an error or of the Content-Security-Policy is collected
// in `page.problems`; a test looks at them at its end.
export async function openDesk(browser, {lang = 'zh', scheme = 'light', size = {width: 1400, height: 900}, hash = '#/'} = {}) {
  const context = await browser.newContext({viewport: size, colorScheme: scheme, locale: lang === 'zh' ? 'zh-CN' : 'en-GB', acceptDownloads: true,
    permissions: ['clipboard-read', 'clipboard-write']});
  const [name, value] = process.env.DESK_COOKIE.split('=');
  await context.addCookies([{name, value, url: address, httpOnly: true, sameSite: 'Strict'}]);
  const page = await context.newPage();
  page.problems = [];
  page.on('pageerror', (error) => page.problems.push(`error: ${error.stack ?? error}`));
  page.on('console', (message) => {
    // A refusal of a filter value is an answer of status 422, which the browser reports by itself.
    if (message.type() === 'error' && !/status of 4(04|22)/.test(message.text())) page.problems.push(`console: ${message.text()}`);
  });
  await page.addInitScript(() => document.addEventListener('securitypolicyviolation', (event) =>
    console.error(`policy: ${event.violatedDirective} ${event.blockedURI} ${event.sourceFile}:${event.lineNumber}`)));
  await page.goto(`${address}/${hash}`);
  await page.waitForSelector('#main > *');
  return page;
}

// What axe finds that is worse than minor, a line each. The library is put in from outside, past the policy.
export async function obstacles(page) {
  await page.evaluate(readFileSync(`${libraries}axe-core/axe.min.js`, 'utf8'));
  const found = await page.evaluate(() => window.axe.run(document, {resultTypes: ['violations']}));
  return found.violations.filter(({impact}) => impact !== 'minor')
    .map(({id, impact, nodes}) => `${id} (${impact}): ${nodes.map((node) => node.target.join(' ')).slice(0, 4).join('; ')}`);
}

// Opens the filter of a report, fills in what it cannot do without, and runs it until its result is there.
export async function runReport(page, report, filter = {}) {
  const query = new URLSearchParams(Object.entries(filter).map(([key, value]) => [`f.${key}`, value]));
  await page.goto(`${address}/#/report/${report}?${query}`);
  await page.waitForSelector(`form button[type=submit]:has-text("${'运行'}"), form button[type=submit]:has-text("Run")`);
  await page.waitForSelector('.field');
  await page.click('form .page-head button[type=submit]');
  await waitForGrid(page);
}

export async function waitForGrid(page, timeout = 60000) {
  await page.waitForSelector('regular-table tbody td, regular-table tbody th', {timeout});
  await page.waitForFunction(() => !document.querySelector('.grid-area[aria-busy]'), null, {timeout});
}
