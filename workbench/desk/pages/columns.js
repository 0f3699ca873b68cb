// Which columns are shown, and in which order.
import {button, fill, h, signButton} from './dom.js';
import {moved} from './column_menu.js';
import {modal} from './popup.js';
import {t} from './texts.js';

export function openColumns({shown, hidden, leftOut, view, arrange}) {
  const captions = new Map(
    [...shown, ...hidden].map((column) => [
      column.name,
      column.group ? `${column.group} · ${column.caption}` : column.caption,
    ]),
  );
  const names = shown.map((column) => column.name);
  const off = hidden.map((column) => column.name);
  const search = h('input', {
    type: 'search',
    placeholder: t('findColumn'),
    'aria-label': t('findColumn'),
    oninput: () => draw(),
  });
  const on = h('ul', {class: 'column-list'});
  const rest = h('ul', {class: 'column-list'});
  const all = h('input', {type: 'checkbox', checked: view.allColumns});
  const found = (name) => captions.get(name).toLowerCase().includes(search.value.trim().toLowerCase());

  function draw(focus) {
    fill(
      on,
      names.filter(found).map((name) => {
        const at = names.indexOf(name);
        const caption = captions.get(name);
        const step = (to, which) => () => {
          moved(names, at, to);
          draw([name, which]);
        };
        return h(
          'li',
          {'data-name': name},
          h('span', {class: 'ellipsis'}, caption),
          signButton('↑', t('moveUp', {caption}), step(at - 1, 0), {disabled: at === 0}),
          signButton('↓', t('moveDown', {caption}), step(at + 1, 1), {disabled: at === names.length - 1}),
          button(
            t('hide'),
            () => {
              names.splice(at, 1);
              off.unshift(name);
              draw();
              on.querySelector('button')?.focus();
            },
            {'aria-label': `${t('hide')}: ${caption}`, disabled: names.length === 1},
          ),
        );
      }),
    );
    fill(
      rest,
      off.length === 0 && h('li', {class: 'muted'}, t('none')),
      off.filter(found).map((name) => {
        const caption = captions.get(name);
        return h(
          'li',
          {'data-name': name},
          h('span', {class: 'ellipsis'}, caption),
          button(
            t('show'),
            () => {
              off.splice(off.indexOf(name), 1);
              names.push(name);
              draw();
              (rest.querySelector('button') ?? on.querySelector('button'))?.focus();
            },
            {'aria-label': `${t('show')}: ${caption}`},
          ),
        );
      }),
    );
    if (focus) {
      const buttons = on.querySelectorAll(`[data-name="${CSS.escape(focus[0])}"] button`);
      (buttons[focus[1]].disabled ? buttons[1 - focus[1]] : buttons[focus[1]]).focus();
    }
  }

  draw();
  const window = modal(
    t('columns'),
    [
      h(
        'div',
        {class: 'column-search'},
        search,
        h('label', {class: 'check'}, all, h('span', {}, t('allColumns'))),
        leftOut > 0 && h('span', {class: 'muted'}, t('leftOut', {n: leftOut})),
      ),
      h(
        'div',
        {class: 'column-lists'},
        h('section', {}, h('h3', {}, t('columnsShown')), on),
        h('section', {}, h('h3', {}, t('columnsHidden')), rest),
      ),
    ],
    {
      actions: [
        button(t('layoutColumns'), () => {
          window.close();
          arrange((next) => {
            next.columns = [];
            next.allColumns = false;
            next.frozen = null;
          });
        }),
        h('span', {class: 'space'}),
        h(
          'button',
          {
            type: 'button',
            class: 'primary',
            onclick: () => {
              window.close();
              arrange((next) => {
                // With more columns asked for, the layout decides their order; else the list does.
                next.columns = all.checked !== view.allColumns ? [] : names;
                next.allColumns = all.checked;
              });
            },
          },
          t('apply'),
        ),
        button(t('cancel'), () => window.close()),
      ],
    },
  );
  search.focus();
}
