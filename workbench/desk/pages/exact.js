// Exact decimals out of texts, as figures come: sums, differences and quotients that no binary number has rounded.

const form = /^(-?)(\d{1,3}(?:,\d{3})+|\d+)(?:\.(\d+))?$/;

// Of "1,234.50", {units: 123450n, scale: 2}. Throws when the text is no number.
export function exact(text) {
  const [, sign, whole, decimals = ''] = form.exec(text) ?? [];
  if (whole === undefined) throw new Error(`no number: ${text}`);
  const units = BigInt(whole.replaceAll(',', '') + decimals);
  return {units: sign ? -units : units, scale: decimals.length};
}
export const zero = {units: 0n, scale: 0};

const raised = ({units, scale}, to) => units * 10n ** BigInt(to - scale);

export function plus(one, other) {
  const scale = Math.max(one.scale, other.scale);
  return {units: raised(one, scale) + raised(other, scale), scale};
}
export function minus(one, other) {
  return plus(one, {units: -other.units, scale: other.scale});
}

const size = (units) => (units < 0n ? -units : units);

// One by the other with so many decimals, rounded half away from zero; null when the other is zero.
export function quotient(one, other, decimals) {
  if (other.units === 0n) return null;
  const dividend = size(one.units) * 10n ** BigInt(decimals + other.scale);
  const divisor = size(other.units) * 10n ** BigInt(one.scale);
  const units = (2n * dividend + divisor) / (2n * divisor);
  return {units: one.units < 0n === other.units < 0n ? units : -units, scale: decimals};
}

// The larger of two sizes comes first, whatever the signs.
export function bySize(one, other) {
  const scale = Math.max(one.scale, other.scale);
  const difference = size(raised(other, scale)) - size(raised(one, scale));
  return difference < 0n ? -1 : Number(difference > 0n);
}

// "1,234.50"
export function exactText({units, scale}) {
  const digits = String(size(units)).padStart(scale + 1, '0');
  const whole = digits.slice(0, digits.length - scale).replaceAll(/\B(?=(\d{3})+$)/g, ',');
  return (units < 0n ? '-' : '') + whole + (scale > 0 ? `.${digits.slice(-scale)}` : '');
}

// Where a number stands on a scale that is drawn. For nothing else.
export function placeOf(text) {
  return text === null || text === undefined ? null : Number(text.replaceAll(',', ''));
}
