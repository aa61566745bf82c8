import { after, answers, type Message, type MessageID, type MessageOf, type Progress, type ReplyTo, type Request }
  from './messages';
import type { Received, Transport } from './transport';

/** No answer came in time. The plug-in answers nothing to what it cannot read or do. */
export class NoAnswer extends Error {
  constructor(readonly messageID: number, seconds: number) {
    super(`message ${messageID} was not answered within ${seconds} s; the plug-in's trace says why`);
  }
}

interface Waiting {
  isAnswer(message: Message): boolean;
  resolve(message: Message): void;
}

/** What must be equal in a request and its answer. */
const kSharedKeys = ['smartListID'] as const;

export class PanelClient {
  private readonly handlers = new Map<number | 'progress', Set<(message: never) => void>>();
  private readonly waiting = new Set<Waiting>();
  /** The last request for each kind of answer: one that answers two of them could be taken for either's. */
  private readonly lanes = new Map<string, Promise<unknown>>();
  /** Whether an answer may still come that nobody waits for. */
  private isBehind = false;
  private readonly stop: () => void;

  /** @param seconds how long an answer may take. @param changed is told whether messages get through. */
  constructor(private readonly transport: Transport, private readonly seconds = 10, changed?: (isOpen: boolean) => void) {
    this.stop = transport.listen((data) => this.receive(data), changed);
  }

  close(): void { this.stop(); }

  /** Calls `handler` for each message of that number, whether it was asked for or not. Ends with what it returns. */
  on<ID extends MessageID>(id: ID, handler: (message: MessageOf<ID>) => void): () => void;
  on(id: 'progress', handler: (message: Progress) => void): () => void;
  on(id: MessageID | 'progress', handler: (message: never) => void): () => void {
    const handlers = this.handlers.get(id) ?? new Set();
    this.handlers.set(id, handlers.add(handler));
    return () => { handlers.delete(handler); };
  }

  /**
   * Sends a request. Resolves with its answer; for 33, 34, 42 and 44 with the notification that tells of success; for
   * others that nothing answers with nothing, once they are sent. Rejects with NoAnswer, or when it cannot be sent.
   */
  request<R extends Request>(message: R): Promise<ReplyTo<R>> {
    const ids: readonly number[] | undefined = { ...answers, ...after }[message.messageID as keyof typeof answers];
    if (!ids) return this.transport.dispatch(JSON.stringify(message)) as Promise<ReplyTo<R>>;
    const lane = ids.join();
    const mine = (this.lanes.get(lane) ?? Promise.resolve()).catch(() => {}).then(() => this.catchUp()).then(() => this.ask(message, ids));
    this.lanes.set(lane, mine);
    return mine as Promise<ReplyTo<R>>;
  }

  /**
   * After a time-out: the plug-in answers in turn and answers this always, so what it still had to say has been said once
   * that is there.
   */
  private async catchUp(): Promise<void> {
    if (!this.isBehind) return;
    await this.ask({ messageID: 16 }, answers[16]);
    this.isBehind = false;
  }

  private ask(message: Request, ids: readonly number[]): Promise<Message> {
    return new Promise((resolve, reject) => {
      const done = () => { clearTimeout(timer); this.waiting.delete(entry); };
      const entry: Waiting = {
        isAnswer: (reply) => ids.includes(reply.messageID) && kSharedKeys.every((key) =>
          !(key in reply) || !(key in message) || (reply as never)[key] === (message as never)[key]),
        resolve: (reply) => { done(); resolve(reply); },
      };
      const timer = setTimeout(() => { done(); this.isBehind = true; reject(new NoAnswer(message.messageID, this.seconds)); },
        this.seconds * 1000);
      this.waiting.add(entry);
      this.transport.dispatch(JSON.stringify(message)).catch((error) => { done(); reject(error); });
    });
  }

  private receive(data: Received): void {
    let message: Message;
    try {
      message = typeof data === 'string' ? JSON.parse(data) : data;
    } catch {
      return;
    }
    if (typeof message !== 'object' || message === null) return;
    const isProgress = 'stepIndex' in message;
    if (!isProgress) [...this.waiting].find((each) => each.isAnswer(message))?.resolve(message);
    for (const handler of this.handlers.get(isProgress ? 'progress' : message.messageID) ?? []) handler(message as never);
  }
}
