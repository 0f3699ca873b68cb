// A run: its progress, and then its result in the layout and arrangement that the address names.
import {cameFromHere, filterIn, go, placeIn, putFilter, putPlace, putView, viewIn, write} from './address.js';
import {api} from './api.js';
import {ChartPage} from './chart_page.js';
import {chartNames} from './charts.js';
import {ComparePanel, comparable, compareIn, compareNames, firstComparison} from './compare.js';
import {TouchedLine} from './checks.js';
import {openColumnMenu, moved} from './column_menu.js';
import {openColumns} from './columns.js';
import {showDocuments} from './document.js';
import {button, fill, h, notice, say} from './dom.js';
import {openExport} from './export.js';
import {Grid, isNumber} from './grid.js';
import {keptOf, openLayouts, putKept} from './layouts.js';
import {Folds} from './ledger.js';
import {
  PivotPanel,
  PivotRows,
  firstPivot,
  foldedIn,
  openPivotMenu,
  pivotIn,
  pivotNames,
  putPivot,
  sortNameOf,
} from './pivot.js';
import {Picked, Rows} from './rows.js';
import {conditionsText, filterText} from './start.js';
import {StatementsUnderWay, statementsPanel} from './statements.js';
import {caption, count, language, seconds, t} from './texts.js';

export class RunPage {
  constructor(id, reportName, desk) {
    this.id = id;
    this.desk = desk;
    this.reportName = reportName;
    this.element = h('div', {class: 'page run'});
    this.query = new URLSearchParams();
    this.asked = 0;
    this.captions = new Map(); // of columns that have been shown
  }

  get report() {
    return this.desk.report(this.reportName);
  }
  get title() {
    return (
      caption(this.report?.title) || this.desk.runs.find((run) => String(run.id) === this.id)?.title || t('report')
    );
  }
  address() {
    return this.query.size > 0 ? write(['run', this.id], this.query) : undefined;
  }

  async show(address) {
    this.keepTop();
    this.shown = true;
    this.query = address.query;
    [, , this.part, this.documentRow] = address.path;
    if (!this.info) await this.load();
    if (!this.shown) return;
    if (!this.info) this.drawGone();
    else if (this.info.state === 'running') this.drawProgress();
    else await this.drawResult();
    await this.drawDocument();
  }

  hide() {
    this.keepTop();
    this.shown = false;
    const open = this.document;
    this.document = null;
    this.documentShown = null;
    open?.close();
    clearTimeout(this.placeTimer);
    // A browser keeps few connections to one server open: only the page in sight listens.
    if (this.events) {
      this.quiet();
      this.info = null;
    }
  }

  // An element that goes out of sight forgets how far it was scrolled.
  keepTop() {
    if (this.grid?.element.isConnected && this.grid.element.offsetParent) this.topRow = this.grid.firstRow;
  }

  quiet() {
    this.events?.close();
    this.events = null;
    clearInterval(this.clock);
  }

  dispose() {
    this.hide();
    this.chart?.dispose();
    this.grid?.dispose();
  }

  async load() {
    try {
      this.info = await api.runInfo(this.id);
      this.reportName = this.info.report;
    } catch (error) {
      if (error.status !== 404) throw error;
      this.info = null;
    }
  }

  filterAddress() {
    return write(['report', this.reportName], putFilter(new URLSearchParams(), filterIn(this.query)));
  }

  // The run was closed, or belongs to an earlier session: its filter is still in the address.
  drawGone() {
    fill(
      this.element,
      h('div', {class: 'page-head'}, h('h1', {}, this.title)),
      h('p', {}, t('runGone')),
      this.report && h('p', {}, h('a', {class: 'primary-link', href: this.filterAddress()}, t('changeFilter'))),
    );
  }

  head(...actions) {
    const edit = this.report && h('a', {class: 'button', href: this.filterAddress()}, t('changeFilter'));
    // The run knows its conditions when it is done; until then, those that it was started with count.
    const conditions =
      this.info.state === 'running'
        ? filterText(this.report, filterIn(this.query))
        : conditionsText(this.info.conditions);
    return h(
      'div',
      {class: 'page-head'},
      h(
        'div',
        {class: 'titles'},
        h('h1', {}, this.title),
        h('span', {class: 'muted ellipsis', title: conditions}, conditions),
      ),
      h('div', {class: 'actions'}, edit, actions),
    );
  }

  // --- while it runs

  drawProgress() {
    if (this.events) return;
    const began = performance.now() - this.info.elapsedMs;
    const elapsed = h('span', {class: 'elapsed number'});
    const now = h('span', {class: 'muted'});
    const tick = () => {
      elapsed.textContent = seconds(performance.now() - began);
    };
    const list = new StatementsUnderWay();
    const stop = button(
      t('stop'),
      async () => {
        stop.disabled = true;
        stop.textContent = t('stopping');
        try {
          await api.stopRun(this.id);
        } catch (error) {
          notice(error.message, {error: true});
          stop.disabled = false;
          stop.textContent = t('stop');
        }
      },
      {class: 'danger'},
    );
    tick();
    clearInterval(this.clock);
    this.clock = setInterval(tick, 100);
    fill(
      this.element,
      this.head(),
      h(
        'section',
        {class: 'card progress'},
        h('div', {class: 'card-head'}, h('h2', {}, t('running')), elapsed, now, h('span', {class: 'space'}), stop),
        h('div', {class: 'bar', role: 'progressbar', 'aria-label': t('running')}),
        list.element,
      ),
    );
    stop.focus();

    this.events = api.runEvents(this.id);
    this.events.addEventListener('statement', (event) => {
      const statement = JSON.parse(event.data);
      list.add(statement);
      now.textContent = t('statementNow', {n: statement.n});
    });
    this.events.addEventListener('done', () => this.ended());
    // The connection may be cut; the browser tries again by itself, and meanwhile the run may have ended.
    this.events.addEventListener('error', async () => {
      const info = await api.runInfo(this.id).catch((error) => (error.status === 404 ? {state: 'gone'} : null));
      if (info && info.state !== 'running') this.ended();
    });
  }

  async ended() {
    if (!this.events) return;
    this.quiet();
    await this.load();
    say(this.info ? t(`state_${this.info.state}`) : t('runGone'));
    await this.desk.runsChanged().catch(() => {});
    if (!this.shown) return;
    if (!this.info) this.drawGone();
    else await this.drawResult();
  }

  // --- its result

  async drawResult() {
    if (this.info.state !== 'done') {
      this.drawUnfinished();
      return;
    }
    if (!this.frame) this.drawFrame();
    const isStatements = this.part === 'statements';
    const isChart = !isStatements && this.query.get('layout') === 'chart';
    this.drawBar(isStatements);
    for (const area of [this.gridArea, this.tools, this.panelArea]) area.hidden = isStatements || isChart;
    this.statementsArea.hidden = !isStatements;
    this.chartArea.hidden = !isChart;
    if (isStatements) {
      fill(this.statementsArea, statementsPanel(this.info));
      return;
    }
    if (isChart) {
      await this.drawChart();
      return;
    }
    await this.drawView();
    this.touched.ask(); // the rows come first
  }

  drawUnfinished() {
    const failed = this.info.state === 'failed';
    fill(
      this.element,
      this.head(),
      h(
        'section',
        {class: failed ? 'card failed' : 'card'},
        h(
          'p',
          {class: 'message', role: 'alert'},
          failed ? `${t('runFailed')} ${this.info.error ?? ''}` : t('runStopped'),
        ),
        (this.info.messages ?? []).map((message) => h('p', {class: 'message'}, messageText(message))),
      ),
      this.info.statements.length > 0 && statementsPanel(this.info),
    );
  }

  drawFrame() {
    this.bar = h('nav', {class: 'layout-bar', 'aria-label': t('layouts')});
    this.tools = h('div', {class: 'tools'});
    this.panelArea = h('div', {class: 'panel-area'});
    this.panel = null;
    this.gridArea = h('div', {class: 'grid-area'});
    this.chartArea = h('div', {class: 'chart-area'});
    this.statementsArea = h('div', {class: 'statements-area'});
    this.headArea = h('div', {});
    this.touched = new TouchedLine(this.id);
    this.frame = [this.headArea, this.bar, this.panelArea, this.tools, this.gridArea, this.chartArea, this.statementsArea];
    fill(this.element, this.frame);
  }

  drawBar(isStatements) {
    fill(
      this.headArea,
      this.head(),
      this.touched.element,
      (this.info.messages ?? []).map((message) => h('p', {class: 'message'}, messageText(message))),
    );
    this.bar.setAttribute('aria-label', t('layouts'));
    const wanted = this.wantedView();
    // A layout has its own columns; what the last one was arranged by does not follow into it.
    const filterOnly = putFilter(new URLSearchParams({report: this.reportName}), filterIn(this.query));
    for (const name of [...pivotNames, ...compareNames, ...chartNames]) if (this.query.has(name)) filterOnly.set(name, this.query.get(name));
    const link = (path, query, text, here) =>
      h('a', {href: write(path, query), 'aria-current': here ? 'page' : null}, text);
    fill(
      this.bar,
      this.report.layouts.map((layout) => {
        const here = layout.name === wanted.layout;
        const query = here ? this.query : new URLSearchParams(filterOnly);
        if (!here) query.set('layout', layout.name);
        return link(['run', this.id], query, caption(layout.caption), here && !isStatements);
      }),
      this.partLink('pivot', wanted, filterOnly, link, isStatements),
      this.partLink('compare', wanted, filterOnly, link, isStatements),
      this.partLink('chart', wanted, filterOnly, link, isStatements),
      link(
        ['run', this.id, 'statements'],
        this.query,
        `${t('statements')} (${count(this.info.statements.length)})`,
        isStatements,
      ),
      h('span', {class: 'muted elapsed-all'}, `${t('elapsed')} ${seconds(this.info.elapsedMs)}`),
    );
  }

  // To what is no layout of the report: "pivot", "compare" or "chart". An order goes by columns that the others do not have.
  partLink(name, wanted, filterOnly, link, isStatements) {
    const here = wanted.layout === name;
    const query = here ? this.query : new URLSearchParams(filterOnly);
    if (!here && wanted.pivot) for (const own of ['order', 'folded']) query.delete(own);
    query.set('layout', name);
    return link(['run', this.id], query, t(name), here && !isStatements);
  }

  async drawChart() {
    this.chart ??= new ChartPage({
      run: this.id,
      report: this.report,
      title: this.title,
      conditions: conditionsText(this.info.conditions),
      go: (query) => go(['run', this.id], query),
    });
    if (!this.chart.element.isConnected) fill(this.chartArea, this.chart.element);
    await this.chart.show(this.query);
  }

  wantedView() {
    const wanted = viewIn(this.query);
    wanted.layout ||= this.report.layouts[0]?.name ?? '';
    if (wanted.layout === 'pivot') wanted.pivot = pivotIn(this.query);
    if (wanted.layout === 'compare') wanted.pivot = compareIn(this.query);
    return wanted;
  }

  // The lists of what the pivot shows. An address that says nothing of it gets the report's first.
  async drawPanel(wanted) {
    if (!wanted.pivot) {
      fill(this.panelArea);
      this.panel = null;
      return wanted;
    }
    const isComparison = wanted.layout === 'compare';
    if (!this.panel || isComparison !== this.panel instanceof ComparePanel) {
      const choices = this.panel?.choices ?? (await api.pivotChoices(this.id));
      const change = (pivot) => this.arrangePivot((next) => Object.assign(next, pivot));
      this.panel = isComparison
        ? new ComparePanel(choices, change, (other) => this.compareWith(other))
        : new PivotPanel(choices, change);
    }
    if (isComparison) return this.drawComparePanel(wanted);
    if (wanted.pivot.rows.length === 0 || wanted.pivot.measures.length === 0) {
      wanted.pivot = firstPivot(this.panel.choices);
      putPivot(this.query, wanted.pivot);
      go(['run', this.id], this.query, {replace: true, quiet: true});
    }
    this.panel.show(wanted.pivot);
    if (!this.panel.element.isConnected) fill(this.panelArea, this.panel.element);
    return wanted;
  }

  // The address may name no other run, or one that has been closed.
  async drawComparePanel(wanted) {
    await this.desk.runsChanged().catch(() => {});
    const others = comparable(this.desk.runs, this.id);
    const {pivot} = wanted;
    if (pivot.rows.length === 0 || pivot.measures.length === 0) {
      Object.assign(pivot, firstComparison(this.panel.choices));
      putPivot(this.query, pivot);
    }
    if (!others.some((run) => run.id === pivot.other)) {
      pivot.other = others.at(-1)?.id ?? null;
      this.query.delete('folded');
    }
    if (pivot.other) this.query.set('with', String(pivot.other));
    else this.query.delete('with');
    if (this.shown && !this.part) go(['run', this.id], this.query, {replace: true, quiet: true});
    this.panel.show(pivot, others);
    if (!this.panel.element.isConnected) fill(this.panelArea, this.panel.element);
    return wanted;
  }

  compareWith(other) {
    const query = new URLSearchParams(this.query);
    query.set('with', other);
    for (const name of ['row', 'folded']) query.delete(name);
    go(['run', this.id], query);
  }

  arrangePivot(change, column) {
    this.heading = column !== undefined;
    const next = pivotIn(this.query);
    change(next);
    const query = putPivot(new URLSearchParams(this.query), next);
    query.delete('row');
    if (column) query.set('at', column);
    go(['run', this.id], query);
  }

  // Shows what the address asks for. Nothing is done when that is what is shown.
  async drawView() {
    const number = (this.asked += 1);
    let wanted = this.wantedView();
    if (wanted.pivot || this.panel) {
      if (!this.view) this.busy();
      wanted = await this.drawPanel(wanted);
      if (number !== this.asked) return;
    }
    if (wanted.layout === 'compare' && !wanted.pivot.other) {
      this.unbusy();
      this.drop();
      this.viewKey = undefined;
      fill(this.tools);
      fill(
        this.gridArea,
        h(
          'div',
          {class: 'card'},
          h('p', {class: 'message'}, t('compareNone')),
          h('a', {class: 'primary-link', href: this.filterAddress()}, t('changeFilter')),
        ),
      );
      return;
    }
    const {frozen} = wanted;
    const asked = askedOf(wanted);
    const key = JSON.stringify(asked);
    const place = placeIn(this.query);
    if (key === this.viewKey && frozen === this.wanted.frozen && this.grid) {
      this.wanted = wanted;
      if (!this.grid.element.isConnected) this.gridArea.append(this.grid.element);
      await this.grid.redraw();
      if (this.topRow !== undefined) this.grid.scroller.scrollTop = this.grid.scrollOf(this.topRow).top;
      this.grid.moveTo(this.heading ? -1 : place.row, Math.max(0, this.grid.indexOf(place.column)));
      return;
    }
    const hadFocus =
      this.grid?.element.contains(document.activeElement) ||
      document.activeElement === document.getElementById('main') ||
      document.activeElement === document.body;
    this.busy();
    let view = this.view;
    try {
      if (key !== this.viewKey || !view) {
        if (this.ready?.key === key) {
          ({view} = this.ready);
          this.ready = null;
        } else {
          this.forgetReady();
          view = await makerOf(wanted)(this.id, asked);
        }
      }
    } catch (error) {
      if (number !== this.asked) return;
      this.unbusy();
      this.drop();
      this.viewKey = undefined;
      fill(this.tools);
      fill(
        this.gridArea,
        h(
          'div',
          {class: 'card'},
          h('p', {class: 'message', role: 'alert'}, t('viewRefused', {message: error.message})),
          this.chips(wanted),
          button(t('showLayout'), () =>
            this.go((next) =>
              Object.assign(next, {
                columns: [],
                sort: [],
                groupBy: [],
                where: [],
                allColumns: false,
                details: false,
                frozen: null,
              }),
            ),
          ),
        ),
      );
      return;
    }
    if (number !== this.asked) {
      if (view !== this.view) api.closeView(this.id, view.id).catch(() => {});
      return;
    }
    const heading = this.heading;
    this.drop(view);
    this.view = view;
    this.viewKey = key;
    this.wanted = wanted;
    await this.drawGrid(view, wanted, {...place, heading});
    this.unbusy();
    if (hadFocus && this.shown && this.part !== 'document') this.grid.focus();
  }

  // The rows of a long result take seconds until they are in order.
  busy() {
    this.gridArea.setAttribute('aria-busy', 'true');
    this.gridArea.classList.add('busy');
    if (!this.busySign) {
      this.busySign = h(
        'div',
        {class: 'busy-sign'},
        h('div', {class: 'bar', 'aria-hidden': 'true'}),
        h('span', {}, t('arranging')),
      );
      say(t('arranging'));
    }
    this.gridArea.append(this.busySign);
  }
  unbusy() {
    this.gridArea.removeAttribute('aria-busy');
    this.gridArea.classList.remove('busy');
    this.busySign?.remove();
    this.busySign = null;
  }

  // Gives back the grid and, unless it is `kept`, its view on the server.
  drop(kept) {
    this.grid?.dispose();
    this.grid = null;
    if (this.view && this.view !== kept) api.closeView(this.id, this.view.id).catch(() => {});
    this.view = null;
  }

  async drawGrid(view, wanted, place) {
    const pages = new Rows(
      (offset, limit) => api.rows(this.id, view.id, offset, limit),
      view.rowCount,
      view.columns.length,
    );
    const {pivot} = wanted;
    const rows = pivot ? new PivotRows(pages) : new Folds(pages, (n) => api.details(this.id, view.id, n));
    await pages.begin();
    if (pivot) await rows.fold(foldedIn(this.query));
    this.rows = rows;
    const shown = columnsShown(view, rows);
    const {sort} = pivot ?? wanted;
    const sorted = new Map(sort.map((key, index) => [key.column, {...key, place: index + 1, of: sort.length}]));
    if (pivot) {
      for (const column of view.columns.filter(isNumber)) {
        const mark = sorted.get(sortNameOf({...column, number: true}, pivot));
        if (mark) sorted.set(column.name, mark);
      }
    }
    const filtered = new Set(wanted.where.map((one) => one.column));
    this.widths = new Map(Object.entries(JSON.parse(localStorage.getItem(this.widthsKey()) ?? '{}')));
    const layout = this.report.layouts.find((one) => one.name === view.layout);
    const grid = (this.grid = new Grid({
      name: t('gridName', {title: this.title, layout: pivot ? t(wanted.layout) : caption(layout?.caption)}),
      view: {...view, ...shown},
      rows: new Picked(rows, shown.indexes),
      widths: this.widths,
      frozen: wanted.frozen,
      sorted,
      filtered,
      tell: pivot ? this.pivotTeller(rows, pivot) : this.teller(),
    }));
    this.gridArea.classList.toggle('pivot', Boolean(pivot));
    rows.onchange = () => {
      const now = columnsShown(view, rows);
      if (now.columns.length !== grid.columns.length) {
        grid.rows.pick(now.indexes);
        grid.setColumns(now.columns, now.totals);
      } else grid.redraw();
      if (pivot) this.keepFolds(rows);
      if (grid.active.row >= rows.rowCount) grid.moveTo(rows.rowCount - 1, grid.active.column);
      this.drawCount();
    };
    fill(this.gridArea, grid.element, view.rowCount === 0 && h('p', {class: 'no-rows muted'}, t('noRows')));
    this.drawTools();
    await grid.begin(place);
    rows.count().catch((error) => this.lost(error));
  }

  widthsKey() {
    return `desk.widths.${this.reportName}.${this.wanted.layout}`;
  }

  // Rows could not be fetched. The server may have let an old view go: then it is made once more.
  lost(error) {
    const now = performance.now();
    if (error.status !== 404 || now - (this.lostAt ?? -Infinity) < 5000) {
      notice(error.message, {error: true});
      return;
    }
    this.lostAt = now;
    this.view = null;
    this.viewKey = undefined;
    this.drawView().catch((problem) => notice(problem.message, {error: true}));
  }

  // What the grid tells.
  teller() {
    const names = () => this.view.columns.map((column) => column.name);
    const nameAt = (index) => this.grid.columns[index].name;
    return {
      open: (n) => this.openDocument(n),
      place: (row, column) => this.keepPlace(row, column),
      selection: (rows, columns) => {
        this.selection.textContent =
          rows * columns > 1 ? t('selected', {rows: count(rows), columns: count(columns)}) : '';
      },
      goTo: () => this.goToInput.focus(),
      lost: (error) => this.lost(error),
      width: (name, pixels) => {
        this.widths.set(name, pixels);
        localStorage.setItem(this.widthsKey(), JSON.stringify(Object.fromEntries(this.widths)));
      },
      move: (from, to) =>
        this.arrange((next) => {
          const all = names();
          next.columns = moved(all, all.indexOf(nameAt(from)), all.indexOf(nameAt(to)));
        }, nameAt(from)),
      // Ascending, then descending, then not at all; with `add` behind the columns that it is ordered by already.
      sort: (index, add) =>
        this.arrange((next) => {
          const column = nameAt(index);
          const mine = next.sort.find((key) => key.column === column);
          const rest = add ? next.sort.filter((key) => key.column !== column) : [];
          if (!mine) next.sort = [...rest, {column, descending: false}];
          else if (mine.descending) next.sort = rest;
          else
            next.sort = add
              ? next.sort.map((key) => (key === mine ? {column, descending: true} : key))
              : [{column, descending: true}];
        }, nameAt(index)),
      menu: (anchor, index) =>
        openColumnMenu(anchor, {
          column: this.grid.columns[index],
          names: names(),
          view: this.wanted,
          frozen: this.grid.frozen,
          widen: (by) => this.grid.widen(index, by),
          arrange: (change) => this.arrange(change, nameAt(index)),
          tryArrange: (change, close) => this.tryArrange(change, nameAt(index), close),
        }),
    };
  }

  // What the grid of a pivot tells.
  pivotTeller(rows, pivot) {
    const column = (index) => this.grid.columns[index];
    return {
      ...this.teller(),
      openCell: (row, index) => this.openBehind(row, index),
      move() {},
      sort: (index) => {
        const name = sortNameOf(column(index), pivot);
        if (!name) {
          notice(t('pivotSortsTotals'));
          return;
        }
        const mine = pivot.sort.find((key) => key.column === name);
        this.arrangePivot((next) => {
          next.sort = mine?.descending ? [] : [{column: name, descending: Boolean(mine)}];
        }, column(index).name);
      },
      menu: (anchor, index) =>
        openPivotMenu(anchor, {
          column: column(index),
          pivot,
          widen: (by) => this.grid.widen(index, by),
          arrange: (change) => this.arrangePivot(change, column(index).name),
        }),
    };
  }

  // Lists the rows behind a figure. Back leads to the pivot as it was.
  async openBehind(row, index) {
    const column = this.grid.columns[index];
    if (!column.key && !row.cells[index]) {
      notice(t('pivotNoFigure'));
      return;
    }
    if (this.wanted.pivot.other && !/^(one|other)\//.test(column.name)) {
      notice(t('compareNoRows'));
      return;
    }
    clearTimeout(this.placeTimer);
    putPlace(this.query, Math.max(0, this.grid.active.row), column.name);
    go(['run', this.id], this.query, {replace: true, quiet: true});
    try {
      const {where, run} = await api.behind(this.id, this.view.id, row.n, index);
      const query = new URLSearchParams(this.query);
      for (const name of ['row', 'at', 'folded']) query.delete(name);
      const none = {columns: [], sort: [], groupBy: [], allColumns: false, details: false, frozen: null};
      // Another run's rows stand on its own page, whose address begins anew.
      const shown = run ? new URLSearchParams({report: this.reportName}) : query;
      go(['run', String(run ?? this.id)], putView(shown, {...none, layout: 'lines', where}));
    } catch (error) {
      this.lost(error);
    }
  }

  // What is folded away stands in the address.
  keepFolds(rows) {
    if (rows.folded.size > 0) this.query.set('folded', [...rows.folded.keys()].join(','));
    else this.query.delete('folded');
    if (this.shown && !this.part) go(['run', this.id], this.query, {replace: true, quiet: true});
  }

  // Shows the rows otherwise: `change` gets a copy of what is shown now. Each is a step that Back takes back. Where it
  // comes from a column's heading, the keyboard stays there.
  arrange(change, column) {
    this.heading = column !== undefined;
    this.go(change, column);
  }
  // The same, unless the server refuses it: then all stays as it is, and the refusal is thrown. `close` is called in between.
  async tryArrange(change, column, close) {
    const next = structuredClone(this.wantedView());
    change(next);
    const asked = askedOf(next);
    const view = await api.makeView(this.id, asked);
    this.forgetReady();
    this.ready = {key: JSON.stringify(asked), view};
    close();
    this.arrange(change, column);
  }
  // A view that was made and not shown.
  forgetReady() {
    if (this.ready) api.closeView(this.id, this.ready.view.id).catch(() => {});
    this.ready = null;
  }
  go(change, column) {
    const next = structuredClone(this.wantedView());
    change(next);
    // Columns that are chosen stay as they are when the reader hides or moves one; a filter on a hidden one stays, too.
    const query = putView(new URLSearchParams(this.query), next);
    query.delete('row');
    if (column) query.set('at', column);
    go(['run', this.id], query);
  }

  keepPlace(row, column) {
    this.heading = this.grid.active.row < 0;
    clearTimeout(this.placeTimer);
    this.placeTimer = setTimeout(() => {
      if (!this.shown || this.part) return;
      putPlace(this.query, row, column);
      go(['run', this.id], this.query, {replace: true, quiet: true});
    }, 150);
  }

  // --- above the grid

  // Filters, order and groups that are in force, each with a way to take it off.
  chips(wanted) {
    for (const column of [
      ...(this.view?.conditions ?? []),
      ...(this.view?.columns ?? []),
      ...(this.view?.hidden ?? []),
    ])
      this.captions.set(column.name, column.group ? `${column.group} · ${column.caption}` : column.caption);
    const words = (name) => this.captions.get(name) ?? name;
    const chip = (text, change) =>
      h(
        'span',
        {class: 'chip'},
        h('span', {class: 'ellipsis'}, text),
        h(
          'button',
          {type: 'button', class: 'remove', 'aria-label': t('remove', {what: text}), onclick: () => this.go(change)},
          '✕',
        ),
      );
    const chips = [
      ...wanted.where.map((one) =>
        chip(`${words(one.column)} ${conditionText(this.inWords(one))}`, (next) => {
          next.where = next.where.filter((other) => other.column !== one.column);
        }),
      ),
      ...wanted.sort.map((key) =>
        chip(`${t('sortedBy')}: ${words(key.column)} ${t(key.descending ? 'descending' : 'ascending')}`, (next) => {
          next.sort = next.sort.filter((other) => other.column !== key.column);
        }),
      ),
      ...wanted.groupBy.map((name) =>
        chip(`${t('groupedBy')}: ${words(name)}`, (next) => {
          next.groupBy = next.groupBy.filter((other) => other !== name);
        }),
      ),
    ];
    if (chips.length > 1) {
      chips.push(
        button(t('clearAll'), () => this.go((next) => Object.assign(next, {where: [], sort: [], groupBy: []})), {
          class: 'quiet',
        }),
      );
    }
    return chips.length > 0 && h('div', {class: 'chips'}, chips);
  }

  // A condition with the words that the server has for its values.
  inWords(condition) {
    const told = this.view?.conditions?.find(({name}) => name === condition.column);
    return told?.words ? {...condition, values: told.words} : condition;
  }

  drawTools() {
    const {wanted, view} = this;
    this.counts = h('span', {class: 'counts', role: 'status'});
    this.selection = h('span', {class: 'muted'});
    this.goToInput = h('input', {
      type: 'text',
      inputmode: 'numeric',
      class: 'go-to',
      'aria-label': t('goToRow'),
      placeholder: t('goToRow'),
      autocomplete: 'off',
      onkeydown: (event) => {
        if (event.key === 'Enter') {
          event.preventDefault();
          this.goToRow();
        } else if (event.key === 'Escape') this.grid.focus();
      },
    });
    const columns = button(
      t('columnsMenu'),
      () =>
        openColumns({
          shown: view.columns,
          hidden: view.hidden ?? [],
          leftOut: view.columnsLeftOut,
          view: this.wanted,
          arrange: (change) => this.arrange(change),
        }),
      {'aria-haspopup': 'dialog', title: view.columnsLeftOut > 0 ? t('leftOut', {n: view.columnsLeftOut}) : null},
    );
    const openOut = async () => {
      try {
        if (wanted.pivot) await api.fold(this.id, view.id, [...this.rows.folded.keys()]);
        openExport(out, this.id, view.id);
      } catch (error) {
        this.lost(error);
      }
    };
    const out = button(`${t('export')} ▾`, openOut, {'aria-haspopup': 'dialog'});
    const first = this.report.layouts[0].name;
    const layouts = button(
      `${t('keptLayouts')} ▾`,
      () =>
        openLayouts(layouts, {
          report: this.reportName,
          kept: () => keptOf(this.query, first),
          take: (kept) => go(['run', this.id], putKept(this.query, kept, first)),
        }),
      {'aria-haspopup': 'dialog'},
    );
    const folding = wanted.pivot?.rows.length > 1 && [
      button(t('pivotFoldAll'), () => this.rows.foldAll().catch((error) => this.lost(error))),
      button(t('pivotUnfoldAll'), () => this.rows.fold([])),
    ];
    const details =
      this.report.layouts.some((layout) => layout.name === 'ledger') &&
      view.layout === 'ledger' &&
      h(
        'label',
        {class: 'check'},
        h('input', {
          type: 'checkbox',
          checked: wanted.details,
          onchange: (event) =>
            this.go((next) => {
              next.details = event.target.checked;
            }),
        }),
        h('span', {}, t('foldOut')),
      );
    fill(
      this.tools,
      h(
        'div',
        {class: 'tools-row'},
        this.counts,
        this.selection,
        wanted.pivot && h('span', {class: 'muted'}, t('pivotHint')),
        h('span', {class: 'space'}),
        details,
        folding,
        this.goToInput,
        !wanted.pivot && columns,
        layouts,
        out,
      ),
      this.chips(wanted),
    );
    this.drawCount();
  }

  drawCount() {
    const {rows} = this.grid;
    const lines = this.view.lineCount;
    const all = rows.complete ? t('rowCount', {n: count(rows.rowCount)}) : t('counting');
    const text =
      rows.complete && lines !== rows.rowCount && lines >= 0 ? `${all}（${t('lineCount', {n: count(lines)})}）` : all;
    this.counts.textContent = language() === 'zh' ? text : text.replace('（', ' (').replace('）', ')');
    this.goToInput.title = rows.rowCount > 0 ? `1–${count(rows.rowCount)}` : '';
  }

  goToRow() {
    const text = this.goToInput.value.replace(/[,\s]/g, '');
    const row = /^\d{1,12}$/.test(text) ? Number(text) : 0;
    if (row < 1 || row > this.grid.rowCount) {
      notice(t('noSuchRow', {n: count(this.grid.rowCount)}), {error: true});
      return;
    }
    this.goToInput.value = '';
    this.grid.focus();
    this.grid.moveTo(row - 1, this.grid.active.column, {top: true});
  }

  // --- the document behind a row

  openDocument(n) {
    clearTimeout(this.placeTimer);
    putPlace(this.query, Math.max(0, this.grid.active.row), this.grid.columns[this.grid.active.column].name);
    go(['run', this.id], this.query, {replace: true, quiet: true});
    go(['run', this.id, 'document', String(n)], this.query);
  }

  async drawDocument() {
    const wanted = this.part === 'document' && this.view ? this.documentRow : null;
    if (wanted === this.documentShown) return;
    this.documentShown = wanted;
    const open = this.document;
    this.document = null;
    open?.close();
    if (wanted === null) {
      if (open) this.grid?.focus();
      return;
    }
    try {
      const answer = await api.documents(this.id, this.view.id, Number(wanted));
      if (!this.shown || this.documentShown !== wanted) return;
      const shown = (this.document = showDocuments(answer, () => {
        if (this.document !== shown) return; // Back has closed it
        this.leaveDocument();
      }));
    } catch (error) {
      notice(error.message, {error: true});
      this.leaveDocument();
    }
  }

  leaveDocument() {
    this.document = null;
    this.documentShown = null;
    if (cameFromHere()) history.back();
    else go(['run', this.id], this.query, {replace: true});
    this.grid?.focus();
  }

  async languageChanged() {
    this.frame = null;
    this.panel = null;
    this.chart?.dispose();
    this.chart = null;
    this.captions.clear();
    this.drop();
    this.viewKey = undefined;
    if (!this.info) this.drawGone();
    else if (this.info.state === 'running') {
      this.quiet();
      this.drawProgress();
    } else await this.drawResult();
  }
}

// The columns of a view that have something to show: what only details fill has nothing as long as all are folded away.
function columnsShown(view, rows) {
  const indexes = view.columns.flatMap((column, index) => (column.ofDetails && !rows.anyOpen ? [] : [index]));
  return {
    indexes,
    columns: indexes.map((index) => view.columns[index]),
    totals: (view.totals ?? []).map((total) => ({...total, cells: indexes.map((index) => total.cells[index])})),
  };
}

function makerOf({layout, pivot}) {
  if (layout === 'compare') return api.makeComparison;
  return pivot ? api.makePivot : api.makeView;
}

// What the server is asked for to show it.
function askedOf({frozen: _, pivot, ...wanted}) {
  return {...(pivot ? {...pivot, where: wanted.where} : wanted), lang: language()};
}

function messageText(message) {
  return typeof message === 'string' ? message : (message.text ?? '');
}

function conditionText({kind, values}) {
  if (kind === 'contains') return `${t('contains')} ${values.join(', ')}`;
  if (kind === 'equals') return `= ${values.join(', ')}`;
  const [from, to] = values;
  if (!from) return t('upTo', {to});
  return to ? `${from} – ${to}` : t('atLeast', {from});
}
