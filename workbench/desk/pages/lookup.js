// Choosing codes of a master: searched by the server, shown page by page, however many rows the master has.
import {api} from './api.js';
import {button, fill, h, newId, say} from './dom.js';
import {modal} from './popup.js';
import {count, t} from './texts.js';

const pageSize = 50;

// Opens over the page; `chosen` are codes already given. Calls take(codes, names) with what the reader decides on.
export function openLookup({dialog, item, caption, multiple, chosen, take}) {
  const picked = new Map(chosen.map((code) => [code, null]));
  let offset = 0;
  let total = 0;
  let rows = [];
  let at = 0;
  let timer = 0;
  let asked = null;

  const listId = newId('lookup');
  const search = h('input', {
    type: 'search',
    placeholder: t('searchHint'),
    'aria-label': `${t('search')}: ${t('searchHint')}`,
    autocomplete: 'off',
    spellcheck: 'false',
    role: 'combobox',
    'aria-expanded': 'true',
    'aria-controls': listId,
    'aria-autocomplete': 'list',
  });
  const list = h('div', {
    id: listId,
    class: 'lookup-list',
    role: 'listbox',
    'aria-label': caption,
    'aria-multiselectable': multiple ? 'true' : null,
  });
  const shownRows = h('span', {class: 'muted'});
  const previous = button(t('previous'), () => load(offset - pageSize), {disabled: true});
  const next = button(t('next'), () => load(offset + pageSize), {disabled: true});
  const chosenRow = h('div', {class: 'chips'});
  const finish = () => {
    shown.close();
    take([...picked.keys()], picked);
  };
  const ok = multiple && button(t('ok'), finish, {class: 'primary'});
  const shown = modal(
    t('lookupOf', {caption}),
    [
      h('div', {class: 'lookup-search'}, search),
      h('div', {class: 'lookup-head', 'aria-hidden': 'true'}, h('span', {}, t('code')), h('span', {}, t('name'))),
      list,
      h('div', {class: 'lookup-foot'}, previous, next, shownRows),
      multiple && chosenRow,
    ],
    {actions: [ok, button(t('cancel'), () => shown.close())], onclose: () => asked?.abort()},
  );

  function drawChosen() {
    if (!multiple) return;
    fill(
      chosenRow,
      [...picked].slice(0, 40).map(([code, name]) =>
        h(
          'span',
          {class: 'chip'},
          name ? `${code} ${name}` : code,
          h(
            'button',
            {
              type: 'button',
              class: 'remove',
              'aria-label': t('removeValue', {value: code}),
              onclick: () => {
                picked.delete(code);
                drawChosen();
                drawRows();
              },
            },
            '✕',
          ),
        ),
      ),
      picked.size > 40 && h('span', {class: 'muted'}, t('chosenCount', {n: count(picked.size)})),
    );
  }

  function pick(row) {
    if (!multiple) {
      picked.clear();
      picked.set(row.code, row.name);
      finish();
      return;
    }
    if (picked.has(row.code)) picked.delete(row.code);
    else picked.set(row.code, row.name);
    drawChosen();
    drawRows();
  }

  function drawRows() {
    fill(
      list,
      rows.map((row, index) =>
        h(
          'div',
          {
            id: `${listId}-${index}`,
            role: 'option',
            class: index === at ? 'option at' : 'option',
            'aria-selected': picked.has(row.code) ? 'true' : 'false',
            onclick: () => {
              at = index;
              pick(row);
              search.focus();
            },
          },
          h(
            'span',
            {class: 'code'},
            multiple && h('span', {class: 'tick', 'aria-hidden': 'true'}, picked.has(row.code) ? '✓' : ''),
            row.code,
          ),
          h('span', {}, row.name),
        ),
      ),
    );
    if (rows.length > 0) search.setAttribute('aria-activedescendant', `${listId}-${at}`);
    else search.removeAttribute('aria-activedescendant');
    list.children[at]?.scrollIntoView({block: 'nearest'});
  }

  async function load(from, {last = false} = {}) {
    asked?.abort();
    asked = new AbortController();
    try {
      const answer = await api.lookup(dialog, item, search.value.trim(), Math.max(0, from), pageSize, asked.signal);
      offset = Math.max(0, from);
      total = answer.count;
      rows = answer.rows;
      at = last ? Math.max(0, rows.length - 1) : 0;
      const words =
        total === 0
          ? t('nothingFound')
          : t('rowsShown', {from: count(offset + 1), to: count(offset + rows.length), count: count(total)});
      shownRows.textContent = words;
      say(words);
      previous.disabled = offset === 0;
      next.disabled = offset + rows.length >= total;
      drawRows();
    } catch (error) {
      if (error.name !== 'AbortError') shownRows.textContent = error.message;
    }
  }

  search.addEventListener('input', () => {
    clearTimeout(timer);
    timer = setTimeout(() => load(0), 150);
  });
  search.addEventListener('keydown', (event) => {
    const page = 8;
    const step = {ArrowDown: 1, ArrowUp: -1, PageDown: page, PageUp: -page}[event.key];
    if (step) {
      event.preventDefault();
      const to = at + step;
      if (to >= rows.length && !next.disabled && at === rows.length - 1) load(offset + pageSize);
      else if (to < 0 && offset > 0 && at === 0) load(offset - pageSize, {last: true});
      else {
        at = Math.max(0, Math.min(rows.length - 1, to));
        drawRows();
      }
    } else if (event.key === 'Enter' && rows[at]) {
      event.preventDefault();
      if (event.ctrlKey && multiple) finish();
      else pick(rows[at]);
    }
  });
  drawChosen();
  search.focus();
  load(0);
}
