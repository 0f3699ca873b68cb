// The part of a run's page with a chart, what it shows, and the table of its figures.
import {putView, viewIn, write} from './address.js';
import {api} from './api.js';
import {drawChart, readyToDraw} from './chart_drawing.js';
import {chartIn, chartTitle, chartsOffered, figuresOf, pivotOfChart, putChart} from './charts.js';
import {button, fill, h, newId, notice, say} from './dom.js';
import {putPivot} from './pivot.js';
import {caption, t} from './texts.js';

const choiceTexts = {of: 'chartOf', by: 'chartBy', form: 'chartForm', top: 'chartTop', per: 'chartPer'};

// `run`: its number; `report`, with its layouts; `go(query)`: to another chart.
export class ChartPage {
  constructor({run, report, title, conditions, go}) {
    Object.assign(this, {run, report, title, conditions, go});
    this.asked = 0;
    this.element = h('div', {class: 'charts'});
    // The colours of the paper change with those of the desk.
    this.looks = new MutationObserver(() => this.draw());
    this.looks.observe(document.documentElement, {attributes: true, attributeFilter: ['data-theme']});
    this.scheme = matchMedia('(prefers-color-scheme: dark)');
    this.schemeChanged = () => this.draw();
    this.scheme.addEventListener('change', this.schemeChanged);
  }

  dispose() {
    this.asked += 1;
    this.drawing?.destroy();
    this.drawing = null;
    this.looks.disconnect();
    this.scheme.removeEventListener('change', this.schemeChanged);
  }

  // Shows the chart that the address names.
  async show(query) {
    this.query = query;
    const number = (this.asked += 1);
    this.choices ??= await api.pivotChoices(this.run);
    const offered = chartsOffered(
      this.choices,
      this.report.layouts.map(({name}) => name),
    );
    if (number !== this.asked) return;
    if (offered.length === 0) {
      fill(this.element, h('p', {class: 'muted'}, t('noRows')));
      return;
    }
    const chosen = chartIn(query, offered);
    const key = JSON.stringify(chosen);
    if (key === this.key) return;
    this.key = key;
    this.element.setAttribute('aria-busy', 'true');
    say(t('arranging'));
    const focused = this.element.contains(document.activeElement) ? document.activeElement.id : '';
    try {
      const [figures] = await Promise.all([figuresOf(this.run, chosen, offered), readyToDraw()]);
      if (number !== this.asked) return;
      this.drawFrame(chosen, offered, figures);
      this.draw();
      say(chartTitle(chosen, offered, figures));
    } catch (error) {
      if (number !== this.asked) return;
      this.key = null;
      this.figures = null;
      fill(
        this.element,
        this.kinds(chosen, offered),
        this.controls(chosen, offered, null),
        h(
          'div',
          {class: 'card'},
          h('p', {class: 'message', role: 'alert'}, t('viewRefused', {message: error.message})),
        ),
      );
    } finally {
      if (number === this.asked) this.element.removeAttribute('aria-busy');
    }
    if (focused) document.getElementById(focused)?.focus();
  }

  kinds(chosen, offered) {
    return h(
      'nav',
      {class: 'chart-kinds', 'aria-label': t('charts')},
      offered.map(({name}) =>
        h(
          'a',
          {
            id: `chart-kind-${name}`,
            href: write(['run', this.run], putChart(new URLSearchParams(this.query), {chart: name, item: chosen.item})),
            'aria-current': name === chosen.chart ? 'true' : null,
          },
          t(`chart_${name}`),
        ),
      ),
    );
  }

  // What can be chosen of the chart.
  controls(chosen, offered, figures) {
    const {choices} = offered.find(({name}) => name === chosen.chart);
    const choose = (name, value) => this.go(putChart(new URLSearchParams(this.query), {...chosen, [name]: value}));
    const selects = Object.entries(choices)
      .filter(([, list]) => list.length > 1)
      .map(([name, list]) => {
        const select = h(
          'select',
          {id: `chart-choice-${name}`, onchange: () => choose(name, select.value)},
          list.map((one) =>
            h('option', {value: one.name, selected: one.name === chosen[name]}, caption(one.caption) || one.name),
          ),
        );
        return h('label', {class: 'chart-choice'}, h('span', {}, t(choiceTexts[name])), select);
      });
    return h('div', {class: 'chart-controls'}, figures?.items && this.itemChoice(figures, choose), selects);
  }

  itemChoice({items, item}, choose) {
    const list = newId('chart-items');
    const input = h('input', {
      id: 'chart-choice-item',
      type: 'text',
      list,
      value: item,
      autocomplete: 'off',
      // All are offered as soon as the field is empty.
      onfocus: () => input.select(),
      onchange: () => {
        const wanted = input.value.trim();
        const found = items.find((one) => one === wanted) ?? items.find((one) => one.split(' ')[0] === wanted);
        if (found) choose('item', found);
        else notice(t('nothingFound'), {error: true});
      },
    });
    return h(
      'label',
      {class: 'chart-choice'},
      h('span', {}, t('chartItem')),
      input,
      h(
        'datalist',
        {id: list},
        items.map((one) => h('option', {value: one})),
      ),
    );
  }

  drawFrame(chosen, offered, figures) {
    this.figures = figures;
    this.chosen = chosen;
    this.heading = chartTitle(chosen, offered, figures);
    this.measure = this.measureOf(chosen, offered);
    this.drawing?.destroy();
    this.drawing = null;
    this.canvas = h('canvas', {role: 'img', 'aria-label': t('chartCanvas', {title: this.heading})});
    this.paper = h('div', {class: 'chart-paper'}, this.canvas);
    // A bar each has its height; time has the window's.
    const height = figures.drawn.kind === 'bars' ? Math.max(260, figures.rows.length * 30 + 130) : 460;
    this.paper.style.height = `${height}px`;
    const query = putPivot(new URLSearchParams(this.query), pivotOfChart(chosen));
    putView(query, {...viewIn(query), layout: 'pivot', where: figures.where ?? []});
    fill(
      this.element,
      this.kinds(chosen, offered),
      h(
        'div',
        {class: 'chart-bar'},
        this.controls(chosen, offered, figures),
        h('span', {class: 'space'}),
        h('a', {class: 'button', href: write(['run', this.run], query)}, t('chartAsPivot')),
        button(t('chartSave'), () => this.save()),
      ),
      figures.note && h('p', {class: 'muted'}, figures.note),
      h('div', {class: 'chart-and-table'}, this.paper, this.table(figures)),
    );
  }

  measureOf(chosen, offered) {
    const {choices} = offered.find(({name}) => name === chosen.chart);
    return caption(choices.of.find(({name}) => name === chosen.of).caption);
  }

  // The same figures, to be read.
  table({labels, columns, rows, total}) {
    const line = ({label, texts}, attributes = {}) =>
      h(
        'tr',
        attributes,
        h('th', {scope: 'row'}, label),
        texts.map((text) => h('td', {class: `number${text?.startsWith('-') ? ' negative' : ''}`}, text ?? '')),
      );
    return h(
      'div',
      {class: 'chart-table', role: 'region', tabindex: '0', 'aria-label': t('chartTable', {title: this.heading})},
      h(
        'table',
        {},
        h('caption', {}, this.heading),
        h(
          'thead',
          {},
          h(
            'tr',
            {},
            [{caption: labels}, ...columns].map((column, at) =>
              h('th', {scope: 'col', class: at > 0 ? 'number' : null}, column.caption),
            ),
          ),
        ),
        h(
          'tbody',
          {},
          rows.map((row) => line(row)),
        ),
        h('tfoot', {}, line(total)),
      ),
    );
  }

  // On the paper that there is now.
  draw() {
    if (!this.figures || !this.canvas.isConnected) return;
    this.drawing?.destroy();
    this.drawing = drawChart(this.canvas, this.figures, {
      title: `${this.title} · ${this.heading}`,
      conditions: this.conditions,
      measure: this.measure,
    });
  }

  async save() {
    const picture = await new Promise((done) => this.canvas.toBlob(done, 'image/png'));
    const address = URL.createObjectURL(picture);
    const link = h('a', {href: address, download: `${this.report.name}-${this.chosen.chart}.png`});
    document.body.append(link);
    link.click();
    link.remove();
    setTimeout(() => URL.revokeObjectURL(address), 60000);
  }
}
