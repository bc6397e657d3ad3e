/**
 * Shapes of answers. A shape is a description of a value: a marker below, a text, number or flag that the value must
 * equal, a list with one shape for all entries, or an object whose members all must be there; a member whose name ends
 * in "?" may be missing. Other members than those named are not allowed.
 */
export const text = marker('text', (value) => typeof value === 'string');
export const flag = marker('true or false', (value) => typeof value === 'boolean');
export const number = marker('number', (value) => typeof value === 'number');
export const object = marker('object', (value) => value !== null && typeof value === 'object' && !Array.isArray(value));

function marker(name, fits) {
  return Object.freeze({ marker: name, fits });
}

/** One of several shapes. */
export function either(...shapes) {
  return Object.freeze({ shapes });
}

function isMarker(shape) {
  return shape !== null && typeof shape === 'object' && 'marker' in shape;
}

function isChoice(shape) {
  return shape !== null && typeof shape === 'object' && Array.isArray(shape.shapes);
}

function shown(value) {
  return value === undefined ? 'nothing' : JSON.stringify(value);
}

function memberProblem(value, shape, place) {
  const expected = new Map(Object.entries(shape).map(([name, each]) => [name.replace(/\?$/, ''), each]));
  const unexpected = Object.keys(value).find((name) => !expected.has(name));
  if (unexpected !== undefined) return `${place}: "${unexpected}" is not expected`;
  for (const [name, each] of Object.entries(shape)) {
    const plain = name.replace(/\?$/, '');
    if (!(plain in value)) {
      if (!name.endsWith('?')) return `${place}: "${plain}" is missing`;
      continue;
    }
    const problem = shapeProblem(value[plain], each, `${place}.${plain}`);
    if (problem) return problem;
  }
  return '';
}

/** @returns {string} what does not fit, or an empty text */
export function shapeProblem(value, shape, place = 'answer') {
  if (isMarker(shape)) return shape.fits(value) ? '' : `${place} is ${shown(value)}, not a ${shape.marker}`;
  if (isChoice(shape)) {
    const problems = shape.shapes.map((each) => shapeProblem(value, each, place));
    return problems.includes('') ? '' : problems.join(', and ');
  }
  if (Array.isArray(shape)) {
    if (!Array.isArray(value)) return `${place} is ${shown(value)}, not a list`;
    return value.map((each, index) => shapeProblem(each, shape[0], `${place}[${index}]`)).find(Boolean) || '';
  }
  if (shape !== null && typeof shape === 'object') {
    return object.fits(value) ? memberProblem(value, shape, place) : `${place} is ${shown(value)}, not an object`;
  }
  return value === shape ? '' : `${place} is ${shown(value)}, not ${shown(shape)}`;
}

/** The shape as a person reads it, in the manner of JSON. */
export function shapeText(shape) {
  if (shape === undefined) return 'nothing';
  if (isMarker(shape)) return shape.marker;
  if (isChoice(shape)) return shape.shapes.map(shapeText).join(' or ');
  if (Array.isArray(shape)) return `[${shapeText(shape[0])}, …]`;
  if (shape !== null && typeof shape === 'object') {
    const members = Object.entries(shape).map(([name, each]) => {
      const plain = name.replace(/\?$/, '');
      return `"${plain}"${plain === name ? '' : '?'}: ${shapeText(each)}`;
    });
    return `{${members.join(', ')}}`;
  }
  return JSON.stringify(shape);
}
