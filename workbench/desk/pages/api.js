// The server's interface. Every answer that is an error becomes an ApiError with the server's own words.
import {language, t} from './texts.js';

export class ApiError extends Error {
  constructor(status, message, {code = '', item = null, body = null} = {}) {
    super(message);
    this.status = status;
    this.code = code;
    this.item = item; // the filter item that it is about
    this.body = body; // a refusal carries the dialog's state as it then is
  }
}

// The server's answer, whatever it is.
async function ask(method, address, body, signal) {
  const options = {
    method,
    signal,
    headers: {Accept: 'application/json', 'Accept-Language': language()},
    credentials: 'same-origin',
    cache: 'no-store',
  };
  if (method !== 'GET') {
    options.headers['Content-Type'] = 'application/json';
    options.body = JSON.stringify(body ?? {});
  }
  try {
    return await fetch(address, options);
  } catch (error) {
    if (error.name === 'AbortError') throw error;
    throw new ApiError(0, t('noAnswer'));
  }
}

// What a refusal says.
function refused(status, answer) {
  if (status === 401) return new ApiError(401, t('notSignedIn'));
  const error = answer?.error ?? {};
  return new ApiError(status, error.message ?? t('badAnswer', {status}), {
    code: error.code,
    item: error.item,
    body: answer,
  });
}

async function call(method, path, body, signal) {
  const response = await ask(method, `/api/${path}`, body, signal);
  const text = await response.text();
  let answer = null;
  try {
    answer = text ? JSON.parse(text) : null;
  } catch {
    if (response.ok) throw new ApiError(response.status, t('badAnswer', {status: response.status}));
  }
  if (response.ok) return answer;
  throw refused(response.status, answer);
}

// A file that the server makes: {name, content}.
async function file(address, signal) {
  const response = await ask('GET', address, undefined, signal);
  if (!response.ok) throw refused(response.status, await response.json().catch(() => null));
  try {
    const name = /filename="([^"]+)"/.exec(response.headers.get('Content-Disposition') ?? '')?.[1] ?? '';
    return {name, content: await response.blob()};
  } catch (error) {
    if (error.name === 'AbortError') throw error;
    throw new ApiError(0, t('exportCut')); // the server ends an answer in the middle where it fails there
  }
}

const part = encodeURIComponent;
const get = (path, signal) => call('GET', path, undefined, signal);
const post = (path, body) => call('POST', path, body);
const remove = (path) => call('DELETE', path);

export const api = {
  account: () => get('account'),
  reports: () => get('reports'),
  about: () => get('about'),

  accountChecks: () => get('account/checks'),
  startAccountChecks: () => post('account/checks'),
  stopAccountChecks: () => post('account/checks/stop'),
  checkRows: (name, offset, limit) => get(`account/checks/${part(name)}?offset=${offset}&limit=${limit}`),

  openDialog: (report, lang, values) => post('dialogs', {report, lang, values}),
  setItem: (id, key, value, value2) =>
    post(`dialogs/${part(id)}/set`, {key, value, ...(value2 === null ? {} : {value2})}),
  confirmDialog: (id) => post(`dialogs/${part(id)}/click`),
  lookup: (id, item, search, offset, limit, signal) =>
    get(`dialogs/${part(id)}/lookup?${new URLSearchParams({item, search, offset, limit})}`, signal),
  closeDialog: (id) => remove(`dialogs/${part(id)}`),

  filters: (report) => get(report ? `filters?report=${part(report)}` : 'filters'),
  filter: (name) => get(`filters/${part(name)}`),
  saveFilter: (name, report, values) => call('PUT', `filters/${part(name)}`, {report, values}),
  deleteFilter: (name) => remove(`filters/${part(name)}`),

  layouts: (report) => get(`layouts?report=${part(report)}`),
  layout: (name) => get(`layouts/${part(name)}`),
  saveLayout: (name, layout) => call('PUT', `layouts/${part(name)}`, layout),
  deleteLayout: (name) => remove(`layouts/${part(name)}`),

  startRun: (report, lang, values, dialog) => post('runs', {report, lang, values, ...(dialog ? {dialog} : {})}),
  runs: () => get('runs'),
  runInfo: (id) => get(`runs/${part(id)}`),
  runEvents: (id) => new EventSource(`/api/runs/${part(id)}/events`),
  stopRun: (id) => post(`runs/${part(id)}/stop`),
  runChecks: (id) => get(`runs/${part(id)}/checks`),
  closeRun: (id) => remove(`runs/${part(id)}`),

  makeView: (run, view) => post(`runs/${part(run)}/views`, view),
  pivotChoices: (run) => get(`runs/${part(run)}/pivots`),
  makePivot: (run, pivot) => post(`runs/${part(run)}/pivots`, pivot),
  makeComparison: (run, comparison) => post(`runs/${part(run)}/comparisons`, comparison),
  behind: (run, view, n, column) => get(`runs/${part(run)}/views/${part(view)}/where?n=${n}&column=${column}`),
  fold: (run, view, rows) => call('PUT', `runs/${part(run)}/views/${part(view)}/folds`, {rows}),
  rows: (run, view, offset, limit) => get(`runs/${part(run)}/views/${part(view)}/rows?offset=${offset}&limit=${limit}`),
  details: (run, view, n) => get(`runs/${part(run)}/views/${part(view)}/details?n=${n}`),
  documents: (run, view, n) => post(`runs/${part(run)}/views/${part(view)}/document`, {n}),
  exportAddress: (run, view, format, captions) =>
    `/api/runs/${part(run)}/views/${part(view)}/export?${new URLSearchParams({format, ...(captions ? {captions: 1} : {})})}`,
  file,
  closeView: (run, view) => remove(`runs/${part(run)}/views/${part(view)}`),
};
