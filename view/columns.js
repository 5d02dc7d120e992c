// The columns of a table of poses, as the page carries them, as numbers and words.

// The bytes behind a base64 text.
function bytesOf(text) {
  const letters = atob(text);
  const bytes = new Uint8Array(letters.length);
  for (let k = 0; k < letters.length; ++k) bytes[k] = letters.charCodeAt(k);
  return bytes;
}

const IS_LITTLE_ENDIAN = new Uint8Array(new Uint16Array([1]).buffer)[0] === 1;

// Little-endian numbers behind a base64 text, as an array of this type.
function numbersOf(text, Type) {
  const bytes = bytesOf(text);
  const size = Type.BYTES_PER_ELEMENT;
  if (bytes.length % size !== 0) throw new Error(`${bytes.length} bytes are no ${size}-byte numbers`);
  if (!IS_LITTLE_ENDIAN)
    for (let begin = 0; begin < bytes.length; begin += size) bytes.subarray(begin, begin + size).reverse();
  return new Type(bytes.buffer);
}

// A function from a row, counted from 0, to its value.
function valueReader(values) {
  if ('constant' in values) return () => values.constant;
  if ('list' in values) {
    const at = numbersOf(values.at, values.bits === 8 ? Uint8Array : Uint16Array);
    return (row) => values.list[at[row]];
  }
  const numbers = 'float64' in values ? numbersOf(values.float64, Float64Array)
    : numbersOf(values.float32, Float32Array);
  return (row) => numbers[row];
}

// Whether its values are numbers. Lists may have words, and nulls for empty cells.
function holdsNumbers(values) {
  if ('constant' in values) return typeof values.constant === 'number';
  if ('list' in values)
    return values.list.some((value) => typeof value === 'number') &&
      values.list.every((value) => typeof value === 'number' || value === null);
  return true;
}

// { name, unit, isNumeric, at(row) }: numeric columns have NaN for empty cells.
export function decodedColumn({ name, unit, values }) {
  const isNumeric = holdsNumbers(values);
  const read = valueReader(values);
  const at = isNumeric ? (row) => {
    const value = read(row);
    return value === null ? NaN : value;
  } : read;
  return { name, unit: unit || '', isNumeric, isConstant: 'constant' in values, at };
}

// Places of all atoms in a row of a trajectory, Angstrom.
export function positionsReader(text, atoms) {
  const numbers = numbersOf(text, Float32Array);
  return (row) => {
    const positions = [];
    const begin = 3 * atoms * row;
    for (let k = begin; k < begin + 3 * atoms; k += 3)
      positions.push([numbers[k], numbers[k + 1], numbers[k + 2]]);
    return positions;
  };
}
