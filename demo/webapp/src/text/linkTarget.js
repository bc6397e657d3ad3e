/** Turns what a user types into a link target, or null when it is not one that may be followed. */
export function linkTarget(text) {
  const trimmed = text.trim();
  if (trimmed === '') return null;
  if (/^[a-z][a-z0-9+.-]*:(?!\d)/i.test(trimmed)) return /^(https?|mailto|tel):/i.test(trimmed) ? trimmed : null;
  return trimmed.startsWith('/') || trimmed.startsWith('#') ? trimmed : `https://${trimmed}`;
}
