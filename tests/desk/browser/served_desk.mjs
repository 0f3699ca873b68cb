// A `quillon serve` of its own for each file of tests, over one sample account. What it keeps, it keeps in one folder,
// which goes with it.
import {spawn} from 'node:child_process';
import {copyFileSync, existsSync, mkdirSync, mkdtempSync, readdirSync, rmSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {once} from 'node:events';

const startLimit = 120000; // ms; for a machine that is busy with other things

// Runs a program to its end, and throws what it says when it fails.
async function call(program, parameters, environment) {
  const child = spawn(program, parameters, {stdio: ['ignore', 'pipe', 'pipe'], env: environment});
  let said = '';
  child.stdout.on('data', (text) => (said += text));
  child.stderr.on('data', (text) => (said += text));
  const [code] = await once(child, 'close');
  if (code !== 0) throw new Error(`${program} ${parameters.join(' ')} ended with ${code}: ${said}`);
}

export class ServedDesks {
  constructor(program) {
    this.program = program;
    this.folder = mkdtempSync(join(tmpdir(), 'quillon-desk-tests.'));
    this.accounts = new Map(); // number of ledger lines -> promise of its file
    this.running = new Set();
    this.started = 0;
  }

  // With `faults`, a script, in a file of its own.
  async faultyAccount(lines, faults) {
    const file = join(this.folder, 'sample-faulty.account');
    copyFileSync(await this.account(lines), file);
    const script = join(this.folder, 'faults.sql');
    writeFileSync(script, faults);
    await call(this.program, ['sql', '--account', file, script], process.env);
    return file;
  }

  account(lines) {
    if (!this.accounts.has(lines)) {
      const file = join(this.folder, `sample-${lines}.account`);
      const made = call(this.program, ['account', 'new', file, '--rows', String(lines), '--seed', '7'], process.env);
      this.accounts.set(
        lines,
        made.then(() => file),
      );
    }
    return this.accounts.get(lines);
  }

  // A desk of its own: its link, and end(), which answers what it has left behind.
  async start(lines, faults) {
    const account = await (faults ? this.faultyAccount(lines, faults) : this.account(lines));
    this.started += 1;
    const own = join(this.folder, String(this.started));
    const temporary = join(own, 'temporary');
    mkdirSync(temporary, {recursive: true});
    const child = spawn(this.program, ['serve', '--account', account, '--idle', '20'], {
      stdio: ['ignore', 'pipe', 'pipe'],
      env: {...process.env, TMPDIR: temporary, XDG_CONFIG_HOME: join(own, 'configuration')},
    });
    this.running.add(child);
    const ended = once(child, 'close').then(([code, signal]) => {
      this.running.delete(child);
      return signal ?? code;
    });
    let said = '';
    const link = await new Promise((go, fail) => {
      const late = setTimeout(() => fail(new Error(`quillon serve prints no link: ${said}`)), startLimit);
      const hear = (text) => {
        said += text;
        const found = /http:\S+\/open\/\S+/.exec(said);
        if (!found) return;
        clearTimeout(late);
        go(found[0]);
      };
      child.stdout.on('data', hear);
      child.stderr.on('data', hear);
      ended.then((code) => {
        clearTimeout(late);
        fail(new Error(`quillon serve ended with ${code}: ${said}`));
      });
    });
    const end = async () => {
      const isRunning = this.running.has(child);
      child.kill('SIGTERM');
      const hard = setTimeout(() => child.kill('SIGKILL'), 30000);
      const code = await ended;
      clearTimeout(hard);
      // Ended by a signal, it ends as programs do that clean up first: with 128 and the signal's number.
      if (!isRunning) return [`quillon serve ended by itself, with ${code}: ${said}`];
      const left = existsSync(temporary) ? readdirSync(temporary) : [];
      return [
        ...(code === 143 ? [] : [`quillon serve ended with ${code}: ${said}`]),
        ...left.map((name) => `quillon serve left ${name} among its temporary files`),
      ];
    };
    return {link, temporary, end};
  }

  // Without waiting: on the way out of the program.
  close() {
    for (const child of this.running) child.kill('SIGKILL');
    rmSync(this.folder, {recursive: true, force: true, maxRetries: 20, retryDelay: 100}); // a browser may be on its way out
  }
}
