// The widgets of filter items. A field has an element, shows an item's state with update(), and tells set(value,
// value2) of each change. It never decides what may be given: the server does.
import {api} from './api.js';
import {openCalendar, readDate} from './calendar.js';
import {fill, h, newId, signButton} from './dom.js';
import {openLookup} from './lookup.js';
import {popup} from './popup.js';
import {caption, count, t} from './texts.js';

const names = new Map(); // what codes are called, for this page's life: "item TAB code" -> name

const valuesOf = (text) => (text ?? '').split('\t').filter((value) => value !== '');

// What a field needs of the dialog around it: the dialog's id on the server, and set(key, value, value2).
export function makeField(item, around) {
  const label = newId('label');
  const message = newId('message');
  const name = h('span', {class: 'caption', id: label});
  const error = h('div', {class: 'field-message', id: message, role: 'alert'});
  const control = widget(item, around, {label, message});
  const element = h(
    'div',
    {class: 'field', role: 'group', 'aria-labelledby': label, 'data-key': item.key},
    name,
    control.element,
    error,
  );
  let current = item;

  const field = {
    element,
    focus: () =>
      element.querySelector('input:not([disabled]), select:not([disabled]), button:not([disabled])')?.focus(),
    get item() {
      return current;
    },
    refuse(text) {
      error.textContent = text ?? '';
      element.classList.toggle('refused', Boolean(text));
      for (const input of element.querySelectorAll('input, select')) {
        if (text) {
          input.setAttribute('aria-invalid', 'true');
          input.setAttribute('aria-describedby', message);
        } else {
          input.removeAttribute('aria-invalid');
          input.removeAttribute('aria-describedby');
        }
      }
    },
    update(next) {
      current = next;
      fill(
        name,
        caption(next.caption),
        next.required && h('span', {class: 'required', title: t('required')}, ' *'),
        next.required && h('span', {class: 'unseen'}, ` ${t('required')}`),
      );
      element.classList.toggle('unavailable', !next.available);
      element.title = next.available ? '' : t('notAvailable');
      control.update(next);
    },
  };
  control.refuse = field.refuse;
  field.update(item);
  return field;
}

function widget(item, around, ids) {
  const set = (value, value2 = null) => around.set(item.key, value, value2);
  if (item.range) return rangeOf(item, around, ids);
  if (item.kind === 'choice' || item.kind === 'flag') {
    return item.multiple ? manyChoices(item, set, ids) : oneChoice(item, set, ids);
  }
  if (item.kind === 'date')
    return dateInput(
      item,
      around,
      ids,
      (value) => set(value),
      (it) => it.value,
      '',
    );
  if (item.multiple) return manyValues(item, around, set, ids);
  return oneValue(
    item,
    around,
    ids,
    (value) => set(value),
    (it) => it.value,
  );
}

function rangeOf(item, around, ids) {
  let current = item;
  const one = (part) => {
    const lower = part === 'value';
    const set = (value) =>
      around.set(item.key, lower ? value : (current.value ?? ''), lower ? (current.value2 ?? '') : value);
    const label = t(lower ? 'fromOf' : 'toOf', {caption: caption(item.caption)});
    if (item.kind === 'date')
      return dateInput(item, around, {label: null, name: label}, set, (it) => it[part], lower ? 'value2' : 'value');
    return oneValue(item, around, {label: null, name: label}, set, (it) => it[part]);
  };
  const from = one('value');
  const to = one('value2');
  const result = {
    element: h(
      'div',
      {class: 'range'},
      from.element,
      h('span', {class: 'muted', 'aria-hidden': 'true'}, '–'),
      to.element,
    ),
    update(next) {
      current = next;
      from.update(next);
      to.update(next);
    },
    set refuse(refuse) {
      from.refuse = refuse;
      to.refuse = refuse;
    },
  };
  return result;
}

function nameOf(ids) {
  return ids.label ? {'aria-labelledby': ids.label} : {'aria-label': ids.name};
}

// Puts `text` into an input unless the reader is writing there.
function show(input, text) {
  if (document.activeElement === input && input.dataset.dirty) return;
  input.value = text ?? '';
}

function textInput(attributes, take) {
  const input = h('input', {
    type: 'text',
    autocomplete: 'off',
    spellcheck: 'false',
    ...attributes,
    oninput: () => {
      input.dataset.dirty = '1';
    },
    onchange: () => {
      delete input.dataset.dirty;
      take(input.value);
    },
    onblur: () => delete input.dataset.dirty,
  });
  return input;
}

function oneChoice(item, set, ids) {
  const select = h('select', {...nameOf(ids), onchange: () => set(select.value)});
  let drawn = '';
  return {
    element: select,
    update(next) {
      const words = JSON.stringify([next.choices, next.required, next.value, t('yes')]);
      if (words !== drawn) {
        drawn = words;
        const value = next.value ?? '';
        const known = next.choices.some((choice) => choice.code === value);
        fill(
          select,
          (!next.required || value === '') && h('option', {value: ''}, t('notGiven')),
          !known && value !== '' && h('option', {value}, value),
          next.choices.map((choice) => h('option', {value: choice.code}, caption(choice.caption))),
        );
        select.value = value;
      }
      select.disabled = !next.available;
    },
  };
}

// Few choices stand side by side; many are in a list that opens.
function manyChoices(item, set, ids) {
  let current = item;
  const element = h('div', {class: 'choices'});
  const isFew = () => current.choices.length <= 4;
  const change = (code, on) => {
    const chosen = new Set(valuesOf(current.value));
    if (on) chosen.add(code);
    else chosen.delete(code);
    set(
      current.choices
        .map((choice) => choice.code)
        .filter((known) => chosen.has(known))
        .join('\t'),
    );
  };
  const boxes = () => {
    const chosen = new Set(valuesOf(current.value));
    return current.choices.map((choice) =>
      h(
        'label',
        {class: 'check'},
        h('input', {
          type: 'checkbox',
          checked: chosen.has(choice.code),
          disabled: !current.available,
          'data-code': choice.code,
          onchange: (event) => change(choice.code, event.target.checked),
        }),
        h('span', {}, caption(choice.caption)),
      ),
    );
  };
  const summary = h('span', {class: 'ellipsis'});
  const opener = h(
    'button',
    {
      type: 'button',
      class: 'opener',
      'aria-haspopup': 'dialog',
      onclick: () => popup(opener, h('div', {class: 'check-list'}, boxes()), {name: caption(current.caption)}),
    },
    summary,
    h('span', {'aria-hidden': 'true'}, '▾'),
  );
  let drawn = '';
  return {
    element,
    update(next) {
      current = next;
      const words = JSON.stringify([next.choices, next.available, t('yes'), isFew() ? next.value : '']);
      if (words !== drawn) {
        const code = document.activeElement?.dataset?.code;
        const had = element.contains(document.activeElement);
        drawn = words;
        fill(element, isFew() ? boxes() : opener);
        if (had && code) element.querySelector(`[data-code="${CSS.escape(code)}"]`)?.focus();
      }
      const chosen = new Set(valuesOf(next.value));
      const captions = next.choices
        .filter((choice) => chosen.has(choice.code))
        .map((choice) => caption(choice.caption));
      summary.textContent = captions.length > 0 ? captions.join('、') : t('notGiven');
      opener.disabled = !next.available;
      opener.setAttribute('aria-label', `${caption(next.caption)}: ${summary.textContent}`);
    },
  };
}

// The calendar opens on the day given, else on `fallback`, the other end of a range, else in the filter's year.
function dateInput(item, around, ids, set, value, fallback) {
  let current = item;
  const control = {};
  const take = (text) => {
    const day = text.trim() === '' ? '' : readDate(text);
    if (day === null) {
      control.refuse?.(t('badDate', {text}));
      return;
    }
    input.value = day;
    control.refuse?.('');
    set(day);
  };
  const input = textInput(
    {
      ...nameOf(ids),
      class: 'date',
      placeholder: 'yyyy-mm-dd',
      inputmode: 'numeric',
      onkeydown: (event) => event.altKey && event.key === 'ArrowDown' && (event.preventDefault(), open()),
    },
    take,
  );
  const open = () =>
    openCalendar(opener, caption(item.caption), input.value, current[fallback] || around.firstDay(), (day) => {
      take(day);
      input.focus();
    });
  const opener = signButton('▦', `${t('calendar')}: ${ids.name ?? caption(item.caption)}`, open, {
    'aria-haspopup': 'dialog',
  });
  return Object.assign(control, {
    element: h('div', {class: 'joined'}, input, opener),
    update(next) {
      current = next;
      show(input, value(next));
      input.disabled = !next.available;
      opener.disabled = !next.available;
    },
  });
}

// The name of one code, found once by the lookup; nothing when there is none.
async function lookName(around, item, code) {
  const known = `${item.key}\t${code}`;
  if (!names.has(known)) {
    names.set(known, '');
    try {
      const answer = await api.lookup(around.id, item.key, code, 0, 20);
      names.set(known, answer.rows.find((row) => row.code === code)?.name ?? '');
    } catch {
      names.delete(known); // the next time it is shown it is asked again
      return '';
    }
  }
  return names.get(known);
}

function remember(item, found) {
  for (const [code, name] of found) if (name) names.set(`${item.key}\t${code}`, name);
}

function oneValue(item, around, ids, set, value) {
  const name = h('span', {class: 'value-name muted ellipsis'});
  const open = () =>
    openLookup({
      dialog: around.id,
      item: item.key,
      caption: caption(item.caption),
      multiple: false,
      chosen: input.value ? [input.value] : [],
      take: (codes, found) => {
        remember(item, found);
        input.value = codes[0] ?? '';
        set(input.value);
        input.focus();
      },
    });
  const input = textInput(
    {
      ...nameOf(ids),
      inputmode: item.kind === 'number' ? 'decimal' : null,
      onkeydown: (event) =>
        item.lookup &&
        ((event.altKey && event.key === 'ArrowDown') || event.key === 'F4') &&
        (event.preventDefault(), open()),
    },
    (text) => set(text.trim()),
  );
  const opener =
    item.lookup &&
    signButton('…', t('lookupOf', {caption: ids.name ?? caption(item.caption)}), open, {'aria-haspopup': 'dialog'});
  return {
    element: h('div', {class: 'joined'}, input, opener, item.lookup && name),
    update(next) {
      show(input, value(next));
      input.disabled = !next.available;
      if (!item.lookup) return;
      opener.disabled = !next.available;
      name.textContent = '';
      const code = value(next);
      if (code) lookName(around, item, code).then((text) => value(next) === code && (name.textContent = text));
    },
  };
}

// Several values: each is a chip that can be taken away; what is typed is added with Enter, a pasted list line by line.
function manyValues(item, around, set, ids) {
  let current = item;
  const chips = h('span', {class: 'chips'});
  const add = (text) => {
    const more = text
      .split(/[\t\r\n]+/)
      .map((value) => value.trim())
      .filter(Boolean);
    if (more.length === 0) return;
    input.value = '';
    delete input.dataset.dirty;
    set([...new Set([...valuesOf(current.value), ...more])].join('\t'));
  };
  const input = h('input', {
    type: 'text',
    autocomplete: 'off',
    spellcheck: 'false',
    ...nameOf(ids),
    placeholder: t('addValue'),
    onblur: () => add(input.value),
    onpaste: (event) => {
      const text = event.clipboardData.getData('text');
      if (!/[\t\r\n]/.test(text.trim())) return;
      event.preventDefault();
      add(text);
    },
    onkeydown: (event) => {
      if (event.key === 'Enter' && input.value.trim()) {
        event.preventDefault();
        add(input.value);
      } else if (event.key === 'Backspace' && input.value === '') {
        const values = valuesOf(current.value);
        if (values.length > 0) set(values.slice(0, -1).join('\t'));
      } else if (item.lookup && ((event.altKey && event.key === 'ArrowDown') || event.key === 'F4')) {
        event.preventDefault();
        open();
      }
    },
  });
  const open = () =>
    openLookup({
      dialog: around.id,
      item: item.key,
      caption: caption(item.caption),
      multiple: true,
      chosen: valuesOf(current.value),
      take: (codes, found) => {
        remember(item, found);
        set(codes.join('\t'));
        input.focus();
      },
    });
  const opener =
    item.lookup && signButton('…', t('lookupOf', {caption: caption(item.caption)}), open, {'aria-haspopup': 'dialog'});
  const drawChips = () => {
    const values = valuesOf(current.value);
    fill(
      chips,
      values.slice(0, 12).map((value) => {
        const words = h('span', {class: 'ellipsis'}, value);
        if (item.lookup) lookName(around, item, value).then((name) => name && (words.textContent = `${value} ${name}`));
        return h(
          'span',
          {class: 'chip'},
          words,
          h(
            'button',
            {
              type: 'button',
              class: 'remove',
              disabled: !current.available,
              'aria-label': t('removeValue', {value}),
              onclick: () => {
                set(
                  valuesOf(current.value)
                    .filter((other) => other !== value)
                    .join('\t'),
                );
                input.focus();
              },
            },
            '✕',
          ),
        );
      }),
      values.length > 12 && h('span', {class: 'muted'}, t('chosenCount', {n: count(values.length)})),
    );
  };
  let drawn = null;
  return {
    element: h('div', {class: 'joined many'}, h('div', {class: 'many-box'}, chips, input), opener),
    update(next) {
      current = next;
      input.disabled = !next.available;
      if (opener) opener.disabled = !next.available;
      const words = `${next.value} ${next.available}`;
      if (words !== drawn) drawChips();
      drawn = words;
    },
  };
}
