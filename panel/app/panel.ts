import { LitElement, css, html, nothing, svg } from 'lit';
import { FontList } from './font-list';
import type { Font } from './fonts';
import type { Collection, Library } from './library';
import { ListEditor } from './list-editor';
import { ReplacementChooser } from './replacement-chooser';
import { controls } from './styles';
import { t, type Text } from './texts';

interface Entry { collection: Collection; name: string }
interface Group { heading: Text; entries: Entry[] }

const kIcons = {
  add: svg`<path d="M8 3v10M3 8h10"/>`,
  edit: svg`<path d="m3 13 .6-2.8L10.8 3 13 5.2 5.8 12.4zM9.4 4.4l2.2 2.2"/>`,
  remove: svg`<path d="M3 4.5h10M6 4.5V3h4v1.5M4.5 4.5 5 13h6l.5-8.5M7 7v3.5M9 7v3.5"/>`,
};

const isSame = (left: Collection, right: Collection) =>
  left.kind === right.kind && (left as { id?: number }).id === (right as { id?: number }).id;

/** The whole panel: what there is to show, the search, the list, and what is going on. */
export class FontPanel extends LitElement {
  static override properties = { library: { attribute: false }, version: { state: true } };
  library?: Library;
  private version = 0;

  static override styles = [controls, css`
    :host { display: grid; height: 100%; grid-template: 'head' auto 'messages' auto 'main' 1fr 'foot' auto / minmax(0, 1fr); }
    nav { display: none; }
    header { grid-area: head; display: flex; flex-wrap: wrap; gap: 8px; padding: 12px; border-bottom: 1px solid var(--line); }
    h1 { position: absolute; width: 1px; height: 1px; margin: 0; overflow: hidden; clip-path: inset(50%); }
    .choice { flex: 1 1 100%; display: flex; gap: 8px; min-width: 0; }
    .choice select { flex: 1; min-width: 0; }
    .choice button { flex: none; }
    .icon { padding: 0 8px; }
    .icon svg { display: block; width: 16px; height: 16px; fill: none; stroke: currentColor; stroke-width: 1.4; }
    input[type='search'] { flex: 1; min-width: 0; }
    .messages { grid-area: messages; }
    .message { display: flex; gap: 12px; align-items: center; padding: 8px 12px; background: var(--warning-ground); color: var(--text); }
    .message p { margin: 0; flex: 1; overflow-wrap: anywhere; }
    .message b { color: var(--warning); display: block; }
    main { grid-area: main; display: grid; min-height: 0; padding: 4px 0; }
    .none { place-self: center; text-align: center; max-width: 280px; padding: 24px; }
    .none h2 { font-size: 15px; line-height: 20px; margin: 0 0 4px; overflow-wrap: anywhere; }
    .none p { margin: 0 0 16px; color: var(--quiet); }
    .skeleton { height: 24px; margin: 16px 20px; border-radius: 6px; background: var(--raised); }
    footer { grid-area: foot; display: flex; align-items: center; gap: 16px; min-height: 40px; padding: 4px 12px; border-top: 1px solid var(--line); font-size: 12px; color: var(--quiet); }
    footer .cut { flex: 1; }
    .switch { display: flex; align-items: center; gap: 8px; border: 0; padding: 0 4px; height: 28px; background: none; font-size: 12px; color: var(--text); }
    .switch i { width: 28px; height: 16px; border-radius: 8px; background: var(--quiet); position: relative; }
    .switch i::after { content: ''; position: absolute; left: 2px; top: 2px; width: 12px; height: 12px; border-radius: 6px; background: var(--ground); transition: left .15s; }
    .switch[aria-checked='true'] i { background: var(--accent); }
    .switch[aria-checked='true'] i::after { left: 14px; }
    .badge { border: 1px solid var(--line); border-radius: 10px; padding: 0 8px; white-space: nowrap; }
    @media (min-width: 720px) {
      :host { grid-template: 'nav head' auto 'nav messages' auto 'nav main' 1fr 'nav foot' auto / 232px minmax(0, 1fr); }
      nav { grid-area: nav; display: block; overflow: auto; padding: 12px 8px; background: var(--raised); border-right: 1px solid var(--line); }
      .choice select { display: none; }
      .choice { flex: none; order: 1; }
    }
    nav h2 { font-size: 12px; line-height: 16px; font-weight: 600; color: var(--quiet); margin: 16px 8px 4px; }
    nav h2:first-child { margin-top: 4px; }
    nav ul { list-style: none; margin: 0; padding: 0; }
    nav button { display: block; width: 100%; text-align: start; border: 0; background: none; padding: 0 8px; }
    nav button:hover:not(:disabled) { background: var(--line); }
    nav button[aria-current='true'] { background: var(--chosen); }
    @media (prefers-reduced-motion: reduce) { * { transition: none !important; } }
  `];

  override willUpdate(changed: Map<string, unknown>): void {
    if (changed.has('library')) this.library?.addEventListener('change', () => { ++this.version; });
  }

  override render() {
    const { library } = this;
    if (!library) return this.note('connecting');
    const list = library.collection.kind === 'smartList' ? library.collection.id : undefined;
    return html`
      <nav aria-label=${t('collection')}>${this.groups().map((group) => this.group(group))}</nav>
      <header>
        <h1>${t('title')}</h1>
        <div class="choice">
          ${this.select()}
          ${this.action('newList', kIcons.add, () => this.editor.edit())}
          ${list === undefined ? nothing : [this.action('editList', kIcons.edit, () => this.editor.edit(list)),
            this.action('remove', kIcons.remove, () => this.removeList(list))]}
        </div>
        <input type="search" placeholder=${t('search')} aria-label=${t('search')} .value=${library.text} maxlength="200"
          @input=${(event: Event) => library.find((event.target as HTMLInputElement).value)} @keydown=${this.leaveSearch}>
      </header>
      <div class="messages" role="status">${this.messages()}</div>
      <main aria-label=${t('title')}>${this.content()}</main>
      <footer>
        <span class="cut" role="status">${this.summary()}</span>
        ${library.copying.size ? html`<span class="badge">${library.progress || t('copying')}</span>` : library.progress ? html`<span class="badge">${library.progress}</span>` : nothing}
        ${library.isStandalone ? html`<span class="badge">${t('standalone')}</span>` : library.isOffline ? html`<span class="badge">${t('offline')}</span>` : nothing}
        <button class="switch" role="switch" aria-checked=${library.hasWebFonts} ?disabled=${library.state !== 'ready' || library.hasWebFonts}
          title=${t(library.hasWebFonts ? 'webFontsOn' : 'webFontsOff')} @click=${() => library.switchOnWebFonts()}><i></i>${t('webFonts')}</button>
      </footer>
      <list-editor .library=${library}></list-editor>
      <replacement-chooser .library=${library}></replacement-chooser>`;
  }

  // --- what there is to choose from

  private groups(): Group[] {
    const { documents, workgroups, sets, smartLists } = this.library!;
    return [
      { heading: 'documents', entries: documents.map(({ name }, id) => ({ collection: { kind: 'document', id }, name })) },
      { heading: 'library', entries: [{ collection: { kind: 'all' }, name: t('all') }, { collection: { kind: 'active' }, name: t('active') }] },
      { heading: 'workgroups', entries: workgroups.map(({ id, name }) => ({ collection: { kind: 'workgroup', id }, name })) },
      { heading: 'sets', entries: sets.map((id) => ({ collection: { kind: 'set', id }, name: t('set', String(id)) })) },
      { heading: 'smartLists', entries: smartLists.map(({ smartListID, smartListName }) => (
        { collection: { kind: 'smartList', id: smartListID }, name: smartListName.slice(0, 200) })) },
    ];
  }

  private group({ heading, entries }: Group) {
    if (!entries.length) return nothing;
    return html`<h2>${t(heading)}</h2><ul>${entries.map(({ collection, name }) => html`
      <li><button class="cut" title=${name} aria-current=${isSame(collection, this.library!.collection)}
        @click=${() => this.library!.show(collection)}><bdi>${name}</bdi></button></li>`)}</ul>`;
  }

  private select() {
    const groups = this.groups().filter(({ entries }) => entries.length);
    const all = groups.flatMap(({ entries }) => entries);
    return html`<select aria-label=${t('collection')} @change=${(event: Event) =>
      this.library!.show(all[(event.target as HTMLSelectElement).selectedIndex].collection)}>
      ${groups.map(({ heading, entries }) => html`<optgroup label=${t(heading)}>${entries.map(({ collection, name }) =>
        html`<option .selected=${isSame(collection, this.library!.collection)}>${name}</option>`)}</optgroup>`)}</select>`;
  }

  private action(name: Text, icon: unknown, act: () => void) {
    return html`<button class="icon" title=${t(name)} aria-label=${t(name)} ?disabled=${this.library!.state !== 'ready'} @click=${act}>
      <svg viewBox="0 0 16 16" aria-hidden="true">${icon}</svg></button>`;
  }

  // --- the list, or why there is none

  private content() {
    const library = this.library!;
    if (library.state === 'connecting') return this.note('connecting');
    if (library.isLoading && library.state === 'ready')
      return html`<div aria-busy="true" aria-label=${t('loading')} role="img">${[70, 45, 60, 50, 65].map((width) => html`<div class="skeleton" style="width:${width}%"></div>`)}</div>`;
    if (library.shown.length)
      return html`<font-list .fonts=${library.shown} .images=${library.images} .version=${this.version}
        .canActivate=${library.state === 'ready' && !library.isLoggedOut}
        @replace=${(event: CustomEvent<Font>) => this.chooser.choose(event.detail)}
        @activate=${(event: CustomEvent<Font>) => library.activate(event.detail)}
        @seen=${(event: CustomEvent<{ seen: Font[]; near: Font[] }>) => library.draw(event.detail.seen, event.detail.near)}></font-list>`;
    if (library.state !== 'ready') return nothing;
    if (library.text && library.collected.length)
      return html`<div class="none"><h2>${t('emptySearch', library.text)}</h2><p>${t('emptySearchHint')}</p>
        <button @click=${() => library.find('')}>${t('clear')}</button></div>`;
    return library.collection.kind === 'all'
      ? html`<div class="none"><h2>${t('emptyLibrary')}</h2><p>${t('emptyLibraryHint')}</p></div>`
      : html`<div class="none"><h2>${t('emptyList')}</h2></div>`;
  }

  private messages() {
    const library = this.library!;
    const tell = (title: Text, hint: Text) => html`<div class="message"><p><b>${t(title)}</b>${t(hint)}</p>
      <button @click=${() => library.retry()}>${t('again')}</button></div>`;
    const document = library.collection.kind === 'document' ? library.documents[library.collection.id] : undefined;
    return html`
      ${library.state === 'lost' ? tell('lost', 'lostHint') : library.isLoggedOut ? tell('loggedOut', 'loggedOutHint')
        : library.state === 'unavailable' ? tell('unavailable', 'unavailableHint') : nothing}
      ${document?.problem ? html`<div class="message"><p>${document.problem}</p></div>` : nothing}
      ${library.notice ? html`<div class="message"><p>${library.notice}</p>
        <button @click=${() => library.dismiss()}>${t('close')}</button></div>` : nothing}`;
  }

  private note(text: Text) { return html`<div class="none" role="status"><p>${t(text)}</p></div>`; }

  private summary() {
    const { shown, collected, isLoading } = this.library!;
    if (isLoading) return nothing;
    if (shown.length !== collected.length) return t('countOf', shown.length, collected.length);
    return shown.length === 1 ? t('one') : t('count', shown.length);
  }

  // --- what the user does

  private get editor(): ListEditor { return this.renderRoot.querySelector('list-editor')!; }

  private get chooser(): ReplacementChooser { return this.renderRoot.querySelector('replacement-chooser')!; }

  private leaveSearch(event: KeyboardEvent): void {
    if (event.key !== 'ArrowDown') return;
    this.renderRoot.querySelector('font-list')?.shadowRoot?.querySelector<HTMLElement>('.grid')?.focus();
    event.preventDefault();
  }

  private removeList(id: number): void {
    const name = this.library!.smartLists.find((each) => each.smartListID === id)?.smartListName ?? '';
    if (confirm(t('removeAsk', name.slice(0, 200)))) void this.library!.remove(id);
  }
}

customElements.define('font-list', FontList);
customElements.define('list-editor', ListEditor);
customElements.define('replacement-chooser', ReplacementChooser);
