// Layouts kept by name: the same files that the command line's --layout reads.
import {putView, viewIn} from './address.js';
import {api} from './api.js';
import {button, fill, h, notice, say, signButton} from './dom.js';
import {pivotIn, putPivot} from './pivot.js';
import {popup} from './popup.js';
import {moment, t} from './texts.js';

// What of an address is kept: how rows are shown, not which of them. `first` is the layout of one that names none.
export function keptOf(query, first) {
  const {layout, columns, sort, groupBy, allColumns, details} = viewIn(query);
  if (layout === 'pivot') return {layout, pivot: pivotIn(query)};
  // Of two runs side by side, the pivot that both are shown as; an order goes by columns that it does not have.
  if (layout === 'compare') return {layout: 'pivot', pivot: {...pivotIn(query), columns: [], sort: []}};
  return {layout: layout || first, columns, sort, groupBy, allColumns, details};
}

// The address with what was kept. Conditions on columns stay where the layout is the one that they are of.
export function putKept(query, kept, first) {
  const shown = viewIn(query);
  const next = new URLSearchParams(query);
  for (const name of ['row', 'at', 'folded']) next.delete(name);
  const {layout, columns, sort, groupBy, allColumns, details, pivot} = kept;
  const where = layout === (shown.layout || first) ? shown.where : [];
  putView(next, {layout, columns, sort, groupBy, where, allColumns, details, frozen: null});
  return pivot ? putPivot(next, pivot) : next;
}

// Below `anchor`: a field to keep what `kept()` gives under a name, and the layouts of `report`, to be handed to `take` or
// deleted.
export async function openLayouts(anchor, {report, kept, take}) {
  let saved;
  try {
    saved = await api.layouts(report);
  } catch (error) {
    notice(error.message, {error: true});
    return;
  }
  const input = h('input', {
    type: 'text',
    'aria-label': t('saveAs'),
    required: true,
    maxlength: '60',
    autocomplete: 'off',
  });
  const save = h('button', {type: 'submit', class: 'primary'}, t('save'));
  const refusal = h('div', {class: 'field-message', role: 'alert'});
  let replaces = ''; // the name that was said to be taken
  const keep = async (event) => {
    event.preventDefault();
    const name = input.value.trim();
    if (!name) return;
    if (name !== replaces && saved.some((one) => one.name === name)) {
      replaces = name;
      refusal.textContent = t('layoutTaken', {name});
      save.textContent = t('replace');
      return;
    }
    try {
      await api.saveLayout(name, {report, ...kept()});
      shown.close();
      notice(t('saved', {name}));
    } catch (error) {
      refusal.textContent = error.message;
      input.focus();
    }
  };
  input.addEventListener('input', () => {
    replaces = '';
    refusal.textContent = '';
    save.textContent = t('save');
  });

  const open = async (name) => {
    try {
      const layout = await api.layout(name);
      shown.close();
      take(layout);
    } catch (error) {
      refusal.textContent = error.message;
    }
  };
  const list = h('ul', {class: 'saved', 'aria-label': t('keptLayouts')});
  // `asked`: which of them is asked about before it goes.
  const draw = (asked) => {
    fill(
      list,
      saved.length === 0 && h('li', {class: 'muted'}, t('noKeptLayouts')),
      saved.map((one) => h('li', {class: 'saved-row', 'data-name': one.name}, one === asked ? question(one) : row(one))),
    );
  };
  const signOf = (name) => list.querySelector(`[data-name="${CSS.escape(name)}"] .sign`);
  const row = (one) => [
    h(
      'button',
      {type: 'button', class: 'plain', onclick: () => open(one.name)},
      h('span', {}, one.name),
      h('span', {class: 'muted'}, moment(one.changed)),
    ),
    signButton('✕', t('deleteNamed', {name: one.name}), () => {
      draw(one);
      list.querySelector('.danger').focus();
    }),
  ];
  const question = (one) => {
    const at = saved.indexOf(one);
    return h(
      'div',
      {class: 'saved-ask', role: 'group', 'aria-label': t('deleteLayoutAsk', {name: one.name})},
      h('span', {class: 'ellipsis'}, t('deleteLayoutAsk', {name: one.name})),
      button(
        t('delete'),
        async () => {
          try {
            await api.deleteLayout(one.name);
          } catch (error) {
            refusal.textContent = error.message;
            return;
          }
          saved = saved.filter((other) => other !== one);
          draw();
          say(t('deletedNamed', {name: one.name}));
          const next = saved[Math.min(at, saved.length - 1)];
          (next ? signOf(next.name) : input).focus();
        },
        {class: 'danger'},
      ),
      button(t('cancel'), () => {
        draw();
        signOf(one.name).focus();
      }),
    );
  };
  draw();
  const shown = popup(
    anchor,
    [h('form', {class: 'save', onsubmit: keep}, h('label', {}, t('saveAs'), ' ', input), save, refusal), list],
    {name: t('keptLayouts')},
  );
}
