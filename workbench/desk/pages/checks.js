// The checks of the account: what they found, and the rows of each; and the line of a report that errors touch.
import {go, write} from './address.js';
import {api} from './api.js';
import {button, fill, h, newId, notice, say} from './dom.js';
import {caption, count, moment, seconds, t} from './texts.js';

const pageSize = 100;
const again = 400; // ms, from one look at checks under way to the next

// An amount, which is a text with all its decimals, with its thousands apart.
export function grouped(amount) {
  return amount.replace(/^-?\d+/, (digits) => digits.replace(/\B(?=(\d{3})+$)/g, ','));
}

const results = {passed: ['✓', 'checkPassed'], error: ['✕', 'checkError'], note: ['ⓘ', 'checkNote']};

const rowColumns = [
  ['checkLine', (row) => (row.line === null ? '' : String(row.line)), true],
  ['checkMonth', (row) => monthOf(row)],
  ['checkDate', (row) => row.date],
  ['checkDocument', (row) => row.document],
  ['checkInventory', (row) => row.inventory],
  ['checkWhat', (row) => row.what],
  ['checkAmount', (row) => (row.amount === null ? '' : grouped(row.amount)), true],
];

// "2024-03"; "2024" for openings.
function monthOf({year, month}) {
  if (year === null) return '';
  return month ? `${year}-${String(month).padStart(2, '0')}` : String(year);
}

export class ChecksPage {
  constructor(desk) {
    this.desk = desk;
    this.element = h('div', {class: 'page checks'});
    this.open = new Set(); // names of the checks that are folded out
  }

  get title() {
    return t('accountChecks');
  }

  async show({query}) {
    this.shown = true;
    this.open = new Set(query.getAll('check'));
    let info = await api.accountChecks();
    if (info.state === 'none') info = await api.startAccountChecks();
    this.take(info);
    this.element.querySelector('tr.found-by.open')?.scrollIntoView({block: 'center'});
  }

  hide() {
    this.shown = false;
    clearTimeout(this.timer);
  }

  take(info) {
    const ended = this.info?.state === 'running' && info.state !== 'running';
    this.info = info;
    clearTimeout(this.timer);
    if (!this.shown) return;
    if (info.state !== 'running') {
      this.draw();
      if (ended) say(this.summary());
      return;
    }
    if (this.clock?.isConnected) this.clock.textContent = seconds(info.elapsedMs);
    else this.drawProgress();
    this.timer = setTimeout(() => this.look(), again);
  }

  async look() {
    try {
      this.take(await api.accountChecks());
    } catch (error) {
      notice(error.message, {error: true});
    }
  }

  async begin() {
    try {
      this.take(await api.startAccountChecks());
    } catch (error) {
      notice(error.message, {error: true});
    }
  }

  drawProgress() {
    this.clock = h('span', {class: 'elapsed number'}, seconds(this.info.elapsedMs));
    const stop = button(
      t('stop'),
      () => {
        stop.disabled = true;
        stop.textContent = t('stopping');
        api.stopAccountChecks().catch((error) => notice(error.message, {error: true}));
      },
      {class: 'danger'},
    );
    fill(
      this.element,
      h('div', {class: 'page-head'}, h('h1', {}, t('accountChecks'))),
      h(
        'section',
        {class: 'card progress'},
        h('div', {class: 'card-head'}, h('h2', {}, t('checking')), this.clock, h('span', {class: 'space'}), stop),
        h('div', {class: 'bar', role: 'progressbar', 'aria-label': t('checking')}),
      ),
    );
    stop.focus();
  }

  summary() {
    const {state, checks} = this.info;
    if (state === 'stopped') return t('checksStopped');
    if (state === 'failed') return t('checksFailed', {message: this.info.error ?? ''});
    const errors = checks.filter(({rank, rows}) => rank === 'error' && rows > 0).length;
    return errors === 0 ? t('ledgerSound') : t('checksFound', {n: errors, all: count(checks.length)});
  }

  draw() {
    const {state, checks, started, elapsedMs} = this.info;
    const bad = state !== 'done' || checks.some(({rank, rows}) => rank === 'error' && rows > 0);
    fill(
      this.element,
      h(
        'div',
        {class: 'page-head'},
        h(
          'div',
          {class: 'titles'},
          h('h1', {}, t('accountChecks')),
          h('span', {class: 'muted'}, t('checkedAt', {when: moment(started), time: seconds(elapsedMs)})),
        ),
        h('div', {class: 'actions'}, button(t('checkAgain'), () => this.begin())),
      ),
      h('p', {class: bad ? 'message' : 'passed'}, this.summary()),
      state === 'done' && h('section', {class: 'card', 'aria-label': t('accountChecks')}, this.table(checks)),
    );
  }

  table(checks) {
    const heading = (key, number) => h('th', {scope: 'col', class: number ? 'number' : null}, t(key));
    return h(
      'table',
      {class: 'data wide'},
      h(
        'thead',
        {},
        h(
          'tr',
          {},
          heading('checkTitle'),
          heading('checkResult'),
          heading('checkRows', true),
          heading('checkSum', true),
          heading('checkReports'),
        ),
      ),
      h(
        'tbody',
        {},
        checks.map((check) => this.lines(check)),
      ),
    );
  }

  // The line of a check, and beneath it a place for its rows.
  lines(check) {
    const passed = check.rows === 0;
    const kind = passed ? 'passed' : check.rank;
    const place = h('td', {colspan: '5', id: newId('found')});
    const beneath = h('tr', {class: 'found', hidden: true}, place);
    const title = caption(check.title);
    const [sign, words] = results[kind];
    const opener = h(
      'button',
      {
        type: 'button',
        class: 'link opener',
        'aria-expanded': 'false',
        'aria-controls': place.id,
        onclick: () => this.fold(check, line, beneath, place, beneath.hidden),
      },
      h('span', {class: 'fold-sign', 'aria-hidden': 'true'}, '▸'),
      title,
    );
    const line = h(
      'tr',
      {class: `found-by ${kind}`},
      h('th', {scope: 'row'}, passed ? h('span', {class: 'no-opener'}, title) : opener),
      h(
        'td',
        {class: `check-kind ${kind}`},
        h('span', {'aria-hidden': 'true'}, `${sign} `),
        t(words),
      ),
      h('td', {class: 'number'}, passed ? '' : count(check.rows)),
      h('td', {class: 'number'}, passed || check.amount === null ? '' : grouped(check.amount)),
      h(
        'td',
        {class: 'muted'},
        check.reports.map((name) => caption(this.desk.report(name)?.title) || name).join(t('listSeparator')),
      ),
    );
    if (!passed && this.open.has(check.name)) this.fold(check, line, beneath, place, true);
    return [line, beneath];
  }

  // Folds the rows of a check out or away. What is folded out stands in the address.
  fold(check, line, beneath, place, out) {
    beneath.hidden = !out;
    line.classList.toggle('open', out);
    line.querySelector('button').setAttribute('aria-expanded', String(out));
    line.querySelector('.fold-sign').textContent = out ? '▾' : '▸';
    if (out) this.open.add(check.name);
    else this.open.delete(check.name);
    go(['checks'], new URLSearchParams([...this.open].map((name) => ['check', name])), {replace: true, quiet: true});
    if (out) this.drawRows(check, place, 0);
  }

  // A page of the rows that a check found.
  async drawRows(check, place, offset) {
    let page;
    try {
      page = await api.checkRows(check.name, offset, pageSize);
    } catch (error) {
      fill(place, h('p', {class: 'message', role: 'alert'}, error.message));
      return;
    }
    const {rows, rowCount, kept} = page;
    const columns = rowColumns.filter(([, text]) => rows.some((row) => text(row) !== ''));
    const words = t('rowsShown', {from: count(offset + 1), to: count(offset + rows.length), count: count(rowCount)});
    const turn = (key, to, disabled) =>
      button(
        t(key),
        async () => {
          await this.drawRows(check, place, to);
          say(place.querySelector('.pager span').textContent);
          const same = place.querySelector(`[data-turn=${key}]:enabled`);
          (same ?? place.querySelector('.pager button:enabled'))?.focus();
        },
        {disabled, 'data-turn': key},
      );
    fill(
      place,
      h('p', {}, caption(check.advice)),
      h(
        'div',
        {class: 'found-rows', tabindex: '0', role: 'region', 'aria-label': caption(check.title)},
        h(
          'table',
          {class: 'data'},
          h(
            'thead',
            {},
            h(
              'tr',
              {},
              columns.map(([key, , number]) => h('th', {scope: 'col', class: number ? 'number' : null}, t(key))),
            ),
          ),
          h(
            'tbody',
            {},
            rows.map((row) =>
              h(
                'tr',
                {},
                columns.map(([, text, number]) => h('td', {class: number ? 'number' : null}, text(row))),
              ),
            ),
          ),
        ),
      ),
      h(
        'div',
        {class: 'pager'},
        h('span', {class: 'muted'}, words),
        kept > pageSize && turn('previous', offset - pageSize, offset === 0),
        kept > pageSize && turn('next', offset + pageSize, offset + rows.length >= kept),
      ),
      kept < rowCount && h('p', {class: 'muted'}, t('checkRowsKept', {kept: count(kept), check: check.name})),
    );
  }

  languageChanged() {
    if (!this.info) return;
    if (this.info.state === 'running') this.drawProgress();
    else this.draw();
  }
}

// The line at the head of a run that errors of the account touch: which, and the way to their rows. Nothing is to be
// seen while the check is under way, and when nothing touches the run.
export class TouchedLine {
  constructor(run) {
    this.run = run;
    this.element = h('p', {class: 'message touched', role: 'status', hidden: true});
  }

  // Once; what the account is like while the page stands does not change what the run has read.
  ask() {
    if (this.asked) return;
    this.asked = true;
    this.look();
  }

  async look() {
    let info;
    try {
      info = await api.runChecks(this.run);
    } catch {
      return; // the run is gone, which its page says
    }
    if (info.state === 'running') {
      setTimeout(() => this.look(), again);
      return;
    }
    if (info.state === 'failed') this.show(t('checksFailed', {message: info.error ?? ''}));
    else if (info.checks.length > 0) this.show(t('touchedBy'), ...info.checks.map((check) => this.link(check)));
  }

  link(check) {
    const words = {n: count(check.rows), title: caption(check.title), amount: grouped(check.amount ?? '')};
    const href = write(['checks'], new URLSearchParams({check: check.name}));
    return h('a', {href}, t(check.amount === null ? 'touchedRows' : 'touchedAmount', words));
  }

  show(...content) {
    fill(this.element, content);
    this.element.hidden = false;
  }
}
