// All texts of the app. {0} and {1} stand for what is put in.
const english = {
  title: 'Fonts',
  search: 'Search fonts', collection: 'Show', library: 'Library', all: 'All fonts', active: 'Active', systemFonts: 'System fonts', fontLibrary: 'Font Library',
  workgroup: 'Workgroup {0}', workgroups: 'Workgroups', set: 'Set {0}', sets: 'Sets', smartLists: 'Smart lists', smartList: 'Smart list',
  documents: 'Documents', documentFonts: 'Fonts of {0}',
  activate: 'Activate', activateFamily: 'Activate {0} with its family', isActive: 'Active', missing: 'Missing', replace: 'Replace…', replaceFont: 'Replace {0}', instead: 'In the place of {0}', insteadHint: 'The document is not changed: the font is activated, and the choice is offered first the next time.',
  count: '{0} fonts', countOf: '{0} of {1} fonts', one: '1 font', selected: 'Font list',
  newList: 'New smart list', editList: 'Edit smart list', rename: 'Rename', remove: 'Delete', removeAsk: 'Delete the smart list “{0}”? Its fonts stay.',
  name: 'Name', takes: 'Takes fonts from', takesAll: 'With none chosen it has all fonts.', save: 'Save', cancel: 'Cancel', attempt: 'Try', attempted: 'Tried: {0}. Nothing was kept yet.',
  webFonts: 'Web fonts', webFontsOn: 'On. They are switched off in the font manager.', webFontsOff: 'Off',
  connecting: 'Connecting to the host…', loading: 'Loading fonts…',
  lost: 'The host does not answer.', lostHint: 'If it has ended, start it again; this page tries again by itself.',
  unavailable: 'The font manager is not available.', unavailableHint: 'It may have ended, nobody may be logged in, or the plug-in is switched off. The panel is back with it.',
  again: 'Try again',
  loggedOut: 'Nobody is logged in to the font manager.', loggedOutHint: 'Log in there; fonts can be activated again then.',
  offline: 'Offline', standalone: 'Without a server', copying: 'Copying font records…', progress: '{0} ({1} %)',
  emptyLibrary: 'There are no fonts yet.', emptyLibraryHint: 'Add some in the font manager; they appear here at once.',
  emptySearch: 'No font is called “{0}”.', emptySearchHint: 'Try a part of its name, or show all fonts.', emptyList: 'This list is empty.', clear: 'Clear search',
  notActivated: '{0} could not be activated.', conflict: '{0} is active. Another font of its name, {1}, is too: documents may show either.',
  nonCompliant: 'The licence does not allow this: {0}.', fontMissing: 'The file of {0} is gone. Add it again in the font manager.', unknownFont: '{0} is not known any more.', failed: 'That did not work. Try again; the plug-in’s trace says why.', close: 'Close',
  noFile: 'No font list could be written. There may be no room on the disk; free some and try again.',
};
export type Text = keyof typeof english;

const german: Record<Text, string> = {
  title: 'Schriften',
  search: 'Schriften suchen', collection: 'Anzeigen', library: 'Bibliothek', all: 'Alle Schriften', active: 'Aktive', systemFonts: 'Systemschriften', fontLibrary: 'Schriftbibliothek',
  workgroup: 'Arbeitsgruppe {0}', workgroups: 'Arbeitsgruppen', set: 'Satz {0}', sets: 'Sätze', smartLists: 'Intelligente Listen', smartList: 'Intelligente Liste',
  documents: 'Dokumente', documentFonts: 'Schriften von {0}',
  activate: 'Aktivieren', activateFamily: '{0} samt Familie aktivieren', isActive: 'Aktiv', missing: 'Fehlt', replace: 'Ersetzen …', replaceFont: '{0} ersetzen', instead: 'Anstelle von {0}', insteadHint: 'Das Dokument ändert sich nicht: Die Schrift wird aktiviert und das nächste Mal zuerst angeboten.',
  count: '{0} Schriften', countOf: '{0} von {1} Schriften', one: '1 Schrift', selected: 'Schriftliste',
  newList: 'Neue intelligente Liste', editList: 'Intelligente Liste bearbeiten', rename: 'Umbenennen', remove: 'Löschen', removeAsk: 'Die intelligente Liste „{0}“ löschen? Ihre Schriften bleiben.',
  name: 'Name', takes: 'Nimmt Schriften aus', takesAll: 'Ist nichts gewählt, hat sie alle Schriften.', save: 'Sichern', cancel: 'Abbrechen', attempt: 'Probieren', attempted: 'Probiert: {0}. Noch ist nichts gesichert.',
  webFonts: 'Webschriften', webFontsOn: 'An. Ausgeschaltet werden sie in der Schriftverwaltung.', webFontsOff: 'Aus',
  connecting: 'Verbindung zum Programm …', loading: 'Schriften werden geladen …',
  lost: 'Das Programm antwortet nicht.', lostHint: 'Ist es beendet, starten Sie es neu; diese Seite versucht es von selbst wieder.',
  unavailable: 'Die Schriftverwaltung ist nicht erreichbar.', unavailableHint: 'Vielleicht ist sie beendet, niemand ist angemeldet, oder das Plug-in ist ausgeschaltet. Danach geht es hier weiter.',
  again: 'Noch einmal',
  loggedOut: 'In der Schriftverwaltung ist niemand angemeldet.', loggedOutHint: 'Melden Sie sich dort an; dann lassen sich wieder Schriften aktivieren.',
  offline: 'Offline', standalone: 'Ohne Server', copying: 'Schriftdaten werden kopiert …', progress: '{0} ({1} %)',
  emptyLibrary: 'Noch gibt es keine Schriften.', emptyLibraryHint: 'Fügen Sie in der Schriftverwaltung welche hinzu; sie erscheinen hier sofort.',
  emptySearch: 'Keine Schrift heißt „{0}“.', emptySearchHint: 'Suchen Sie nach einem Teil des Namens oder in allen Schriften.', emptyList: 'Diese Liste ist leer.', clear: 'Suche löschen',
  notActivated: '{0} ließ sich nicht aktivieren.', conflict: '{0} ist aktiv. Eine andere Schrift dieses Namens, {1}, ist es auch: Dokumente zeigen vielleicht die eine oder die andere.',
  nonCompliant: 'Die Lizenz erlaubt das nicht: {0}.', fontMissing: 'Die Datei von {0} ist weg. Fügen Sie sie in der Schriftverwaltung neu hinzu.', unknownFont: '{0} ist nicht mehr bekannt.', failed: 'Das hat nicht geklappt. Versuchen Sie es noch einmal; die Ablaufverfolgung des Plug-ins sagt, warum.', close: 'Schließen',
  noFile: 'Die Schriftliste ließ sich nicht schreiben. Vielleicht ist der Datenträger voll; schaffen Sie Platz und versuchen Sie es noch einmal.',
};

export const language = navigator.language.toLowerCase().startsWith('de') ? 'de' : 'en';
const texts = language === 'de' ? german : english;
const number = new Intl.NumberFormat(language);

/** The text in the user's language. */
export function t(text: Text, ...parts: (string | number)[]): string {
  return texts[text].replace(/\{(\d)\}/g, (_, index) => {
    const part = parts[index];
    return typeof part === 'number' ? number.format(part) : part;
  });
}
