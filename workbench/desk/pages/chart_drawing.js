// Draws the figures of a chart on a canvas. What stands for one series differs from the others by its pattern, its point
// or its dashes, too, so no colour has to be seen. A number is made of a text here only to say where something stands.
import {placeOf} from './exact.js';
import {language} from './texts.js';

const colours = {
  light: ['#0b5cad', '#a8480f', '#1b6e3c', '#7b3f9e', '#7a5c00', '#b3261e', '#00707a', '#52606d'],
  dark: ['#74b6ff', '#ffb27a', '#7fd3a0', '#d3a4f2', '#e8cf6a', '#ff9a91', '#6fd6df', '#a4b0bc'],
};
const points = ['circle', 'rect', 'triangle', 'rectRot', 'star', 'crossRot', 'cross', 'rectRounded'];
const dashes = [[], [8, 4], [2, 3], [10, 3, 2, 3], [5, 5], [12, 4], [3, 6], [1, 2]];

// What the strokes of a pattern are, on a tile of 8 by 8.
const tile = 8;
const lines = (...all) => all;
const strokes = [
  null, // filled
  lines([0, 8, 8, 0], [-2, 2, 2, -2], [6, 10, 10, 6]), // rising
  lines([0, 4, 8, 4]),
  lines([0, 0, 8, 8], [-2, 6, 2, 10], [6, -2, 10, 2]), // falling
  lines([4, 0, 4, 8]),
  lines([0, 4, 8, 4], [4, 0, 4, 8]),
  lines([3, 4, 5, 4]), // dots
  lines([0, 8, 8, 0], [0, 0, 8, 8]),
];

function fillOf(number, colour, paper) {
  const drawn = strokes[number % strokes.length];
  if (!drawn) return colour;
  const canvas = document.createElement('canvas');
  canvas.width = tile;
  canvas.height = tile;
  const context = canvas.getContext('2d');
  context.fillStyle = paper;
  context.fillRect(0, 0, tile, tile);
  context.strokeStyle = colour;
  context.lineWidth = 2;
  for (const [fromX, fromY, toX, toY] of drawn) {
    context.beginPath();
    context.moveTo(fromX, fromY);
    context.lineTo(toX, toY);
    context.stroke();
  }
  return context.createPattern(canvas, 'repeat');
}

const shortened = (text, most) => (text.length > most ? `${text.slice(0, most - 1)}…` : text);

// The paper is part of the picture.
const paperPlugin = (paper) => ({
  id: 'paper',
  beforeDraw({ctx, width, height}) {
    ctx.save();
    ctx.fillStyle = paper;
    ctx.fillRect(0, 0, width, height);
    ctx.restore();
  },
});

// The figure behind each bar.
const figuresPlugin = (texts, colour, font) => ({
  id: 'figures',
  afterDatasetsDraw(chart) {
    const {ctx} = chart;
    ctx.save();
    ctx.fillStyle = colour;
    ctx.font = `12px ${font}`;
    ctx.textBaseline = 'middle';
    const zero = chart.scales.x.getPixelForValue(0);
    chart.getDatasetMeta(0).data.forEach((bar, at) => {
      if (texts[at] !== null) ctx.fillText(texts[at], Math.max(bar.x, zero) + 6, bar.y);
    });
    ctx.restore();
  },
});

// Fetches what draws. It is large, and many a reader never looks at a chart.
export async function readyToDraw() {
  await import('chart');
}

// Draws `figures` (charts.js) under a title on `canvas`, and answers what destroy() takes away again. Its colours are
// those of the element that the canvas stands in.
export function drawChart(canvas, figures, {title, conditions, measure}) {
  const {Chart} = globalThis;
  const style = getComputedStyle(canvas.parentElement);
  const ink = style.color;
  const paper = style.backgroundColor;
  const line = style.borderTopColor;
  const font = style.fontFamily;
  const palette = colours[schemeOf(paper)];
  const {kind, columns, rest} = figures.drawn;
  const isBars = kind === 'bars';
  const isLines = kind === 'lines';
  const datasets = columns.map((column, number) => {
    const isRest = rest && number === columns.length - 1;
    const which = isRest ? palette.length - 1 : number % palette.length;
    const colour = palette[which];
    const texts = figures.rows.map((row) => row.texts[column]);
    return {
      label: figures.columns[column].caption,
      data: texts.map(placeOf),
      texts,
      borderColor: colour,
      backgroundColor: isLines
        ? colour
        : isBars
          ? figures.rows.map((row) => (row.rest ? fillOf(1, colour, paper) : colour))
          : fillOf(which, colour, paper),
      borderWidth: isLines ? 2 : 1,
      borderDash: isLines ? dashes[which] : undefined,
      pointStyle: points[which],
      pointBackgroundColor: isRest ? paper : colour,
      pointRadius: 5,
      pointBorderWidth: 2,
      spanGaps: true,
    };
  });
  const names = {color: ink, font: {family: font, size: 12}};
  const scale = (more) => ({
    grid: {color: line},
    border: {color: ink},
    ticks: names,
    ...more,
  });
  const ofFigures = scale({
    stacked: kind === 'stack',
    beginAtZero: true,
    title: {display: true, text: measure, ...names},
  });
  const ofRows = scale({
    stacked: kind === 'stack',
    grid: {display: false},
    ticks: {
      ...names,
      autoSkip: !isBars,
      callback(_, at) {
        return shortened(figures.rows[at].short ?? figures.rows[at].label, 28);
      },
    },
  });
  return new Chart(canvas, {
    type: isLines ? 'line' : 'bar',
    data: {labels: figures.rows.map(({label}) => label), datasets},
    plugins: [paperPlugin(paper), ...(isBars ? [figuresPlugin(datasets[0].texts, ink, font)] : [])],
    options: {
      indexAxis: isBars ? 'y' : 'x',
      locale: language() === 'zh' ? 'zh-CN' : 'en-GB',
      animation: false,
      maintainAspectRatio: false,
      devicePixelRatio: Math.max(2, globalThis.devicePixelRatio),
      layout: {padding: {left: 8, top: 8, bottom: 8, right: isBars ? 116 : 16}},
      scales: isBars ? {x: ofFigures, y: ofRows} : {x: ofRows, y: ofFigures},
      plugins: {
        title: {display: true, text: title, color: ink, font: {family: font, size: 15}},
        subtitle: {display: true, text: shortened(conditions, 100), ...names, padding: {bottom: 8}},
        legend: {
          display: datasets.length > 1,
          position: 'bottom',
          labels: {color: ink, font: names.font, usePointStyle: isLines, boxWidth: 28, boxHeight: isLines ? 8 : 14},
        },
        tooltip: {callbacks: {label: ({dataset, dataIndex}) => ` ${dataset.label}: ${dataset.texts[dataIndex] ?? ''}`}},
      },
    },
  });
}

// Whether what is written on paper of this colour is dark or light: by how much light it gives.
function schemeOf(paper) {
  const [red, green, blue] = /(\d+)\D+(\d+)\D+(\d+)/.exec(paper).slice(1).map(Number);
  return red * 0.3 + green * 0.59 + blue * 0.11 < 128 ? 'dark' : 'light';
}
