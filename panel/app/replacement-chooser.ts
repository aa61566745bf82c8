import { LitElement, css, html } from 'lit';
import type { Font } from './fonts';
import type { Library } from './library';
import { controls, dialogs } from './styles';
import { t } from './texts';

/** The dialog in which a font is chosen for one that a document lacks. */
export class ReplacementChooser extends LitElement {
  static override properties = { library: { attribute: false }, font: { state: true } };
  library!: Library;
  private font?: Font;

  static override styles = [controls, dialogs, css`
    ul { list-style: none; margin: 12px 0 0; padding: 0; max-height: 320px; overflow: auto; }
    li button { width: 100%; height: auto; min-height: 44px; padding: 4px 12px; margin: 2px 0; text-align: start; display: block; }
    li .cut { display: block; }
    p { margin: 0; }
  `];

  async choose(font: Font): Promise<void> {
    this.font = font;
    await this.updateComplete;
    this.dialog.showModal();
  }

  override render() {
    const { font } = this;
    return html`
      <dialog aria-labelledby="heading" @keydown=${(event: Event) => event.stopPropagation()}>
        <h2 id="heading">${t('instead', font?.name.slice(0, 200) ?? '')}</h2>
        <p class="quiet">${t('insteadHint')}</p>
        <ul>${font?.candidates?.map(({ name, fontID, reason }) => html`
          <li><button @click=${() => this.take(fontID)}><bdi class="cut">${name.slice(0, 200)}</bdi>
            <span class="cut quiet">${reason.slice(0, 300)}</span></button></li>`)}</ul>
        <div class="actions"><button @click=${() => this.dialog.close()}>${t('cancel')}</button></div>
      </dialog>`;
  }

  private get dialog(): HTMLDialogElement { return this.renderRoot.querySelector('dialog')!; }

  private take(fontID: number): void {
    this.dialog.close();
    if (this.font) void this.library.replace(this.font, fontID);
  }
}
