// The address holds the filter and what is shown of its result, so that a link or a bookmark is both:
//   #/                                    start
//   #/checks[?check=NAME&..]               the checks of the account, with the rows of these
//   #/report/NAME?f.KEY=..&t.KEY=..       the filter dialog; f. is a value (repeated: several), t. a range's upper end
//   #/run/ID[/statements|/document/N]?report=NAME&f.KEY=..&layout=..&sort=..   a run
// It stands behind the #, which is never sent to the server.

export function read() {
  const [path, query = ''] = location.hash.replace(/^#\/?/, '').split('?');
  return {path: path.split('/').filter(Boolean).map(decodeURIComponent), query: new URLSearchParams(query)};
}

export function write(path, query) {
  const text = query?.toString() ?? '';
  return `#/${path.map(encodeURIComponent).join('/')}${text ? `?${text}` : ''}`;
}

// Goes there; `replace` leaves no way back to where it is now, `quiet` tells nobody.
export function go(path, query, {replace = false, quiet = false} = {}) {
  const target = write(path, query);
  if (replace) history.replaceState(history.state, '', target);
  else history.pushState({ours: true}, '', target);
  if (!quiet) dispatchEvent(new Event('popstate'));
}

// Whether Back leads to one of these pages.
export function cameFromHere() {
  return Boolean(history.state?.ours);
}

// Filter values {key: {value, value2}} as the interface has them: several values of an item are separated by a TAB.
export function filterIn(query) {
  const values = {};
  for (const [name, text] of query) {
    if (!/^[ft]\./.test(name)) continue;
    const key = name.slice(2);
    values[key] ??= {value: ''};
    if (name[0] === 't') values[key].value2 = text;
    else values[key].value = values[key].value ? `${values[key].value}\t${text}` : text;
  }
  return values;
}
export function putFilter(query, values) {
  for (const name of [...query.keys()]) if (/^[ft]\./.test(name)) query.delete(name);
  for (const [key, {value, value2}] of Object.entries(values)) {
    for (const one of (value ?? '').split('\t')) if (one) query.append(`f.${key}`, one);
    if (value2) query.append(`t.${key}`, value2);
  }
  return query;
}

// What is shown of a result, as the interface has it, with what only the page knows (`frozen`).
export function viewIn(query) {
  const list = (name) => (query.get(name) ?? '').split(',').filter(Boolean);
  return {
    layout: query.get('layout') ?? '',
    columns: list('columns'),
    sort: list('sort').map((key) => ({column: key.replace(/^-/, ''), descending: key.startsWith('-')})),
    groupBy: list('group'),
    where: query.getAll('where').flatMap((text) => {
      const [column, kind, ...rest] = text.split(':');
      return rest.length ? [{column, kind, values: rest.join(':').split('\t')}] : [];
    }),
    allColumns: query.get('all') === '1',
    details: query.get('details') === '1',
    frozen: query.has('frozen') ? Number(query.get('frozen')) : null,
  };
}
export function putView(query, view) {
  const put = (name, text) => (text ? query.set(name, text) : query.delete(name));
  put('layout', view.layout);
  put('columns', view.columns.join(','));
  put('sort', view.sort.map((key) => (key.descending ? '-' : '') + key.column).join(','));
  put('group', view.groupBy.join(','));
  query.delete('where');
  for (const {column, kind, values} of view.where) query.append('where', `${column}:${kind}:${values.join('\t')}`);
  put('all', view.allColumns ? '1' : '');
  put('details', view.details ? '1' : '');
  put('frozen', view.frozen === null ? '' : String(view.frozen));
  return query;
}

// The cell that the reader is at.
export function placeIn(query) {
  return {row: Math.max(0, Number(query.get('row') ?? 1) - 1 || 0), column: query.get('at') ?? ''};
}
export function putPlace(query, row, column) {
  query.set('row', String(row + 1));
  if (column) query.set('at', column);
  return query;
}
