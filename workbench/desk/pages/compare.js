// Two runs of a report side by side: which other run, what stands down, and which figures.
import {fill, h} from './dom.js';
import {PivotPanel, firstPivot, pivotIn} from './pivot.js';
import {conditionsText} from './start.js';
import {t} from './texts.js';

export const compareNames = ['with'];

// What the address asks for: of a pivot the rows and the plain figures, with the number of the other run, or null.
export function compareIn(query) {
  const pivot = pivotIn(query);
  return {
    ...pivot,
    columns: [],
    measures: pivot.measures.filter((name) => !name.includes(':')),
    other: /^\d+$/.test(query.get('with') ?? '') ? Number(query.get('with')) : null,
  };
}
export function firstComparison(choices) {
  return {...firstPivot(choices), columns: []};
}

// The runs that one can be compared with: those of the same report that are done.
export function comparable(runs, id) {
  const mine = runs.find((run) => String(run.id) === id);
  return runs.filter((run) => run !== mine && run.report === mine?.report && run.state === 'done');
}

// The other run, and two lists of what is compared; change(pivot) shows another arrangement, choose(id) another run.
export class ComparePanel {
  constructor(choices, change, choose) {
    this.choices = choices;
    this.choose = choose;
    this.lists = new PivotPanel(choices, change, {axes: ['rows', 'measures'], shares: false});
    this.select = h('select', {id: 'compare-with', onchange: () => this.choose(this.select.value)});
    this.element = h(
      'section',
      {class: 'compare-panel', 'aria-label': t('compare')},
      h('label', {class: 'chart-choice'}, h('span', {}, t('compareWith')), this.select),
      this.lists.element,
    );
  }

  show(pivot, others) {
    const options = others.map((run) =>
      h(
        'option',
        {value: String(run.id), selected: run.id === pivot.other},
        `#${run.id} ${conditionsText(run.conditions)}`,
      ),
    );
    fill(this.select, options);
    const {other: _, ...lists} = pivot;
    this.lists.show(lists);
  }
}
