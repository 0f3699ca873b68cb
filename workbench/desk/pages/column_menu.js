// What can be done with a column: order by it, choose among the rows by it, move, hide, freeze it, group by it.
import {button, fill, h, newId} from './dom.js';
import {menu} from './popup.js';
import {t} from './texts.js';

// `view` is what is shown now; arrange(change) shows a changed copy of it. `names` are the columns shown, in their
// order. tryArrange(change) does the same unless the server refuses it, and throws its refusal then.
export function openColumnMenu(anchor, {column, names, view, arrange, tryArrange, widen, frozen}) {
  const {name} = column;
  const at = names.indexOf(name);
  const others = view.sort.filter((key) => key.column !== name);
  const mine = view.sort.find((key) => key.column === name);
  const mark = (on, text) => `${on ? '✓ ' : '  '}${text}`;
  const columnsAs = (change) =>
    arrange((next) => {
      next.columns = change([...names]);
    });
  const sorted = (descending) =>
    arrange((next) => {
      next.sort = [{column: name, descending}];
    });
  const entries = [
    {text: mark(mine && !mine.descending && others.length === 0, t('sortAscending')), act: () => sorted(false)},
    {text: mark(mine?.descending && others.length === 0, t('sortDescending')), act: () => sorted(true)},
    others.length > 0 && {
      text: mark(mine, t('sortAlso')),
      act: () =>
        arrange((next) => {
          next.sort = [...others, {column: name, descending: mine ? !mine.descending : false}];
        }),
    },
    mine && {
      text: mark(false, t('noSort')),
      act: () =>
        arrange((next) => {
          next.sort = others;
        }),
    },
    null,
    !column.number && {
      text: mark(view.groupBy.includes(name), t('groupBy')),
      act: () =>
        arrange((next) => {
          next.groupBy = next.groupBy.includes(name)
            ? next.groupBy.filter((one) => one !== name)
            : [...next.groupBy, name];
        }),
    },
    {text: mark(false, t('moveLeft')), disabled: at <= 0, act: () => columnsAs((list) => moved(list, at, at - 1))},
    {
      text: mark(false, t('moveRight')),
      disabled: at >= names.length - 1,
      act: () => columnsAs((list) => moved(list, at, at + 1)),
    },
    {text: mark(false, t('wider')), act: () => widen(32)},
    {text: mark(false, t('narrower')), act: () => widen(-32)},
    {
      text: mark(frozen === at + 1, t('freezeHere')),
      disabled: at >= names.length - 1,
      act: () =>
        arrange((next) => {
          next.frozen = at + 1;
        }),
    },
    frozen > 0 && {
      text: mark(false, t('unfreeze')),
      act: () =>
        arrange((next) => {
          next.frozen = 0;
        }),
    },
    {
      text: mark(false, t('hideColumn')),
      disabled: names.length < 2,
      act: () => columnsAs((list) => list.filter((one) => one !== name)),
    },
    null,
  ].filter((entry) => entry !== false && entry !== undefined);
  const shown = menu(anchor, t('columnMenu', {caption: column.caption}), entries, [
    filterForm(column, view, tryArrange, () => shown.close()),
  ]);
}

export function moved(list, from, to) {
  const [one] = list.splice(from, 1);
  list.splice(to, 0, one);
  return list;
}

function filterForm(column, view, tryArrange, close) {
  const now = view.where.find((one) => one.column === column.name);
  const kind = h(
    'select',
    {'aria-label': t('filter')},
    ['contains', 'equals', 'range'].map((one) => h('option', {value: one}, t(one))),
  );
  kind.value = now?.kind ?? (column.number || column.role === 'date' ? 'range' : 'contains');
  const place = h('div', {class: 'values'});
  const text = (label, value) =>
    h('input', {type: 'text', 'aria-label': label, value: value ?? '', autocomplete: 'off'});
  const draw = () => {
    const kept = now?.kind === kind.value ? now.values : [];
    if (kind.value === 'range')
      fill(place, text(t('from'), kept[0]), h('span', {'aria-hidden': 'true'}, '–'), text(t('to'), kept[1]));
    else if (kind.value === 'equals') {
      fill(
        place,
        h('textarea', {
          rows: '3',
          'aria-label': `${t('value')}: ${t('equalsHint')}`,
          placeholder: t('equalsHint'),
          value: kept.join('\n'),
        }),
      );
    } else fill(place, text(t('value'), kept[0]));
  };
  kind.addEventListener('change', draw);
  draw();
  // What is refused is said here, and the rows stay as they are.
  const refusal = h('p', {class: 'message', role: 'alert', id: newId('refusal'), hidden: true});
  const keep = async (values) => {
    try {
      await tryArrange((next) => {
        const rest = next.where.filter((one) => one.column !== column.name);
        next.where = values ? [...rest, {column: column.name, kind: kind.value, values}] : rest;
      }, close);
    } catch (error) {
      refusal.textContent = error.message;
      refusal.hidden = false;
      for (const input of place.querySelectorAll('input, textarea')) {
        input.setAttribute('aria-invalid', 'true');
        input.setAttribute('aria-describedby', refusal.id);
      }
      place.querySelector('input, textarea').focus();
    }
  };
  return h(
    'form',
    {
      class: 'column-filter',
      onsubmit: (event) => {
        event.preventDefault();
        const given = [...place.querySelectorAll('input, textarea')].map((input) => input.value.trim());
        const values =
          kind.value === 'range'
            ? given
            : given
                .flatMap((one) => one.split('\n'))
                .map((one) => one.trim())
                .filter(Boolean);
        keep(values.some(Boolean) ? values : null);
      },
    },
    h('div', {class: 'column-filter-head'}, h('span', {}, t('filter')), kind),
    place,
    refusal,
    h(
      'div',
      {class: 'actions'},
      h('button', {type: 'submit', class: 'primary'}, t('apply')),
      now && button(t('removeFilter'), () => keep(null)),
    ),
  );
}
