import crelt from 'crelt';
import { mountAccountCorner } from '../account/AccountCorner.js';
import { DocumentsApi } from '../document/DocumentsApi.js';
import { documentUrl } from '../document/location.js';
import { officeType } from '../document/officeTypes.js';
import { NativeSide } from '../document/NativeSide.js';
import { watchFailures } from '../ui/watchFailures.js';

const api = new DocumentsApi((url, init) => window.fetch(url, init));
const list = document.getElementById('documents');
const shownTime = new Intl.DateTimeFormat('en', { dateStyle: 'medium', timeStyle: 'short' });

function documentRow(file) {
  const known = officeType(file.officeType);
  const type = known && known.hasEditor ? known : null;
  const modified = Number(file.modified);
  const icon = crelt('img', { src: `/static/icon-${type ? file.officeType : 'other'}.svg`, alt: '', width: 24, height: 24 });
  const name = type ? crelt('a', { href: documentUrl(file.id, file.officeType) }, file.name) : crelt('span', file.name);
  return crelt('tr',
    crelt('td', icon, name),
    crelt('td', known ? known.label : `Type ${file.officeType}`),
    crelt('td', modified > 0 ? shownTime.format(new Date(modified)) : ''));
}

function documentTable(files) {
  if (files.length === 0) return crelt('p', { class: 'empty' }, 'No documents yet. Make the first one above.');
  const newestFirst = [...files].sort((left, right) => Number(right.modified) - Number(left.modified));
  const head = crelt('tr', crelt('th', 'Name'), crelt('th', 'Type'), crelt('th', 'Modified'));
  return crelt('table', crelt('thead', head), crelt('tbody', newestFirst.map(documentRow)));
}

function problemPanel(detail) {
  return crelt('section', { class: 'problem', role: 'alert' },
    crelt('h1', 'The list of documents is missing'),
    crelt('p', detail),
    crelt('div', { class: 'actions' }, crelt('button', { class: 'primary', type: 'button', onclick: showDocuments }, 'Retry')));
}

async function showDocuments() {
  list.replaceChildren(crelt('div', { class: 'busy', role: 'status' }, crelt('div', { class: 'spinner' }), 'Loading…'));
  const reply = await api.list();
  const files = reply.ok && reply.value && reply.value.files;
  if (Array.isArray(files)) list.replaceChildren(documentTable(files));
  else list.replaceChildren(problemPanel(reply.ok ? 'The server sent no list.' : `The documents could not be listed: ${reply.message}.`));
}

watchFailures(window, (text) => list.replaceChildren(problemPanel(`Something in this page failed: ${text}.`)));
function tell(text) {
  document.getElementById('notices').replaceChildren(crelt('div', { class: 'notice' }, crelt('span', text)));
}

window.__HOME_STARTED__ = true;
showDocuments();
const native = new NativeSide(window);
mountAccountCorner({ native, header: document.querySelector('.title-bar'), notify: tell, onChange: showDocuments });
