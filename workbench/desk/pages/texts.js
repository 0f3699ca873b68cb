// All words of the pages, in both languages. What the server answers comes in the language that it is asked for.
const catalogue = {
  // the frame
  skip: ['跳到内容', 'Skip to content'],
  start: ['首页', 'Start'],
  openRuns: ['打开的报表', 'Open reports'],
  otherLanguage: ['English', '中文'],
  languageName: ['Language: switch to English', '语言：切换为中文'],
  themeAuto: ['跟随系统', 'System colours'],
  themeLight: ['浅色', 'Light'],
  themeDark: ['深色', 'Dark'],
  theme: ['配色', 'Colours'],
  about: ['关于', 'About'],
  keys: ['快捷键', 'Keys'],
  close: ['关闭', 'Close'],
  closeRun: ['关闭报表 {title}', 'Close report {title}'],
  cancel: ['取消', 'Cancel'],
  ok: ['确定', 'OK'],
  copy: ['复制', 'Copy'],
  copied: ['已复制', 'Copied'],
  noSuchPage: ['没有这个页面。', 'There is no such page.'],
  notSignedIn: [
    '此页面的会话已结束。请重新打开 quillon serve 给出的链接。',
    'The session of this page has ended. Open the link that quillon serve prints again.',
  ],
  noAnswer: ['quillon serve 没有应答。它还在运行吗？', 'quillon serve does not answer. Is it still running?'],
  badAnswer: ['应答无法读取（{status}）。', 'The answer cannot be read ({status}).'],
  version: ['版本 {version}', 'Version {version}'],
  licences: ['许可', 'Licences'],

  // start
  account: ['账套', 'Account'],
  accountCode: ['账套号', 'Code'],
  startDate: ['启用日期', 'Start date'],
  currentYear: ['当前年度', 'Current year'],
  valuation: ['核算方式', 'Valuation'],
  valuationInventory: ['按存货核算', 'by inventory'],
  valuationWarehouse: ['按仓库核算', 'by warehouse'],
  valuationDepartment: ['按部门核算', 'by department'],
  year: ['年度', 'Year'],
  firstMonth: ['成本项目起始月', 'Breakdown begins in month'],
  settledMonths: ['已结账月份', 'Settled months'],
  lines: ['明细行数', 'Ledger lines'],
  none: ['无', 'none'],
  years: ['年度', 'Years'],
  reports: ['报表', 'Reports'],
  savedFilters: ['筛选方案', 'Saved filters'],
  noSavedFilters: ['还没有保存的方案。在筛选页可以保存。', 'None yet. A filter can be saved on its page.'],
  filterOfNoReport: [
    '方案“{name}”没有写明报表。请在报表的筛选页载入。',
    'The filter “{name}” names no report that is here.',
  ],
  changedAt: ['修改时间', 'Changed'],
  name: ['名称', 'Name'],
  report: ['报表', 'Report'],
  runsHere: ['本次会话的报表', 'Reports of this session'],
  noRuns: ['还没有运行报表。', 'No report has been run yet.'],
  conditions: ['条件', 'Conditions'],
  state: ['状态', 'State'],
  started: ['开始时间', 'Started'],
  delete: ['删除', 'Delete'],
  deleteNamed: ['删除 {name}', 'Delete {name}'],
  deleteAsk: ['要删除方案“{name}”吗？', 'Delete the filter “{name}”?'],
  layouts: ['格式', 'Layouts'],
  keptLayouts: ['保存的格式', 'Saved layouts'],
  noKeptLayouts: ['此报表还没有保存的格式。', 'None of this report yet.'],
  layoutTaken: ['“{name}”已存在，要替换吗？', '“{name}” is there already. Replace it?'],
  replace: ['替换', 'Replace'],
  deleteLayoutAsk: ['要删除格式“{name}”吗？', 'Delete the layout “{name}”?'],
  deletedNamed: ['已删除“{name}”', 'Deleted “{name}”'],
  opensDocuments: ['可联查单据', 'Opens documents'],

  checkAccount: ['检查账套…', 'Check the account…'],

  // checks of the account
  accountChecks: ['账套检查', 'Checks of the account'],
  checking: ['正在检查', 'Checking'],
  checkAgain: ['重新检查', 'Check again'],
  checkedAt: ['检查于 {when}，用时 {time}', 'checked {when}, in {time}'],
  checksStopped: ['检查已停止。', 'The checks were stopped.'],
  checksFailed: ['账套无法检查：{message}', 'The account cannot be checked: {message}'],
  ledgerSound: ['✓ 账簿中没有错误。', '✓ There are no errors in the ledger.'],
  checksFound: ['{all} 项检查中有 {n} 项发现错误。', '{n} of {all} checks found errors.'],
  checkTitle: ['检查', 'Check'],
  checkResult: ['结果', 'Result'],
  checkRows: ['行数', 'Rows'],
  checkSum: ['金额', 'Amount'],
  checkReports: ['触及的报表', 'Reports that it touches'],
  checkPassed: ['通过', 'passed'],
  checkError: ['错误', 'error'],
  checkNote: ['提示', 'note'],
  checkLine: ['流水号', 'Line'],
  checkMonth: ['月', 'Month'],
  checkDate: ['日期', 'Date'],
  checkDocument: ['单据号', 'Document'],
  checkInventory: ['存货编码', 'Inventory'],
  checkWhat: ['说明', 'What'],
  checkAmount: ['金额', 'Amount'],
  checkRowsKept: [
    '此处只有前 {kept} 行；quillon account check SOURCE --check {check} --limit 0 显示全部。',
    'The first {kept} rows are here; quillon account check SOURCE --check {check} --limit 0 shows all.',
  ],
  listSeparator: ['、', ', '],
  touchedBy: ['账套中有触及本报表的错误：', 'Errors of the account touch this report:'],
  touchedRows: ['{title}（{n} 行）', '{title} ({n} found)'],
  touchedAmount: ['{title}（{n} 行，金额 {amount}）', '{title} ({n} found, amount {amount})'],

  // states of a run
  state_running: ['运行中', 'running'],
  state_done: ['完成', 'done'],
  state_failed: ['失败', 'failed'],
  state_stopped: ['已停止', 'stopped'],

  // filter dialog
  filterOf: ['筛选', 'Filter'],
  run: ['运行', 'Run'],
  reset: ['恢复默认', 'Reset'],
  required: ['必填', 'required'],
  from: ['从', 'from'],
  to: ['到', 'to'],
  fromOf: ['{caption}，从', '{caption}, from'],
  toOf: ['{caption}，到', '{caption}, to'],
  notAvailable: ['当前条件下不可用', 'Cannot be used with these choices'],
  notGiven: ['（不限）', '(any)'],
  addValue: ['输入后按回车', 'type, then Enter'],
  removeValue: ['去掉 {value}', 'Remove {value}'],
  chosenCount: ['已选 {n} 项', '{n} chosen'],
  mainItems: ['常用条件', 'Main conditions'],
  freeItems: ['自由项', 'Free items'],
  definedFields: ['自定义项', 'User-defined fields'],
  filledIn: ['已填 {n} 项', '{n} filled in'],
  save: ['保存', 'Save'],
  saveAs: ['保存为', 'Save as'],
  saved: ['已保存“{name}”', 'Saved “{name}”'],
  loadFilter: ['载入方案', 'Load a filter'],
  filterLink: ['复制链接', 'Copy link'],
  notAccepted: ['筛选未被接受，请看标出的条件。', 'The filter was not accepted. See the marked conditions.'],
  clear: ['清除', 'Clear'],

  // lookup
  lookupOf: ['选择{caption}', 'Look up: {caption}'],
  search: ['查找', 'Search'],
  searchHint: ['编码、名称或拼音首字母', 'Code, name or pinyin initials'],
  code: ['编码', 'Code'],
  rowsShown: ['第 {from}–{to} 条，共 {count} 条', '{from}–{to} of {count}'],
  nothingFound: ['没有找到。', 'Nothing found.'],
  previous: ['上一页', 'Previous'],
  next: ['下一页', 'Next'],

  // calendar
  calendar: ['日历', 'Calendar'],
  chooseDate: ['选择日期：{caption}', 'Choose a date: {caption}'],
  previousMonth: ['上月', 'Previous month'],
  nextMonth: ['下月', 'Next month'],
  previousYear: ['上年', 'Previous year'],
  nextYear: ['下年', 'Next year'],
  today: ['今天', 'Today'],
  monthOf: ['{year}年{month}月', '{monthName} {year}'],
  badDate: ['不是日期：{text}（格式 2024-03-31）', 'Not a date: {text} (write 2024-03-31)'],

  // run
  running: ['正在运行', 'Running'],
  elapsed: ['已用时间', 'Elapsed'],
  statement: ['语句', 'Statement'],
  statements: ['语句', 'Statements'],
  statementNow: ['第 {n} 条语句', 'Statement {n}'],
  stop: ['停止', 'Stop'],
  stopping: ['正在停止…', 'Stopping…'],
  runStopped: ['报表已停止。', 'The report was stopped.'],
  runFailed: ['报表失败。', 'The report failed.'],
  runGone: ['这次运行已关闭。可用同一筛选重新运行。', 'This run has been closed. Run it again with the same filter.'],
  changeFilter: ['修改筛选', 'Change filter'],
  seconds: ['{s} 秒', '{s} s'],
  milliseconds: ['{n} 毫秒', '{n} ms'],
  ms: ['毫秒', 'ms'],
  rows: ['行', 'Rows'],
  sql: ['SQL', 'SQL'],
  copyAll: ['全部复制', 'Copy all'],
  copyStatement: ['复制语句 {n}', 'Copy statement {n}'],
  statementsSum: ['{n} 条语句，{s} 秒', '{n} statements, {s} s'],
  noConditions: ['没有条件', 'no conditions'],
  arranging: ['正在整理…', 'Arranging…'],
  messages: ['消息', 'Messages'],

  // grid
  gridName: ['{title}，{layout}', '{title}, {layout}'],
  totals: ['合计', 'Totals'],
  rowCount: ['共 {n} 行', '{n} rows'],
  lineCount: ['明细 {n} 行', '{n} lines'],
  counting: ['正在计数…', 'counting…'],
  goToRow: ['转到行', 'Go to row'],
  noSuchRow: ['行号应在 1 到 {n} 之间。', 'Rows go from 1 to {n}.'],
  noRows: ['没有符合条件的行。', 'No rows meet the conditions.'],
  columns: ['列', 'Columns'],
  columnsShown: ['显示的列', 'Columns shown'],
  columnsHidden: ['隐藏的列', 'Columns hidden'],
  findColumn: ['查找列', 'Find a column'],
  show: ['显示', 'Show'],
  hide: ['隐藏', 'Hide'],
  hideColumn: ['隐藏此列', 'Hide this column'],
  moveLeft: ['左移', 'Move left'],
  moveRight: ['右移', 'Move right'],
  moveUp: ['{caption}上移', 'Move {caption} up'],
  moveDown: ['{caption}下移', 'Move {caption} down'],
  wider: ['加宽', 'Wider'],
  narrower: ['变窄', 'Narrower'],
  freezeHere: ['冻结到此列', 'Freeze up to here'],
  unfreeze: ['取消冻结', 'Unfreeze all'],
  allColumns: ['含自定义列', 'With user-defined columns'],
  leftOut: ['另有 {n} 列未显示', '{n} more columns hold values'],
  layoutColumns: ['恢复格式的列', 'Columns of the layout'],
  columnMenu: ['{caption}：列菜单', '{caption}: column menu'],
  sortAscending: ['升序', 'Sort ascending'],
  sortDescending: ['降序', 'Sort descending'],
  sortAlso: ['再按此列排序', 'Then by this column'],
  noSort: ['取消排序', 'Do not sort'],
  groupBy: ['按此列分组', 'Group by this column'],
  filter: ['筛选此列', 'Filter this column'],
  contains: ['包含', 'contains'],
  equals: ['等于', 'equals'],
  range: ['范围', 'range'],
  equalsHint: ['每行一个值', 'One value a line'],
  value: ['值', 'Value'],
  apply: ['应用', 'Apply'],
  removeFilter: ['去掉筛选', 'Remove filter'],
  sortedBy: ['排序', 'Sorted'],
  groupedBy: ['分组', 'Grouped'],
  remove: ['去掉：{what}', 'Remove: {what}'],
  clearAll: ['全部去掉', 'Clear all'],
  ascending: ['升序', 'ascending'],
  descending: ['降序', 'descending'],
  upTo: ['{to} 以下', 'up to {to}'],
  atLeast: ['{from} 以上', 'from {from}'],
  columnsMenu: ['列…', 'Columns…'],
  viewRefused: ['不能这样显示：{message}', 'It cannot be shown so: {message}'],
  showLayout: ['显示原格式', 'Show the layout as it is'],
  copiedBlock: ['已复制 {rows} 行 × {columns} 列', 'Copied {rows} rows × {columns} columns'],
  copyTooLarge: ['所选区域太大，请用导出。', 'The block is too large to copy. Use an export.'],
  copyFailed: ['无法写入剪贴板。', 'The clipboard cannot be written.'],
  selected: ['已选 {rows} × {columns}', '{rows} × {columns} selected'],
  foldOut: ['展开成本项目', 'Show cost items'],
  yes: ['是', 'yes'],

  // pivot
  pivot: ['透视表', 'Pivot'],
  pivotArrange: ['透视表的行、列和数值', 'What the pivot shows'],
  pivotRows: ['行', 'Down'],
  pivotColumns: ['列', 'Across'],
  pivotMeasures: ['数值', 'Figures'],
  pivotAdd: ['添加', 'Add'],
  pivotAddTo: ['添加到“{axis}”', 'Add to “{axis}”'],
  pivotEarlier: ['{caption}前移', 'Move {caption} forward'],
  pivotLater: ['{caption}后移', 'Move {caption} back'],
  pivotToColumns: ['{caption}移到列', 'Put {caption} across'],
  pivotToRows: ['{caption}移到行', 'Put {caption} down'],
  pivotFoldAll: ['全部收起', 'Fold all'],
  pivotUnfoldAll: ['全部展开', 'Unfold all'],
  pivotSortsTotals: ['按合计列或行标题排序。', 'Sort by a column of totals, or by what stands down.'],
  pivotNoFigure: ['此处没有数值。', 'There is no figure here.'],
  pivotHint: ['点击数值查看其明细行', 'A click on a figure lists its rows'],
  share_row: ['占行%', ', % of row'],
  share_column: ['占列%', ', % of column'],
  share_total: ['占总计%', ', % of total'],

  // comparing
  compare: ['对比', 'Compare'],
  compareWith: ['与', 'With'],
  compareNone: [
    '还没有同一报表的其他运行。请用另外的筛选再运行一次，例如另一年度、期间或仓库。',
    'There is no other run of this report yet. Run it again with another filter: another year, period or warehouse.',
  ],
  compareNoRows: ['请点某一方的数值查看其明细行。', 'Choose a figure of one side to list its rows.'],

  // charts
  charts: ['图表', 'Charts'],
  chart: ['图表', 'Chart'],
  chart_structure: ['成本构成', 'Cost structure'],
  chart_months: ['各月金额', 'Months'],
  chart_balance: ['结存走势', 'Balance over time'],
  chart_top: ['排名', 'Largest'],
  chart_unitCost: ['单位成本走势', 'Unit cost over time'],
  chartOf: ['数值', 'Figure'],
  chartBy: ['按', 'By'],
  chartTop: ['前几项', 'How many'],
  chartForm: ['形式', 'Form'],
  chartForm_stack: ['堆积柱形', 'Stacked bars'],
  chartForm_lines: ['折线', 'Lines'],
  chartPer: ['每', 'For each'],
  chartPer_month: ['月份', 'Month'],
  chartPer_document: ['单据', 'Document'],
  chartItem: ['存货', 'Inventory'],
  chartBalance_amount: ['结存金额', 'Balance'],
  chartBalance_quantity: ['结存数量', 'Quantity on hand'],
  chartOpening: ['期初', 'Opening'],
  chartTotal: ['合计', 'Total'],
  chartOthers: ['其余 {n} 项', '{n} others'],
  chartLast: ['共 {of} 张单据，显示最后 {n} 张', 'The last {n} of {of} documents'],
  chartAsPivot: ['作为透视表', 'As a pivot'],
  chartSave: ['保存为 PNG', 'Save as PNG'],
  chartCanvas: ['{title}：数值在旁边的表中', '{title}: the figures stand in the table beside it'],
  chartTable: ['数值：{title}', 'Figures: {title}'],

  // kinds of rows, for a screen reader
  kind_detail: ['成本项目', 'cost item'],
  kind_group: ['组', 'group'],
  kind_subtotal: ['小计', 'subtotal'],
  kind_opening: ['期初', 'opening balance'],
  kind_monthTotal: ['本月合计', 'month total'],
  kind_yearTotal: ['本年累计', 'year total'],
  kind_closing: ['期末', 'closing balance'],
  kind_difference: ['差额', 'difference'],
  kind_total: ['合计', 'total'],

  // export
  export: ['导出', 'Export'],
  exportCsv: ['CSV 文件', 'CSV file'],
  exportXlsx: ['Excel 工作簿（XLSX）', 'Excel workbook (XLSX)'],
  exportHtml: ['打印页（HTML）', 'Print view (HTML)'],
  exportCaptions: ['CSV 用列名作标题', 'CSV with captions as heading'],
  exporting: ['正在导出：{what}…', 'Exporting: {what}…'],
  exportFailed: ['导出失败：{message}', 'The export failed: {message}'],
  exportCut: ['文件没有写完', 'the file broke off'],
  exportNote: [
    '导出的内容与屏幕一致：列、排序、筛选、分组。',
    'Exactly what is shown: columns, order, filters, groups.',
  ],

  // document
  document: ['单据', 'Document'],
  back: ['返回', 'Back'],
  noDocument: ['此行没有单据。', 'There is no document behind this row.'],

  // keys
  keyArrows: ['方向键', 'Arrows'],
  keyArrowsDo: ['在表格中移动；按住 Shift 选择区域', 'Move in the grid; with Shift select a block'],
  keyPages: ['PgUp / PgDn', 'PgUp / PgDn'],
  keyPagesDo: ['上一页、下一页', 'One page up or down'],
  keyHome: ['Home / End', 'Home / End'],
  keyHomeDo: ['行首、行尾；加 Ctrl 到第一行、最后一行', 'First or last column; with Ctrl first or last row'],
  keyEnter: ['Enter', 'Enter'],
  keyEnterDo: [
    '打开单据；在列标题上排序（Shift 追加排序）',
    'Open the document; on a heading sort (Shift adds a column)',
  ],
  keySpace: ['空格', 'Space'],
  keySpaceDo: ['展开或收起此行的成本项目', 'Show or hide the cost items of a line'],
  keyMenu: ['Alt+↓', 'Alt+↓'],
  keyMenuDo: ['列菜单；在日期和参照上打开日历、参照', 'Column menu; on dates and codes the calendar or lookup'],
  keyWidth: ['Alt+← / Alt+→', 'Alt+← / Alt+→'],
  keyWidthDo: ['在列标题上移动此列', 'On a heading: move the column'],
  keyCopy: ['Ctrl+C', 'Ctrl+C'],
  keyCopyDo: ['复制所选区域', 'Copy the selected block'],
  keyAll: ['Ctrl+A', 'Ctrl+A'],
  keyAllDo: ['全选', 'Select all'],
  keyGo: ['Ctrl+G', 'Ctrl+G'],
  keyGoDo: ['转到行', 'Go to row'],
};

const languages = ['zh', 'en'];
let index = languages.indexOf(localStorage.getItem('desk.language'));
if (index < 0) index = navigator.language.toLowerCase().startsWith('zh') ? 0 : 1;

export function language() {
  return languages[index];
}
export function setLanguage(name) {
  index = Math.max(0, languages.indexOf(name));
  localStorage.setItem('desk.language', languages[index]);
}

// The words of `key`, with `{name}` in them replaced.
export function t(key, values = {}) {
  const words = catalogue[key];
  if (!words) throw new Error(`no text ${key}`);
  return words[index].replace(/\{(\w+)\}/g, (whole, name) => (name in values ? String(values[name]) : whole));
}
export function hasText(key) {
  return key in catalogue;
}

// Of a caption {zh, en}, the one to show; a caption may be plain text.
export function caption(both) {
  if (both === null || both === undefined) return '';
  return typeof both === 'string' ? both : both[language()] || both.zh || both.en || '';
}

// A count with its thousands apart. For counts and times only: figures of a report come as texts and stay so.
export function count(number) {
  return number.toLocaleString(index === 0 ? 'zh-CN' : 'en-GB');
}
// A time for people: below a tenth of a second in milliseconds.
export function seconds(milliseconds) {
  if (milliseconds < 100) return t('milliseconds', {n: Math.round(milliseconds)});
  return t('seconds', {s: (milliseconds / 1000).toFixed(1)});
}
export function monthName(month) {
  return new Intl.DateTimeFormat('en-GB', {month: 'long', timeZone: 'UTC'}).format(
    new Date(Date.UTC(2000, month - 1, 1)),
  );
}
export function moment(text) {
  const date = new Date(text);
  return Number.isNaN(date.getTime())
    ? String(text ?? '')
    : date.toLocaleString(index === 0 ? 'zh-CN' : 'en-GB', {dateStyle: 'short', timeStyle: 'medium'});
}
