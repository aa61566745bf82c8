import { connectToBridge, connectToRecording, connectToRuntime, type Connection, type ExtensionRuntime } from '../client';
import { Library } from './library';
import { FontPanel } from './panel';
import { language, t } from './texts';

/** In a host's extension the page's runtime; else the bridge that the page came from, or a recording beside it. */
async function connect(): Promise<Connection> {
  const { extensionRuntime } = globalThis as { extensionRuntime?: ExtensionRuntime };
  if (extensionRuntime) return connectToRuntime(extensionRuntime);
  const recording = new URLSearchParams(location.search).get('replay');
  if (recording) return connectToRecording(await (await fetch(new URL(recording, location.href))).text());
  return connectToBridge(new URL('.', location.href).href);
}

document.documentElement.lang = language;
document.title = t('title');
customElements.define('font-panel', FontPanel);
void connect().then((connection) => { document.querySelector<FontPanel>('font-panel')!.library = new Library(connection); });
