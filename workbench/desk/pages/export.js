// Files of exactly what is shown.
import {api} from './api.js';
import {h} from './dom.js';
import {popup} from './popup.js';
import {t} from './texts.js';

export function openExport(anchor, run, view) {
  const captions = h('input', {type: 'checkbox', checked: true});
  const link = (format, text) => {
    const element = h(
      'a',
      {class: 'export', href: api.exportAddress(run, view, format, true), download: true, onclick: () => shown.close()},
      text,
    );
    if (format === 'csv') {
      captions.addEventListener('change', () => {
        element.href = api.exportAddress(run, view, format, captions.checked);
      });
    }
    return element;
  };
  const shown = popup(
    anchor,
    h(
      'div',
      {class: 'exports'},
      link('csv', t('exportCsv')),
      link('xlsx', t('exportXlsx')),
      link('html', t('exportHtml')),
      h('label', {class: 'check'}, captions, h('span', {}, t('exportCaptions'))),
      h('p', {class: 'muted'}, t('exportNote')),
    ),
    {name: t('export')},
  );
  shown.element.querySelector('a').focus();
}
