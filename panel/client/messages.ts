// The messages, by their numbers, and what answers what.
import type { WhatPanelsSendToThePlugIn } from './generated/ToPlugin';
import type { WhatThePlugInSendsToPanels } from './generated/ToPanel';

/** What a panel sends. */
export type Request = WhatPanelsSendToThePlugIn;
/** What the plug-in sends. */
export type Message = WhatThePlugInSendsToPanels;
export type RequestID = Request['messageID'];
export type MessageID = Message['messageID'];

/** How far a long piece of work has come; its number is that of the work. */
export type Progress = Extract<Message, { stepIndex: number }>;
type NoProgress = Exclude<Message, Progress>;
export type MessageOf<ID extends number> = Extract<NoProgress, { messageID: ID }>;

/** Which numbers answer a request; of those that nothing answers, `after` is what tells of success. */
export const answers = {
  8: [8], 9: [9], 10: [10], 11: [11], 16: [16], 18: [18], 36: [36], 37: [37], 38: [38], 39: [39], 40: [41, 19], 58: [58],
  66: [20],
} as const;
export const after = { 33: [43], 34: [43], 42: [43], 44: [43] } as const;

type Answers = typeof answers & typeof after;
type AnswerID<ID> = ID extends keyof Answers ? Answers[ID][number] : never;
/** What `request` resolves with. */
export type ReplyTo<R extends Request> =
  [AnswerID<R['messageID']>] extends [never] ? undefined : MessageOf<AnswerID<R['messageID']>>;

export const returnCodes = {
  success: 0, notFound: 117440512, notImplemented: 134217728, fontMissing: 50348044, notLoggedIn: 16785412,
  shutdown: 33562637, unavailable: 50335758,
} as const;
