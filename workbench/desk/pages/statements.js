// The statements of a run, with time and rows, to read and to copy.
import {button, copyText, fill, h, notice} from './dom.js';
import {count, seconds, t} from './texts.js';

async function copy(text) {
  try {
    await copyText(text);
    notice(t('copied'));
  } catch {
    notice(t('copyFailed'), {error: true});
  }
}

// All statements of a run that has ended. As a script they are apart by GO, as tools for the database read them.
export function statementsPanel(info) {
  const all = info.statements.map(({sql}) => sql).join('\nGO\n');
  const spent = info.statements.reduce((sum, {ms}) => sum + (ms ?? 0), 0);
  return h(
    'section',
    {class: 'card statements', 'aria-labelledby': 'statements-title'},
    h(
      'div',
      {class: 'card-head'},
      h('h2', {id: 'statements-title'}, t('statements')),
      h('span', {class: 'muted'}, t('statementsSum', {n: count(info.statements.length), s: (spent / 1000).toFixed(2)})),
      button(t('copyAll'), () => copy(all)),
    ),
    h(
      'table',
      {class: 'data wide'},
      h(
        'thead',
        {},
        h(
          'tr',
          {},
          h('th', {scope: 'col', class: 'number'}, '#'),
          h('th', {scope: 'col', class: 'number'}, t('ms')),
          h('th', {scope: 'col', class: 'number'}, t('rows')),
          h('th', {scope: 'col'}, t('sql')),
          h('th', {scope: 'col'}, h('span', {class: 'unseen'}, t('copy'))),
        ),
      ),
      h(
        'tbody',
        {},
        info.statements.map(({n, sql, ms, rows}) =>
          h(
            'tr',
            {},
            h('th', {scope: 'row', class: 'number'}, String(n)),
            h('td', {class: 'number'}, ms === null ? '' : count(ms)),
            h('td', {class: 'number'}, rows === null || rows === undefined || rows < 0 ? '' : count(rows)),
            h('td', {class: 'sql-cell'}, sqlText(sql)),
            h(
              'td',
              {},
              button(t('copy'), () => copy(sql), {'aria-label': t('copyStatement', {n})}),
            ),
          ),
        ),
      ),
    ),
  );
}

// A long statement is cut until it is opened.
function sqlText(sql) {
  const short = 240;
  if (sql.length <= short) return h('code', {class: 'sql'}, sql);
  return h(
    'details',
    {},
    h('summary', {}, h('code', {class: 'sql cut'}, `${sql.slice(0, short).replace(/\s+/g, ' ')}…`)),
    h('code', {class: 'sql'}, sql),
  );
}

// The list while the run goes on: the newest on top, with the time that each took.
export class StatementsUnderWay {
  constructor() {
    this.list = h('ol', {class: 'under-way'});
    this.element = h(
      'div',
      {class: 'under-way-box', tabindex: '0', role: 'region', 'aria-label': t('statements')},
      this.list,
    );
    this.items = [];
  }

  add({n, sql, elapsedMs}) {
    if (this.items.some((item) => item.n === n)) return;
    const last = this.items.at(-1);
    if (last) this.end(last, elapsedMs);
    const time = h('span', {class: 'number muted'}, '…');
    const line = h(
      'li',
      {class: 'now'},
      h('span', {class: 'number'}, String(n)),
      h('code', {class: 'sql ellipsis'}, sql.replace(/\s+/g, ' ').slice(0, 400)),
      time,
    );
    this.items.push({n, began: elapsedMs, line, time});
    this.list.prepend(line);
    while (this.list.children.length > 200) this.list.lastChild.remove();
  }

  end(item, elapsedMs) {
    item.line.classList.remove('now');
    item.time.textContent = seconds(Math.max(0, elapsedMs - item.began));
  }

  clear() {
    this.items = [];
    fill(this.list);
  }
}
