// Numbers as text, with the digits that the program itself writes.

// Decimals that show every binary digit of a number whose tie could matter.
const EXACT_DECIMALS = 60;

// Correctly rounded from the binary value; a tie goes to the even digit, which toFixed does not do.
export function fixedText(value, decimals) {
  const sign = value < 0 || Object.is(value, -0) ? '-' : '';
  const size = Math.abs(value);
  const rounded = size.toFixed(decimals);
  const [whole, fraction] = size.toFixed(EXACT_DECIMALS).split('.');
  const isTie = /^50*$/.test(fraction.slice(decimals));
  const digits = whole + fraction.slice(0, decimals);
  const staysEven = isTie && Number(digits[digits.length - 1]) % 2 === 0;
  if (!staysEven) return sign + rounded;
  return sign + (decimals > 0 ? whole + '.' + fraction.slice(0, decimals) : whole);
}

// The shortest text that reads back as the same number: fixed notation unless the one with an
// exponent, of two digits at least, is shorter.
export function shortestText(value) {
  const [digits, exponent] = value.toExponential().split('e');
  const size = exponent.slice(1);
  const scientific = digits + 'e' + exponent[0] + (size.length < 2 ? '0' + size : size);
  const fixed = Object.is(value, -0) ? '-0' : String(value);
  return fixed.includes('e') || scientific.length < fixed.length ? scientific : fixed;
}

// For people: at most so many decimals, none that say nothing.
export function shownNumber(value, decimals) {
  const text = fixedText(value, decimals);
  const short = text.includes('.') ? text.replace(/\.?0+$/, '') : text;
  return short === '-0' ? '0' : short;
}

// "12,345".
export function countText(count) {
  return String(count).replace(/\B(?=(\d{3})+$)/g, ',');
}
