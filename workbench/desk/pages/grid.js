// The rows of a view as a table that draws only what is in sight, in both directions. regular-table draws; what it does
// not have is here: frozen columns with headings, the totals below the rows, the keyboard, the block that is selected.
//
// The keyboard's place is told by aria-activedescendant: the cells are used again for other rows while scrolling, so
// that a focus on one of them would stand still while its text changes, and a screen reader would say nothing.
import 'regular-table';
import {copyText, h, notice, say} from './dom.js';
import {count, hasText, t} from './texts.js';

const rowHeight = 28; // as desk.css has it
const scrollAreaLimit = 1e7; // pixels; regular-table's own
const copyCellLimit = 2000000;
const widest = 360;
const narrowest = 48;

const numbers = new Set(['quantity', 'money', 'movement', 'amount', 'unitCost', 'share']);
export const isNumber = (column) => numbers.has(column.role);

export class Grid {
  // `view` is the server's answer, `rows` has at(), has(), ensure(), rowCount, state()? and toggle()?; `widths` maps
  // names to widths that the reader has chosen; `frozen` is how many columns stay, null for the keys; `sorted` maps
  // names to marks. What happens is told to `tell`: open(row), place(row, name), sort(column, add), menu(anchor,
  // column), move(from, to), width(name, pixels), selection(rows, columns), goTo(), lost(error).
  constructor({name, view, rows, widths, frozen, sorted, filtered, tell}) {
    this.view = view;
    this.rows = rows;
    this.columns = view.columns.map((column) => ({...column, number: isNumber(column)}));
    this.totals = view.totals ?? [];
    this.chosenWidths = widths;
    this.chosenFrozen = frozen;
    this.sorted = sorted;
    this.filtered = filtered;
    this.tell = tell;
    this.active = {row: 0, column: 0};
    this.anchor = null; // where a selected block began
    this.headRows = this.columns.some((column) => column.group) ? 2 : 1;

    this.scroller = document.createElement('regular-table');
    this.totalsTable = h('table', {class: 'totals', 'aria-label': t('totals')});
    this.element = h('div', {class: 'grid'}, this.scroller, this.totalsTable);
    this.name = name;
  }

  get rowCount() {
    return this.rows.rowCount;
  }

  // Once it stands in the document.
  async begin(place) {
    const first = 100; // rows that the widths are taken from
    await this.rows.ensure(
      Math.min(place.row, Math.max(0, this.rowCount - 1)),
      Math.min(this.rowCount, place.row + first),
    );
    this.measure(place.row, place.row + first);
    this.freeze();
    this.scroller.setAttribute('tabindex', '-1');
    this.scroller.setDataListener((x0, y0, x1, y1) => this.data(x0, y0, x1, y1), {virtual_mode: 'both'});
    this.scroller.addStyleListener(() => this.style());
    this.setWidths();
    const table = (this.table = this.scroller.querySelector('table'));
    table.setAttribute('role', 'grid');
    table.setAttribute('tabindex', '0');
    table.setAttribute('aria-label', this.name);
    table.setAttribute('aria-multiselectable', 'true');
    table.setAttribute('aria-colcount', String(this.columns.length));
    table.addEventListener('keydown', (event) => this.key(event));
    table.addEventListener('focus', () => this.style());
    table.addEventListener('blur', () => this.style());
    table.addEventListener('mousedown', (event) => this.mouseDown(event), true);
    table.addEventListener('dblclick', (event) => this.doubleClick(event));
    table.addEventListener('contextmenu', (event) => this.contextMenu(event));
    table.addEventListener('copy', (event) => {
      event.preventDefault();
      this.copy();
    });
    this.scroller.addEventListener('wheel', (event) => this.wheel(event), {passive: false});
    this.resized = new ResizeObserver(() => this.redraw());
    this.resized.observe(this.element);
    this.active = {
      row: Math.min(place.row, Math.max(0, this.rowCount - 1)),
      column: Math.max(0, this.indexOf(place.column)),
    };
    if (place.heading) this.active.row = -1;
    await this.redraw();
    if (place.row > 0 || this.active.column > 0) {
      this.reveal(Math.max(0, place.row), this.active.column, {top: place.top ?? true});
      await this.scroller.flush();
    }
  }

  dispose() {
    this.resized?.disconnect();
    this.rows.close();
    this.disposed = true;
  }

  // Shows these columns of the view instead: each comes with the index of its cells in `columns`.
  async setColumns(columns, totals) {
    const {row, column} = this.active;
    const name = this.columns[column]?.name;
    this.columns = columns.map((one) => ({...one, number: isNumber(one)}));
    this.totals = totals;
    this.totalsKey = null;
    const first = Math.max(0, Math.floor(this.firstRow));
    this.measure(first, first + 100);
    this.freeze();
    this.setWidths();
    this.table.setAttribute('aria-colcount', String(this.columns.length));
    this.active = {row, column: Math.max(0, this.indexOf(name))};
    this.anchor = null;
    await this.redraw();
  }

  indexOf(name) {
    return this.columns.findIndex((column) => column.name === name);
  }

  async redraw() {
    if (this.disposed || !this.element.isConnected || !this.table) return;
    await this.scroller.draw({invalid_viewport: true});
  }

  // --- widths

  // Columns get their widths once, from headings, totals and the rows at hand, so that nothing moves while scrolling.
  measure(from, to) {
    const canvas = document.createElement('canvas').getContext('2d');
    const style = getComputedStyle(this.element);
    const widthOf = (text, bold) => {
      if (!text) return 0;
      canvas.font = `${bold ? 700 : 400} ${style.fontSize} ${style.fontFamily}`;
      return canvas.measureText(text).width;
    };
    const sample = [...this.totals];
    for (let index = from; index < Math.min(to, this.rowCount); index += 1) {
      const row = this.rows.at(index);
      if (row) sample.push(row);
    }
    this.measured = this.columns.map((column, index) => {
      let width = widthOf(column.caption, true) + 20;
      for (const row of sample) {
        const bold = row.kind !== 'line' && row.kind !== 'detail';
        width = Math.max(width, widthOf(row.cells[index], bold) + (index === 0 ? 18 + 16 * (row.level ?? 0) : 0));
      }
      width += column.number ? 24 : 20;
      return Math.round(Math.max(narrowest, column.number ? width : Math.min(widest, width)));
    });
    this.widths = this.columns.map((column, index) => this.chosenWidths.get(column.name) ?? this.measured[index]);
  }

  setWidths() {
    this.scroller.restoreColumnSizes(Object.fromEntries(this.widths.map((width, index) => [index, width])));
    // Of columns that it has not drawn yet, regular-table takes a width of its own, and so would reckon the scroll bar
    // and the column at a scroll position wrongly. It has no call to tell them, so they go where it keeps them.
    const kept = Object.values(this.scroller).find((one) => one?.override && one?.indices);
    if (kept) this.widths.forEach((width, index) => (kept.indices[index] = width));
  }

  widen(index, by) {
    this.setWidth(index, Math.max(narrowest, this.widths[index] + by));
    this.setWidths();
    this.redraw();
  }
  setWidth(index, width) {
    this.widths[index] = width;
    this.tell.width(this.columns[index].name, Math.round(width));
  }

  // The keys in front stay in sight, as far as they leave room for the rest.
  freeze() {
    const room = this.element.clientWidth * (this.chosenFrozen === null ? 0.5 : 0.75);
    const wanted = this.chosenFrozen ?? this.columns.findIndex((column) => !column.key);
    let frozen = wanted < 0 ? this.columns.length - 1 : Math.min(wanted, this.columns.length - 1);
    const widthOf = (number) => this.widths.slice(0, number).reduce((sum, width) => sum + width, 0);
    while (frozen > (this.chosenFrozen === 0 ? 0 : 1) && widthOf(frozen) > room) frozen -= 1;
    this.frozen = Math.max(0, frozen);
  }

  // --- what regular-table asks for

  async data(x0, y0, x1, y1) {
    const {rowCount, frozen} = this;
    // Rows of nothing at the end: the totals lie over them, so that they never hide the last row. Without any row
    // regular-table would draw no headings either.
    const answer = {
      num_rows: Math.max(1, rowCount + this.totals.length),
      num_columns: this.columns.length - frozen,
      num_row_headers: frozen,
      num_column_headers: this.headRows,
      merge_headers: 'column',
    };
    const to = Math.min(y1, rowCount);
    if (y0 < to && !this.rows.has(y0, to)) {
      const fetched = this.rows.ensure(y0, to).then(
        () => true,
        (error) => {
          if (!this.disposed) this.tell.lost(error);
          return false;
        },
      );
      const inTime = await Promise.race([fetched, new Promise((go) => setTimeout(go, 250, null))]);
      if (inTime === null) fetched.then((there) => there && this.redraw());
    }
    const window = [];
    for (let y = y0; y < Math.min(y1, answer.num_rows); y += 1) window.push(y < rowCount ? this.rows.at(y) : null);
    const column = (index) => window.map((row) => (row === undefined ? '…' : (row?.cells[index] ?? '')));
    answer.data = [];
    answer.column_headers = [];
    for (let x = x0; x < Math.min(x1, answer.num_columns); x += 1) {
      const {caption, group} = this.columns[frozen + x];
      answer.data.push(column(frozen + x));
      answer.column_headers.push(this.headRows === 2 ? [group ?? '', caption] : [caption]);
    }
    answer.row_headers = window.map((row) => {
      const cells = [];
      for (let index = 0; index < frozen; index += 1) cells.push(row === undefined ? '…' : (row?.cells[index] ?? ''));
      return cells;
    });
    return answer;
  }

  // --- how it looks: called after each drawing, and when only the place has changed

  style() {
    const {table} = this;
    if (!table?.tBodies[0]) return;
    const [head] = table.getElementsByTagName('thead');
    const focused = document.activeElement === table;
    table.setAttribute('aria-rowcount', String(this.rowCount + this.headRows));
    this.styleHead(head, focused);
    const block = this.block();
    let activeId = this.active.row < 0 ? this.activeHeadId : null;
    for (const tr of table.tBodies[0].rows) {
      let y = -1;
      let row = null;
      for (const cell of tr.cells) {
        const meta = this.scroller.getMeta(cell);
        if (!meta) continue;
        if (y < 0) {
          y = meta.y;
          row = y < this.rowCount ? this.rows.at(y) : null;
          this.styleRow(tr, y, row);
        }
        const index = meta.type === 'row_header' ? meta.virtual_x : this.frozen + meta.x;
        const column = this.columns[index];
        if (!column) continue;
        const isActive = y === this.active.row && index === this.active.column;
        const inBlock = block && y >= block.top && y <= block.bottom && index >= block.left && index <= block.right;
        let look = column.number ? 'number' : 'text';
        if (column.number && row?.cells[index]?.startsWith('-')) look += ' negative';
        if (index === 0) look += ` level-${Math.min(8, row?.level ?? 0)} first`;
        if (index === this.frozen - 1) look += ' edge';
        if (inBlock) look += ' chosen';
        if (isActive) look += focused ? ' at focused' : ' at';
        look += ` rt-col-${meta.size_key}`; // regular-table's own, for the width
        if (cell.deskLook !== look || cell.className !== `${look} rt-cell-clip`) {
          cell.className = `${look} rt-cell-clip`;
          cell.deskLook = look;
        }
        const number = String(index + 1);
        if (cell.getAttribute('aria-colindex') !== number) cell.setAttribute('aria-colindex', number);
        if (inBlock) cell.setAttribute('aria-selected', 'true');
        else if (cell.hasAttribute('aria-selected')) cell.removeAttribute('aria-selected');
        const text = row?.cells[index] ?? '';
        if (cell.title !== text) cell.title = text;
        if (isActive) {
          activeId = `cell-${y}-${index}`;
          if (cell.id !== activeId) cell.id = activeId;
        } else if (cell.id) cell.removeAttribute('id');
      }
    }
    if (activeId) table.setAttribute('aria-activedescendant', activeId);
    else table.removeAttribute('aria-activedescendant');
    this.styleTotals(head);
  }

  styleRow(tr, y, row) {
    const isRow = y < this.rowCount;
    let look = !isRow ? 'beyond' : `kind-${row?.kind ?? 'line'}${y % 2 ? ' odd' : ''}`;
    const folded = isRow ? this.rows.state?.(y) : undefined;
    if (folded !== undefined) look += folded ? ' folded-out' : ' folded-in';
    if (row?.opens) look += ' opens';
    if (tr.className !== look) tr.className = look;
    if (!isRow) {
      tr.setAttribute('aria-hidden', 'true');
      tr.removeAttribute('aria-rowindex');
      return;
    }
    tr.removeAttribute('aria-hidden');
    tr.setAttribute('aria-rowindex', String(y + this.headRows + 1));
    const kind = `kind_${row?.kind}`;
    if (hasText(kind)) tr.setAttribute('aria-description', t(kind));
    else tr.removeAttribute('aria-description');
    if (folded === undefined) {
      tr.removeAttribute('aria-expanded');
      return;
    }
    this.table.setAttribute('role', 'treegrid');
    tr.setAttribute('aria-expanded', String(folded));
  }

  styleHead(head, focused) {
    this.activeHeadId = null;
    [...head.rows].forEach((tr, number) => {
      tr.setAttribute('aria-rowindex', String(number + 1));
      const last = number === this.headRows - 1;
      for (const th of tr.cells) {
        const meta = this.scroller.getMeta(th);
        if (!meta) continue;
        if (!last) {
          const look = th.textContent ? 'group' : 'group none';
          if (th.className !== look) th.className = look;
          th.removeAttribute('id');
          th.removeAttribute('aria-sort');
          this.menuButton(th, null);
          continue;
        }
        const index = meta.type === 'corner' ? meta.row_header_x : this.frozen + meta.x;
        const column = this.columns[index];
        if (!column) continue;
        const words = th.querySelector(':scope > span:not(.rt-column-resize)');
        if (words && words.textContent !== column.caption) words.textContent = column.caption;
        const mark = this.sorted.get(column.name);
        const isActive = this.active.row < 0 && this.active.column === index;
        let look = `heading rt-cell-clip rt-col-${meta.size_key}${column.number ? ' number' : ''}`;
        if (this.filtered.has(column.name)) look += ' filtered';
        if (index === this.frozen - 1) look += ' edge';
        if (isActive) look += focused ? ' at focused' : ' at';
        if (th.className !== look) th.className = look;
        th.setAttribute('aria-colindex', String(index + 1));
        th.setAttribute('aria-sort', !mark ? 'none' : mark.descending ? 'descending' : 'ascending');
        if (mark) th.dataset.sort = `${mark.descending ? '▼' : '▲'}${mark.of > 1 ? mark.place : ''}`;
        else delete th.dataset.sort;
        th.title = column.group ? `${column.group} · ${column.caption}` : column.caption;
        if (isActive) th.id = this.activeHeadId = `head-${index}`;
        else th.removeAttribute('id');
        this.menuButton(th, column, index);
      }
    });
  }

  menuButton(th, column, index) {
    let opener = th.querySelector('.column-menu');
    if (!column) {
      opener?.remove();
      return;
    }
    if (!opener) {
      opener = h('button', {type: 'button', class: 'column-menu', tabindex: '-1', 'aria-haspopup': 'menu'}, '▾');
      th.insertBefore(opener, th.lastChild);
    }
    opener.deskColumn = index;
    const name = t('columnMenu', {caption: column.caption});
    if (opener.getAttribute('aria-label') !== name) opener.setAttribute('aria-label', name);
  }

  // The totals have the columns and widths that the rows above them have at this moment.
  styleTotals(head) {
    const lines = this.totals.length;
    this.totalsTable.hidden = lines === 0;
    if (lines === 0) return;
    const indexes = [...(head.rows[this.headRows - 1]?.cells ?? [])]
      .map((th) => th.querySelector('.column-menu')?.deskColumn)
      .filter((index) => index !== undefined);
    const saved = this.scroller.saveColumnSizes();
    const widths = indexes.map((index) => saved[index] ?? this.widths[index]);
    const key = `${indexes.join()}|${widths.join()}`;
    if (key !== this.totalsKey) {
      this.totalsKey = key;
      const rows = this.totals.map((total) =>
        h(
          'tr',
          {},
          indexes.map((index) => {
            const column = this.columns[index];
            const text = total.cells[index] ?? '';
            const cell = h(
              'td',
              {
                class:
                  `${column.number ? 'number' : 'text'}${text.startsWith('-') ? ' negative' : ''}` +
                  `${index === this.frozen - 1 ? ' edge' : ''}`,
                title: text || null,
              },
              text,
            );
            const width = saved[index] ?? this.widths[index];
            cell.style.minWidth = `${width}px`;
            cell.style.maxWidth = `${width}px`;
            return cell;
          }),
        ),
      );
      this.totalsTable.replaceChildren(h('tbody', {}, rows));
    }
    // Right below the last row when all are in sight, else at the lower edge, above the scroll bar.
    const height = this.scroller.clientHeight;
    const top = Math.min(height - lines * rowHeight, (this.headRows + this.rowCount) * rowHeight);
    this.totalsTable.style.top = `${Math.max(0, top)}px`;
    this.totalsTable.style.width = `${this.scroller.clientWidth}px`;
  }

  // --- where the reader is

  block() {
    if (!this.anchor || this.active.row < 0) return null;
    const {anchor, active} = this;
    return {
      top: Math.min(anchor.row, active.row),
      bottom: Math.max(anchor.row, active.row),
      left: Math.min(anchor.column, active.column),
      right: Math.max(anchor.column, active.column),
    };
  }

  // How many rows are in sight below the headings and above the totals.
  get rowsInSight() {
    return Math.max(1, Math.floor(this.scroller.clientHeight / rowHeight) - this.headRows - this.totals.length);
  }

  // The scroll position that has row `row` on top, and the other way round, as regular-table reckons them.
  scrollOf(row) {
    const all = Math.max(1, this.rowCount + this.totals.length);
    const height = this.scroller.clientHeight;
    const room = Math.max(
      1,
      Math.round(Math.min(scrollAreaLimit, (all + this.headRows) * rowHeight)) - this.scroller.clientHeight,
    );
    const scrolled = Math.max(1e-9, all - (height / rowHeight - this.headRows));
    return {room, scrolled, top: (row / scrolled) * room};
  }
  get firstRow() {
    const {room, scrolled} = this.scrollOf(0);
    return Math.max(0, (this.scroller.scrollTop / room) * scrolled);
  }

  reveal(row, column, {top = false} = {}) {
    let moved = false;
    if (row >= 0) {
      const first = this.firstRow;
      const target = top || row < first ? row : row > first + this.rowsInSight - 1 ? row - this.rowsInSight + 1 : null;
      if (target !== null) {
        const to = Math.max(0, this.scrollOf(target).top);
        moved = Math.abs(to - this.scroller.scrollTop) > 0.4;
        this.scroller.scrollTop = to;
      }
    }
    if (column >= this.frozen) {
      const index = column - this.frozen;
      const before = (to) => this.widths.slice(this.frozen, this.frozen + to).reduce((sum, width) => sum + width, 0);
      const room = this.scroller.clientWidth - this.widths.slice(0, this.frozen).reduce((sum, width) => sum + width, 0);
      const left = this.scroller.scrollLeft;
      // Columns are never drawn in part on their left side, so the first in sight begins at or before the scroll
      // position.
      let first = 0;
      while (first < index && before(first + 1) <= left) first += 1;
      if (before(index) < left) {
        this.scroller.scrollLeft = before(index);
        moved = true;
      } else if (before(index + 1) - before(first) > room) {
        let start = first;
        while (start < index && before(index + 1) - before(start) > room) start += 1;
        this.scroller.scrollLeft = before(start);
        moved = true;
      }
    }
    return moved;
  }

  // The reader goes to a cell; -1 is the headings. `extend` keeps where the block began.
  moveTo(row, column, {extend = false, top = false} = {}) {
    const from = {...this.active};
    this.active = {
      row: Math.max(-1, Math.min(this.rowCount - 1, row)),
      column: Math.max(0, Math.min(this.columns.length - 1, column)),
    };
    if (!extend) this.anchor = null;
    else this.anchor ??= from.row < 0 ? {...this.active} : from;
    this.reveal(this.active.row, this.active.column, {top});
    this.style();
    this.tell.place(Math.max(0, this.active.row), this.columns[this.active.column].name);
    const block = this.block();
    this.tell.selection(block ? block.bottom - block.top + 1 : 0, block ? block.right - block.left + 1 : 0);
  }

  focus() {
    this.table.focus({preventScroll: true});
  }

  async key(event) {
    const {row, column} = this.active;
    const extend = event.shiftKey;
    const last = this.rowCount - 1;
    const end = this.columns.length - 1;
    const control = event.ctrlKey || event.metaKey;
    if (event.altKey) {
      if (event.key === 'ArrowDown') this.openMenu(column);
      else if (row < 0 && (event.key === 'ArrowLeft' || event.key === 'ArrowRight')) {
        const to = column + (event.key === 'ArrowLeft' ? -1 : 1);
        if (to >= 0 && to <= end) this.tell.move(column, to);
      } else return;
      event.preventDefault();
      return;
    }
    const page = Math.max(1, this.rowsInSight - 1);
    const to = {
      ArrowUp: () => [control ? 0 : row - 1, column],
      ArrowDown: () => [control ? last : row + 1, column],
      ArrowLeft: () => [row, control ? 0 : column - 1],
      ArrowRight: () => [row, control ? end : column + 1],
      PageUp: () => [Math.max(0, row - page), column],
      PageDown: () => [row + page, column],
      Home: () => (control ? [0, 0] : [row, 0]),
      End: () => (control ? [last, end] : [row, end]),
    }[event.key];
    if (to) {
      event.preventDefault();
      const [nextRow, nextColumn] = to();
      if (event.key === 'Home') this.scroller.scrollLeft = 0;
      // A block goes over rows only.
      this.moveTo(extend && nextRow < 0 ? 0 : nextRow, nextColumn, {extend: extend && row >= 0});
      return;
    }
    const act =
      {
        Enter: () => (row < 0 ? this.tell.sort(column, extend) : this.open(row)),
        ' ': () => (row < 0 ? this.tell.sort(column, extend) : this.toggle(row)),
        ContextMenu: () => this.openMenu(column),
        Escape: () => this.anchor && this.moveTo(row, column),
      }[event.key] ??
      (control &&
        {
          c: () => this.copy(),
          a: () => {
            this.anchor = {row: 0, column: 0};
            this.active = {row: last, column: end};
            this.style();
            this.tell.selection(this.rowCount, this.columns.length);
          },
          g: () => this.tell.goTo(),
        }[event.key.toLowerCase()]);
    if (!act) return;
    event.preventDefault();
    await act();
  }

  openMenu(column) {
    const {row} = this.active;
    if (row >= 0 || column !== this.active.column) this.reveal(-1, column);
    const anchor = [...this.table.querySelectorAll('.column-menu')].find((one) => one.deskColumn === column);
    this.tell.menu(anchor ?? this.table, column);
  }

  open(row) {
    if (this.tell.openCell) {
      if (this.rows.at(row)) this.tell.openCell(this.rows.at(row), this.active.column);
    } else if (this.rows.at(row)?.opens) this.tell.open(this.rows.at(row).n);
    else if (this.rows.state?.(row) !== undefined) this.toggle(row);
    else say(t('noDocument'));
  }

  async toggle(row) {
    if (this.rows.state?.(row) === undefined) return;
    try {
      const number = this.rows.at(row).n;
      await this.rows.toggle(row);
      await this.redraw();
      // What is folded away above the row moves it.
      const index = this.rows.indexOf?.(number);
      if (index !== undefined) this.moveTo(index, this.active.column);
    } catch (error) {
      notice(error.message, {error: true});
    }
  }

  // --- the mouse

  cellAt(target) {
    const cell = target.closest?.('td, th');
    const meta = cell && this.table.contains(cell) && this.scroller.getMeta(cell);
    if (!meta) return null;
    if (meta.type === 'body') return {row: meta.y, column: this.frozen + meta.x, cell};
    if (meta.type === 'row_header') return {row: meta.y, column: meta.virtual_x, cell};
    const opener = cell.querySelector('.column-menu');
    return opener ? {row: -1, column: opener.deskColumn, cell} : null;
  }

  mouseDown(event) {
    if (event.button !== 0) return;
    const place = this.cellAt(event.target);
    if (!place) return;
    if (event.target.classList.contains('rt-column-resize')) {
      this.resizeDown(place.column);
      return;
    }
    const opener = event.target.closest('.column-menu');
    if (opener) {
      event.preventDefault();
      this.active = {row: -1, column: opener.deskColumn};
      this.focus();
      addEventListener('click', () => this.tell.menu(opener, opener.deskColumn), {once: true});
      return;
    }
    event.preventDefault();
    this.focus();
    if (place.row < 0) {
      this.headingDown(event, place);
      return;
    }
    if (place.row >= this.rowCount) return;
    const left = place.cell.getBoundingClientRect().left;
    if (place.column === 0 && event.clientX - left < 22 && this.rows.state?.(place.row) !== undefined) {
      this.toggle(place.row);
      return;
    }
    this.moveTo(place.row, place.column, {extend: event.shiftKey});
    const drag = (move) => {
      const over = this.cellAt(document.elementFromPoint(move.clientX, move.clientY) ?? document.body);
      if (
        over &&
        over.row >= 0 &&
        over.row < this.rowCount &&
        (over.row !== this.active.row || over.column !== this.active.column)
      ) {
        this.moveTo(over.row, over.column, {extend: true});
      }
    };
    document.addEventListener('mousemove', drag);
    document.addEventListener(
      'mouseup',
      () => {
        document.removeEventListener('mousemove', drag);
        if (this.tell.openCell && !this.anchor) this.open(place.row);
      },
      {once: true},
    );
  }

  // On a heading: a click sorts, a drag moves the column.
  headingDown(event, {column, cell}) {
    let dropAt = null;
    let marked = null;
    const unmark = () => marked?.classList.remove('drop-before', 'drop-after');
    const drag = (move) => {
      if (dropAt === null && Math.abs(move.clientX - event.clientX) < 6) return;
      cell.classList.add('dragged');
      const over = this.cellAt(document.elementFromPoint(move.clientX, event.clientY) ?? document.body);
      unmark();
      dropAt = over && over.row < 0 ? over.column : column;
      marked = over?.cell ?? null;
      if (dropAt !== column) marked?.classList.add(dropAt < column ? 'drop-before' : 'drop-after');
    };
    document.addEventListener('mousemove', drag);
    document.addEventListener(
      'mouseup',
      () => {
        document.removeEventListener('mousemove', drag);
        unmark();
        cell.classList.remove('dragged');
        this.active = {row: -1, column};
        if (dropAt === null) this.tell.sort(column, event.shiftKey);
        else if (dropAt !== column) this.tell.move(column, dropAt);
      },
      {once: true},
    );
  }

  // regular-table changes the width while the mouse is down; afterwards it is kept. A double click gives back the
  // measured one.
  resizeDown(column) {
    document.addEventListener(
      'mouseup',
      () =>
        setTimeout(() => {
          const width = this.scroller.saveColumnSizes()[column];
          if (width === undefined) {
            this.setWidth(column, this.measured[column]);
            this.setWidths();
            this.redraw();
          } else if (width !== this.widths[column]) {
            this.setWidth(column, Math.max(narrowest, width));
            this.setWidths();
            this.redraw();
          }
        }, 50),
      {once: true},
    );
  }

  doubleClick(event) {
    const place = this.cellAt(event.target);
    if (place && place.row >= 0 && place.row < this.rowCount && !this.tell.openCell) this.open(place.row);
  }

  contextMenu(event) {
    const place = this.cellAt(event.target);
    if (!place || place.row >= 0) return;
    event.preventDefault();
    this.openMenu(place.column);
  }

  // Where the scroll area is cut off, a turn of the wheel would go over far too many rows.
  wheel(event) {
    const all = (this.rowCount + this.totals.length + this.headRows) * rowHeight;
    if (all <= scrollAreaLimit || event.shiftKey || event.ctrlKey || event.deltaY === 0) return;
    event.preventDefault();
    const pixels =
      event.deltaMode === 1
        ? event.deltaY * rowHeight
        : event.deltaMode === 2
          ? event.deltaY * this.scroller.clientHeight
          : event.deltaY;
    this.scroller.scrollTop += pixels * (scrollAreaLimit / all);
  }

  // --- copying

  async copy() {
    if (this.rowCount === 0) return;
    const block = this.block() ?? {
      top: Math.max(0, this.active.row),
      bottom: Math.max(0, this.active.row),
      left: this.active.column,
      right: this.active.column,
    };
    const rows = block.bottom - block.top + 1;
    const columns = block.right - block.left + 1;
    if (rows * columns > copyCellLimit) {
      notice(t('copyTooLarge'), {error: true});
      return;
    }
    try {
      const lines = [];
      for (let from = block.top; from <= block.bottom; from += 1000) {
        const to = Math.min(block.bottom + 1, from + 1000);
        await this.rows.ensure(from, to);
        for (let index = from; index < to; index += 1) {
          const {cells} = this.rows.at(index);
          lines.push(
            this.columns
              .slice(block.left, block.right + 1)
              .map((column, at) => spreadsheetText(cells[block.left + at] ?? '', column.number))
              .join('\t'),
          );
        }
      }
      await copyText(lines.join('\n'));
      notice(t('copiedBlock', {rows: count(rows), columns: count(columns)}));
    } catch {
      notice(t('copyFailed'), {error: true});
    }
  }
}

// A cell as spreadsheets take it: what would begin a formula there stays a text, and breaks within a text are quoted.
export function spreadsheetText(text, number) {
  const plain = !number && /^[=+\-@]/.test(text) ? `'${text}` : text;
  return /[\t\r\n"]/.test(plain) ? `"${plain.replaceAll('"', '""')}"` : plain;
}
