// Making elements: the pages have no other way to write into the document, so that no text is ever read as HTML.

// An element with attributes, listeners (`onclick`, ...) and children; null, undefined and false are left out.
export function h(name, attributes = {}, ...children) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) {
    if (value === null || value === undefined || value === false) continue;
    if (typeof value === 'function') element.addEventListener(key.slice(2), value);
    else if (key === 'value') element.value = value;
    else element.setAttribute(key, value === true ? '' : value);
  }
  append(element, children);
  return element;
}

function append(element, children) {
  for (const child of children) {
    if (Array.isArray(child)) append(element, child);
    else if (child !== null && child !== undefined && child !== false) element.append(child);
  }
}

// `element` with these children in the place of those that it had.
export function fill(element, ...children) {
  element.replaceChildren();
  append(element, children);
  return element;
}

// A button that says what it does in words, or has them as its name where only a sign is to be seen.
export function button(text, onclick, attributes = {}) {
  return h('button', {type: 'button', onclick, ...attributes}, text);
}
export function signButton(sign, name, onclick, attributes = {}) {
  return h(
    'button',
    {type: 'button', class: 'sign', 'aria-label': name, title: name, onclick, ...attributes},
    h('span', {'aria-hidden': 'true'}, sign),
  );
}

let ids = 0;
export function newId(beginning) {
  ids += 1;
  return `${beginning}-${ids}`;
}

// Says something to a screen reader, without a change on the screen.
export function say(text) {
  document.getElementById('status').textContent = text;
}

// Shows a message for a while, and says it. Errors stay until they are closed, and so does one that tells of its closing.
export function notice(text, {error = false, onclose} = {}) {
  const place = document.getElementById('notices');
  for (const old of place.querySelectorAll('.notice:not(.error, .lasting)')) old.remove();
  const note = h(
    'div',
    {class: error ? 'notice error' : onclose ? 'notice lasting' : 'notice'},
    h('span', {}, text),
    signButton(
      '✕',
      '✕',
      () => {
        note.remove();
        onclose?.();
      },
    ),
  );
  place.append(note);
  if (!error && !onclose) setTimeout(() => note.remove(), 5000);
  return note;
}

export async function copyText(text) {
  await navigator.clipboard.writeText(text);
}
