import crelt from 'crelt';

/** Hands a file to the browser's downloads. */
export function downloadBlob(blob, fileName) {
  const url = URL.createObjectURL(blob);
  const link = crelt('a', { href: url, download: fileName, hidden: 'hidden' });
  document.body.append(link);
  link.click();
  link.remove();
  setTimeout(() => URL.revokeObjectURL(url), 60000);
}

/** Lets the user choose one file. @returns {Promise<File>} stays pending when nothing is chosen */
export function chooseFile(accept) {
  return new Promise((resolve) => {
    const input = crelt('input', { type: 'file', accept, hidden: 'hidden' });
    input.addEventListener('change', () => {
      input.remove();
      if (input.files.length > 0) resolve(input.files[0]);
    });
    document.body.append(input);
    input.click();
  });
}

/** "Plan.docx" with extension "md" → "Plan.md". */
export function withExtension(fileName, extension) {
  const dot = fileName.lastIndexOf('.');
  return `${dot > 0 ? fileName.slice(0, dot) : fileName}.${extension}`;
}

/** Says that a file could not be read or made. */
export function tellFailure(text) {
  window.skyleafDocs.notify({ id: 'file', text });
}
