/**
 * The kinds of document that there are. The code stands in page URLs ("officeType"); the package name stands in the
 * pre-open path and is what the desktop side calls the file type; the plug-in is the front-end package of the kind.
 * `rendered` kinds have a rendering by the server, which can be shown before the document is there.
 *
 * @typedef {{code: string, packageName: string, plugin: string, label: string, hasEditor: boolean, rendered: boolean}} OfficeType
 */
const types = {};

function add(code, packageName, plugin, label, { hasEditor = false, rendered = false } = {}) {
  types[code] = { code, packageName, plugin, label, hasEditor, rendered };
}

add('w', 'word', 'quillword', 'Text', { hasEditor: true });
add('s', 'vs', 'quillvs', 'Table', { hasEditor: true, rendered: true });
add('d', 'db', 'quilldb', 'Database');
add('p', 'vpp', 'quillvpp', 'Presentation', { rendered: true });
add('f', 'pdf', 'quillpdf', 'PDF');
add('o', 'otl', 'quill', 'Outline', { rendered: true });
add('k', 'nsheet', 'quillnsheet', 'Sheet', { rendered: true });
add('mo', 'motl', 'quillmotl', 'Mobile outline', { rendered: true });

/** @returns {OfficeType | null} null for a kind that there is not */
export function officeType(code) {
  return Object.prototype.hasOwnProperty.call(types, code) ? types[code] : null;
}

/** @returns {OfficeType[]} */
export function officeTypes() {
  return Object.values(types);
}
