// Runs the tests of this folder in a browser, each file at a desk of its own:
//   node tests/desk/browser/run.mjs [FILE...]                       at build/native/bin/quillon over a sample account
//   node tests/desk/browser/run.mjs --program PROGRAM [FILE...]     at another build
//   node tests/desk/browser/run.mjs --double [FILE...]              at the test double
//   DESK_LINK=http://127.0.0.1:.../open/... node ...run.mjs [FILE...]   at one that runs already, by the link it printed
// Without files, all that the desk can play: double.test.mjs is for the double alone, some for the server.
import {spawn} from 'node:child_process';
import {existsSync, readdirSync} from 'node:fs';
import {availableParallelism} from 'node:os';
import {fileURLToPath} from 'node:url';
import {parseArgs} from 'node:util';
import {startMock} from '../mock_server.mjs';
import {ServedDesks} from './served_desk.mjs';

const folder = fileURLToPath(new URL('.', import.meta.url));
const {values: options, positionals: given} = parseArgs({
  allowPositionals: true,
  options: {
    double: {type: 'boolean', default: false},
    program: {type: 'string', default: fileURLToPath(new URL('../../../build/native/bin/quillon', import.meta.url))},
  },
});
const link = process.env.DESK_LINK;
const isServed = !options.double && !link;
if (isServed && !existsSync(options.program)) {
  console.error(`there is no ${options.program}: build the target quillon, or take --double`);
  process.exit(2);
}

const lines = 20000;
// The measurements want a long result: 700,000 rows come of so many lines of the ledger.
const manyLines = Number(process.env.DESK_MANY_LINES ?? 216000);
const measures = 'large.test.mjs';
// What is wrong in the account of these tests: 150 receipts whose cost items sum to 0.0625 too much, which is more than a
// page of rows, and cost items whose class is not there.
const faults = {
  'checks.test.mjs': `
Update ia_subsidiary_Item Set iItemInPrice = iItemInPrice + 0.0625 Where AutoID In (Select Top 150 Min(AutoID)
  From ia_subsidiary_Item Where bRdFlag = 1 And iMonth > 0 And iYear = 2024 Group By iSubID Order By iSubID)
go
Update Ca_FxDef Set cFxCID = 999 Where iFxID = (Select Max(iFxID) From Ca_FxDef)
`,
};
const ofDouble = 'double.test.mjs';
// The double's files and figures are made up.
const ofServer = ['charts', 'checks', 'compare', 'export', 'layouts', 'ledger', 'pivot'].map((name) => `${name}.test.mjs`);

const files = readdirSync(folder).filter((name) =>
  given.length > 0
    ? given.includes(name)
    : name.endsWith('.test.mjs') && !(options.double ? ofServer : [ofDouble]).includes(name),
);
for (const name of given) {
  if (files.includes(name)) continue;
  console.error(`there is no file of tests ${name}`);
  process.exit(2);
}

const served = isServed ? new ServedDesks(options.program) : null;
const tests = new Set();
process.on('exit', () => {
  // All of a group, so that the browser goes, too.
  for (const child of tests) process.kill(-child.pid, 'SIGTERM');
  served?.close();
});
for (const [signal, number] of [
  ['SIGINT', 2],
  ['SIGTERM', 15],
  ['SIGHUP', 1],
])
  process.on(signal, () => process.exit(128 + number));

// The link opens once: its cookie is what a file's tests go in with.
async function enter(address) {
  const answer = await fetch(address, {redirect: 'manual'});
  const cookie = (answer.headers.get('set-cookie') ?? '').split(';')[0];
  if (!cookie) throw new Error(`the link gives no cookie: status ${answer.status}`);
  return {DESK_ADDRESS: new URL(address).origin, DESK_COOKIE: cookie};
}
const entered = link ? await enter(link) : null;

async function deskFor(name) {
  if (entered) return {environment: entered, end: async () => []};
  if (!served) {
    const double = await startMock();
    return {environment: {...(await enter(double.link)), DESK_DOUBLE: '1'}, end: async () => double.close() ?? []};
  }
  const desk = await served.start(name === measures ? manyLines : lines, faults[name]);
  return {environment: {...(await enter(desk.link)), DESK_TEMPORARY: desk.temporary}, end: desk.end};
}

// Runs a file's tests; answers whether they passed. What they say is written when all is said.
async function run(name) {
  let said = '';
  let passed = false;
  let left = [];
  try {
    const desk = await deskFor(name);
    const child = spawn(process.execPath, ['--test', '--test-reporter=spec', folder + name], {
      stdio: ['ignore', 'pipe', 'pipe'],
      detached: true,
      env: {...process.env, ...(served ? {TMPDIR: served.folder} : {}), DESK_DOUBLE: '0', ...desk.environment},
    });
    tests.add(child);
    child.stdout.on('data', (text) => (said += text));
    child.stderr.on('data', (text) => (said += text));
    passed = await new Promise((go) => child.on('close', (code) => go(code === 0)));
    tests.delete(child);
    left = await desk.end();
  } catch (error) {
    left.push(String(error.stack ?? error));
  }
  process.stdout.write(`\n${name}\n${said}${left.map((line) => `✖ ${line}\n`).join('')}`);
  return passed && left.length === 0;
}

// Side by side where each has a desk of its own; what measures comes last, and alone.
const failed = [];
const waiting = files.filter((name) => name !== measures).sort((a) => (a === 'looks.test.mjs' ? -1 : 1));
const worker = async () => {
  for (let name = waiting.shift(); name; name = waiting.shift()) if (!(await run(name))) failed.push(name);
};
await Promise.all(Array.from({length: entered ? 1 : Math.min(4, availableParallelism())}, worker));
if (files.includes(measures) && !(await run(measures))) failed.push(measures);
console.log(failed.length > 0 ? `\nfailed: ${failed.join(', ')}` : `\nthe desk passed: ${files.join(', ')}`);
process.exit(failed.length > 0 ? 1 : 0);
