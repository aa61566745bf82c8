import { css } from 'lit';

/** What all parts share: controls on a grid of 4 px, one accent. */
export const controls = css`
  * { box-sizing: border-box; }
  button, input, select {
    font: inherit; color: inherit; height: 32px; padding: 0 12px; border: 1px solid var(--line); border-radius: 6px;
    background: var(--ground);
  }
  button { cursor: pointer; }
  button:hover:not(:disabled) { background: var(--raised); }
  button:disabled { color: var(--quiet); cursor: default; }
  button.main { background: var(--accent); border-color: var(--accent); color: var(--on-accent); }
  button.main:hover { background: var(--accent); filter: brightness(1.08); }
  :focus-visible { outline: 2px solid var(--accent); outline-offset: 1px; }
  .cut { overflow: hidden; text-overflow: ellipsis; white-space: nowrap; min-width: 0; }
  .quiet { color: var(--quiet); }
`;

export const dialogs = css`
  dialog {
    width: min(400px, calc(100vw - 32px)); max-height: calc(100vh - 32px); padding: 16px; border: 1px solid var(--line);
    border-radius: 12px; background: var(--ground); color: var(--text);
  }
  dialog::backdrop { background: rgb(0 0 0 / 40%); }
  h2 { margin: 0 0 16px; font-size: 15px; line-height: 20px; overflow-wrap: anywhere; }
  .actions { display: flex; gap: 8px; justify-content: flex-end; margin-top: 16px; flex-wrap: wrap; }
`;
