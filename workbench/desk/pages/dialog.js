// The filter dialog of a report. What can be chosen, and what happens on each change, is decided by the report's own
// dialog on the server; the page shows the state that it answers with.
import {filterIn, go, putFilter} from './address.js';
import {api} from './api.js';
import {button, copyText, fill, h, notice, say} from './dom.js';
import {makeField} from './fields.js';
import {openFilters, saveFilter} from './filters.js';
import {caption, language, t} from './texts.js';

const sections = [
  {text: 'freeItems', has: (key) => /(^|\.)cFree\d+$/.test(key)},
  {text: 'definedFields', has: (key) => /(^|\.)c(Inv)?Define\d+$/.test(key)},
];

export class DialogPage {
  constructor(report, desk) {
    this.report = report;
    this.desk = desk;
    this.element = h('div', {class: 'page'});
    this.fields = new Map();
    this.changes = Promise.resolve();
  }

  get title() {
    return `${caption(this.report.title)} · ${t('filterOf')}`;
  }

  async show(address) {
    this.shown = true;
    if (this.id !== undefined && this.writtenAs === address.query.toString()) return;
    await this.open(filterIn(address.query));
  }

  // Leaving it ends the dialog; coming back opens it again with the filter that stands in the address.
  hide() {
    this.shown = false;
    if (this.id !== undefined) api.closeDialog(this.id).catch(() => {});
    this.id = undefined;
  }

  async open(values) {
    const old = this.id;
    this.id = undefined;
    if (old !== undefined) api.closeDialog(old).catch(() => {});
    let refused = null;
    let answer;
    try {
      answer = await api.openDialog(this.report.name, language(), values);
    } catch (error) {
      if (error.status === 0 || error.status === 401 || Object.keys(values).length === 0) throw error;
      refused = error; // a bookmark may hold what the account no longer has
      answer = await api.openDialog(this.report.name, language(), {});
    }
    if (!this.shown) {
      api.closeDialog(answer.id).catch(() => {});
      return;
    }
    this.id = answer.id;
    this.draw(answer.state);
    this.apply(answer.state);
    if (refused) this.refuse(refused);
  }

  draw(state) {
    this.fields.clear();
    const around = {
      id: this.id,
      set: (key, value, value2) => this.set(key, value, value2),
      firstDay: () => {
        const year =
          this.state.items.find((item) => item.key === 'iYear')?.value ?? String(this.desk.account.currentYear);
        return /^\d{4}$/.test(year) ? `${year}-01-01` : '';
      },
    };
    const field = (item) => {
      const made = makeField(item, around);
      this.fields.set(item.key, made);
      return made.element;
    };
    const rest = state.items.filter((item) => !sections.some((section) => section.has(item.key)));
    this.counters = [];
    const folded = sections.map((section) => {
      const items = state.items.filter((item) => section.has(item.key));
      if (items.length === 0) return null;
      const filled = h('span', {class: 'muted'});
      this.counters.push({keys: items.map((item) => item.key), filled});
      return h(
        'details',
        {class: 'card fields-more', open: items.some((item) => item.value || item.value2)},
        h('summary', {}, h('h2', {}, t(section.text)), filled),
        h('div', {class: 'fields'}, items.map(field)),
      );
    });
    this.messages = h('div', {class: 'messages', role: 'alert'});
    this.runButton = h('button', {type: 'submit', class: 'primary'}, t('run'));
    const load = button(t('loadFilter'), () => openFilters(load, this.report, (saved) => this.open(saved.values)), {
      'aria-haspopup': 'dialog',
    });
    const save = button(t('saveAs'), () => saveFilter(save, this.report, () => this.settled()), {
      'aria-haspopup': 'dialog',
    });
    fill(
      this.element,
      h(
        'form',
        {
          onsubmit: (event) => {
            event.preventDefault();
            this.run();
          },
        },
        h(
          'div',
          {class: 'page-head'},
          h(
            'div',
            {class: 'titles'},
            h('h1', {}, caption(this.report.title)),
            h('span', {class: 'muted'}, t('filterOf')),
          ),
          h(
            'div',
            {class: 'actions'},
            load,
            save,
            button(t('filterLink'), () => this.copyLink()),
            button(t('reset'), () => this.open({})),
            this.runButton,
          ),
        ),
        this.messages,
        h('section', {class: 'card'}, h('h2', {}, t('mainItems')), h('div', {class: 'fields'}, rest.map(field))),
        folded,
      ),
    );
  }

  // Shows a state that the server answered with.
  apply(state) {
    this.state = state;
    for (const item of state.items) this.fields.get(item.key)?.update(item);
    for (const {keys, filled} of this.counters) {
      const given = state.items.filter((item) => keys.includes(item.key) && (item.value || item.value2)).length;
      filled.textContent = given > 0 ? t('filledIn', {n: given}) : '';
    }
    this.showMessages(state.messages);
    this.write();
  }

  showMessages(messages) {
    const texts = new Map(); // of an item: what was said, a line each
    for (const {item, text} of messages) if (item) texts.set(item, [...(texts.get(item) ?? []), text]);
    for (const [key, field] of this.fields) field.refuse((texts.get(key) ?? []).join('\n'));
    fill(
      this.messages,
      messages.filter(({item}) => !item || !this.fields.has(item)).map(({text}) => h('p', {class: 'message'}, text)),
    );
  }

  refuse(error) {
    const field = error.item && this.fields.get(error.item);
    if (error.body?.state) this.apply(error.body.state);
    if (field) {
      field.refuse(error.message);
      const folded = field.element.closest('details');
      if (folded) folded.open = true;
    } else {
      fill(this.messages, h('p', {class: 'message'}, error.message));
    }
  }

  // Changes go to the server one behind the other, in the order in which they were made.
  set(key, value, value2) {
    const item = this.state.items.find((one) => one.key === key);
    if ((item.value ?? '') === value && (item.value2 ?? '') === (value2 ?? '')) {
      this.fields.get(key).refuse('');
      return;
    }
    // What is still under way has to be seen by the next change of the same field.
    item.value = value;
    if (value2 !== null) item.value2 = value2;
    this.fields.get(key).update(item);
    const id = this.id;
    this.changes = this.changes.then(async () => {
      if (id !== this.id) return;
      try {
        const answer = await api.setItem(id, key, value, value2);
        this.apply(answer.state);
      } catch (error) {
        this.refuse(error);
      }
    });
  }

  // The values as they are once every change has been answered.
  async settled() {
    document.activeElement?.blur?.();
    await this.changes;
    return this.values();
  }

  values() {
    const values = {};
    for (const item of this.state.items) {
      if (!item.value && !item.value2) continue;
      values[item.key] = {value: item.value ?? '', ...(item.range ? {value2: item.value2 ?? ''} : {})};
    }
    return values;
  }

  write() {
    const query = putFilter(new URLSearchParams(), this.values());
    this.writtenAs = query.toString();
    if (this.shown) go(['report', this.report.name], query, {replace: true, quiet: true});
  }

  async copyLink() {
    await this.settled();
    try {
      await copyText(location.href);
      notice(t('copied'));
    } catch {
      notice(t('copyFailed'), {error: true});
    }
  }

  async run() {
    if (this.runButton.disabled) return;
    this.runButton.disabled = true;
    try {
      await this.changes;
      const answer = await api.confirmDialog(this.id);
      this.apply(answer.state);
      if (!answer.accepted) {
        const first = answer.state.messages.find(({item}) => item && this.fields.has(item));
        if (answer.state.messages.length === 0) fill(this.messages, h('p', {class: 'message'}, t('notAccepted')));
        say(t('notAccepted'));
        if (first) this.reveal(first.item);
        return;
      }
      const values = this.values();
      const {id} = await api.startRun(this.report.name, language(), values, this.id);
      await this.desk.runsChanged();
      go(['run', String(id)], putFilter(new URLSearchParams({report: this.report.name}), values));
    } catch (error) {
      this.refuse(error);
      if (error.item) this.reveal(error.item);
    } finally {
      this.runButton.disabled = false;
    }
  }

  reveal(key) {
    const field = this.fields.get(key);
    const folded = field?.element.closest('details');
    if (folded) folded.open = true;
    field?.focus();
    field?.element.scrollIntoView({block: 'nearest'});
  }

  async languageChanged() {
    await this.open(this.values());
  }
}
