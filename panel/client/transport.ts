// The way of messages between a panel and the plug-in.

/** What came: JSON as text, or what a runtime has parsed already. */
export type Received = string | object;

export interface Transport {
  /**
   * Has `receive` called for each message, and `changed` when the way is open or not, neither before this returns. What
   * it returns ends that.
   */
  listen(receive: (data: Received) => void, changed?: (isOpen: boolean) => void): () => void;
  /** Sends one message, JSON. Rejects when it did not get to the plug-in. */
  dispatch(message: string): Promise<void>;
}

/** A transport, and what a page reaches beside the messages. */
export interface Connection {
  transport: Transport;
  /** Where a page gets what a file URL of a message names. */
  locate(fileURL: string): string;
  /** The text of such a file. */
  read(fileURL: string): Promise<string>;
  /** The documents that are open and their fonts, where the host tells. */
  documents?(): Promise<OpenDocument[]>;
  /** Has a font activated in the place of one that the document, by its index, lacks; the documents after that. */
  replace?(document: number, font: string, fontID: number): Promise<OpenDocument[]>;
}

/** What could take the place of a font that is missing, the best first. */
export interface Candidate { name: string; fontID: number; reason: string }

export interface OpenDocument {
  name: string;
  /** Why its fonts are not known; empty where they are. */
  problem: string;
  fonts: DocumentFont[];
}

export type DocumentFont =
  /**
   * `reason`: why a font that has another name was taken. `conflict`: others of its name that are active too, by their
   * versions. Each is empty where there is none.
   */
  | { isMissing: false; name: string; fontID: number; version: string; reason: string; conflict: string; workgroupID: number;
      workgroupName: string }
  /** `where`: pages or layers that use it, where the document's reader knows. */
  | { isMissing: true; name: string; where: string; replacements: Candidate[] };

/** The path in a file URL: with three slashes, with two before a drive; the path as it stands. */
export function pathOfFileURL(url: string): string {
  const path = url.replace(/^file:\/\//, '');
  return /^\/[A-Za-z]:/.test(path) ? path.slice(1) : path;
}

async function textOf(url: string): Promise<string> {
  const response = await fetch(url);
  if (!response.ok) throw new Error(`${response.status} for a file of the font manager`);
  return response.text();
}

// --- the host's extension runtime

/** An event of the host, as its runtime hands it on. */
export interface HostEvent {
  type: string;
  scope: string | number;
  appId: string;
  extensionId: string;
  data: Received;
}

/** What a page needs of the runtime. */
export interface ExtensionRuntime {
  addEventListener(type: string, listener: (event: HostEvent) => void): void;
  removeEventListener?(type: string, listener: (event: HostEvent) => void): void;
  dispatchEvent(event: HostEvent): void;
}

const kToPlugin = 'com.vantorix.PanelToPlugin';
const kToPanel = 'com.vantorix.PluginToPanel';

export function connectToRuntime(runtime: ExtensionRuntime, extensionId = ''): Connection {
  /** Characters that mean something in a URL stand in paths as they are. */
  const locate = (url: string) => {
    const path = pathOfFileURL(url).split('/').map(encodeURIComponent).join('/').replace(/^([A-Za-z])%3A/, '$1:');
    return 'file://' + (path.startsWith('/') ? path : '/' + path);
  };
  return {
    transport: {
      listen(receive, changed) {
        const listener = (event: HostEvent) => receive(event.data);
        runtime.addEventListener(kToPanel, listener);
        queueMicrotask(() => changed?.(true));
        return () => runtime.removeEventListener?.(kToPanel, listener);
      },
      async dispatch(message) {
        runtime.dispatchEvent({ type: kToPlugin, scope: 'APPLICATION', appId: 'HTML', extensionId, data: message });
      },
    },
    locate,
    read: (url) => textOf(locate(url)),
  };
}

// --- the bridge of plugincore-host

/** `base`: the URL that `plugincore-host panel` printed; ends with a slash. */
export function connectToBridge(base: string): Connection {
  const panel = Array.from(crypto.getRandomValues(new Uint32Array(2)), (each) => each.toString(36)).join('');
  const at = (name: string, query: Record<string, string> = {}) => {
    const url = new URL(name, base);
    for (const [key, value] of Object.entries(query)) url.searchParams.set(key, value);
    return url.href;
  };
  // An answer to what is sent before that would be lost.
  let opened: () => void;
  const wasOpened = new Promise<void>((resolve) => { opened = resolve; });
  const locate = (url: string) => at('file', { path: pathOfFileURL(url) });
  const post = async (name: string, body: string): Promise<Response> => {
    for (let wait = 100; ; wait *= 2) {
      const response = await fetch(at(name, { panel }), { method: 'POST', headers: { 'Content-Type': 'application/json' }, body });
      if (response.ok) return response;
      if (response.status !== 503 || wait > 2000) throw new Error(`the host answered ${response.status}`);
      await new Promise((resolve) => setTimeout(resolve, wait));
    }
  };
  return {
    transport: {
      listen(receive, changed) {
        let events: EventSource | undefined;
        let again: ReturnType<typeof setTimeout>;
        const open = () => {
          const stream = events = new EventSource(at('events', { panel }));
          events.onmessage = (event) => receive(event.data);
          events.onopen = () => { opened(); changed?.(true); };
          events.onerror = () => {
            changed?.(false);
            // After an answer that is no stream, a browser does not try again by itself.
            if (stream.readyState === EventSource.CLOSED) again = setTimeout(open, 2000);
          };
        };
        const close = () => { clearTimeout(again); events?.close(); };
        // A browser keeps few connections to one host for all its tabs: those that nobody sees have none.
        const choose = () => { close(); if (!document.hidden) open(); };
        document.addEventListener('visibilitychange', choose);
        choose();
        return () => { document.removeEventListener('visibilitychange', choose); close(); };
      },
      async dispatch(message) {
        await wasOpened;
        await post('messages', message);
      },
    },
    locate,
    read: (url) => textOf(locate(url)),
    documents: async () => (await fetch(at('documents'))).json(),
    replace: async (document, font, fontID) => (await post('replacements', JSON.stringify({ document, font, fontID }))).json(),
  };
}
