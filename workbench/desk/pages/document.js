// What a row leads to: the document, its voucher, its lines, with every message that the component shows.
import {h} from './dom.js';
import {modal} from './popup.js';
import {t} from './texts.js';

// A column of figures is set to the right. They are looked at as texts and never reckoned with.
function isFigures(rows, column) {
  const texts = rows.map((row) => row[column]).filter((text) => text !== null && text !== undefined && text !== '');
  return texts.length > 0 && texts.every((text) => /^-?[\d,]*\d\.\d+$/.test(text));
}

export function showDocuments({messages, documents}, onclose) {
  const content = [
    messages.map((text) => h('p', {class: 'message'}, text)),
    documents.length === 0 && messages.length === 0 && h('p', {class: 'muted'}, t('noDocument')),
    documents.map(({title, fields, columns, rows}) => {
      const figures = columns.map((_, column) => isFigures(rows, column));
      return h(
        'section',
        {class: 'document'},
        h('h3', {}, title),
        h(
          'dl',
          {class: 'facts'},
          fields.map(([name, value]) => h('div', {class: 'fact'}, h('dt', {}, name), h('dd', {}, value ?? ''))),
        ),
        rows.length > 0 &&
          h(
            'div',
            {class: 'scroll', tabindex: '0', role: 'region', 'aria-label': title},
            h(
              'table',
              {class: 'data wide'},
              h(
                'thead',
                {},
                h(
                  'tr',
                  {},
                  columns.map((column, index) =>
                    h('th', {scope: 'col', class: figures[index] ? 'number' : null}, column),
                  ),
                ),
              ),
              h(
                'tbody',
                {},
                rows.map((row) =>
                  h(
                    'tr',
                    {},
                    row.map((text, index) => h('td', {class: figures[index] ? 'number' : null}, text ?? '')),
                  ),
                ),
              ),
            ),
          ),
      );
    }),
  ];
  const shown = modal(t('document'), content, {
    wide: true,
    ofAddress: true,
    onclose,
    actions: [h('button', {type: 'button', class: 'primary', onclick: () => shown.close()}, `← ${t('back')}`)],
  });
  shown.element.querySelector('.modal-foot button').focus();
  return shown;
}
