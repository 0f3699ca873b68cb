// Filters kept by name: the same files that the command line's --filter reads.
import {api} from './api.js';
import {button, fill, h, notice, signButton} from './dom.js';
import {popup} from './popup.js';
import {moment, t} from './texts.js';

// Lists the filters of `report` below `anchor`, and hands the chosen one to `take`.
export async function openFilters(anchor, report, take) {
  let saved;
  try {
    saved = await api.filters(report.name);
  } catch (error) {
    notice(error.message, {error: true});
    return;
  }
  const list = h('div', {class: 'saved'});
  const shown = popup(anchor, list, {name: t('loadFilter')});
  const draw = () =>
    fill(
      list,
      saved.length === 0
        ? h('p', {class: 'muted'}, t('noSavedFilters'))
        : saved.map((one) =>
            h(
              'div',
              {class: 'saved-row'},
              h(
                'button',
                {
                  type: 'button',
                  class: 'plain',
                  onclick: async () => {
                    try {
                      const filter = await api.filter(one.name);
                      shown.close();
                      take(filter);
                    } catch (error) {
                      notice(error.message, {error: true});
                    }
                  },
                },
                h('span', {}, one.name),
                h('span', {class: 'muted'}, moment(one.changed)),
              ),
              deleteButton(one.name, () => {
                saved = saved.filter((other) => other !== one);
                draw();
              }),
            ),
          ),
    );
  draw();
  list.querySelector('button')?.focus();
}

// Asks for a name below `anchor` and keeps there what `values()` gives.
export function saveFilter(anchor, report, values) {
  const input = h('input', {
    type: 'text',
    'aria-label': t('name'),
    required: true,
    maxlength: '60',
    autocomplete: 'off',
  });
  const error = h('div', {class: 'field-message', role: 'alert'});
  const shown = popup(
    anchor,
    h(
      'form',
      {
        class: 'save',
        onsubmit: async (event) => {
          event.preventDefault();
          const name = input.value.trim();
          if (!name) return;
          try {
            await api.saveFilter(name, report.name, await values());
            shown.close();
            notice(t('saved', {name}));
          } catch (problem) {
            error.textContent = problem.message;
          }
        },
      },
      h('label', {}, t('saveAs'), ' ', input),
      h('button', {type: 'submit', class: 'primary'}, t('save')),
      error,
    ),
    {name: t('saveAs')},
  );
  input.focus();
}

// Asks once more before the filter goes.
export function deleteButton(name, done) {
  const ask = signButton('✕', t('deleteNamed', {name}), () => {
    const shown = popup(
      ask,
      h(
        'div',
        {class: 'ask'},
        h('p', {}, t('deleteAsk', {name})),
        h(
          'div',
          {class: 'actions'},
          button(
            t('delete'),
            async () => {
              shown.close();
              try {
                await api.deleteFilter(name);
                done();
              } catch (error) {
                notice(error.message, {error: true});
              }
            },
            {class: 'danger'},
          ),
          button(t('cancel'), () => shown.close()),
        ),
      ),
      {name: t('deleteNamed', {name})},
    );
  });
  return ask;
}
