import { LitElement, css, html, nothing } from 'lit';
import type { Library, Query } from './library';
import { controls, dialogs } from './styles';
import { t } from './texts';

/** The dialog in which a smart list is made or changed. */
export class ListEditor extends LitElement {
  static override properties = { library: { attribute: false }, tried: { state: true }, query: { state: true }, listID: { state: true } };
  library!: Library;
  private listID?: number;
  private name = '';
  private savedQuery = '';
  private query: Query = { workgroupIDs: [], setIDs: [], smartSetIDs: [] };
  private tried = '';

  static override styles = [controls, dialogs, css`
    label { display: block; }
    label.name input { display: block; width: 100%; margin-top: 4px; }
    fieldset { margin: 16px 0 0; padding: 8px 12px; border: 1px solid var(--line); border-radius: 6px; max-height: 200px; overflow: auto; min-width: 0; }
    fieldset label { display: flex; gap: 8px; align-items: center; height: 28px; }
    fieldset input { width: 16px; height: 16px; margin: 0; accent-color: var(--accent); flex: none; }
    p { margin: 8px 0 0; }
    .actions :first-child { margin-right: auto; }
  `];

  /** Without a number, for a new list. */
  async edit(id?: number): Promise<void> {
    this.listID = id;
    this.tried = '';
    this.name = '';
    this.query = { workgroupIDs: [], setIDs: [], smartSetIDs: [] };
    if (id !== undefined) {
      const { smartListName, workgroupIDs, setIDs, smartSetIDs } = await this.library.queryOf(id);
      this.name = smartListName;
      this.query = { workgroupIDs, setIDs, smartSetIDs };
    }
    this.savedQuery = JSON.stringify(this.query);
    await this.updateComplete;
    this.renderRoot.querySelector<HTMLInputElement>('.name input')!.value = this.name;
    this.dialog.showModal();
  }

  override render() {
    const { workgroups, sets, smartLists } = this.library;
    return html`
      <dialog aria-labelledby="heading" @keydown=${(event: Event) => event.stopPropagation()}>
        <h2 id="heading">${t(this.listID === undefined ? 'newList' : 'editList')}</h2>
        <form @submit=${this.save}>
          <label class="name">${t('name')}<input required maxlength="200" .value=${this.name}
            @input=${(event: InputEvent) => { this.name = (event.target as HTMLInputElement).value; }}></label>
          <fieldset>
            <legend>${t('takes')}</legend>
            ${workgroups.map(({ id, name }) => this.choice('workgroupIDs', id, name))}
            ${sets.map((id) => this.choice('setIDs', id, t('set', String(id))))}
            ${smartLists.filter((each) => each.smartListID !== this.listID).map((each) =>
              this.choice('smartSetIDs', each.smartListID, each.smartListName.slice(0, 200)))}
          </fieldset>
          <p class="quiet">${t('takesAll')}</p>
          <p role="status">${this.tried || nothing}</p>
          <div class="actions">
            <button type="button" @click=${this.tryOut}>${t('attempt')}</button>
            <button type="button" @click=${() => this.dialog.close()}>${t('cancel')}</button>
            <button class="main">${t('save')}</button>
          </div>
        </form>
      </dialog>`;
  }

  private choice(kind: keyof Query, id: number, name: string) {
    const toggle = (event: Event) => {
      const others = this.query[kind].filter((each) => each !== id);
      this.query = { ...this.query, [kind]: (event.target as HTMLInputElement).checked ? [...others, id] : others };
      this.tried = '';
    };
    return html`<label><input type="checkbox" .checked=${this.query[kind].includes(id)} @change=${toggle}><bdi class="cut">${name}</bdi></label>`;
  }

  private get dialog(): HTMLDialogElement { return this.renderRoot.querySelector('dialog')!; }

  private async tryOut(): Promise<void> {
    try {
      const count = await this.library.tryOut(this.query);
      this.tried = t('attempted', count === 1 ? t('one') : t('count', count));
    } catch {
      this.tried = t('failed');
    }
  }

  private save(event: Event): void {
    event.preventDefault();
    if (!this.name.trim()) return;
    this.dialog.close();
    void this.library.save(this.listID, this.name.trim(), JSON.stringify(this.query) === this.savedQuery ? undefined : this.query);
  }
}
