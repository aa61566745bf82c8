// The client against transports that the tests play.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { NoAnswer, PanelClient, connectToRecording, connectToRuntime, pathOfFileURL } from '../dist/client.js';
import { parseFontList, search } from '../dist/fonts.js';

/** A plug-in that answers by `reply`, and what it was sent. */
function scripted(reply = () => []) {
  const sent = [];
  let receive;
  const say = (...messages) => messages.forEach((each) => receive(each));
  const transport = {
    listen(handler) { receive = handler; return () => { receive = () => {}; }; },
    async dispatch(text) { sent.push(JSON.parse(text)); say(...reply(JSON.parse(text))); },
  };
  return { transport, sent, say };
}

test('a request is answered by the number that belongs to it, as text or as an object', async () => {
  const plugin = scripted(({ messageID, smartListID }) => ({
    66: ['no JSON', '7', 'null', '{"messageID":24,"fontIDs":[1]}', '{"messageID":20,"isStandalone":true}'],
    40: [smartListID === 1 ? { messageID: 41, filename: 'file:///a' } : { messageID: 19 }],
    9: [{ messageID: 9, text: 'Copying', stepIndex: 1, numSteps: 2 }, { messageID: 9, returnCode: 0 }],
    36: [{ messageID: 36, smartListID: 99, smartListName: 'another tab asked' }, { messageID: 36, smartListID, smartListName: 'mine' }],
  })[messageID] ?? []);
  const client = new PanelClient(plugin.transport);
  const steps = [];
  client.on('progress', ({ stepIndex }) => steps.push(stepIndex));
  assert.equal((await client.request({ messageID: 66 })).isStandalone, true);
  const [file, none] = await Promise.all([1, 2].map((smartListID) => client.request({ messageID: 40, smartListID })));
  assert.deepEqual([file.filename, none.messageID], ['file:///a', 19]);
  assert.equal((await client.request({ messageID: 9 })).returnCode, 0);
  assert.deepEqual(steps, [1]);
  assert.equal((await client.request({ messageID: 36, smartListID: 3 })).smartListName, 'mine');
});

test('requests that share an answer wait for each other', async () => {
  const plugin = scripted();
  const client = new PanelClient(plugin.transport);
  const lists = [1, 2].map((smartListID) => client.request({ messageID: 40, smartListID }));
  for (const name of ['one', 'two']) {
    await new Promise(setImmediate);
    plugin.say({ messageID: 41, filename: name });
  }
  assert.deepEqual((await Promise.all(lists)).map(({ filename }) => filename), ['one', 'two']);
});

test('what has no reply resolves by its notification, at once, or not in time', async () => {
  const plugin = scripted(({ messageID }) => messageID === 34 ? ['{"messageID":43}'] : []);
  const client = new PanelClient(plugin.transport, 0.05);
  assert.equal((await client.request({ messageID: 34, smartListID: 1 })).messageID, 43);
  assert.equal(await client.request({ messageID: 12, windowWidth: 1, windowHeight: 2 }), undefined);
  await assert.rejects(client.request({ messageID: 10 }), (error) => error instanceof NoAnswer && error.messageID === 10);
  plugin.transport.dispatch = async () => { throw new Error('refused'); };
  await assert.rejects(client.request({ messageID: 10 }), /refused/);
});

test('what comes late is not taken for the answer to the next request', async () => {
  const late = [{ messageID: 41, filename: 'the first list' }, { messageID: 16, isWindows: false }];
  const plugin = scripted(({ messageID, smartListID }) => (
    { 16: late, 40: smartListID === 2 ? [{ messageID: 41, filename: 'the second list' }] : [] })[messageID]);
  const client = new PanelClient(plugin.transport, 0.05);
  await assert.rejects(client.request({ messageID: 40, smartListID: 1 }), NoAnswer);
  assert.equal((await client.request({ messageID: 40, smartListID: 2 })).filename, 'the second list');
  assert.equal((await client.request({ messageID: 40, smartListID: 2 })).filename, 'the second list');
  assert.deepEqual(plugin.sent.map(({ messageID }) => messageID), [40, 16, 40, 40]);
});

test('handlers hear until they are taken away, and nothing after the client is closed', () => {
  const plugin = scripted();
  const client = new PanelClient(plugin.transport);
  const heard = [];
  const stop = client.on(24, ({ fontIDs }) => heard.push(...fontIDs));
  plugin.say({ messageID: 24, fontIDs: [1] });
  stop();
  client.on(25, ({ fontIDs }) => heard.push(...fontIDs));
  plugin.say({ messageID: 24, fontIDs: [2] }, { messageID: 25, fontIDs: [3] });
  client.close();
  plugin.say({ messageID: 25, fontIDs: [4] });
  assert.deepEqual(heard, [1, 3]);
});

test('the runtime gets whole events and gives what their data holds', async () => {
  const listeners = new Map();
  const dispatched = [];
  const { transport, locate } = connectToRuntime({
    addEventListener: (type, listener) => listeners.set(type, listener), dispatchEvent: (event) => dispatched.push(event) }, 'panel.id');
  const received = [];
  transport.listen((data) => received.push(data));
  await transport.dispatch('{"messageID":66}');
  listeners.get('com.vantorix.PluginToPanel')({ data: { messageID: 20 } });
  assert.deepEqual(received, [{ messageID: 20 }]);
  assert.deepEqual(dispatched, [{ type: 'com.vantorix.PanelToPlugin', scope: 'APPLICATION', appId: 'HTML', extensionId: 'panel.id', data: '{"messageID":66}' }]);
  assert.equal(locate('file:///tmp/a b#1%.txt'), 'file:///tmp/a%20b%231%25.txt');
  assert.equal(locate('file://C:/a/b.png'), 'file:///C:/a/b.png');
  assert.equal(pathOfFileURL('file:///C:/a.txt'), 'C:/a.txt');
});

test('a recording answers in its order, and with its last answer again and again', async () => {
  const { transport, read } = connectToRecording([
    { to: 'panel', ms: 0, message: { messageID: 24, fontIDs: [5] } },
    { to: 'core', ms: 1, message: { messageID: 10 } }, { to: 'panel', ms: 2, message: { messageID: 10, returnCode: 1 } },
    { to: 'core', ms: 3, message: { messageID: 10 } }, { to: 'panel', ms: 4, message: { messageID: 10, returnCode: 2 } },
    { file: 'file:///list', text: 'content' },
  ].map((line) => JSON.stringify(line)).join('\n'));
  const client = new PanelClient(transport);
  const active = new Promise((resolve) => client.on(24, resolve));
  const codes = [];
  for (let i = 0; i < 3; ++i) codes.push((await client.request({ messageID: 10 })).returnCode);
  assert.deepEqual(codes, [1, 2, 2]);
  assert.deepEqual((await active).fontIDs, [5]);
  assert.equal(await read('file:///list'), 'content');
  await assert.rejects(read('file:///other'));
});

test('a font list is sorted as people sort, and found by all words of a search', () => {
  const fonts = parseFontList('1\tB-10\tFace 10\t1\tdesktop\t4\n2\tB-9\tface 9\t0\tsystem\t5\nbroken\tline\n3\tC-1\t\t0\tdesktop\t4\n');
  assert.deepEqual(fonts.map(({ id, name, isActive, workgroup }) => [id, name, isActive, workgroup]),
    [[3, 'C-1', false, 4], [2, 'face 9', false, 5], [1, 'Face 10', true, 4]]);
  assert.deepEqual(search(fonts, ' FACE  b-1').map(({ id }) => id), [1]);
  assert.equal(search(fonts, ' '), fonts);
});
