export { NoAnswer, PanelClient } from './client';
export { returnCodes, type Message, type MessageOf, type Progress, type ReplyTo, type Request } from './messages';
export { connectToRecording } from './replay';
export { connectToBridge, connectToRuntime, pathOfFileURL, type Connection, type ExtensionRuntime, type HostEvent,
  type Candidate, type DocumentFont, type OpenDocument, type Transport } from './transport';
