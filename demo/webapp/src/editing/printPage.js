const style = `
body { margin: 0; color: #000; font: 11pt/1.5 "Noto Serif", "Liberation Serif", "DejaVu Serif", serif; }
h1, h2, h3, h4, h5, h6, table { font-family: "Noto Sans", "DejaVu Sans", sans-serif; }
pre, code { font: 9.5pt "DejaVu Sans Mono", monospace; }
pre { white-space: pre-wrap; }
img { max-width: 100%; }
table { border-collapse: collapse; font-size: 9.5pt; }
th, td { padding: 3px 6px; border: 1px solid #999; text-align: left; }`;

function escaped(text) {
  return text.replace(/&/g, '&amp;').replace(/</g, '&lt;').replace(/>/g, '&gt;');
}

/** A page that can be printed without this front end. */
export function printPage(title, body) {
  return `<!DOCTYPE html>\n<html>\n<head>\n<meta charset="utf-8">\n<title>${escaped(title)}</title>\n<style>${style}\n</style>\n</head>\n<body>\n${body}\n</body>\n</html>\n`;
}

/** A file name for it: what names a file on every system. */
export function printFileName(fileName) {
  const dot = fileName.lastIndexOf('.');
  // eslint-disable-next-line no-control-regex
  const base = (dot > 0 ? fileName.slice(0, dot) : fileName).replace(/[\\/:*?"<>|\u0000-\u001f]/g, ' ').trim();
  return `${base.slice(0, 60) || 'Document'}.html`;
}

/** The message for what "notifyPrintResult" tells. */
export function printResultText(result) {
  const word = String((result && result.result) || '');
  if (word === 'ok') return 'Printed.';
  if (word === 'cancelled') return 'Printing was cancelled.';
  return `Printing failed${result && result.msg ? `: ${result.msg}` : ''}.`;
}
