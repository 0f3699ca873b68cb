// Files of exactly what is shown. The page fetches them itself, so that what fails is said here, and not by a download that
// comes to nothing.
import {api} from './api.js';
import {h, notice} from './dom.js';
import {popup} from './popup.js';
import {t} from './texts.js';

// Fetches the file and hands it to the browser to keep. Closing the message in the meantime ends it.
async function save(address, what) {
  const ending = new AbortController();
  const under = notice(t('exporting', {what}), {onclose: () => ending.abort()});
  try {
    const {name, content} = await api.file(address, ending.signal);
    const place = URL.createObjectURL(content);
    h('a', {href: place, download: name}).click();
    const kept = 60000; // ms; until then the browser has it
    setTimeout(() => URL.revokeObjectURL(place), kept);
  } catch (error) {
    if (error.name !== 'AbortError') notice(t('exportFailed', {message: error.message}), {error: true});
  } finally {
    under.remove();
  }
}

export function openExport(anchor, run, view) {
  const captions = h('input', {type: 'checkbox', checked: true});
  const link = (format, text) => {
    const element = h(
      'a',
      {
        class: 'export',
        href: api.exportAddress(run, view, format, true),
        download: true,
        onclick: (event) => {
          event.preventDefault();
          shown.close();
          save(element.href, text);
        },
      },
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
