// The frame around the pages: it reads the address, shows the page that it names, and knows what all pages share.
import {go, read, write} from './address.js';
import {api} from './api.js';
import {ChecksPage} from './checks.js';
import {DialogPage} from './dialog.js';
import {button, fill, h, notice, signButton} from './dom.js';
import {closeWindows, menu, modal} from './popup.js';
import {RunPage} from './run.js';
import {StartPage} from './start.js';
import {caption, language, setLanguage, t} from './texts.js';

const main = document.getElementById('main');
const header = document.getElementById('header');
const runsBar = document.getElementById('runs');

const desk = {
  account: null,
  reports: [],
  runs: [],

  report: (name) => desk.reports.find((report) => report.name === name),

  // Asks for the runs again and shows them; what is running is asked for until it has ended.
  async runsChanged() {
    const before = JSON.stringify(desk.runs);
    desk.runs = await api.runs();
    if (JSON.stringify(desk.runs) !== before) {
      drawRuns();
      page?.runsChanged?.();
    }
    clearTimeout(desk.timer);
    if (desk.runs.some((run) => run.state === 'running'))
      desk.timer = setTimeout(() => desk.runsChanged().catch(() => {}), 1000);
  },

  async closeRun(id) {
    const open = runPages.get(String(id));
    try {
      await api.closeRun(id);
    } catch (error) {
      if (error.status !== 404) notice(error.message, {error: true});
    }
    runPages.delete(String(id));
    open?.dispose();
    if (page === open && open) go([], null, {replace: true});
    await desk.runsChanged().catch(() => {});
  },
};

// Pages of runs stay while their run does, so that coming back finds everything where it was.
const runPages = new Map();
let page = null;
let startPage = null;
let asked = 0;

function pageFor({path, query}) {
  if (path.length === 0) return (startPage ??= new StartPage(desk));
  if (path[0] === 'checks') return page instanceof ChecksPage ? page : new ChecksPage(desk);
  if (path[0] === 'report' && desk.report(path[1])) {
    return page instanceof DialogPage && page.report.name === path[1]
      ? page
      : new DialogPage(desk.report(path[1]), desk);
  }
  if (path[0] === 'run' && path[1]) {
    if (!runPages.has(path[1])) runPages.set(path[1], new RunPage(path[1], query.get('report'), desk));
    return runPages.get(path[1]);
  }
  return {
    element: h('div', {class: 'page'}, h('p', {}, t('noSuchPage'))),
    title: t('noSuchPage'),
    show() {},
    hide() {},
  };
}

async function route() {
  const address = read();
  const number = (asked += 1);
  closeWindows();
  main.setAttribute('aria-busy', 'true');
  try {
    if (!desk.account) [desk.account, desk.reports] = await Promise.all([api.account(), api.reports()]);
    if (number !== asked) return; // another address was gone to meanwhile, and its page is shown
    const next = pageFor(address);
    if (next !== page) {
      page?.hide();
      page = next;
      main.replaceChildren(next.element);
      main.scrollTop = 0;
      main.focus({preventScroll: true});
    }
    drawHeader();
    drawRuns();
    await next.show(address);
  } catch (error) {
    if (number === asked)
      fill(main, h('div', {class: 'page'}, h('p', {class: 'message', role: 'alert'}, error.message)));
    page = null;
  }
  if (number === asked) main.removeAttribute('aria-busy');
  if (page) document.title = `${page.title} – ${desk.account?.name ?? 'Quillon'}`;
}

const themes = ['auto', 'light', 'dark'];
const themeTexts = {auto: 'themeAuto', light: 'themeLight', dark: 'themeDark'};
const theme = () => document.documentElement.dataset.theme ?? 'auto';
function setTheme(name) {
  if (name === 'auto') delete document.documentElement.dataset.theme;
  else document.documentElement.dataset.theme = name;
  localStorage.setItem('desk.theme', name);
  drawHeader();
}

function drawHeader() {
  document.documentElement.lang = language() === 'zh' ? 'zh-CN' : 'en';
  document.getElementById('skip').textContent = t('skip');
  runsBar.setAttribute('aria-label', t('openRuns'));
  const themeButton = h(
    'button',
    {
      type: 'button',
      class: 'quiet',
      'aria-haspopup': 'menu',
      onclick: () =>
        menu(
          themeButton,
          t('theme'),
          themes.map((name) => ({
            text: `${name === theme() ? '✓ ' : '  '}${t(themeTexts[name])}`,
            act: () => setTheme(name),
          })),
        ),
    },
    t(themeTexts[theme()]),
  );
  themeButton.setAttribute('aria-label', `${t('theme')}: ${t(themeTexts[theme()])}`);
  fill(
    header,
    h('a', {class: 'brand', href: '#/'}, 'Quillon'),
    desk.account && h('span', {class: 'account'}, `${desk.account.code} ${desk.account.name}`),
    h('span', {class: 'space'}),
    button(t('keys'), showKeys, {class: 'quiet'}),
    button(t('about'), showAbout, {class: 'quiet'}),
    themeButton,
    button(t('otherLanguage'), switchLanguage, {
      class: 'quiet',
      'aria-label': t('languageName'),
      lang: language() === 'zh' ? 'en' : 'zh-CN',
      id: 'language',
    }),
  );
}

async function switchLanguage() {
  setLanguage(language() === 'zh' ? 'en' : 'zh');
  drawHeader();
  document.getElementById('language').focus();
  drawRuns();
  try {
    await page?.languageChanged?.();
  } catch (error) {
    notice(error.message, {error: true});
  }
  if (page) document.title = `${page.title} – ${desk.account?.name ?? 'Quillon'}`;
}

function drawRuns() {
  const here = page instanceof RunPage ? page.id : null;
  runsBar.hidden = desk.runs.length === 0;
  fill(
    runsBar,
    h('a', {class: 'run-tab', href: '#/', 'aria-current': page === startPage && page ? 'page' : null}, t('start')),
    desk.runs.map((run) => {
      const id = String(run.id);
      const title = caption(desk.report(run.report)?.title) || run.title;
      const words = `#${id} ${title}`;
      return h(
        'span',
        {class: 'run-tab', 'aria-current': null},
        h(
          'a',
          {
            href: runPages.get(id)?.address() ?? write(['run', id], new URLSearchParams({report: run.report})),
            'aria-current': id === here ? 'page' : null,
            title: `${words} (${t(`state_${run.state}`)})`,
          },
          h('span', {class: `dot ${run.state}`, 'aria-hidden': 'true'}),
          h('span', {class: 'ellipsis'}, words),
          h('span', {class: 'unseen'}, ` ${t(`state_${run.state}`)}`),
        ),
        signButton('✕', t('closeRun', {title: words}), () => desk.closeRun(run.id)),
      );
    }),
  );
  const current = runsBar.querySelector('[aria-current=page]');
  (current?.closest('span.run-tab') ?? current)?.scrollIntoView({block: 'nearest', inline: 'nearest'});
}

function showKeys() {
  const keys = ['Arrows', 'Pages', 'Home', 'Enter', 'Space', 'Menu', 'Width', 'Copy', 'All', 'Go'];
  modal(
    t('keys'),
    h(
      'dl',
      {class: 'keys'},
      keys.map((key) => [h('dt', {}, t(`key${key}`)), h('dd', {}, t(`key${key}Do`))]),
    ),
  );
}

async function showAbout() {
  try {
    const about = await api.about();
    modal(
      'Quillon',
      [
        h('p', {}, t('version', {version: about.version})),
        h('h3', {}, t('licences')),
        about.licences.map((one) =>
          h(
            'details',
            {},
            h('summary', {}, `${one.name} – ${one.licence}`),
            h('pre', {class: 'licence', tabindex: '0'}, one.text),
          ),
        ),
      ],
      {wide: true},
    );
  } catch (error) {
    notice(error.message, {error: true});
  }
}

const kept = localStorage.getItem('desk.theme');
if (kept === 'light' || kept === 'dark') document.documentElement.dataset.theme = kept;
document.getElementById('skip').addEventListener('click', (event) => {
  event.preventDefault();
  main.focus();
});
addEventListener('popstate', route);
drawHeader();
route();
