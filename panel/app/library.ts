// What the panel knows, and how it learns it. Views look at the fields and are told of changes.
import { NoAnswer, PanelClient, returnCodes, type Connection, type MessageOf, type OpenDocument } from '../client';
import { parseFontList, rowOf, search, type Font } from './fonts';
import { t } from './texts';

export type State = 'connecting' | 'ready' | 'unavailable' | 'lost';
export type Collection = { kind: 'all' | 'active' } | { kind: 'workgroup' | 'set' | 'smartList' | 'document'; id: number };
export interface Query { workgroupIDs: number[]; setIDs: number[]; smartSetIDs: number[] }
export type SmartList = MessageOf<38>['smartLists'][number];

/** The list that is made of a query and belongs to no smart list. */
const kNoList = 0;
const kEverything: Query = { workgroupIDs: [], setIDs: [], smartSetIDs: [] };
/** So many names are asked for at once beside those that are seen. */
const kBatch = 60;
/** A mark for who shows it: in the user's language. */
const kNameOfFontLibrary = 'Font Library (LOCALIZE ME)';
const kCopying: Record<number, boolean> = { 28: true, 52: true, 54: true, 68: true, 29: false, 53: false, 55: false, 69: false };

export class Library extends EventTarget {
  state: State = 'connecting';
  isLoading = true;
  isLoggedOut = false;
  isOffline = false;
  isStandalone = false;
  hasWebFonts = false;
  copying = new Set<number>();
  progress = '';
  notice = '';
  documents: OpenDocument[] = [];
  smartLists: SmartList[] = [];
  /** What the smart lists name. */
  sets: number[] = [];
  workgroups: { id: number; name: string }[] = [];
  collection: Collection = { kind: 'all' };
  text = '';
  /** What the collection has, and what of it the search found. */
  collected: Font[] = [];
  shown: Font[] = [];
  images = new Map<number, { normal: string; double: string }>();

  private readonly client: PanelClient;
  private fonts: Font[] = [];
  private byID = new Map<number, Font>();
  private asked = new Set<number>();
  private loads = 0;
  private isFresh = true;
  /** What the plug-in says of itself, and whether the font manager answers. */
  private isEnabled = false;
  private isReachable = true;
  private queries: Promise<unknown> = Promise.resolve();
  private reloading?: ReturnType<typeof setTimeout>;

  constructor(private readonly connection: Connection) {
    super();
    this.client = new PanelClient(connection.transport, 10, (isOpen) => this.connectionChanged(isOpen));
    const { client } = this;
    client.on(30, ({ isEnabled }) => this.availabilityChanged({ isEnabled }));
    client.on(24, ({ fontIDs }) => this.activityChanged(fontIDs, true));
    client.on(25, ({ fontIDs }) => this.activityChanged(fontIDs, false));
    client.on(32, (message) => this.takeImages(message));
    for (const id of [43, 56, 63] as const) client.on(id, () => this.reloadSoon());
    client.on(50, () => { this.change({ isLoggedOut: !this.isEnabled }); this.reloadSoon(); });
    client.on(45, ({ fontIDs }) => this.tell(t('fontMissing', this.namesOf(fontIDs))));
    client.on(60, ({ fontIDs }) => this.tell(t('nonCompliant', this.namesOf(fontIDs))));
    client.on(46, (message) => this.tell(message.isConflictError
      ? t('conflict', this.whichOne(message.fontID), this.whichOne((message as { conflictID: number }).conflictID))
      : t('notActivated', this.namesOf([message.fontID]))));
    client.on(22, () => this.change({ hasWebFonts: true }));
    client.on(23, () => this.change({ hasWebFonts: false }));
    client.on(61, () => this.change({ isOffline: true }));
    client.on(62, () => this.change({ isOffline: false }));
    client.on(64, () => void this.start());
    client.on(65, () => this.availabilityChanged({ isEnabled: false }));
    for (const [id, isCopying] of Object.entries(kCopying)) {
      client.on(Number(id) as 28, () => {
        if (isCopying) this.copying.add(Number(id));
        else this.copying.delete(Number(id) - 1);
        this.change({ progress: '' });
      });
    }
    client.on('progress', ({ text, stepIndex, numSteps }) => this.change(
      { progress: stepIndex >= numSteps ? '' : t('progress', text, Math.round(100 * stepIndex / Math.max(1, numSteps))) }));
    // A font manager that has ended says nothing any more; and what comes back is asked for.
    setInterval(() => { if (this.state === 'ready' || this.state === 'unavailable') void this.look(); }, 3000);
  }

  // --- what the user does

  show(collection: Collection): void {
    this.collection = collection;
    if (collection.kind === 'smartList') this.keepChoice(collection.id);
    else if (collection.kind === 'all') this.keepChoice(0);
    void this.collect();
  }

  find(text: string): void {
    this.text = text;
    this.change({ shown: search(this.collected, text) });
  }

  /** With its family: that is what the plug-in does. */
  async activate(font: Font): Promise<void> {
    await this.attempt(async () => {
      const { returnCode } = await this.client.request({ messageID: 8, fontID: font.id, postscriptName: font.postscriptName,
        displayName: font.name });
      if (returnCode === returnCodes.notFound) this.tell(t('unknownFont', font.name));
      else if (returnCode === returnCodes.fontMissing) this.tell(t('fontMissing', font.name));
      else if (returnCode !== returnCodes.success && !this.notice && !isGone(returnCode)) this.tell(t('notActivated', font.name));
      if (returnCode === returnCodes.notLoggedIn) this.change({ isLoggedOut: true });
      if (returnCode === returnCodes.success) this.activityChanged([font.id], true);
      if (isGone(returnCode)) this.availabilityChanged({ isReachable: false });
    });
  }

  /** Has the candidate activated in the place of a font that the document in view lacks. */
  async replace(font: Font, fontID: number): Promise<void> {
    const { collection } = this;
    if (collection.kind !== 'document') return;
    await this.attempt(async () => {
      this.documents = await this.connection.replace!(collection.id, font.name, fontID);
      await this.collect();
      if (this.shown.some((each) => each.candidates && each.name === font.name)) this.tell(t('notActivated', font.name));
    });
  }

  async switchOnWebFonts(): Promise<void> {
    await this.attempt(async () => {
      const { returnCode } = await this.client.request({ messageID: 9 });
      if (returnCode === returnCodes.success) this.change({ hasWebFonts: true });
      else this.tell(t('failed'));
    });
  }

  queryOf(id: number): Promise<MessageOf<36>> { return this.client.request({ messageID: 36, smartListID: id }); }

  /** Makes a smart list, or changes one. `query`: where it is another one; an unchanged query is not announced. */
  async save(id: number | undefined, name: string, query: Query = kEverything): Promise<void> {
    await this.attempt(async () => {
      let list = id;
      if (list === undefined) {
        list = (await this.client.request({ messageID: 39, smartListName: name, ...query })).smartList.smartListID;
      } else {
        if (query !== kEverything) await this.client.request({ messageID: 42, smartListID: list, ...query });
        if (name !== this.smartLists.find((each) => each.smartListID === list)?.smartListName)
          await this.client.request({ messageID: 33, smartListID: list, smartListName: name });
      }
      await this.loadLists();
      this.show({ kind: 'smartList', id: list });
    });
  }

  /** Shows what the query finds; nothing is kept. */
  async tryOut(query: Query): Promise<number> {
    return (await this.fontsBy(query)).length;
  }

  async remove(id: number): Promise<void> {
    await this.attempt(async () => {
      await this.client.request({ messageID: 34, smartListID: id });
      await this.loadLists();
      this.show({ kind: 'all' });
    });
  }

  dismiss(): void { this.change({ notice: '' }); }

  /** Has the names of these fonts drawn, those that are seen first. */
  draw(seen: Font[], near: Font[]): void {
    const wanted = (fonts: Font[]) => fonts.filter(({ id }) => !this.asked.has(id) && id > 0).map(({ id }) => id);
    const high = wanted(seen);
    const all = [...new Set([...high, ...wanted(near)])].slice(0, Math.max(kBatch, high.length));
    if (!all.length || this.state !== 'ready') return;
    for (const id of all) this.asked.add(id);
    this.client.request({ messageID: 32, highPriorityFontIDs: high, fontIDs: all, smartListID: kNoList })
      .catch(() => { for (const id of all) this.asked.delete(id); });
  }

  retry(): void { void this.start(); }

  // --- what happens

  private change(fields: Partial<Library>): void {
    Object.assign(this, fields);
    this.dispatchEvent(new Event('change'));
  }

  private tell(notice: string): void { this.change({ notice }); }

  private connectionChanged(isOpen: boolean): void {
    if (isOpen) void this.start();
    else this.change({ state: 'lost' });
  }

  /** As a panel that starts does; also after whatever may have been missed. */
  private async start(): Promise<void> {
    if (this.state === 'lost') this.change({ state: 'connecting' });
    try {
      const { isStandalone } = await this.client.request({ messageID: 66 });
      this.change({ isStandalone });
      this.documents = await this.connection.documents?.() ?? [];
    } catch {
      // Where it was told meanwhile that there is no font manager, there is a host.
      if (this.state === 'connecting') this.change({ state: 'lost' });
    }
    if (this.state !== 'lost') await this.look();
  }

  /** Looks whether the font manager is there. */
  private async look(): Promise<void> {
    try {
      const { returnCode, isEnabled } = await this.client.request({ messageID: 10 });
      if (this.hasWebFonts !== isEnabled) this.change({ hasWebFonts: isEnabled });
      this.availabilityChanged({ isReachable: !isGone(returnCode) });
    } catch { /* a later look tells more */ }
  }

  private availabilityChanged(fields: { isEnabled?: boolean; isReachable?: boolean }): void {
    Object.assign(this, fields);
    const state = this.isEnabled && this.isReachable ? 'ready' : 'unavailable';
    if (state === this.state) return;
    this.change({ state, isLoggedOut: this.isLoggedOut && !this.isEnabled });
    if (state === 'ready') void this.load();
  }

  private activityChanged(ids: number[], isActive: boolean): void {
    for (const id of ids) {
      const font = this.byID.get(id);
      if (font) font.isActive = isActive;
    }
    if (this.collection.kind === 'active') void this.collect();
    else this.change({});
  }

  private takeImages({ fonts }: MessageOf<32>): void {
    for (const font of fonts) {
      const normal = font.pngFilename && this.connection.locate(font.pngFilename);
      const double = font['2xPNGFilename'] && this.connection.locate(font['2xPNGFilename']);
      if (normal || double) this.images.set(font.fontID, { normal: normal || double, double: double || normal });
    }
    this.change({});
  }

  private reloadSoon(): void {
    clearTimeout(this.reloading);
    this.reloading = setTimeout(() => void this.load(), 200);
  }

  private async load(): Promise<void> {
    const load = ++this.loads;
    try {
      await this.loadLists();
      if (this.isFresh) await this.restoreChoice();
      const fonts = await this.fontsBy(kEverything);
      if (load !== this.loads) return;
      this.fonts = fonts;
      this.byID = new Map(fonts.map((font) => [font.id, font]));
      this.documents = await this.connection.documents?.() ?? [];
      const workgroups = new Map(fonts.map((font) => [font.workgroup, font]));
      this.workgroups = [...workgroups].map(([id, font]) => ({ id, name: this.workgroupOf(font) })).sort((a, b) => a.id - b.id);
      await this.collect();
    } catch (error) {
      this.fail(error);
    }
  }

  private async loadLists(): Promise<void> {
    const { smartLists } = await this.client.request({ messageID: 38 });
    const sets = new Set<number>();
    for (const { smartListID } of smartLists) for (const id of (await this.queryOf(smartListID)).setIDs) sets.add(id);
    this.change({ smartLists, sets: [...sets].sort((a, b) => a - b) });
  }

  private async fontsOf(list: number): Promise<Font[]> {
    const reply = await this.client.request({ messageID: 40, smartListID: list });
    if (reply.messageID !== 41) throw new Error(t('noFile'));
    try {
      return parseFontList(await this.connection.read(reply.filename));
    } finally {
      void this.client.request({ messageID: 13, filename: reply.filename }).catch(() => {});
    }
  }

  /** One after another: there is one list that belongs to nobody. */
  private fontsBy(query: Query): Promise<Font[]> {
    const fonts = this.queries.then(async () => {
      await this.client.request({ messageID: 35, smartListID: kNoList, ...query });
      return this.fontsOf(kNoList);
    });
    this.queries = fonts.catch(() => {});
    return fonts;
  }

  private async collect(): Promise<void> {
    const collection = this.collection;
    let fonts: Font[];
    try {
      fonts = await this.fontsIn(collection);
    } catch (error) {
      this.fail(error);
      return;
    }
    if (collection === this.collection)
      this.change({ collected: fonts, shown: search(fonts, this.text), isLoading: false });
  }

  private async fontsIn(collection: Collection): Promise<Font[]> {
    switch (collection.kind) {
      case 'all': return this.fonts;
      case 'active': return this.fonts.filter((font) => font.isActive);
      case 'workgroup': return this.fonts.filter((font) => font.workgroup === collection.id);
      case 'smartList': return this.fontsOf(collection.id);
      case 'set': return this.fontsBy({ ...kEverything, setIDs: [collection.id] });
      case 'document':
        return (this.documents[collection.id]?.fonts ?? []).map((font) => rowOf(font, font.isMissing ? undefined : this.byID.get(font.fontID)));
    }
  }

  private async restoreChoice(): Promise<void> {
    this.isFresh = false;
    const { selection } = await this.client.request({ messageID: 18 });
    if (this.smartLists.some(({ smartListID }) => smartListID === selection))
      this.change({ collection: { kind: 'smartList', id: selection } });
  }

  /** The choice that is there again when the panel is. */
  private keepChoice(selection: number): void {
    void this.client.request({ messageID: 17, selection, savesSmartList: selection > 0 }).catch(() => {});
  }

  private async attempt(work: () => Promise<void>): Promise<void> {
    this.change({ notice: '' });
    try {
      await work();
    } catch (error) {
      this.fail(error);
    }
  }

  private fail(error: unknown): void {
    this.isLoading = false;
    this.tell(error instanceof NoAnswer || !(error instanceof Error) ? t('failed') : error.message);
  }

  /** Two fonts of one name are told apart by where they are from. */
  private whichOne(id: number): string {
    const font = this.byID.get(id);
    if (!font) return String(id);
    return `${font.name.slice(0, 100)} (${this.workgroupOf(font)})`;
  }

  /** Messages have numbers for it; a name is known where fonts of documents brought one along. */
  private workgroupOf({ workgroup, source }: Font): string {
    if (source === 'system') return t('systemFonts');
    const brought = this.documents.flatMap(({ fonts }) => fonts).find((font) => !font.isMissing && font.workgroupID === workgroup);
    const name = brought?.isMissing === false ? brought.workgroupName : '';
    return name === kNameOfFontLibrary ? t('fontLibrary') : name || t('workgroup', String(workgroup));
  }

  private namesOf(ids: number[]): string {
    return ids.map((id) => this.byID.get(id)?.name.slice(0, 100) ?? String(id)).slice(0, 3).join(', ') + (ids.length > 3 ? ', …' : '');
  }
}

const isGone = (code: number) => code === returnCodes.unavailable || code === returnCodes.shutdown;
