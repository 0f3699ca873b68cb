// Dates are texts, yyyy-mm-dd; the calendar reckons with days only and knows no time zone.
import {button, h, fill, signButton} from './dom.js';
import {popup} from './popup.js';
import {language, monthName, t} from './texts.js';

const two = (number) => String(number).padStart(2, '0');
const textOf = (date) => `${date.getUTCFullYear()}-${two(date.getUTCMonth() + 1)}-${two(date.getUTCDate())}`;
const dateOf = (text) => {
  const [year, month, day] = text.split('-').map(Number);
  return new Date(Date.UTC(year, month - 1, day));
};

// What people write as a date, such as 2024/3/1 or 20240301, as yyyy-mm-dd; null when it is none.
export function readDate(text) {
  const parts = /^(\d{4})[-/.年]?(\d{1,2})[-/.月]?(\d{1,2})日?$/.exec(text.trim());
  if (!parts) return null;
  const normal = `${parts[1]}-${two(Number(parts[2]))}-${two(Number(parts[3]))}`;
  return textOf(dateOf(normal)) === normal ? normal : null;
}

// Opens below `anchor` on the day `text`, or on `fallback` when that is empty, and hands the chosen day to `take`.
export function openCalendar(anchor, caption, text, fallback, take) {
  const now = new Date();
  const today = `${now.getFullYear()}-${two(now.getMonth() + 1)}-${two(now.getDate())}`;
  let at = readDate(text) ?? readDate(fallback ?? '') ?? today;
  const chosen = readDate(text);
  const head = h('div', {class: 'calendar-head'});
  const grid = h('table', {class: 'calendar', role: 'grid'});
  const choose = (day) => {
    shown.close();
    take(day);
  };

  const moved = (days, months = 0) => {
    const date = dateOf(at);
    if (months !== 0) {
      const day = date.getUTCDate();
      date.setUTCDate(1);
      date.setUTCMonth(date.getUTCMonth() + months);
      const last = new Date(Date.UTC(date.getUTCFullYear(), date.getUTCMonth() + 1, 0)).getUTCDate();
      date.setUTCDate(Math.min(day, last));
    }
    date.setUTCDate(date.getUTCDate() + days);
    at = textOf(date);
  };

  const nameOf = (date) =>
    t('monthOf', {
      year: date.getUTCFullYear(),
      month: date.getUTCMonth() + 1,
      monthName: monthName(date.getUTCMonth() + 1),
    });

  function draw(focus) {
    const [year, month] = at.split('-').map(Number);
    const step = (months) => () => {
      moved(0, months);
      draw(false);
    };
    const name = nameOf(dateOf(at));
    fill(
      head,
      signButton('«', t('previousYear'), step(-12)),
      signButton('‹', t('previousMonth'), step(-1)),
      h('span', {class: 'month', 'aria-live': 'polite'}, name),
      signButton('›', t('nextMonth'), step(1)),
      signButton('»', t('nextYear'), step(12)),
    );
    const first = new Date(Date.UTC(year, month - 1, 1));
    const monday = new Date(first);
    monday.setUTCDate(1 - ((first.getUTCDay() + 6) % 7));
    const days =
      language() === 'zh' ? ['一', '二', '三', '四', '五', '六', '日'] : ['Mo', 'Tu', 'We', 'Th', 'Fr', 'Sa', 'Su'];
    const weeks = [];
    for (let week = 0; week < 6; week += 1) {
      const cells = [];
      for (let weekday = 0; weekday < 7; weekday += 1) {
        const date = new Date(monday);
        date.setUTCDate(monday.getUTCDate() + week * 7 + weekday);
        const day = textOf(date);
        const other = date.getUTCMonth() !== month - 1;
        cells.push(
          h(
            'td',
            {},
            h(
              'button',
              {
                type: 'button',
                class: other ? 'other' : null,
                'aria-label': `${date.getUTCDate()} · ${name}`,
                'aria-current': day === today ? 'date' : null,
                'aria-pressed': day === chosen ? 'true' : 'false',
                tabindex: day === at ? '0' : '-1',
                'data-day': day,
                onclick: () => choose(day),
              },
              String(date.getUTCDate()),
            ),
          ),
        );
      }
      weeks.push(h('tr', {}, cells));
    }
    grid.setAttribute('aria-label', name);
    fill(
      grid,
      h(
        'thead',
        {},
        h(
          'tr',
          {},
          days.map((day) => h('th', {scope: 'col'}, day)),
        ),
      ),
      h('tbody', {}, weeks),
    );
    if (focus) grid.querySelector(`[data-day="${at}"]`).focus();
  }

  grid.addEventListener('keydown', (event) => {
    const moves = {
      ArrowLeft: [-1],
      ArrowRight: [1],
      ArrowUp: [-7],
      ArrowDown: [7],
      PageUp: [0, event.shiftKey ? -12 : -1],
      PageDown: [0, event.shiftKey ? 12 : 1],
    };
    const weekday = (dateOf(at).getUTCDay() + 6) % 7;
    const move = moves[event.key] ?? {Home: [-weekday], End: [6 - weekday]}[event.key];
    if (!move) return;
    event.preventDefault();
    moved(...move);
    draw(true);
  });
  draw(false);
  const shown = popup(
    anchor,
    [
      head,
      grid,
      h(
        'div',
        {class: 'calendar-foot'},
        button(t('today'), () => choose(today)),
        button(t('clear'), () => choose('')),
      ),
    ],
    {name: t('chooseDate', {caption})},
  );
  grid.querySelector(`[data-day="${at}"]`).focus();
}
