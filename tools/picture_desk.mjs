// Makes two pictures of the desk: opens its link, fills in the detail ledger's filter, runs it and photographs the result; the
// same with a chart of the outbound summary. With --checks, one of the checks of the account.
// tools/make-pictures.sh calls it. Usage: picture_desk.mjs LINK LEDGER.png CHART.png
//                                         picture_desk.mjs LINK --checks CHECKS.png
import {createRequire} from 'node:module';
import {fileURLToPath} from 'node:url';

const [link, ...pictures] = process.argv.slice(2);
const libraries = fileURLToPath(new URL('../.deps/browser/node_modules/', import.meta.url));
const {chromium} = createRequire(libraries)(`${libraries}playwright-core`);

const browser = await chromium.launch({
  executablePath: '/usr/bin/chromium',
  args: process.getuid() === 0 ? ['--no-sandbox'] : [], // which Chromium refuses to root; the pages are our own
});
// The detail ledger, with one line folded out, and a chart of the outbound summary.
async function photographReports(page, ledger, chart) {
  await page.goto(`${new URL(link).origin}/#/report/fx-detail?f.cInvCode=0301-00237&f.cWhCode=07`);
  await page.waitForSelector('main:not([aria-busy]) .field');
  await page.waitForLoadState('networkidle');
  await page.click('form .page-head button[type=submit]');
  await page.waitForURL(/#\/run\//);
  await page.waitForSelector('regular-table tbody tr');
  await page.waitForLoadState('networkidle');
  // One line with its cost items.
  await page.click('tr.folded-in > .first', {position: {x: 12, y: 12}});
  await page.waitForLoadState('networkidle');
  await page.mouse.move(0, 0);
  await page.screenshot({path: ledger});

  await page.goto(`${new URL(link).origin}/#/report/outsum-item?f.cModal=1`);
  await page.waitForSelector('main:not([aria-busy]) .field');
  await page.waitForLoadState('networkidle');
  await page.click('form .page-head button[type=submit]');
  await page.waitForURL(/#\/run\//);
  await page.waitForSelector('regular-table tbody tr');
  const [run] = new URL(page.url()).hash.split('?');
  await page.goto(`${new URL(link).origin}/${run}?report=outsum-item&layout=chart&chart=unitCost`);
  await page.waitForSelector('.charts:not([aria-busy]) canvas');
  await page.waitForLoadState('networkidle');
  await page.screenshot({path: chart});
}

// The checks of an account that has errors, with the rows of the first.
async function photographChecks(page, checks) {
  await page.goto(`${new URL(link).origin}/#/checks?check=line-sum`);
  await page.waitForSelector('.found tbody tr');
  await page.evaluate(() => document.querySelector('.titles .muted').remove()); // when they were made
  await page.screenshot({path: checks});
}

try {
  const page = await browser.newPage({locale: 'zh-CN', viewport: {width: 1760, height: 740}});
  await page.goto(link);
  if (pictures[0] === '--checks') await photographChecks(page, pictures[1]);
  else await photographReports(page, ...pictures);
} finally {
  await browser.close();
}
