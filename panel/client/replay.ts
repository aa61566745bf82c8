// Plays what `plugincore-host panel --record` wrote, without a host.
import type { Connection, Received } from './transport';

type Line = { to: 'panel' | 'core'; ms: number; message: Received } | { file: string; text: string };
const numberOf = (message: Received) => (message as { messageID?: number }).messageID;

/**
 * Each request is answered by what followed the next request of its number in the recording, the last one again and
 * again; what came before the first request comes as soon as somebody listens.
 */
export function connectToRecording(lines: string): Connection {
  const files = new Map<string, string>();
  const unasked: Received[] = [];
  const exchanges = new Map<number | undefined, Received[][]>();
  let replies = unasked;
  for (const text of lines.split('\n')) {
    if (!text.trim()) continue;
    const line = JSON.parse(text) as Line;
    if ('file' in line) {
      files.set(line.file, line.text);
    } else if (line.to === 'core') {
      replies = [];
      const number = numberOf(line.message);
      exchanges.set(number, [...(exchanges.get(number) ?? []), replies]);
    } else {
      replies.push(line.message);
    }
  }
  const receivers = new Set<(data: Received) => void>();
  const send = (messages: Received[]) => setTimeout(() => {
    for (const message of messages) for (const receive of receivers) receive(message);
  });
  return {
    transport: {
      listen(receive, changed) {
        receivers.add(receive);
        queueMicrotask(() => changed?.(true));
        send(unasked.splice(0));
        return () => { receivers.delete(receive); };
      },
      async dispatch(message) {
        const known = exchanges.get(numberOf(JSON.parse(message)));
        if (known) send(known.length > 1 ? known.shift()! : known[0]);
      },
    },
    // Images were not recorded.
    locate: () => '',
    async read(url) {
      const text = files.get(url);
      if (text === undefined) throw new Error('the recording has no such file');
      return text;
    },
  };
}
