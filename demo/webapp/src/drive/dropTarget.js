import { dragArguments, filesOfDrop, pathsOfEvent } from './dropped.js';

const filesType = 'Files';

/**
 * Lets files and folders be dropped onto the page, or onto a folder in the list.
 * @param {object} options
 * @param {HTMLElement} options.host
 * @param {import('../document/NativeSide.js').NativeSide} options.native
 * @param {() => import('./ShellTransport.js').ShellTransport | import('./BrowserTransport.js').BrowserTransport} options.transport
 * @param {() => {group: string, folder: string}} options.place the folder that is shown
 * @param {(text: string) => void} options.onProblem
 */
export function makeDropTarget({ host, native, transport, place, onProblem }) {
  let paths = [];
  let depth = 0;
  const hasFiles = (event) => [...event.dataTransfer.types].includes(filesType);
  const folderUnder = ({ target }) => target.closest('[data-type="folder"]');
  const placeOf = (event) => {
    const row = folderUnder(event);
    return row ? { ...place(), folder: row.dataset.id } : place();
  };
  const mark = (row) => {
    host.querySelectorAll('.drop-here').forEach((each) => each.classList.remove('drop-here'));
    if (row) row.classList.add('drop-here');
  };
  const leave = () => {
    depth = 0;
    host.classList.remove('dropping');
    mark(null);
  };
  native.onEvent('ondragenter', (data) => {
    paths = pathsOfEvent(data);
  });
  const listeners = {
    dragenter() {
      ++depth;
      host.classList.add('dropping');
    },
    dragover(event) {
      event.dataTransfer.dropEffect = 'copy';
      mark(folderUnder(event));
    },
    dragleave() {
      if (--depth <= 0) leave();
    },
    async drop(event) {
      const target = placeOf(event);
      const args = dragArguments(paths, target);
      paths = [];
      leave();
      if (!transport().inShell) {
        transport().uploadFiles(target, await filesOfDrop(event.dataTransfer));
        return;
      }
      if (args) transport().uploadPaths(args);
      else onProblem('The desktop side did not say which files were dropped; the Upload button takes them too.');
    },
  };
  for (const [name, listener] of Object.entries(listeners)) {
    host.addEventListener(name, (event) => {
      if (!hasFiles(event)) return;
      event.preventDefault();
      listener(event);
    });
  }
}
