/** A file version as replies carry it, a number or its digits. @returns {number | null} */
export function fileVersion(value) {
  const isDigits = typeof value === 'string' && /^\d+$/.test(value);
  const version = isDigits ? Number(value) : value;
  return Number.isSafeInteger(version) && version >= 0 ? version : null;
}
