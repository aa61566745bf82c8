import { LitElement, css, html, nothing, type PropertyValues } from 'lit';
import type { Font } from './fonts';
import { controls } from './styles';
import { t } from './texts';

const kRowHeight = 56;
/** Rows beyond the edges, so that scrolling finds them there. */
const kMargin = 6;
/** Of a name, what could be seen; a longer one makes the page slow, not wiser. */
const kLongestName = 300;

/** A grid of fonts that makes rows only for what is seen. */
export class FontList extends LitElement {
  static override properties = {
    fonts: { attribute: false }, images: { attribute: false }, version: { type: Number }, canActivate: { type: Boolean },
    current: { state: true }, first: { state: true }, last: { state: true },
  };
  fonts: Font[] = [];
  images = new Map<number, { normal: string; double: string }>();
  version = 0;
  canActivate = false;
  private current = 0;
  private first = 0;
  private last = 0;
  private readonly sizes = new ResizeObserver(() => this.look());

  static override styles = [controls, css`
    :host { display: block; min-height: 0; position: relative; }
    .grid { position: absolute; inset: 0; overflow: auto; overflow-x: hidden; contain: strict; }
    .grid:focus-visible { outline-offset: -2px; }
    .rows { position: relative; }
    .row {
      position: absolute; left: 8px; right: 8px; height: ${kRowHeight}px; padding: 0 8px 0 12px; display: flex; align-items: center;
      gap: 8px; border-radius: 6px; cursor: default;
    }
    .row:hover { background: var(--raised); }
    .row[aria-selected='true'] { background: var(--chosen); }
    .names { flex: 1; min-width: 0; }
    .name { font-size: 15px; line-height: 24px; height: 24px; }
    .name img { display: block; height: 24px; max-width: 100%; object-fit: cover; object-position: left; }
    .name:has(img) { mask-image: linear-gradient(to left, transparent, #000 16px); }
    .under { font-size: 12px; line-height: 16px; display: flex; gap: 8px; }
    @media (prefers-color-scheme: dark) { img { filter: invert(1) hue-rotate(180deg); } }
    .state { display: flex; align-items: center; gap: 6px; font-size: 12px; color: var(--quiet); }
    .state::before { content: ''; width: 8px; height: 8px; border-radius: 4px; background: var(--accent); }
    .missing-font { display: flex; gap: 8px; }
    .state.missing { color: var(--warning); }
    .state.missing::before { background: var(--warning); }
    .row button { height: 28px; visibility: hidden; }
    .row:hover button, .row[aria-selected='true'] button, .missing-font button { visibility: visible; }
    @media (max-width: 480px) { .row:not(:hover, [aria-selected='true']) button:not(.missing-font button) { display: none; } }
  `];

  override connectedCallback(): void { super.connectedCallback(); this.sizes.observe(this); }
  override disconnectedCallback(): void { super.disconnectedCallback(); this.sizes.disconnect(); }

  override willUpdate(changed: PropertyValues): void {
    if (changed.has('fonts')) this.current = Math.max(0, Math.min(this.current, this.fonts.length - 1));
  }

  override updated(changed: PropertyValues): void {
    if (changed.has('fonts') || changed.has('canActivate')) this.look();
  }

  override render() {
    const rows = [];
    for (let i = this.first; i < Math.min(this.last, this.fonts.length); ++i) rows.push(this.row(this.fonts[i], i));
    return html`
      <div class="grid" role="grid" tabindex="0" aria-label=${t('selected')} aria-rowcount=${this.fonts.length} aria-colcount="2"
        aria-activedescendant=${this.fonts.length ? `row-${this.current}` : nothing} @scroll=${this.look} @keydown=${this.press}>
        <div class="rows" role="presentation" style="height:${this.fonts.length * kRowHeight}px">${rows}</div>
      </div>`;
  }

  private row(font: Font, i: number) {
    const name = font.name.slice(0, kLongestName);
    const image = this.images.get(font.id);
    return html`
      <div class="row" role="row" id="row-${i}" aria-rowindex=${i + 1} aria-selected=${i === this.current}
        style="transform:translateY(${i * kRowHeight}px)" @click=${() => { this.current = i; }} @dblclick=${() => this.activate(font)}>
        <div class="names" role="gridcell">
          <div class="name cut" title=${name}>
            ${image ? html`<img src=${image.normal} srcset="${image.normal} 1x, ${image.double} 2x" alt=${name} draggable="false"
              @error=${() => this.lose(font)}>` : html`<bdi>${name}</bdi>`}
          </div>
          <div class="under quiet">
            <bdi class="cut" title=${font.postscriptName.slice(0, kLongestName)}>${font.postscriptName.slice(0, kLongestName)}</bdi>
            ${font.note ? html`<bdi class="cut" title=${font.note.slice(0, kLongestName)}>${font.note.slice(0, kLongestName)}</bdi>` : nothing}
            ${font.source === 'system' ? html`<span class="cut">${t('systemFonts')}</span>` : nothing}
          </div>
        </div>
        <div role="gridcell">${this.stateOf(font, name)}</div>
      </div>`;
  }

  private stateOf(font: Font, name: string) {
    if (font.candidates)
      return html`<span class="missing-font"><span class="state missing">${t('missing')}</span>${font.candidates.length
        ? html`<button tabindex="-1" ?disabled=${!this.canActivate} aria-label=${t('replaceFont', name)}
            @click=${() => this.activate(font)}>${t('replace')}</button>` : nothing}</span>`;
    if (font.isActive) return html`<span class="state">${t('isActive')}</span>`;
    return html`<button tabindex="-1" ?disabled=${!this.canActivate} aria-label=${t('activateFamily', name)}
      title=${t('activateFamily', name)} @click=${() => this.activate(font)}>${t('activate')}</button>`;
  }

  /** The image went away: the name stands there as text. */
  private lose(font: Font): void {
    this.images.delete(font.id);
    this.requestUpdate();
  }

  private activate(font: Font): void {
    if (this.canActivate && font.candidates?.length) this.dispatchEvent(new CustomEvent('replace', { detail: font }));
    else if (this.canActivate && !font.isActive && font.id > 0) this.dispatchEvent(new CustomEvent('activate', { detail: font }));
  }

  private get grid(): HTMLElement { return this.renderRoot.querySelector('.grid')!; }

  /** Which rows are seen now. */
  private look(): void {
    const { scrollTop, clientHeight } = this.grid;
    const top = Math.floor(scrollTop / kRowHeight);
    const bottom = Math.ceil((scrollTop + clientHeight) / kRowHeight);
    this.first = Math.max(0, top - kMargin);
    this.last = bottom + kMargin;
    this.dispatchEvent(new CustomEvent('seen', { detail: {
      seen: this.fonts.slice(top, bottom), near: this.fonts.slice(Math.max(0, top - 20), bottom + 40) } }));
  }

  private press(event: KeyboardEvent): void {
    const page = Math.max(1, Math.floor(this.grid.clientHeight / kRowHeight) - 1);
    const steps: Record<string, number> = { ArrowDown: 1, ArrowUp: -1, PageDown: page, PageUp: -page, Home: -Infinity, End: Infinity };
    if (event.key in steps) {
      this.current = Math.max(0, Math.min(this.fonts.length - 1, this.current + steps[event.key]));
      this.reveal();
    } else if (event.key === 'Enter' && this.fonts[this.current]) {
      this.activate(this.fonts[this.current]);
    } else {
      return;
    }
    event.preventDefault();
  }

  private reveal(): void {
    const { grid } = this;
    const top = this.current * kRowHeight;
    if (top < grid.scrollTop) grid.scrollTop = top;
    else if (top + kRowHeight > grid.scrollTop + grid.clientHeight) grid.scrollTop = top + kRowHeight - grid.clientHeight;
    this.look();
  }
}
