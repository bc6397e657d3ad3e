/** Whether two JSON values say the same, whatever the order of their members. */
export function sameJson(left, right) {
  if (left === right) return true;
  if (typeof left !== 'object' || typeof right !== 'object' || left === null || right === null) return false;
  if (Array.isArray(left) !== Array.isArray(right)) return false;
  const names = Object.keys(left);
  return names.length === Object.keys(right).length
    && names.every((name) => Object.prototype.hasOwnProperty.call(right, name) && sameJson(left[name], right[name]));
}
