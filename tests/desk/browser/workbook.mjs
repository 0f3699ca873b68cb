// The cells of a workbook's sheets, as texts, for tests of exports: enough of the two formats for what quillon writes.
import {inflateRawSync} from 'node:zlib';

// The files of a zip archive: name -> content.
function unzipped(archive) {
  const files = new Map();
  const end = archive.lastIndexOf(Buffer.from('PK\x05\x06', 'latin1'));
  let at = archive.readUInt32LE(end + 16);
  for (let left = archive.readUInt16LE(end + 10); left > 0; left -= 1) {
    const method = archive.readUInt16LE(at + 10);
    const size = archive.readUInt32LE(at + 20);
    const nameSize = archive.readUInt16LE(at + 28);
    const name = archive.toString('utf8', at + 46, at + 46 + nameSize);
    const local = archive.readUInt32LE(at + 42);
    const from = local + 30 + archive.readUInt16LE(local + 26) + archive.readUInt16LE(local + 28);
    const packed = archive.subarray(from, from + size);
    files.set(name, method === 0 ? packed : inflateRawSync(packed));
    at += 46 + nameSize + archive.readUInt16LE(at + 30) + archive.readUInt16LE(at + 32);
  }
  return files;
}

const plain = (text) =>
  text.replaceAll('&lt;', '<').replaceAll('&gt;', '>').replaceAll('&quot;', '"').replaceAll('&amp;', '&');
const columnOf = (reference) =>
  [...reference.replace(/\d+$/, '')].reduce((sum, letter) => sum * 26 + letter.charCodeAt(0) - 64, 0) - 1;

// The rows of the first sheet: of each, the texts of its cells, '' where there is none.
export function sheetRows(workbook) {
  const xml = unzipped(workbook).get('xl/worksheets/sheet1.xml').toString('utf8');
  return [...xml.matchAll(/<row [^>]*?(?:\/>|>(.*?)<\/row>)/gs)].map(([, row]) => {
    const cells = [];
    for (const [, reference, content = ''] of (row ?? '').matchAll(/<c r="([A-Z]+\d+)"[^>]*?(?:\/>|>(.*?)<\/c>)/gs)) {
      const text = /<t[^>]*>(.*?)<\/t>/s.exec(content)?.[1] ?? /<v>(.*?)<\/v>/s.exec(content)?.[1] ?? '';
      cells[columnOf(reference)] = plain(text);
    }
    return Array.from(cells, (text) => text ?? '');
  });
}
