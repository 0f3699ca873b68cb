// The first page: the account, its reports, filters kept earlier and the runs of this session.
import {go, putFilter, write} from './address.js';
import {api} from './api.js';
import {deleteButton} from './filters.js';
import {button, fill, h, notice} from './dom.js';
import {caption, count, language, moment, t} from './texts.js';

// As an account names them, whatever the language.
const valuations = {
  按存货核算: 'valuationInventory',
  按仓库核算: 'valuationWarehouse',
  按部门核算: 'valuationDepartment',
};

export class StartPage {
  constructor(desk) {
    this.desk = desk;
    this.element = h('div', {class: 'page start'});
  }

  get title() {
    return t('start');
  }

  async show() {
    const [account, filters] = await Promise.all([api.account(), api.filters(), this.desk.runsChanged()]);
    this.account = account;
    this.filters = filters;
    this.draw();
  }

  hide() {}

  draw() {
    const {account} = this;
    const valuation = valuations[account.valuation] ? t(valuations[account.valuation]) : account.valuation;
    const fact = (name, text) => [h('dt', {}, name), h('dd', {}, text)];
    fill(
      this.element,
      h('h1', {class: 'unseen'}, t('start')),
      h(
        'div',
        {class: 'start-columns'},
        h(
          'section',
          {class: 'card', 'aria-labelledby': 'reports-title'},
          h('h2', {id: 'reports-title'}, t('reports')),
          h(
            'ul',
            {class: 'reports'},
            this.desk.reports.map((report) =>
              h(
                'li',
                {},
                h(
                  'a',
                  {class: 'report', href: write(['report', report.name])},
                  h('span', {class: 'report-title'}, caption(report.title)),
                  h(
                    'span',
                    {class: 'muted'},
                    report.layouts.map((layout) => caption(layout.caption)).join(' · '),
                    report.opensDocuments && ` · ${t('opensDocuments')}`,
                  ),
                ),
              ),
            ),
          ),
        ),
        h(
          'section',
          {class: 'card', 'aria-labelledby': 'account-title'},
          h('h2', {id: 'account-title'}, t('account')),
          h(
            'dl',
            {class: 'facts'},
            fact(t('name'), account.name),
            fact(t('accountCode'), account.code),
            fact(t('startDate'), account.startDate),
            fact(t('valuation'), valuation),
            fact(t('currentYear'), String(account.currentYear)),
          ),
          h(
            'table',
            {class: 'data'},
            h('caption', {class: 'unseen'}, t('years')),
            h(
              'thead',
              {},
              h(
                'tr',
                {},
                h('th', {scope: 'col'}, t('year')),
                h('th', {scope: 'col', class: 'number'}, t('lines')),
                h('th', {scope: 'col'}, t('firstMonth')),
                h('th', {scope: 'col'}, t('settledMonths')),
              ),
            ),
            h(
              'tbody',
              {},
              account.years.map((year) =>
                h(
                  'tr',
                  {},
                  h('th', {scope: 'row'}, String(year.year)),
                  h('td', {class: 'number'}, count(year.lines)),
                  h('td', {}, String(year.firstMonth ?? '') || t('none')),
                  h('td', {}, settled(year.settledMonths)),
                ),
              ),
            ),
          ),
          h('p', {class: 'to-checks'}, h('a', {href: write(['checks'])}, t('checkAccount'))),
        ),
      ),
      (this.runsCard = h('section', {class: 'card', 'aria-labelledby': 'runs-title'})),
      (this.filtersCard = h('section', {class: 'card', 'aria-labelledby': 'filters-title'})),
    );
    this.drawRuns();
    this.drawFilters();
  }

  drawRuns() {
    const {runs} = this.desk;
    fill(
      this.runsCard,
      h('h2', {id: 'runs-title'}, t('runsHere')),
      runs.length === 0
        ? h('p', {class: 'muted'}, t('noRuns'))
        : h(
            'table',
            {class: 'data wide'},
            h(
              'thead',
              {},
              h(
                'tr',
                {},
                ['report', 'conditions', 'state', 'started'].map((key) => h('th', {scope: 'col'}, t(key))),
                h('th', {scope: 'col'}, h('span', {class: 'unseen'}, t('closeRun', {title: ''}))),
              ),
            ),
            h(
              'tbody',
              {},
              runs.map((run) =>
                h(
                  'tr',
                  {},
                  h(
                    'th',
                    {scope: 'row'},
                    h(
                      'a',
                      {href: write(['run', String(run.id)], new URLSearchParams({report: run.report}))},
                      caption(this.desk.report(run.report)?.title) || run.title,
                    ),
                  ),
                  h('td', {}, h('span', {class: 'conditions'}, conditionsText(run.conditions))),
                  h('td', {class: `state ${run.state}`}, t(`state_${run.state}`)),
                  h('td', {class: 'moment'}, moment(run.started)),
                  h(
                    'td',
                    {},
                    button(t('close'), () => this.desk.closeRun(run.id), {
                      'aria-label': t('closeRun', {title: run.title}),
                    }),
                  ),
                ),
              ),
            ),
          ),
    );
  }

  drawFilters() {
    const titles = new Map(this.desk.reports.map((report) => [report.name, caption(report.title)]));
    fill(
      this.filtersCard,
      h('h2', {id: 'filters-title'}, t('savedFilters')),
      this.filters.length === 0
        ? h('p', {class: 'muted'}, t('noSavedFilters'))
        : h(
            'table',
            {class: 'data wide'},
            h(
              'thead',
              {},
              h(
                'tr',
                {},
                h('th', {scope: 'col'}, t('name')),
                h('th', {scope: 'col'}, t('report')),
                h('th', {scope: 'col'}, t('changedAt')),
                h('th', {scope: 'col'}, h('span', {class: 'unseen'}, t('delete'))),
              ),
            ),
            h(
              'tbody',
              {},
              this.filters.map((filter) =>
                h(
                  'tr',
                  {},
                  h(
                    'th',
                    {scope: 'row'},
                    h('button', {type: 'button', class: 'link', onclick: () => this.openFilter(filter)}, filter.name),
                  ),
                  h('td', {}, titles.get(filter.report) ?? filter.report),
                  h('td', {class: 'moment'}, moment(filter.changed)),
                  h(
                    'td',
                    {},
                    deleteButton(filter.name, () => {
                      this.filters = this.filters.filter((other) => other !== filter);
                      this.drawFilters();
                    }),
                  ),
                ),
              ),
            ),
          ),
    );
  }

  async openFilter({name, report}) {
    try {
      const filter = await api.filter(name);
      const of = filter.report ?? report;
      if (!this.desk.report(of)) {
        notice(t('filterOfNoReport', {name}), {error: true});
        return;
      }
      go(['report', of], putFilter(new URLSearchParams(), filter.values));
    } catch (error) {
      notice(error.message, {error: true});
    }
  }

  runsChanged() {
    if (this.runsCard) this.drawRuns();
  }

  languageChanged() {
    this.draw();
  }
}

// The conditions of a filter as its address has them, for a run that has not told its own yet.
export function filterText(report, values) {
  const between = language() === 'zh' ? '、' : ', ';
  return (report?.items ?? [])
    .filter(({key}) => values[key]?.value || values[key]?.value2)
    .map((item) => {
      const {value = '', value2 = ''} = values[item.key];
      const words = (code) =>
        item.kind === 'flag' ? t('yes') : caption(item.choices?.find((one) => one.code === code)?.caption) || code;
      const from = value.split('\t').filter(Boolean).map(words).join(between);
      if (!value2) return [caption(item.caption), item.range && !item.multiple ? t('atLeast', {from}) : from];
      return [caption(item.caption), from ? `${from} – ${words(value2)}` : t('upTo', {to: words(value2)})];
    })
    .map(([name, text]) => `${name} ${text}`)
    .join(' · ');
}

export function conditionsText(conditions) {
  return (conditions ?? []).map(([name, text]) => `${name} ${text}`).join(' · ') || t('noConditions');
}

// Months as the server lists them, or how many there are.
function settled(months) {
  if (Array.isArray(months)) return months.length > 0 ? months.join(', ') : t('none');
  return String(months ?? '') || t('none');
}
