// The library as the font manager lists it, and the fonts of documents as rows of such a list.
import type { Candidate, DocumentFont } from '../client';

export interface Font {
  id: number;
  postscriptName: string;
  name: string;
  isActive: boolean;
  source: string;
  workgroup: number;
  /** What a search looks at. */
  key: string;
  /** What a document says of it: where it is missing, or why it was taken. */
  note?: string;
  /** Of one that a document lacks: what could take its place, the best first. */
  candidates?: Candidate[];
}

/** The file of a font list: a line for each font, six columns. Lines of another shape are left out. */
export function parseFontList(text: string): Font[] {
  const fonts: Font[] = [];
  for (const line of text.split('\n')) {
    const columns = line.split('\t');
    if (columns.length < 6) continue;
    const [id, postscriptName, name, active, source, workgroup] = columns;
    fonts.push({ id: Number(id), postscriptName, name: name || postscriptName, isActive: active === '1', source,
      workgroup: Number(workgroup), key: `${name}\n${postscriptName}`.toLowerCase() });
  }
  return sorted(fonts);
}

/** By name as people sort. One collator: of 90,000 names, localeCompare would make a second's work. */
function sorted(fonts: Font[]): Font[] {
  const { compare } = new Intl.Collator(undefined, { numeric: true });
  return fonts.sort((left, right) => compare(left.name.slice(0, 200), right.name.slice(0, 200)) || left.id - right.id);
}

/** Fonts in whose names all the words occur, in the list's order. */
export function search(fonts: Font[], text: string): Font[] {
  const words = text.toLowerCase().split(/\s+/).filter(Boolean);
  return words.length ? fonts.filter((font) => words.every((word) => font.key.includes(word))) : fonts;
}

/** The row of a document's font. `listed`: that of the library, where it is there already. */
export function rowOf(font: DocumentFont, listed?: Font): Font {
  if (font.isMissing)
    return { id: 0, postscriptName: '', name: font.name, isActive: false, source: 'missing', workgroup: 0, key: font.name.toLowerCase(),
      note: font.where, candidates: font.replacements };
  const row = listed ?? { id: font.fontID, postscriptName: font.name, name: font.name, isActive: true, source: '', workgroup: 0,
    key: font.name.toLowerCase() };
  return { ...row, note: [font.version, font.reason, font.conflict].filter(Boolean).join(' – ') };
}
