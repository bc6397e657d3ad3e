import crelt from 'crelt';
import { tellFailure } from '../ui/files.js';
import { loadPart } from '../ui/parts.js';
import { chartData, chartOptions } from './chartData.js';

const kinds = [['bar', 'Bars'], ['line', 'Lines'], ['pie', 'Pie']];

/** A chart beside the grid, drawn from the cells that `source` gives; hidden at first. */
export class ChartPanel {
  #source;
  #kind = 'bar';
  #chart = null;
  #library = null;
  #closed = false;
  #canvas = crelt('div', { class: 'chart-canvas' });
  #hint = crelt('p', { class: 'chart-hint' });
  #resized = () => this.#chart && this.#chart.resize();

  /** @param {() => {titles: string[], rows: any[][]}} source */
  constructor(source) {
    this.#source = source;
    const choose = (kind) => {
      this.#kind = kind;
      this.draw();
    };
    const buttons = kinds.map(([kind, label]) => crelt('button', { type: 'button', onclick: () => choose(kind) }, label));
    const close = crelt('button', { type: 'button', class: 'close', title: 'Close the chart', onclick: () => this.toggle() }, '×');
    this.dom = crelt('section', { class: 'chart', hidden: 'hidden', 'aria-label': 'Chart' },
      crelt('div', { class: 'chart-bar' }, buttons, close), this.#hint, this.#canvas);
    window.addEventListener('resize', this.#resized);
  }

  async toggle() {
    this.dom.hidden = !this.dom.hidden;
    try {
      this.#library = await loadPart('chart');
      this.draw();
    } catch (error) {
      tellFailure(`The chart cannot be drawn: ${error.message}`);
    }
  }

  /** Draws again; does nothing while hidden. */
  draw() {
    if (this.dom.hidden || this.#closed || !this.#library) return;
    const { titles, rows } = this.#source();
    const data = chartData(titles, rows);
    this.#hint.textContent = data.series.length > 0 ? '' : 'Select cells with numbers, or fill a column with numbers.';
    this.#chart = this.#chart || this.#library.init(this.#canvas);
    this.#chart.setOption(chartOptions(data, this.#kind), true);
    this.#chart.resize();
  }

  destroy() {
    this.#closed = true;
    window.removeEventListener('resize', this.#resized);
    if (this.#chart) this.#chart.dispose();
  }
}
