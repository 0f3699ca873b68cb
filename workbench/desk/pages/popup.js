// Small windows over the page: one beside what opened it, which goes when the reader goes on, and one that has to be
// answered.
import {h, newId, signButton} from './dom.js';
import {t} from './texts.js';

// Shows `content` below `anchor`. Escape and a click elsewhere close it, and the focus goes back to where it was.
export function popup(anchor, content, {name, onclose} = {}) {
  const before = document.activeElement;
  const box = h('div', {class: 'popup', popover: 'auto', role: 'dialog', 'aria-label': name}, ...[content].flat());
  document.body.append(box);
  box.showPopover();
  const place = anchor.getBoundingClientRect();
  const size = box.getBoundingClientRect();
  const left = Math.max(8, Math.min(place.left, innerWidth - size.width - 8));
  const below = place.bottom + 4;
  const top = below + size.height <= innerHeight - 8 ? below : Math.max(8, place.top - size.height - 4);
  box.style.left = `${left}px`;
  box.style.top = `${top < place.top && top + size.height > place.top ? 8 : top}px`;
  box.addEventListener('toggle', (event) => {
    if (event.newState !== 'closed') return;
    const inside = box.contains(document.activeElement) || document.activeElement === document.body;
    box.remove();
    if (inside && before?.isConnected) before.focus({preventScroll: true});
    onclose?.();
  });
  box.querySelector('[autofocus], input, button, select')?.focus();
  return {element: box, close: () => box.isConnected && box.hidePopover()};
}

// A window that holds the rest of the page back until it is closed. `onclose` is called however it was closed. One that
// is not `ofAddress` goes when another address is shown.
export function modal(title, content, {wide = false, ofAddress = false, onclose, actions = []} = {}) {
  const id = newId('modal');
  const element = h(
    'dialog',
    {
      class: wide ? 'modal wide' : 'modal',
      'aria-labelledby': id,
      'data-of-address': ofAddress,
      // In a search field, the browser would take the first Escape for itself.
      onkeydown: (event) =>
        event.key === 'Escape' && !document.querySelector(':popover-open') && (event.preventDefault(), element.close()),
    },
    h(
      'div',
      {class: 'modal-head'},
      h('h2', {id}, title),
      signButton('✕', t('close'), () => element.close()),
    ),
    h('div', {class: 'modal-body'}, content),
    actions.length > 0 && h('div', {class: 'modal-foot'}, actions),
  );
  element.addEventListener('close', () => {
    element.remove();
    onclose?.();
  });
  document.body.append(element);
  element.showModal();
  return {element, close: () => element.open && element.close()};
}

// Closes what was opened over a page that is left.
export function closeWindows() {
  for (const element of document.querySelectorAll('dialog:not([data-of-address]), .popup')) {
    if (element.matches('dialog')) element.close();
    else element.hidePopover();
  }
}

// A menu of entries {text, act, checked?, disabled?}, or null for a line between them. Arrows go through it.
export function menu(anchor, name, entries, more = []) {
  const items = entries.map((entry) => {
    if (entry === null) return h('div', {class: 'line', role: 'separator'});
    return h(
      'button',
      {
        type: 'button',
        role: 'menuitem',
        disabled: entry.disabled,
        tabindex: '-1',
        onclick: () => {
          shown.close();
          entry.act();
        },
      },
      entry.text,
    );
  });
  const list = h('div', {class: 'menu', role: 'menu', 'aria-label': name}, items);
  const usable = items.filter((item) => item.tagName === 'BUTTON' && !item.disabled);
  list.addEventListener('keydown', (event) => {
    const step = {ArrowDown: 1, ArrowUp: -1}[event.key];
    const at = usable.indexOf(document.activeElement);
    const next = step
      ? usable[(at + step + usable.length) % usable.length]
      : event.key === 'Home'
        ? usable[0]
        : event.key === 'End'
          ? usable.at(-1)
          : null;
    if (!next) return;
    event.preventDefault();
    next.focus();
  });
  const shown = popup(anchor, more.length > 0 ? [list, ...more] : list, {name});
  usable[0]?.focus();
  return shown;
}
