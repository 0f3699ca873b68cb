// Runs the tests of this folder at one desk:
//   node tests/desk/browser/run.mjs            at the test double, which it starts
//   DESK_LINK=http://127.0.0.1:.../open/... node tests/desk/browser/run.mjs    at a `quillon serve`, by the link it printed
// Arguments are names of test files; without any, all are run.
import {spawn} from 'node:child_process';
import {readdirSync} from 'node:fs';
import {fileURLToPath} from 'node:url';
import {startMock} from '../mock_server.mjs';

const folder = fileURLToPath(new URL('.', import.meta.url));
const double = process.env.DESK_LINK ? null : await startMock();
const link = new URL(process.env.DESK_LINK ?? double.link);

// The link opens once: its cookie is what all the tests go in with.
const answer = await fetch(link, {redirect: 'manual'});
const cookie = (answer.headers.get('set-cookie') ?? '').split(';')[0];
if (!cookie) {
  console.error(`the link gives no cookie: status ${answer.status}`);
  process.exit(1);
}
const given = process.argv.slice(2);
const files = readdirSync(folder).filter(
  (name) => name.endsWith('.test.mjs') && (given.length === 0 || given.includes(name)),
);
const tests = spawn(
  process.execPath,
  ['--test', '--test-concurrency=1', '--test-reporter=spec', ...files.map((name) => folder + name)],
  {
    stdio: 'inherit',
    env: {...process.env, DESK_ADDRESS: link.origin, DESK_COOKIE: cookie, DESK_DOUBLE: double ? '1' : '0'},
  },
);
tests.on('exit', (code) => {
  double?.close();
  process.exitCode = code ?? 1;
});
