// Made-up reports for the pages' test double: deterministic, of any size, with figures as whole numbers of their last
// decimal, so that sums are exact.

const hash = (index, salt) => {
  let x = (index * 2654435761 + salt * 40503 + 12345) >>> 0;
  x ^= x >>> 15;
  x = Math.imul(x, 2246822519) >>> 0;
  x ^= x >>> 13;
  return x >>> 0;
};
const pick = (list, index, salt) => list[hash(index, salt) % list.length];

// A whole number of its last decimal as text, with thousands apart.
export function figure(units, decimals) {
  const negative = units < 0n;
  const digits = String(negative ? -units : units).padStart(decimals + 1, '0');
  const whole = digits.slice(0, digits.length - decimals).replace(/\B(?=(\d{3})+$)/g, ',');
  return `${negative ? '-' : ''}${whole}${decimals ? `.${digits.slice(-decimals)}` : ''}`;
}
// The other way round, of what a reader writes; null when it is no number.
export function unitsOf(text, decimals) {
  const parts = /^(-?)(\d+)(?:\.(\d*))?$/.exec(text.replaceAll(',', '').trim());
  if (!parts) return null;
  const value = BigInt(parts[2] + (parts[3] ?? '').padEnd(decimals, '0').slice(0, decimals));
  return parts[1] ? -value : value;
}

const things = [
  ['六角螺栓', 'LJLS'],
  ['平垫圈', 'PDQ'],
  ['轴承座', 'ZCZ'],
  ['齿轮轴', 'CLZ'],
  ['冷轧钢板', 'LZGB'],
  ['铜芯电缆', 'TXDL'],
  ['变频电机', 'BPDJ'],
  ['控制器外壳', 'KZQWK'],
  ['橡胶密封圈', 'XJMFQ'],
  ['减速机总成', 'JSJZC'],
];
export const inventories = Array.from({length: 30000}, (_, index) => {
  const [name, initials] = things[index % things.length];
  const number = String(Math.floor(index / things.length) + 1);
  return {
    code: `${String(1 + (index % 6)).padStart(2, '0')}01-${String(index + 1).padStart(5, '0')}`,
    name: `${name} M${number}`,
    initials: initials + `M${number}`,
    clazz: String(1 + (index % 6)).padStart(2, '0'),
  };
});
const simple = (rows) => rows.map(([code, name, initials]) => ({code, name, initials: initials ?? ''}));
export const warehouses = simple([
  ['01', '原料库', 'YLK'],
  ['02', '半成品库', 'BCPK'],
  ['03', '成品库', 'CPK'],
  ['04', '包装物库', 'BZWK'],
  ['05', '备件库', 'BJK'],
  ['06', '委外库', 'WWK'],
  ['07', '线边库', 'XBK'],
]);
export const departments = simple([
  ['01', '采购部', 'CGB'],
  ['0201', '一车间', 'YCJ'],
  ['0202', '二车间', 'ECJ'],
  ['03', '销售部', 'XSB'],
  ['04', '质检部', 'ZJB'],
]);
export const classes = simple([
  ['01', '紧固件', 'JGJ'],
  ['02', '标准件', 'BZJ'],
  ['03', '传动件', 'CDJ'],
  ['04', '板材', 'BC'],
  ['05', '电气', 'DQ'],
  ['06', '密封', 'MF'],
]);
export const customers = simple(
  Array.from({length: 120}, (_, index) => [
    `C${String(index + 1).padStart(4, '0')}`,
    `${['华北', '东海', '西陆'][index % 3]}机械${index + 1}厂`,
    'JXC',
  ]),
);
const costItems = [
  ['CI01', '直接材料'],
  ['CI02', '辅助材料'],
  ['CI03', '直接人工'],
  ['CI04', '燃料动力'],
  ['CI05', '制造费用'],
  ['CI06', '委外加工费'],
];
export const voucherTypes = [
  ['01', '采购入库单', 'Purchase receipt'],
  ['08', '其他入库单', 'Other receipt'],
  ['09', '其他出库单', 'Other issue'],
  ['10', '产成品入库单', 'Finished goods receipt'],
  ['11', '材料出库单', 'Material issue'],
  ['32', '销售出库单', 'Sales issue'],
  ['20', '入库调整单', 'Receipt adjustment'],
  ['21', '出库调整单', 'Issue adjustment'],
];

const day = (index, salt) => {
  const n = hash(index, salt) % 360;
  return `2024-${String(1 + Math.floor(n / 30)).padStart(2, '0')}-${String(1 + (n % 28)).padStart(2, '0')}`;
};

const text = (name, zh, en, value, more = {}) => ({name, zh, en, role: 'text', value, ...more});
const key = (column) => ({...column, key: true});
// A column of figures: units(i) gives a safe whole number of the last decimal, or null.
const figures = (name, zh, en, role, decimals, units, more = {}) => ({
  name,
  zh,
  en,
  role,
  decimals,
  units,
  ...more,
  value: (index) => {
    const number = units(index);
    return number === null ? null : figure(BigInt(number), decimals);
  },
});

const wholeLine = (index) => ({
  isIn: hash(index, 1) % 2 === 0,
  quantity: 100 + (hash(index, 2) % 900000),
  cost: 1000 + (hash(index, 3) % 900000),
});
const amount = (index) => {
  const {quantity, cost} = wholeLine(index);
  return Math.round((quantity * cost) / 10000) * (hash(index, 4) % 29 === 0 ? -1 : 1);
};
const inOut = (isIn) => {
  const [p, zh, en] = isIn ? ['In', '收入', 'Receipts'] : ['Out', '发出', 'Issues'];
  const when = (value) => (index) => (wholeLine(index).isIn === isIn ? value(index) : null);
  const group = {gzh: zh, gen: en};
  return [
    figures(
      `iA${p}Quantity`,
      '数量',
      'Quantity',
      'quantity',
      2,
      when((index) => wholeLine(index).quantity),
      group,
    ),
    figures(
      `i${p}Cost`,
      '单价',
      'Unit cost',
      'unitCost',
      4,
      when((index) => wholeLine(index).cost),
      group,
    ),
    figures(`iA${p}Price`, '金额', 'Amount', 'money', 2, when(amount), group),
  ];
};
const inventoryOf = (index) => inventories[hash(index, 5) % inventories.length];
const warehouseOf = (index) => pick(warehouses, index, 6);
const itemOf = (index) => pick(costItems, index, 7);
const departmentOf = (index) => pick(departments, index, 8);

export function voucherColumns(all) {
  const columns = [
    key(text('dVouDate', '单据日期', 'Document date', (index) => day(index, 9), {role: 'date'})),
    key(
      text(
        'cVouCode',
        '单据号',
        'Voucher number',
        (index) => `${pick(voucherTypes, index, 10)[0]}-202403-${String(index + 1).padStart(7, '0')}`,
      ),
    ),
    text('cVouType', '单据类型编码', 'Voucher type code', (index) => pick(voucherTypes, index, 10)[0]),
    text('cBusType', '业务类型', 'Business type', (index) =>
      pick(['普通采购', '普通销售', '领料', '成品入库'], index, 11),
    ),
    text('dKeepDate', '记账日期', 'Posting date', (index) => day(index, 12), {role: 'date'}),
    text('cPZdigest', '凭证摘要', 'Voucher digest', (index) =>
      hash(index, 13) % 4 ? `${pick(['领用', '入库', '销售'], index, 14)} ${inventoryOf(index).name}` : null,
    ),
    text('cWhCode', '仓库编码', 'Warehouse code', (index) => warehouseOf(index).code),
    text('cWhName', '仓库', 'Warehouse', (index) => warehouseOf(index).name),
    text('cInvCode', '存货编码', 'Inventory code', (index) => inventoryOf(index).code),
    text('cInvName', '存货', 'Inventory', (index) => inventoryOf(index).name),
    text('cInvStd', '规格型号', 'Model', (index) => `M${hash(index, 15) % 40}×${hash(index, 16) % 200}`),
    text('cComUnitName', '主计量单位', 'Unit', (index) => pick(['件', '千克', '米', '套'], index, 17)),
    ...inOut(true),
    ...inOut(false),
    text('cfxCode', '成本项目编码', 'Cost item code', (index) => itemOf(index)[0]),
    text('cfxName', '成本项目', 'Cost item', (index) => itemOf(index)[1]),
    figures('iUnitCost', '成本项目单价', 'Cost item unit cost', 'unitCost', 4, (index) => hash(index, 18) % 500000),
    figures('iUnitUsed', '单位用量', 'Usage per unit', 'unitCost', 4, (index) => hash(index, 19) % 30000),
    text('cAccDep', '核算部门编码', 'Accounting department code', (index) => departmentOf(index).code),
    text('cDepName', '核算部门', 'Accounting department', (index) => departmentOf(index).name),
    text('cMemo', '备注', 'Memo', (index) => (hash(index, 20) % 9 ? null : `=备注 ${index + 1}`)),
  ];
  const more = [];
  const add = (name, zh, en, numbers) => {
    for (const n of numbers) {
      more.push(
        text(`${name}${n}`, `${zh}${n}`, `${en} ${n}`, (index) =>
          hash(index, n + name.length * 100) % 3 ? `${zh.slice(0, 2)}${hash(index, n) % 100}` : null,
        ),
      );
    }
  };
  const upTo = (n, from = 1) => Array.from({length: n}, (_, index) => index + from);
  add('cFree', '自由项', 'Free item', upTo(10));
  add('cInvDefine', '存货自定义项', 'Inventory field', upTo(16));
  add('cDefine', '自定义项', 'User-defined field', [...upTo(16), ...upTo(16, 22)]);
  add('cFurther', '附加信息', 'Further fact', upTo(100 - columns.length - more.length));
  const free = more.filter(({name}) => name.startsWith('cFree')).slice(0, 2);
  return {columns: all ? [...columns, ...more] : columns, hidden: all ? [] : free, leftOut: all ? 0 : 17};
}

export function summaryColumns() {
  const states = [
    ['Qc', '期初结存', 'Opening balance'],
    ['In', '收入', 'Receipts'],
    ['Out', '发出', 'Issues'],
    ['Qm', '期末结存', 'Closing balance'],
  ];
  return [
    key(
      text(
        'cFXCode',
        '成本项目编码',
        'Cost item code',
        (index) => `0101${costItems[index % 6][0]}${index >= 6 ? `-${Math.floor(index / 6)}` : ''}`,
      ),
    ),
    key(text('cFXName', '成本项目', 'Cost item', (index) => costItems[index % 6][1])),
    ...states.flatMap(([name, gzh, gen], state) => [
      figures(`i${name}Quantity`, '数量', 'Quantity', 'quantity', 2, (index) => hash(index, 30 + state) % 90000000, {
        gzh,
        gen,
      }),
      figures(
        `i${name}Money`,
        '金额',
        'Amount',
        'money',
        2,
        (index) => (hash(index, 40 + state) % 900000000) * (index % 7 === 3 && state === 3 ? -1 : 1),
        {gzh, gen},
      ),
    ]),
  ];
}

// A tree of three levels with sums at each.
export function treeRows() {
  const columns = [
    key(text('node', '项目', 'Item')),
    figures('iQuantity', '数量', 'Quantity', 'quantity', 2, null, {gzh: '发出', gen: 'Issues'}),
    figures('iMoney', '金额', 'Amount', 'money', 2, null, {gzh: '发出', gen: 'Issues'}),
    text('cUnitName', '计量单位', 'Unit'),
  ];
  const rows = [];
  let totalQuantity = 0n;
  let totalMoney = 0n;
  ['材料', '人工', '费用'].forEach((clazz, a) => {
    const group = {kind: 'group', level: 0, units: [0n, 0n], cells: [`0${a + 1} ${clazz}`]};
    rows.push(group);
    for (let b = 0; b < 4; b += 1) {
      const sub = {
        kind: 'group',
        level: 1,
        units: [0n, 0n],
        cells: [`${costItems[(a * 2 + b) % 6][0]} ${costItems[(a * 2 + b) % 6][1]}`],
      };
      rows.push(sub);
      for (let c = 0; c < 25; c += 1) {
        const index = a * 100 + b * 25 + c;
        const units = [BigInt(hash(index, 50) % 100000), BigInt(hash(index, 51) % 10000000)];
        const inventory = inventories[index * 7];
        rows.push({kind: 'line', level: 2, units, cells: [`${inventory.code} ${inventory.name}`]});
        for (const up of [group, sub]) {
          up.units[0] += units[0];
          up.units[1] += units[1];
        }
        totalQuantity += units[0];
        totalMoney += units[1];
      }
    }
  });
  for (const row of rows)
    row.cells.push(figure(row.units[0], 2), figure(row.units[1], 2), row.kind === 'line' ? '件' : null);
  return {
    columns,
    rows,
    totals: [{kind: 'total', level: 0, cells: ['合计', figure(totalQuantity, 2), figure(totalMoney, 2), null]}],
  };
}

// A ledger of one inventory: opening, lines with cost items below them, month sums, closing.
export function ledgerRows(english) {
  const column = (name, zh, en, role, gzh = '', gen = '') => ({name, zh, en, role, gzh, gen});
  const columns = [
    {...column('dKeepDate', '日期', 'Date', 'date'), key: true},
    {...column('cVouCode', '单据号', 'Voucher number', 'text'), key: true},
    column('cPZdigest', '摘要', 'Digest', 'text'),
    ...[
      ['In', '收入', 'Receipts'],
      ['Out', '发出', 'Issues'],
      ['Bal', '结存', 'Balance'],
    ].flatMap(([name, gzh, gen]) => [
      column(`i${name}Quantity`, '数量', 'Quantity', 'quantity', gzh, gen),
      column(`i${name}Cost`, '单价', 'Unit cost', 'unitCost', gzh, gen),
      column(`i${name}Money`, '金额', 'Amount', 'money', gzh, gen),
    ]),
    column('cfxName', '成本项目', 'Cost item', 'text'),
  ];
  const say = (zh, en) => (english ? en : zh);
  const rows = [];
  let quantity = 120000n;
  let money = 36000000n;
  const cost = (m, q) => (q === 0n ? null : figure((m * 10000n) / q, 4));
  const triple = (q, m) => [figure(q, 2), cost(m, q), figure(m, 2)];
  const none = [null, null, null];
  const all = [0n, 0n, 0n, 0n];
  rows.push({
    kind: 'opening',
    level: 0,
    cells: ['', '', say('期初结存', 'Opening balance'), ...none, ...none, ...triple(quantity, money), null],
  });
  for (let month = 1; month <= 12; month += 1) {
    const sums = [0n, 0n, 0n, 0n];
    for (let n = 0; n < 60; n += 1) {
      const index = month * 100 + n;
      const isIn = hash(index, 60) % 2 === 0;
      const q = BigInt(100 + (hash(index, 61) % 9000));
      const m = q * BigInt(250 + (hash(index, 62) % 100));
      if (isIn) {
        quantity += q;
        money += m;
      } else {
        quantity -= q;
        money -= m;
      }
      [q, m].forEach((units, at) => {
        sums[at + (isIn ? 0 : 2)] += units;
        all[at + (isIn ? 0 : 2)] += units;
      });
      const parts = isIn ? [triple(q, m), none] : [none, triple(q, m)];
      const details = costItems.slice(0, 2 + (index % 3)).map(([, name], at, list) => {
        const share =
          at === list.length - 1 ? m - (m / BigInt(list.length)) * BigInt(list.length - 1) : m / BigInt(list.length);
        const cells = isIn ? [triple(q, share), none] : [none, triple(q, share)];
        return {kind: 'detail', level: 1, cells: [null, null, null, ...cells.flat(), ...none, name]};
      });
      rows.push({
        kind: 'line',
        level: 0,
        opens: true,
        detailRows: details,
        cells: [
          `2024-${String(month).padStart(2, '0')}-${String(1 + Math.floor(n / 2.2)).padStart(2, '0')}`,
          `${isIn ? '01' : '32'}-2024${String(month).padStart(2, '0')}-${String(index).padStart(5, '0')}`,
          isIn ? say('采购入库', 'Purchase') : say('销售出库', 'Sale'),
          ...parts.flat(),
          ...triple(quantity, money),
          null,
        ],
      });
    }
    rows.push({
      kind: 'monthTotal',
      level: 0,
      cells: [
        null,
        null,
        say(`${month}月合计`, `Month ${month}`),
        ...triple(sums[0], sums[1]),
        ...triple(sums[2], sums[3]),
        ...triple(quantity, money),
        null,
      ],
    });
    rows.push({
      kind: 'yearTotal',
      level: 0,
      cells: [
        null,
        null,
        say('本年累计', 'Year to date'),
        ...triple(all[0], all[1]),
        ...triple(all[2], all[3]),
        ...triple(quantity, money),
        null,
      ],
    });
  }
  return {
    columns,
    rows,
    totals: [
      {
        kind: 'closing',
        level: 0,
        cells: [null, null, say('期末结存', 'Closing balance'), ...none, ...none, ...triple(quantity, money), null],
      },
    ],
  };
}

// The lines of a made-up table, chosen and ordered as asked: their numbers.
export function arrange(columns, count, {where, sort}) {
  const byName = new Map(columns.map((column) => [column.name, column]));
  const known = (name) => {
    const column = byName.get(name);
    if (!column) throw Object.assign(new Error(`no column ${name}`), {status: 422});
    return column;
  };
  const tests = where.map(({column: name, kind, values}) => {
    const column = known(name);
    if (kind === 'contains')
      return (index) => (column.value(index) ?? '').toLowerCase().includes(values[0].toLowerCase());
    if (column.decimals === undefined) {
      if (kind === 'equals') {
        const set = new Set(values.map((value) => value.toLowerCase()));
        return (index) => set.has((column.value(index) ?? '').toLowerCase());
      }
      return (index) => {
        const value = column.value(index) ?? '';
        return value !== '' && (!values[0] || value >= values[0]) && (!values[1] || value <= values[1]);
      };
    }
    const units = values.map((value) => (value ? unitsOf(value, column.decimals) : null));
    if (values.some((value, at) => value && units[at] === null)) {
      throw Object.assign(new Error(`${column.zh}: not a number`), {status: 422});
    }
    if (kind === 'equals')
      return (index) =>
        units.some((one) => one !== null && column.units(index) !== null && BigInt(column.units(index)) === one);
    return (index) => {
      const value = column.units(index);
      return (
        value !== null &&
        (units[0] === null || BigInt(value) >= units[0]) &&
        (units[1] === null || units[1] === undefined || BigInt(value) <= units[1])
      );
    };
  });
  let order = new Int32Array(count);
  let length = 0;
  for (let index = 0; index < count; index += 1) {
    if (tests.every((test) => test(index))) {
      order[length] = index;
      length += 1;
    }
  }
  order = order.subarray(0, length);
  if (sort.length > 0) {
    const keys = sort
      .map(({column, descending}) => ({of: known(column), down: descending ? -1 : 1}))
      .map(({of, down}) => ({
        down,
        values: Array.from(order, (index) => (of.units ? (of.units(index) ?? -Infinity) : (of.value(index) ?? ''))),
      }));
    const places = Array.from(order, (_, at) => at).sort((a, b) => {
      for (const {values, down} of keys) {
        if (values[a] < values[b]) return -down;
        if (values[a] > values[b]) return down;
      }
      return a - b;
    });
    order = Int32Array.from(places, (at) => order[at]);
  }
  return order;
}

export function sums(columns, order, word) {
  let worded = false;
  const cells = columns.map((column) => {
    if (column.role === 'quantity' || column.role === 'money') {
      let sum = 0n;
      let part = 0; // added as a safe number, then moved over
      for (let at = 0; at < order.length; at += 1) {
        part += column.units(order[at]) ?? 0;
        if (at % 1000 === 999) {
          sum += BigInt(part);
          part = 0;
        }
      }
      return figure(sum + BigInt(part), column.decimals);
    }
    if (!worded) {
      worded = true;
      return word;
    }
    return null;
  });
  return cells;
}
