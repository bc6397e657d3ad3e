/**
 * The kinds of document that this front end edits. The code stands in page URLs ("officeType"); the package name
 * stands in the pre-open path and is what the desktop side calls the file type.
 */
const types = {
  w: { code: 'w', packageName: 'word', label: 'Text' },
  s: { code: 's', packageName: 'vs', label: 'Table' },
};

/** @returns {{code: string, packageName: string, label: string} | null} null for a kind without an editor here */
export function officeType(code) {
  return Object.prototype.hasOwnProperty.call(types, code) ? types[code] : null;
}

export function officeTypes() {
  return Object.values(types);
}
