// Writes the two data files of the collation, workbench/tsql/values/pinyin_order.inc and workbench/tsql/values/letter_folds.inc.
//
//   node tools/make_collation_data.mjs
//
// The order of the Chinese characters is that of the Unicode Collation Algorithm with the Chinese pinyin tailoring, the
// letters' cases and decompositions are those of the Unicode character database; both as Node's own Unicode library
// has them (a build with full locale data). The files change only when Unicode does: run it by hand and check the result in.
import { writeFileSync } from 'node:fs';

const han = [];
for (let code = 0x3400; code <= 0x9fff; ++code) {
  if (code <= 0x4dbf || code >= 0x4e00) han.push(String.fromCharCode(code));
}
const byPinyin = new Intl.Collator('zh-u-co-pinyin').compare;
han.sort((a, b) => byPinyin(a, b) || (a < b ? -1 : 1));

// A character with several readings sorts by the one that GB 2312 files it under: its first level, the 3755 common
// characters, is arranged by pinyin too. Where the two orders agree but for the strokes, nothing moves.
const common = [];
const gb2312 = new TextDecoder('gb2312');
for (let row = 0xb0; row <= 0xd7; ++row) {
  const last = row === 0xd7 ? 0xf9 : 0xfe;
  for (let cell = 0xa1; cell <= last; ++cell) common.push(gb2312.decode(new Uint8Array([row, cell])));
}
const rank = new Map([...common].sort(byPinyin).map((character, index) => [character, index]));
const sameReading = 30;  // no syllable with its tone has more common characters
for (let i = 1; i < common.length; ++i) {
  if (Math.abs(rank.get(common[i]) - i) <= sameReading) continue;
  han.splice(han.indexOf(common[i]), 1);
  han.splice(han.indexOf(common[i - 1]) + 1, 0, common[i]);
}

const lines = [];
for (let i = 0; i < han.length; i += 60) lines.push(`u"${han.slice(i, i + 60).join('')}"`);
writeFileSync(
  'workbench/tsql/values/pinyin_order.inc',
  '// The Chinese characters U+3400..U+4DBF and U+4E00..U+9FFF by pinyin. Made by tools/make_collation_data.mjs.\n' +
    lines.join('\n') + '\n');

// Each character with the letter it counts as and the number of the accents it bears (0 is none). Numbers are given to
// accents, and to combinations of them, as they come up.
const accents = new Map();
const accentNumber = (marks) => {
  if (marks === '') return 0;
  if (!accents.has(marks)) accents.set(marks, accents.size + 1);
  return accents.get(marks);
};
const folds = [];
for (let code = 0x80; code <= 0xffef; ++code) {
  const isHan = code >= 0x3400 && code <= 0x9fff;
  const isHangulOrPrivate = code >= 0xac00 && code <= 0xfaff;
  if (isHan || isHangulOrPrivate) continue;
  const character = String.fromCharCode(code);
  const fullWidthFree = code === 0x3000 || code >= 0xff00 ? character.normalize('NFKC') : character;
  const parts = fullWidthFree.toLowerCase().normalize('NFD');
  let base = parts.charCodeAt(0);
  let marks = parts.slice(1);
  // Several letters in one, and the vowel signs of other scripts, stay what they are.
  if (!/^[\u0300-\u036f\u3099\u309a]*$/.test(marks)) continue;
  if (/^[\u0300-\u036f\u3099\u309a]$/.test(parts)) {
    // An accent of its own bears itself on nothing.
    base = 0;
    marks = parts;
  }
  if (base >= 0x3041 && base <= 0x3096) base += 0x60;  // hiragana counts as katakana
  if (base === code && marks === '') continue;
  folds.push(`{0x${code.toString(16)}, 0x${base.toString(16)}, ${accentNumber(marks)}},`);
}
const foldLines = [];
for (let i = 0; i < folds.length; i += 5) foldLines.push(folds.slice(i, i + 5).join(' '));
writeFileSync(
  'workbench/tsql/values/letter_folds.inc',
  '// {character, letter it counts as, number of its accents}. Made by tools/make_collation_data.mjs.\n' +
    foldLines.join('\n') + '\n');
console.log(`${han.length} Chinese characters, ${folds.length} other characters, ${accents.size} accents`);
