// A double of `quillon serve` over made-up data, for the pages' tests and for work on them: the same interface, headers,
// Content-Security-Policy, link and cookie; no account, no statements. Run alone it prints the link to open:
//   node tests/desk/mock_server.mjs [PORT]
import {createServer} from 'node:http';
import {randomBytes} from 'node:crypto';
import {readFileSync, existsSync} from 'node:fs';
import {fileURLToPath} from 'node:url';
import {join, extname, basename} from 'node:path';
import * as data from './mock_data.mjs';

const root = fileURLToPath(new URL('../..', import.meta.url));
const pages = join(root, 'workbench/desk/pages');
const libraries = new Map(['regular-table', 'chart'].map((name) => [`${name}.js`, join(root, '.deps', name, `${name}.js`)]));
const policy =
  "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; img-src 'self' data:; " +
  "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";
const types = {'.html': 'text/html', '.js': 'text/javascript', '.css': 'text/css', '.svg': 'image/svg+xml'};
const isDate = (text) => /^\d{4}-\d\d-\d\d$/.test(text);
const wait = (ms) => new Promise((go) => setTimeout(go, ms));

class Refusal extends Error {
  constructor(status, code, message, more = {}) {
    super(message);
    Object.assign(this, {status, code, more});
  }
}

// --- the reports and their dialogs

const both = (zh, en) => ({zh, en});
const item = (key, zh, en, kind, more = {}) => ({
  key,
  caption: both(zh, en),
  kind,
  range: false,
  multiple: false,
  required: false,
  available: true,
  value: '',
  value2: '',
  choices: [],
  lookup: false,
  ...more,
});
const choices = (list) => list.map(([code, zh, en]) => ({code, caption: both(zh, en)}));
const yesNo = choices([
  ['0', '否', 'no'],
  ['1', '是', 'yes'],
]);
const reference = (key, zh, en, more) => item(key, zh, en, 'reference', {lookup: true, ...more});
const year = () =>
  item('iYear', '会计年度', 'Year', 'choice', {
    required: true,
    choices: choices([
      ['2024', '2024', '2024'],
      ['2023', '2023', '2023'],
    ]),
  });
const dates = (key, zh, en) => item(key, zh, en, 'date', {range: true});
const signs = choices([
  ['0', '大于零', 'above zero'],
  ['1', '等于零', 'zero'],
  ['2', '小于零', 'below zero'],
]);
function furtherItems() {
  const all = [];
  for (let n = 1; n <= 10; n += 1)
    all.push(item(`cFree${n}`, `自由项${n}`, `Free item ${n}`, 'text', {multiple: true}));
  for (let n = 1; n <= 16; n += 1) {
    all.push(
      item(`cDefine${n}`, `自定义项${n}`, `User-defined field ${n}`, n === 4 ? 'date' : n === 5 ? 'number' : 'text', {
        multiple: n < 4,
      }),
    );
  }
  return all;
}
const summaryItems = () => [
  year(),
  item('cModal', '报表方式', 'Report mode', 'choice', {
    required: true,
    choices: choices([
      ['0', '按成本项目分类', 'By cost-item class'],
      ['1', '按成本项目', 'By cost item'],
      ['2', '按费用项目', 'By expense item'],
    ]),
  }),
  item('iGrade', '分类级次', 'Class grade', 'choice', {
    choices: choices([
      ['1', '1', '1'],
      ['2', '2', '2'],
      ['3', '3', '3'],
    ]),
  }),
];

const layout = {
  summary: both('按成本项目汇总', 'By cost item'),
  tree: both('分级汇总', 'Nested sums'),
  lines: both('明细', 'Rows'),
  ledger: both('明细账', 'Ledger'),
  columnar: both('多栏账', 'Columnar ledger'),
  vouchers: both('单据', 'Documents'),
};
const reports = [
  {
    name: 'sfc-item',
    title: both('收发存汇总表（按成本项目）', 'Receipt/issue/balance by cost item'),
    opensDocuments: false,
    layouts: ['summary', 'tree', 'lines'],
    items: () => [
      ...summaryItems(),
      dates('dKeepDate', '记账日期', 'Posting date'),
      dates('dVouDate', '单据日期', 'Document date'),
      reference('cInvClass', '存货分类', 'Inventory class'),
      reference('cInvCode', '存货', 'Inventory', {multiple: true}),
      reference('cWhCode', '仓库', 'Warehouse', {multiple: true}),
      reference('cDepCode', '部门', 'Department', {multiple: true}),
      item('cFSType', '收发状态', 'Movements', 'choice', {
        choices: choices([
          ['0', '全部', 'all'],
          ['1', '有收发', 'receipts or issues'],
          ['2', '无收发', 'neither'],
        ]),
      }),
      item('cJudgeQuantity', '结存数量', 'Closing quantity', 'choice', {multiple: true, choices: signs}),
      item('cJudgeMoney', '结存金额', 'Closing amount', 'choice', {multiple: true, choices: signs}),
      item('bIncludeExpire', '包含停用存货', 'Include discontinued inventory', 'flag', {choices: yesNo}),
      item('bIncludeTransVouch', '包含调拨业务', 'Include transfers', 'flag', {choices: yesNo}),
      item('cBatchIA', '批号', 'Batch', 'text', {multiple: true}),
      ...furtherItems(),
    ],
  },
  {
    name: 'outsum-item',
    title: both('发出汇总表（按成本项目）', 'Outbound summary by cost item'),
    opensDocuments: false,
    layouts: ['summary', 'tree', 'lines'],
    items: () => [
      ...summaryItems(),
      dates('dVouDate', '单据日期', 'Document date'),
      item('cVouType', '单据类型', 'Voucher type', 'choice', {multiple: true, choices: choices(data.voucherTypes)}),
      item('cVouCode', '单据号', 'Voucher number', 'text'),
      reference('cWhCode', '仓库', 'Warehouse', {multiple: true}),
      reference('cInvCCode', '存货分类', 'Inventory class'),
      reference('cInvCode', '存货', 'Inventory', {multiple: true}),
      ...furtherItems(),
    ],
  },
  {
    name: 'fx-detail',
    title: both('明细账（按成本项目）', 'Cost-item detail ledger'),
    opensDocuments: true,
    layouts: ['ledger', 'columnar', 'lines'],
    items: () => [
      year(),
      item('cCaType', '核算方式', 'Breakdown', 'choice', {
        required: true,
        choices: choices([
          ['项目分类', '项目分类', 'by class'],
          ['成本项目', '成本项目', 'by cost item'],
        ]),
      }),
      dates('dKeepDate', '记账日期', 'Posting date'),
      reference('cInvCCode', '存货分类', 'Inventory class'),
      reference('cInvCode', '存货', 'Inventory', {required: true}),
      reference('cWhCode', '仓库', 'Warehouse'),
      reference('cDepCode', '部门', 'Department'),
      item('cBatchIA', '批号', 'Batch', 'text', {multiple: true}),
      ...furtherItems().slice(0, 10),
    ],
  },
  {
    name: 'fx-wt',
    title: both('凭证明细表（按成本项目）', 'Cost-item voucher report'),
    opensDocuments: true,
    layouts: ['vouchers', 'lines'],
    items: () => [
      dates('dKeepDate', '记账日期', 'Posting date'),
      dates('dVouDate', '单据日期', 'Document date'),
      item('cVouType', '单据类型', 'Voucher type', 'choice', {multiple: true, choices: choices(data.voucherTypes)}),
      item('cVouCode', '单据号', 'Voucher number', 'text'),
      reference('Inventory.cInvCCode', '存货分类', 'Inventory class', {range: true}),
      reference('Inventory.cInvCode', '存货', 'Inventory', {multiple: true}),
      reference('Customer.cCusCode', '客户', 'Customer', {multiple: true}),
      reference('cWhCode', '仓库', 'Warehouse', {multiple: true}),
      item('cMemo', '备注', 'Memo', 'text'),
      ...furtherItems(),
    ],
  },
];
const reportNamed = (name) => {
  const found = reports.find((report) => report.name === name);
  if (!found) throw new Refusal(404, 'unknown', `no report ${name}`);
  return found;
};
const described = (report) => ({
  name: report.name,
  title: report.title,
  opensDocuments: report.opensDocuments,
  layouts: report.layouts.map((name) => ({name, caption: layout[name]})),
  items: report.items(),
});

const masters = {
  cInvCode: data.inventories,
  cWhCode: data.warehouses,
  cDepCode: data.departments,
  cInvClass: data.classes,
  cInvCCode: data.classes,
  cCusCode: data.customers,
};

class Dialog {
  constructor(id, report, lang, values) {
    this.id = id;
    this.report = report;
    this.lang = lang;
    this.items = report.items();
    this.messages = [];
    for (const [key, {value, value2}] of Object.entries(values ?? {}))
      Object.assign(this.item(key), {value: value ?? '', value2: value2 ?? ''});
    const fallback = {
      iYear: '2024',
      cModal: '0',
      iGrade: '1',
      cFSType: '0',
      bIncludeExpire: '1',
      bIncludeTransVouch: '1',
      cCaType: '项目分类',
    };
    for (const one of this.items) if (!one.value && fallback[one.key]) one.value = fallback[one.key];
    this.settle();
  }
  item(key) {
    const found = this.items.find((one) => one.key === key);
    if (!found) throw new Refusal(422, 'item', `no filter item ${key}`, {item: key});
    return found;
  }
  value(key) {
    return this.items.find((one) => one.key === key)?.value;
  }
  settle() {
    for (const one of this.items) {
      if (one.key === 'iGrade') one.available = this.value('cModal') === '0';
      if (one.key === 'cWhCode' && this.value('iYear')) one.available = this.value('iYear') !== '2023';
      if (one.key === 'cDepCode') one.available = this.value('iYear') === '2023';
    }
  }
  set(key, value, value2) {
    const one = this.item(key);
    this.messages = [];
    if (one.kind === 'date') {
      for (const text of [value, value2]) {
        if (text && !isDate(text))
          throw new Refusal(422, 'value', `不是日期：${text}`, {item: key, state: this.state()});
      }
    }
    if (one.range && value && value2 && value > value2) {
      throw new Refusal(
        422,
        'value',
        this.lang === 'en'
          ? `${one.caption.en}: ${value} is above ${value2}`
          : `${one.caption.zh}：${value} 大于 ${value2}`,
        {item: key, state: this.state()},
      );
    }
    if (one.kind === 'number' && value && !/^-?\d+$/.test(value)) {
      throw new Refusal(
        422,
        'value',
        this.lang === 'en' ? `${one.caption.en} takes a whole number` : `${one.caption.zh}应为整数`,
        {item: key, state: this.state()},
      );
    }
    one.value = value;
    if (value2 !== undefined) one.value2 = value2;
    this.settle();
  }
  click() {
    this.messages = this.items
      .filter((one) => one.required && one.available && !one.value)
      .map((one) => ({
        item: one.key,
        text: this.lang === 'en' ? `${one.caption.en} must be given` : `${one.caption.zh}不能为空`,
      }));
    this.accepted = this.messages.length === 0;
    return this.messages.length === 0;
  }
  state() {
    return {report: this.report.name, view: this.value('cCaType') ?? null, messages: this.messages, items: this.items};
  }
  lookup(key, search, offset, limit) {
    const clazz = this.value('cInvCCode') || this.value('cInvClass');
    const text = search.toLowerCase();
    const found = (masters[key.split('.').at(-1)] ?? []).filter(
      (one) =>
        (!clazz || !one.clazz || one.clazz === clazz) &&
        (!text ||
          one.code.toLowerCase().includes(text) ||
          one.name.toLowerCase().includes(text) ||
          one.initials.toLowerCase().includes(text)),
    );
    return {count: found.length, rows: found.slice(offset, offset + limit).map(({code, name}) => ({code, name}))};
  }
}

// --- runs and their views

class Run {
  constructor(id, report, lang, values, tell) {
    Object.assign(this, {id, report, lang, values, tell});
    this.state = 'running';
    this.started = new Date().toISOString();
    this.began = Date.now();
    this.statements = [];
    this.listeners = new Set();
    this.views = new Map();
    const items = report.items();
    this.conditions = Object.entries(values ?? {}).map(([key, {value, value2}]) => {
      const one = items.find((it) => it.key === key);
      const captioned = (code) => one?.choices.find((choice) => choice.code === code)?.caption[lang] ?? code;
      const text = (value ?? '').split('\t').map(captioned).join('、');
      return [one?.caption[lang] ?? key, value2 ? `${text}..${value2}` : text];
    });
    this.work();
  }
  // A voucher number "slow" makes a run that lasts; "broken" one that fails.
  async work() {
    const number = this.values?.cVouCode?.value;
    const last = number === 'slow' ? 200 : 12;
    for (let n = 1; n <= last && this.state === 'running'; n += 1) {
      const began = Date.now();
      const sql =
        n % 3 === 0
          ? `Update t${n} Set iQmMoney = iQcMoney + iInMoney - iOutMoney From #work t${n}`
          : `Insert Into #work (cWhCode, cInvCode, cFXCode, iQuantity, iMoney)\nSelect base.cWhCode, base.cInvCode, fx.cFXCode, Sum(${n} * base.iQuantity), Sum(base.iMoney)\nFrom ia_subsidiary base With (NoLock)\nInner Join Ca_FxDef fx On fx.iFxID = base.iFxID And base.iYear = 2024 And base.bFlag = ${n}\nGroup By base.cWhCode, base.cInvCode, fx.cFXCode`;
      this.now = {n, sql, elapsedMs: began - this.began};
      this.event('statement', this.now);
      await wait(number === 'slow' ? 120 : 25);
      this.statements.push({n, sql, ms: Date.now() - began, rows: n * 137});
      if (number === 'broken' && n === 5) {
        this.error = "Invalid object name 'Ca_FxDef'.";
        this.end('failed');
      }
    }
    if (this.state === 'running') this.end('done');
  }
  end(state) {
    this.state = state;
    this.elapsed = Date.now() - this.began;
    this.event('done', {state, rowCount: 0, error: this.error ?? null});
    for (const response of this.listeners) response.end();
    this.listeners.clear();
  }
  event(name, content) {
    for (const response of this.listeners) response.write(`event: ${name}\ndata: ${JSON.stringify(content)}\n\n`);
  }
  info() {
    return {
      id: this.id,
      report: this.report.name,
      state: this.state,
      elapsedMs: this.elapsed ?? Date.now() - this.began,
      statements: this.statements,
      conditions: this.conditions,
      rowCount: 0,
      error: this.error ?? null,
      messages: [],
    };
  }
}

const linesOf = {'sfc-item': 9000, 'outsum-item': 25000, 'fx-detail': 1500, 'fx-wt': 700000};

function makeView(id, run, wanted) {
  const lang = wanted.lang === 'en' ? 'en' : 'zh';
  const name = wanted.measures ? 'pivot' : wanted.layout || run.report.layouts[0];
  if (!wanted.measures && !run.report.layouts.includes(name)) throw new Refusal(422, 'layout', `no layout ${name}`);
  const word = lang === 'en' ? 'Total' : '合计';
  let made;
  if (name === 'pivot') made = pivotTable(word);
  else if (name === 'summary') made = table(data.summaryColumns(), 18, wanted, word, {hidden: [], leftOut: 0});
  else if (name === 'tree') made = listed(data.treeRows(), wanted);
  else if (name === 'ledger') made = listed(data.ledgerRows(lang === 'en'), wanted);
  else {
    const {columns, hidden, leftOut} = data.voucherColumns(wanted.allColumns);
    const count = name === 'vouchers' || name === 'columnar' ? 4000 : linesOf[run.report.name];
    made = table(columns, count, wanted, word, {hidden, leftOut});
  }
  const known = new Map(made.columns.map((column, index) => [column.name, index]));
  for (const asked of [...(wanted.columns ?? []), ...(wanted.groupBy ?? [])]) {
    if (!known.has(asked) && !made.hidden.some((column) => column.name === asked))
      throw new Refusal(422, 'value', lang === 'en' ? `there is no column ${asked}` : `没有列 ${asked}`);
  }
  for (const asked of wanted.where ?? []) {
    const role = made.columns[known.get(asked.column)]?.role;
    const wrong = asked.kind !== 'contains' && role === 'date' && asked.values.find((one) => one && !isDate(one));
    if (wrong) throw new Refusal(422, 'value', `"${wrong}" is no date, which column ${asked.column} holds`);
  }
  const order = wanted.columns?.length
    ? wanted.columns.filter((one) => known.has(one)).map((one) => known.get(one))
    : made.columns.map((_, index) => index);
  const described = (column) => ({
    name: column.name,
    caption: lang === 'en' ? column.en : column.zh,
    group: (lang === 'en' ? column.gen : column.gzh) ?? '',
    role: column.role,
    key: Boolean(column.key),
  });
  const shown = (cells) => order.map((index) => cells[index] ?? null);
  const view = {
    id,
    columns: order.map((index) => described(made.columns[index])),
    order,
    made,
    shown,
    opens: run.report.opensDocuments,
    report: run.report,
  };
  // The rows of a tree or ledger are made while the first are read already.
  view.begun = Date.now();
  view.count = () =>
    name === 'tree' || name === 'ledger' ? Math.min(made.rowCount, 120 + (Date.now() - view.begun)) : made.rowCount;
  view.answer = {
    id,
    layout: name,
    columns: view.columns,
    lineCount: made.lineCount,
    rowCount: view.count() === made.rowCount ? made.rowCount : -1,
    totals: made.totals.map((row) => ({n: 0, opens: false, ...row, cells: shown(row.cells)})),
    columnsLeftOut: made.leftOut,
    hidden: [...made.hidden, ...made.columns.filter((_, index) => !order.includes(index))]
      .map(described)
      .map(({name: one, caption, group}) => ({name: one, caption, group})),
  };
  return view;
}

// The same pivot whatever is asked for: two warehouses of two months each.
function pivotTable(word) {
  const line = (warehouse, month, amount) => ({kind: 'line', level: 0, cells: [warehouse, month, amount]});
  const rows = [
    line('01 原料库', '2024-01', '10.00'),
    line('01 原料库', '2024-02', '20.50'),
    {kind: 'subtotal', level: 0, first: 0, cells: [`01 原料库 ${word}`, null, '30.50']},
    line('02 成品库', '2024-01', '1.00'),
    line('02 成品库', '2024-02', '2.00'),
    {kind: 'subtotal', level: 0, first: 3, cells: [`02 成品库 ${word}`, null, '3.00']},
    {kind: 'total', level: 0, cells: [word, null, '33.50']},
  ];
  return {
    columns: [
      {name: 'cWhCode', zh: '仓库', en: 'Warehouse', role: 'text', key: true},
      {name: 'month', zh: '月份', en: 'Month', role: 'text', key: true},
      {name: 'amount', zh: '金额', en: 'Amount', role: 'money'},
    ],
    hidden: [],
    leftOut: 0,
    totals: [],
    lineCount: 4,
    rowCount: rows.length,
    row: (n) => rows[n],
  };
}

function table(columns, count, wanted, word, {hidden, leftOut}) {
  const groups = wanted.groupBy ?? [];
  const lines = data.arrange(columns, count, {
    where: wanted.where ?? [],
    sort: [...groups.map((column) => ({column, descending: false})), ...(wanted.sort ?? [])],
  });
  const totals = [{kind: 'total', level: 0, cells: data.sums(columns, lines, word)}];
  const cells = (index) => columns.map((column) => column.value?.(index) ?? null);
  if (groups.length === 0) {
    return {
      columns,
      hidden,
      leftOut,
      totals,
      lineCount: lines.length,
      rowCount: lines.length,
      row: (n) => ({kind: 'line', level: 0, cells: cells(lines[n])}),
    };
  }
  const by = columns.find((column) => column.name === groups[0]);
  const rows = []; // a line's place, or a subtotal
  let from = 0;
  for (let at = 0; at < lines.length; at += 1) {
    rows.push(at);
    if (at + 1 < lines.length && by.value(lines[at + 1]) === by.value(lines[at])) continue;
    rows.push({
      kind: 'subtotal',
      level: 0,
      cells: data.sums(columns, lines.subarray(from, at + 1), `${by.value(lines[at]) ?? ''} ${word}`),
    });
    from = at + 1;
  }
  return {
    columns,
    hidden,
    leftOut,
    totals,
    lineCount: lines.length,
    rowCount: rows.length,
    row: (n) => (typeof rows[n] === 'number' ? {kind: 'line', level: 0, cells: cells(lines[rows[n]])} : rows[n]),
  };
}

function listed({columns, rows, totals}, wanted) {
  const at = (name) => columns.findIndex((column) => column.name === name);
  let shown = rows;
  for (const {column, kind, values} of wanted.where ?? []) {
    const text = (row) => (row.cells[at(column)] ?? '').toLowerCase();
    shown = shown.filter(
      (row) =>
        row.kind === 'line' &&
        (kind === 'contains'
          ? text(row).includes(values[0].toLowerCase())
          : kind === 'equals'
            ? values.map((one) => one.toLowerCase()).includes(text(row))
            : (!values[0] || text(row) >= values[0]) && (!values[1] || text(row) <= values[1])),
    );
  }
  for (const {column, descending} of [...(wanted.sort ?? [])].reverse()) {
    const units = (row) => data.unitsOf(row.cells[at(column)] ?? '', 4) ?? row.cells[at(column)] ?? '';
    shown = shown
      .filter((row) => row.kind === 'line')
      .sort((a, b) => (units(a) < units(b) ? -1 : units(a) > units(b) ? 1 : 0) * (descending ? -1 : 1));
  }
  if (wanted.details) shown = shown.flatMap((row) => [row, ...(row.detailRows ?? [])]);
  return {
    columns,
    hidden: [],
    leftOut: 0,
    totals,
    lineCount: shown.filter((row) => row.kind === 'line').length,
    rowCount: shown.length,
    row: (n) => shown[n],
    folds: !wanted.details,
  };
}

const answered = (view, row, n) => ({
  n,
  kind: row.kind,
  level: row.level,
  ...(row.first === undefined ? {} : {first: row.first}),
  cells: view.shown(row.cells),
  opens: row.opens ?? (view.opens && row.kind === 'line'),
  ...(view.made.folds && row.detailRows ? {details: row.detailRows.length} : {}),
});

function documents(view, n) {
  const row = view.made.row(n);
  const cells = row.cells;
  if (row.kind !== 'line') throw new Refusal(404, 'document', 'the row opens no document');
  const hasVoucher = n < view.made.rowCount - 12; // as the last days of an account have none yet
  return {
    messages: hasVoucher ? [] : ['该记录没有生成凭证'],
    documents: [
      {
        title: '源单据',
        fields: [
          ['单据号', cells[1]],
          ['单据日期', cells[0]],
          ['仓库', '03 成品库'],
          ['客户', 'C0001 华北机械1厂'],
          ['业务类型', '普通销售'],
          ['制单人', '王芳'],
          ['审核人', '李强'],
          ['备注', null],
        ],
        columns: ['存货编码', '存货', '规格型号', '计量单位', '数量', '单价', '金额'],
        rows: data.inventories
          .slice(0, 6)
          .map((one, index) => [
            one.code,
            one.name,
            `M${index}×20`,
            '件',
            `${index + 1}20.00`,
            '12.3400',
            `${index + 1},480.80`,
          ]),
      },
      {
        title: '记账凭证',
        fields: [
          ['凭证号', '23'],
          ['凭证日期', cells[0]],
        ],
        columns: ['摘要', '科目编码', '科目', '借方', '贷方'],
        rows: [
          ['结转销售成本', '6401', '主营业务成本', '31,096.80', '0.00'],
          ['结转销售成本', '1405', '库存商品', '0.00', '31,096.80'],
        ],
      },
    ].slice(0, hasVoucher ? 2 : 1),
  };
}

function exported(view, format) {
  const rows = [];
  for (let n = 0; n < Math.min(view.made.rowCount, 2000); n += 1) rows.push(view.shown(view.made.row(n).cells));
  const captions = view.columns.map((column) => column.caption);
  if (format === 'csv')
    return [captions, ...rows]
      .map((cells) =>
        cells.map((text) => (/[",\n]/.test(text ?? '') ? `"${text.replaceAll('"', '""')}"` : (text ?? ''))).join(','),
      )
      .join('\r\n');
  if (format === 'html')
    return `<!doctype html><title>${view.report.name}</title><table>${rows
      .slice(0, 50)
      .map((cells) => `<tr>${cells.map((text) => `<td>${text ?? ''}</td>`).join('')}</tr>`)
      .join('')}</table>`;
  return 'PK made up';
}

// --- the server

export async function startMock(port = 0) {
  const token = randomBytes(32).toString('hex');
  const session = randomBytes(32).toString('hex');
  let used = false;
  let ids = 0;
  const dialogs = new Map();
  const runs = new Map();
  const filters = new Map();
  const layouts = new Map();
  const plainLayout = {columns: [], sort: [], groupBy: [], allColumns: false, details: false, pivot: null};
  const of = (map, id, what) => {
    const found = map.get(String(id));
    if (!found) throw new Refusal(404, 'unknown', `no ${what} ${id}`);
    return found;
  };
  const add = (map, make) => {
    ids += 1;
    const made = make(ids);
    map.set(String(ids), made);
    return made;
  };

  async function answer(method, parts, query, body) {
    const [what, id, more, viewId, last] = parts;
    switch (
      `${method} ${what}${id === undefined ? '' : '/ID'}${more ? `/${more}` : ''}${viewId ? '/V' : ''}${last ? `/${last}` : ''}`
    ) {
      case 'GET account':
        return {
          code: '001',
          name: 'sample.account',
          startDate: '2023-01-01',
          valuation: '按存货核算',
          currentYear: 2024,
          years: [
            {year: 2023, firstMonth: 1, settledMonths: 12, lines: 512044},
            {year: 2024, firstMonth: 1, settledMonths: 9, lines: 700000},
          ],
        };
      case 'GET account/ID':
      case 'POST account/ID':
        return {state: 'done', started: '2024-03-31T08:15:00Z', elapsedMs: 40, error: null, checks: []};
      case 'GET runs/ID/checks':
        of(runs, id, 'run');
        return {state: 'done', started: '2024-03-31T08:15:00Z', elapsedMs: 40, error: null, checks: []};
      case 'GET reports':
        return reports.map(described);
      case 'GET about':
        return {
          version: '1.5.0',
          licences: [
            {name: 'regular-table 0.9.2', licence: 'Apache-2.0', text: 'Apache License\nVersion 2.0, January 2004\n…'},
          ],
        };
      case 'POST dialogs': {
        const dialog = add(dialogs, (number) => new Dialog(number, reportNamed(body.report), body.lang, body.values));
        return [201, {id: dialog.id, state: dialog.state()}];
      }
      case 'POST dialogs/ID/set': {
        const dialog = of(dialogs, id, 'dialog');
        dialog.set(body.key, body.value, body.value2);
        return {state: dialog.state()};
      }
      case 'POST dialogs/ID/click': {
        const dialog = of(dialogs, id, 'dialog');
        return {accepted: dialog.click(), state: dialog.state()};
      }
      case 'GET dialogs/ID/lookup':
        return of(dialogs, id, 'dialog').lookup(
          query.get('item'),
          query.get('search') ?? '',
          Number(query.get('offset')),
          Number(query.get('limit')),
        );
      case 'DELETE dialogs/ID':
        dialogs.delete(id);
        return {};
      case 'GET filters':
        return [...filters.values()]
          .filter((one) => !query.get('report') || one.report === query.get('report'))
          .map(({name, report, changed}) => ({name, report, changed}));
      case 'GET filters/ID':
        return of(filters, id, 'filter');
      case 'PUT filters/ID':
        filters.set(id, {name: id, report: body.report, values: body.values, changed: new Date().toISOString()});
        return {};
      case 'DELETE filters/ID':
        filters.delete(id);
        return {};
      case 'GET layouts':
        return [...layouts.values()]
          .filter((one) => !query.get('report') || one.report === query.get('report'))
          .map(({name, report, changed}) => ({name, report, changed}));
      case 'GET layouts/ID':
        return of(layouts, id, 'layout');
      case 'PUT layouts/ID':
        layouts.set(id, {...plainLayout, ...body, name: id, changed: new Date().toISOString()});
        return {};
      case 'DELETE layouts/ID':
        layouts.delete(id);
        return {};
      case 'POST runs':
        if (body.dialog !== undefined && !of(dialogs, body.dialog, 'dialog').accepted)
          throw new Refusal(409, 'state', 'the dialog has not accepted the filter: confirm it first');
        return [201, {id: add(runs, (number) => new Run(number, reportNamed(body.report), body.lang, body.values)).id}];
      case 'GET runs':
        return [...runs.values()].map((run) => ({
          id: run.id,
          report: run.report.name,
          state: run.state,
          started: run.started,
          title: run.report.title[run.lang],
          conditions: run.conditions,
        }));
      case 'GET runs/ID':
        return of(runs, id, 'run').info();
      case 'POST runs/ID/stop': {
        const run = of(runs, id, 'run');
        if (run.state === 'running') run.end('stopped');
        return {};
      }
      case 'DELETE runs/ID':
        of(runs, id, 'run').state = 'stopped';
        runs.delete(id);
        return {};
      case 'GET runs/ID/pivots':
        return {
          dimensions: [
            {name: 'cWhCode', caption: {zh: '仓库', en: 'Warehouse'}, state: false},
            {name: 'month', caption: {zh: '月份', en: 'Month'}, state: false},
          ],
          measures: [{name: 'amount', caption: {zh: '金额', en: 'Amount'}, shares: true}],
          ownMeasures: [],
        };
      case 'POST runs/ID/pivots': {
        const run = of(runs, id, 'run');
        return [201, add(run.views, (number) => makeView(number, run, body)).answer];
      }
      case 'GET runs/ID/views/V/where':
        return {where: []};
      case 'PUT runs/ID/views/V/folds':
        return {};
      case 'POST runs/ID/views': {
        const run = of(runs, id, 'run');
        if (run.state !== 'done') throw new Refusal(409, 'state', 'the run has no result');
        return [201, add(run.views, (number) => makeView(number, run, body)).answer];
      }
      case 'GET runs/ID/views/V/rows': {
        const view = of(of(runs, id, 'run').views, viewId, 'view');
        const offset = Number(query.get('offset'));
        const rows = [];
        const known = view.count();
        for (let n = offset; n < Math.min(known, offset + Number(query.get('limit'))); n += 1)
          rows.push(answered(view, view.made.row(n), n));
        return {rowCount: known, complete: known === view.made.rowCount, rows};
      }
      case 'GET runs/ID/views/V/details': {
        const view = of(of(runs, id, 'run').views, viewId, 'view');
        const n = Number(query.get('n'));
        const detail = ({kind, level, cells}) => ({kind, level, cells: view.shown(cells)});
        return {rows: (view.made.row(n).detailRows ?? []).map(detail)};
      }
      case 'POST runs/ID/views/V/document':
        return documents(of(of(runs, id, 'run').views, viewId, 'view'), body.n);
      case 'DELETE runs/ID/views/V':
        runs.get(id)?.views.delete(viewId);
        return {};
      default:
        throw new Refusal(404, 'unknown', 'there is no such address');
    }
  }

  function page(name, response) {
    const file = libraries.get(name) ?? join(pages, basename(name));
    if (!existsSync(file)) {
      response.writeHead(404).end();
      return;
    }
    let text = readFileSync(file, 'utf8');
    if (!libraries.has(name) && extname(name) === '.js')
      text = text.replace(/(import |import\(|from )'(regular-table|chart)'/, "$1'./$2.js'");
    if (name === 'index.html') text = text.replace(/(src|href)="([\w.-]+)"/g, '$1="/assets/mock/$2"');
    response.writeHead(200, {'Content-Type': `${types[extname(name)]}; charset=utf-8`}).end(text);
  }

  const server = createServer(async (request, response) => {
    const url = new URL(request.url, 'http://desk');
    for (const [name, value] of Object.entries({
      'Content-Security-Policy': policy,
      'X-Content-Type-Options': 'nosniff',
      'Referrer-Policy': 'no-referrer',
      'Cache-Control': 'no-store',
      'Cross-Origin-Resource-Policy': 'same-origin',
    }))
      response.setHeader(name, value);
    const own = `quillon-desk-${server.address().port}`;
    const refuse = (status, code, message, more = {}) => {
      const {item: key = null, ...rest} = more;
      response
        .writeHead(status, {'Content-Type': 'application/json; charset=utf-8'})
        .end(JSON.stringify({error: {code, message, item: key}, ...rest}));
    };
    if (url.pathname.startsWith('/open/')) {
      if (used || url.pathname !== `/open/${token}`) return refuse(401, 'token', 'the link has been used');
      used = true;
      response
        .writeHead(303, {'Set-Cookie': `${own}=${session}; HttpOnly; SameSite=Strict; Path=/`, Location: '/'})
        .end();
      return undefined;
    }
    if (!(request.headers.cookie ?? '').split('; ').includes(`${own}=${session}`))
      return refuse(401, 'session', 'open the link that quillon serve printed');
    if (url.pathname === '/') return page('index.html', response);
    if (url.pathname.startsWith('/assets/mock/')) return page(url.pathname.slice('/assets/mock/'.length), response);
    if (!url.pathname.startsWith('/api/')) return refuse(404, 'unknown', 'there is no such page');
    if (request.method !== 'GET') {
      if (!(request.headers['content-type'] ?? '').startsWith('application/json'))
        return refuse(415, 'type', 'a body has to be JSON');
      if (request.headers['sec-fetch-site'] !== 'same-origin') return refuse(403, 'origin', 'asked from elsewhere');
    }
    try {
      const chunks = [];
      for await (const chunk of request) chunks.push(chunk);
      const body = chunks.length > 0 ? JSON.parse(Buffer.concat(chunks).toString('utf8')) : {};
      const parts = url.pathname.slice('/api/'.length).split('/').map(decodeURIComponent);
      if (parts[2] === 'events') {
        const run = of(runs, parts[1], 'run');
        response.writeHead(200, {'Content-Type': 'text/event-stream'});
        run.statements.forEach(({n, sql}, index) =>
          response.write(`event: statement\ndata: ${JSON.stringify({n, sql, elapsedMs: index * 25})}\n\n`),
        );
        if (run.state === 'running') {
          if (run.now) response.write(`event: statement\ndata: ${JSON.stringify(run.now)}\n\n`);
          run.listeners.add(response);
          request.on('close', () => run.listeners.delete(response));
        } else
          response.end(
            `event: done\ndata: ${JSON.stringify({state: run.state, rowCount: 0, error: run.error ?? null})}\n\n`,
          );
        return undefined;
      }
      if (parts[4] === 'export') {
        const view = of(of(runs, parts[1], 'run').views, parts[3], 'view');
        const format = url.searchParams.get('format');
        response
          .writeHead(200, {
            'Content-Type': 'application/octet-stream',
            'Content-Disposition': `attachment; filename="report.${format}"`,
          })
          .end(exported(view, format));
        return undefined;
      }
      const result = await answer(request.method, parts, url.searchParams, body);
      const [status, content] = Array.isArray(result) && typeof result[0] === 'number' ? result : [200, result];
      response.writeHead(status, {'Content-Type': 'application/json; charset=utf-8'}).end(JSON.stringify(content));
    } catch (error) {
      if (response.headersSent) response.end();
      else
        refuse(
          error.status ?? 500,
          error.code ?? 'internal',
          error.status ? error.message : String(error.stack),
          error.more,
        );
    }
    return undefined;
  });
  await new Promise((go) => server.listen(port, '127.0.0.1', go));
  const address = `http://127.0.0.1:${server.address().port}`;
  return {
    address,
    link: `${address}/open/${token}`,
    close: () => {
      server.closeAllConnections();
      server.close();
    },
  };
}

if (process.argv[1] === fileURLToPath(import.meta.url))
  console.log((await startMock(Number(process.argv[2] ?? 0))).link);
