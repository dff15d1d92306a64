#!/usr/bin/env node
// Makes the table-data files of examples/reference from the CLDR packages.
//
//   npm install --prefix DIR \
//     cldr-core@48.2.0 cldr-localenames-full@48.2.0 cldr-numbers-full@48.2.0
//   node convert_cldr.mjs DIR/node_modules [--check]
//
// Without --check the files beside geo.script are rewritten.  With it nothing
// is written: the program examines the files that are there, compares them with
// what the packages give, and ends with 1 when something is wrong.  The same
// packages always give the same bytes, whatever the system and its language.

import { existsSync, readFileSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

// The number of a language in the database is its place here.
const LANGUAGES = ['en', 'de', 'fr', 'el', 'ar', 'ja', 'es'];

const SEPARATOR = '\u00AC';
const SECTION = /^"#TS\(([^"]*)\)TS~"$/;
const LINE_LIMIT = 4095;  // units that a reader takes for one line
const FIRST_USER_ID = 20000;  // from here on IDs belong to the user

// Codes that name nothing: pseudo-locales, unknown, no linguistic content.
const PLACEHOLDERS = new Set(
  ['XA', 'XB', 'ZZ', 'XXX', 'mul', 'und', 'zxx']);

const OUT_DIR = join(dirname(fileURLToPath(import.meta.url)), 'reference');

// --- Reading the packages ---------------------------------------------------

function fail(message) {
  console.error(`convert_cldr: ${message}`);
  process.exit(1);
}

function reader(packages) {
  return (path) => {
    try {
      return JSON.parse(readFileSync(join(packages, path), 'utf8'));
    } catch (error) {
      return fail(`cannot read ${path} in ${packages}: ${error.message}`);
    }
  };
}

function readPackages(packages) {
  const read = reader(packages);
  const names = (kind) => LANGUAGES.map((language) =>
    read(`cldr-localenames-full/main/${language}/${kind}.json`)
      .main[language].localeDisplayNames[kind]);
  const currencies = LANGUAGES.map((language) =>
    read(`cldr-numbers-full/main/${language}/currencies.json`)
      .main[language].numbers.currencies);
  const core = (name) =>
    read(`cldr-core/supplemental/${name}.json`).supplemental;
  return {
    version: read('cldr-core/package.json').version,
    territories: names('territories'),
    languages: names('languages'),
    currencies: currencies.map((all) => Object.fromEntries(
      Object.entries(all).map(([code, one]) => [code, one.displayName]))),
    codes: core('codeMappings').codeMappings,
    territoryInfo: core('territoryInfo').territoryInfo,
    languageAliases: core('aliases').metadata.alias.languageAlias,
    currencyData: core('currencyData').currencyData,
  };
}

// --- IDs, order, rows -------------------------------------------------------

// The letters of a code read as a number; different for every code of the same
// length.
function lettersAsNumber(code) {
  return [...code.toUpperCase()].reduce(
    (sum, letter) => sum * 26 + letter.charCodeAt(0) - 65, 0);
}

// The numeric code of a territory or currency; a number from 1000 on for a code
// without one.  Of two that share one the later code keeps it: CNY, not CNH.
function numericIds(codes, mappings) {
  const holders = new Map(codes.map((code) =>
    [Number(mappings[code]?._numeric ?? code), code]));
  return new Map(codes.map((code) => {
    const id = Number(mappings[code]?._numeric ?? code);
    return [code, holders.get(id) === code && !Number.isNaN(id)
      ? id : 1000 + lettersAsNumber(code)];
  }));
}

// Languages have no numeric code: two letters give 1000 to 1675, three letters
// 2000 to 19575.
function languageIds(codes) {
  return new Map(codes.map((code) =>
    [code, (code.length === 2 ? 1000 : 2000) + lettersAsNumber(code)]));
}

// What names are ordered by: without accents and case, so that the order does
// not depend on the collation tables of the program that runs this.
function sortKey(name) {
  return name.normalize('NFD').replace(/\p{M}/gu, '').toLowerCase();
}

// The codes that every language has a name for, in the order of their codes.
function codesWithNames(names, pattern) {
  return Object.keys(names[0])
    .filter((code) => pattern.test(code) && !PLACEHOLDERS.has(code))
    .filter((code) => names.every((one) => one[code]))
    .sort();
}

function text(value) {
  return `"${value}"`;
}

function section(code, names) {
  const pieces = names.map((one) => one[code]);
  if (pieces.some((piece) => /["#~\u00AC\0-\x1F]/.test(piece))) {
    fail(`a name of ${code} cannot be stored: ${pieces.join(' | ')}`);
  }
  return text(`#TS(${pieces.join(SEPARATOR)})TS~`);
}

// Rows ID, FOLGE, STATUS, CODE, NAME and what more(code) gives, by ID.  FOLGE
// numbers the active rows 1, 2, 3 … by their English names.
function makeRows(names, codes, ids, isActive, more = () => []) {
  const folge = new Map(codes.filter(isActive)
    .map((code) => [sortKey(names[0][code]), code])
    .sort(([a, c], [b, d]) => (a < b ? -1 : a > b ? 1 : c < d ? -1 : 1))
    .map(([, code], index) => [code, index + 1]));
  return codes
    .map((code) => [ids.get(code), folge.get(code) ?? 0,
      folge.has(code) ? 0 : 1, text(code), section(code, names), ...more(code)])
    .sort((a, b) => a[0] - b[0]);
}

// --- The tables -------------------------------------------------------------

function territoryRows(cldr) {
  const codes = codesWithNames(cldr.territories, /^([A-Z]{2}|\d{3})$/);
  return makeRows(cldr.territories, codes, numericIds(codes, cldr.codes),
    () => true, (code) => {
      const info = cldr.territoryInfo[code];
      return [info?._population ?? 0, info?._literacyPercent ?? 0];
    });
}

// A currency is withdrawn when its use has ended everywhere.
function currencyRows(cldr) {
  const uses = Object.values(cldr.currencyData.region).flat()
    .flatMap((use) => Object.entries(use));
  const isActive = (code) => uses.some(([used, use]) =>
    used === code && use._to === undefined);
  const { fractions } = cldr.currencyData;
  const codes = codesWithNames(cldr.currencies, /^[A-Z]{3}$/);
  return makeRows(cldr.currencies, codes, numericIds(codes, cldr.codes),
    isActive,
    (code) => [(fractions[code] ?? fractions.DEFAULT)._digits]);
}

// A language code is withdrawn when another one has taken its place.
function languageRows(cldr) {
  const codes = codesWithNames(cldr.languages, /^[a-z]{2,3}$/);
  return makeRows(cldr.languages, codes, languageIds(codes),
    (code) => cldr.languageAliases[code] === undefined);
}

function makeTables(cldr) {
  return {
    TERRITORY: territoryRows(cldr),
    CURRENCY: currencyRows(cldr),
    LANGUAGE: languageRows(cldr),
    VERSION: [[text(cldr.version)]],
  };
}

// UTF-16, little-endian, with a byte-order mark; one row a line.
function encode(rows) {
  const lines = rows.map((row) => `${row.join(',')}\r\n`);
  return Buffer.from(`\uFEFF${lines.join('')}`, 'utf16le');
}

function dataFile(table) {
  return `${table.toLowerCase()}.dat`;
}

// --- Examining what is there --------------------------------------------------

// The tables of a script with their columns as [name, type].
function readScript(name) {
  const tables = {};
  let columns = null;
  for (const line of readFileSync(join(OUT_DIR, name), 'latin1').split('\n')) {
    const words = line.split(/[ \t]+/).filter(Boolean);
    if (words[0] === 'ENDDEF') {
      columns = null;
    } else if (columns) {
      columns.push(words);
    } else if (words[0] === 'NEWTABLE') {
      tables[words[1]] = columns = [];
    }
  }
  return tables;
}

// Splits at the commas that an even number of quotes follows.
function splitLine(line) {
  return line.split(/,(?=(?:[^"]*"[^"]*")*[^"]*$)/);
}

const VALUE_PATTERNS = {
  integer: /^-?\d{1,9}$|^-?1\d{9}$/,
  real: /^-?\d+(\.\d+)?$/,
  string: /^"[^"]*"$/,
};

function checkLine(line, columns, complain) {
  if (line.length > LINE_LIMIT) complain('the line is too long');
  const values = splitLine(line);
  if (values.length !== columns.length) {
    complain(`${values.length} values, not ${columns.length}`);
  }
  columns.forEach(([name, type], i) => {
    const value = values[i] ?? '';
    if (!VALUE_PATTERNS[type]?.test(value)) {
      complain(`${name} is no ${type}: ${value}`);
    }
    if (name !== 'NAME') return;
    const pieces = SECTION.exec(value)?.[1].split(SEPARATOR) ?? [];
    if (pieces.length !== LANGUAGES.length || pieces.includes('')) {
      complain(`not a name in ${LANGUAGES.length} languages: ${value}`);
    }
  });
  return values;
}

function checkNumbers(rows, complain) {
  const ids = rows.map((row) => Number(row[0]));
  if (new Set(ids).size !== ids.length) complain('an ID occurs twice');
  if (ids.some((id) => id < 1 || id >= FIRST_USER_ID)) {
    complain('an ID is out of range');
  }
  const places = rows.filter((row) => row[2] === '0')
    .map((row) => Number(row[1])).sort((a, b) => a - b);
  if (places.some((place, i) => place !== i + 1)) {
    complain('FOLGE does not number the active rows');
  }
  if (rows.some((row) => row[2] !== '0' && row[1] !== '0')) {
    complain('an inactive row has a place');
  }
}

function checkFile(table, columns, expected, complain) {
  const path = join(OUT_DIR, dataFile(table));
  if (!existsSync(path)) return complain('the file is missing');
  const bytes = readFileSync(path);
  if (!bytes.equals(expected)) complain('not what the packages give');
  if (bytes[0] !== 0xFF || bytes[1] !== 0xFE) complain('no byte-order mark');
  const lines = bytes.subarray(2).toString('utf16le').split('\r\n');
  if (bytes.length % 2 !== 0 || lines.pop() !== '') {
    complain('the last line has no end');
  }
  const rows = lines.map((line, i) => checkLine(line, columns,
    (what) => complain(`line ${i + 1}: ${what}`)));
  if (table !== 'VERSION') checkNumbers(rows, complain);
  console.log(`${dataFile(table)}: ${rows.length} rows, longest line ` +
    `${Math.max(...lines.map((line) => line.length))} units`);
}

function check(tables) {
  let findings = 0;
  const complain = (what) => {
    findings += 1;
    console.error(`convert_cldr: ${what}`);
  };
  const columns = readScript('geo.script');
  if (JSON.stringify(columns) !== JSON.stringify(readScript('user.script'))) {
    complain('the scripts do not define the same tables');
  }
  for (const [table, rows] of Object.entries(tables)) {
    checkFile(table, columns[table] ?? [], encode(rows),
      (what) => complain(`${dataFile(table)}: ${what}`));
  }
  return findings;
}

// --- The program --------------------------------------------------------------

const [packages, option, ...rest] = process.argv.slice(2);
if (!packages || rest.length > 0 || ![undefined, '--check'].includes(option)) {
  console.error('usage: node convert_cldr.mjs FOLDER_OF_PACKAGES [--check]');
  process.exit(2);
}
const tables = makeTables(readPackages(packages));
if (option === '--check') {
  process.exitCode = check(tables) === 0 ? 0 : 1;
} else {
  for (const [table, rows] of Object.entries(tables)) {
    writeFileSync(join(OUT_DIR, dataFile(table)), encode(rows));
    console.log(`${dataFile(table)}: ${rows.length} rows`);
  }
}
