// The app in a browser, on the real core and agent.
import assert from 'node:assert/strict';
import { after, before, describe, test } from 'node:test';
import { mkdirSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import Ajv from 'ajv';
import { chromium } from 'playwright-core';
import { World, eventually, existsSync, join, readFileSync, root } from './world.mjs';

const browserProgram = process.env.CHROMIUM ?? '/usr/bin/chromium';
const axe = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');
const skip = existsSync(browserProgram) ? false : 'there is no chromium; install the package';

describe('the panel', { skip, concurrency: false }, () => {
  const world = new World();
  const recording = join(world.folder, 'recording.jsonl');
  let browser;
  let host;
  const failures = [];

  before(async () => {
    world.addFonts('DejaVu', 8);
    host = await world.host(world.document('DejaVu Sans Bold', 'Nobody Has This', 'DejaVu Sans Heavy'), '--record', recording);
    browser = await chromium.launch({ executablePath: browserProgram, args: ['--no-sandbox', '--disable-dev-shm-usage'] });
  });
  after(async () => {
    await browser?.close();
    await world.end();
  });

  async function open(options = {}, query = '') {
    const page = await browser.newPage({ viewport: { width: 900, height: 560 }, ...options });
    page.on('pageerror', (error) => failures.push(String(error)));
    await page.goto(host.url + query);
    return page;
  }
  const rows = (page) => page.locator('font-list .row');
  const named = (page, name) => page.locator('font-list .row', { has: page.getByTitle(name, { exact: true }) });
  const picture = async (page, name) => {
    const folder = process.env.PANEL_PICTURES;
    if (!folder) return;
    mkdirSync(folder, { recursive: true });
    await page.screenshot({ path: join(folder, `panel-${name}.png`) });
  };
  async function assertAccessible(page) {
    // By the protocol, since the page's own policy lets no foreign script in.
    const { violations } = await page.evaluate(`${axe}; axe.run()`);
    assert.deepEqual(violations.map(({ id, nodes }) => [id, nodes[0].html]), []);
  }

  test('shows a document with what is active and missing, and activates a family by keyboard', async () => {
    const page = await open();
    await page.getByRole('button', { name: 'poster.svg' }).click();
    await page.getByText('Missing').first().waitFor();
    assert.equal(await rows(page).count(), 3);
    assert.equal(await named(page, 'DejaVu Sans Bold').getByText('Active').count(), 1);
    await page.getByRole('button', { name: 'Replace DejaVu Sans Heavy' }).click();
    const candidate = page.getByRole('dialog').getByRole('listitem').first();
    assert.match(await candidate.innerText(), /DejaVu.*\n.+/, 'a name and a reason');
    await picture(page, 'replace');
    await assertAccessible(page);
    await page.keyboard.press('Tab');
    await candidate.getByRole('button').click();
    await eventually(async () => await page.getByText('Missing').count() === 1, 'it is replaced');
    await page.getByRole('button', { name: 'All fonts' }).click();
    await eventually(async () => await page.locator('font-list img').count() === 8, 'names are drawn');
    await eventually(() => page.locator('font-list img').first().evaluate((image) => image.naturalWidth > 0), 'images load');
    await picture(page, 'light');
    await assertAccessible(page);
    await page.getByRole('searchbox').fill('condensed sans');
    await eventually(async () => await rows(page).count() < 8 && await rows(page).count() > 0, 'the search finds some');
    await page.getByRole('searchbox').press('ArrowDown');
    await page.keyboard.press('End');
    const chosen = page.locator('font-list .row[aria-selected=true]');
    await page.keyboard.press('Enter');
    await chosen.getByText('Active').waitFor();
    assert.ok(JSON.parse(world.pellwick('status', '--json')).activeFiles > 1, 'the agent activated it');
    await page.close();
  });

  test('makes, tries, renames and deletes a smart list, and a second tab follows', async () => {
    const page = await open();
    const other = await open({ colorScheme: 'dark' });
    await rows(other).first().waitFor();
    await page.getByRole('button', { name: 'New smart list' }).click();
    await page.getByLabel('Name').fill('<b>Posters</b>');
    await page.getByLabel('Font Library', { exact: true }).check();
    await page.getByRole('button', { name: 'Try' }).click();
    await page.getByText('Tried: 8 fonts.').waitFor();
    await assertAccessible(page);
    await page.getByRole('button', { name: 'Save' }).click();
    await other.getByRole('button', { name: '<b>Posters</b>' }).click();
    await eventually(async () => await rows(other).count() === 8, 'the other tab has the list');
    await page.reload();
    await page.getByRole('button', { name: 'Edit smart list' }).click();
    await page.getByLabel('Name').fill('Covers');
    await page.getByRole('button', { name: 'Save' }).click();
    await other.getByRole('button', { name: 'Covers' }).waitFor();
    await picture(other, 'dark');
    await assertAccessible(other);
    page.on('dialog', (dialog) => dialog.accept());
    await page.getByRole('button', { name: 'Delete' }).click();
    await other.getByRole('button', { name: 'Covers' }).waitFor({ state: 'detached' });
    assert.equal(JSON.parse(world.pellwick('smartlist', 'list', '--json')).smartLists.length, 0);
    await page.close();
    await other.close();
  });

  test('speaks German in a narrow panel, and tells who is not logged in', async () => {
    const page = await open({ locale: 'de-DE', viewport: { width: 360, height: 560 } });
    await eventually(async () => await page.locator('font-list img').count() > 4, 'names are drawn');
    await picture(page, 'german');
    await assertAccessible(page);
    world.pellwick('logout');
    await page.getByText('In der Schriftverwaltung ist niemand angemeldet.').waitFor();
    await assertAccessible(page);
    world.pellwick('login', 'tester');
    await page.getByText('In der Schriftverwaltung ist niemand angemeldet.').waitFor({ state: 'detached' });
    await page.close();
  });

  test('takes the page\'s first panel as it stands', async () => {
    const code = (language) => new RegExp(`~~~${language}\\n([^]*?)~~~`).exec(readFileSync(join(root, '../docs/panel-messages.md'), 'utf8'))[1];
    const page = await browser.newPage();
    await page.route('**/first.html', (route) => route.fulfill({ contentType: 'text/html', body: code('html') }));
    await page.route('**/first.js', (route) => route.fulfill({ contentType: 'text/javascript', body: code('js') }));
    await page.route('**/client.js', (route) => route.fulfill({ contentType: 'text/javascript', path: join(root, 'dist/client.js') }));
    await page.goto(`${host.url}first.html`);
    await page.getByText('DejaVu Sans Bold', { exact: true }).waitFor();
    assert.equal(await page.locator('li').count(), 8);
    await page.close();
  });

  test('has every request of the catalogue answered that has an answer', async () => {
    const page = await browser.newPage();
    await page.route('**/client.js', (route) => route.fulfill({ contentType: 'text/javascript', path: join(root, 'dist/client.js') }));
    await page.goto(host.url);
    const replies = await page.evaluate(async () => {
      const { PanelClient, connectToBridge } = await import(new URL('client.js', location.href).href);
      const client = new PanelClient(connectToBridge(new URL('.', location.href).href).transport);
      const ask = (messageID, rest = {}) => client.request({ messageID, ...rest });
      const { smartList } = await ask(39, { smartListName: 'All', workgroupIDs: [], setIDs: [], smartSetIDs: [] });
      const of = { smartListID: smartList.smartListID };
      await ask(12, { windowWidth: 640, windowHeight: 480 });
      await ask(42, { ...of, workgroupIDs: [1], setIDs: [], smartSetIDs: [] });
      await ask(44, { ...of, smartListName: 'Everything' });
      const silent = [[47, { fontID: 1, version: '1' }], [48], [49], [51], [59],
        [67, { isCtrlPressed: false, isShiftPressed: false, isAltPressed: false, keyCode: 27 }]];
      for (const [id, rest] of silent) await ask(id, rest);
      const answers = [await ask(11), await ask(16), await ask(36, of), await ask(37, of), await ask(58)];
      await ask(34, of);
      return answers;
    });
    assert.deepEqual(replies.map(({ messageID }) => messageID), [11, 16, 36, 37, 58]);
    assert.deepEqual([replies[0].width, replies[0].height, replies[1].isWindows, replies[2].smartListName], [640, 480, false, 'Everything']);
    await page.close();
  });

  test('says when the agent is gone, and goes on when it is back', async () => {
    const page = await open();
    await rows(page).first().waitFor();
    const agent = world.agent();
    process.kill(agent, 'SIGKILL');
    await page.getByText('The font manager is not available.').waitFor();
    await eventually(() => world.agent() && world.agent() !== agent, 'there is another agent');
    await page.getByText('The font manager is not available.').waitFor({ state: 'detached' });
    await page.getByRole('switch', { name: 'Web fonts' }).click();
    await page.locator('[role=switch][aria-checked=true]').waitFor();
    await page.close();
  });

  test('shows 90,000 fonts of any name at once and while it scrolls', async () => {
    const longName = 'N'.repeat(10240);
    const hostile = ['<img src=x onerror="document.title=\'owned\'">', 'שלום \u202Egpj.exe', longName];
    const list = Array.from({ length: 90000 }, (_, i) => `${i + 1}\tPS-${i + 1}\t${hostile[i] ? ` ${hostile[i]}` : `Face ${i + 1}`}\t0\tdesktop\t1\n`).join('');
    const lines = [[66, { messageID: 20, isStandalone: true }, { messageID: 30, isEnabled: true }],
      [10, { messageID: 10, isEnabled: false, isReplicating: false, replicationMode: 0, returnCode: 0 }],
      [18, { messageID: 18, selection: 0, savesSmartList: false }], [38, { messageID: 38, smartLists: [] }], [35], [40, { messageID: 41, filename: 'file:///list' }]]
      .flatMap(([messageID, ...replies]) => [{ to: 'core', ms: 0, message: { messageID } }, ...replies.map((message) => ({ to: 'panel', ms: 0, message }))]);
    const text = [...lines, { file: 'file:///list', text: list }].map((line) => JSON.stringify(line)).join('\n');
    const page = await browser.newPage({ viewport: { width: 900, height: 560 } });
    await page.route('**/big.jsonl', (route) => route.fulfill({ body: text }));
    await page.goto(`${host.url}?replay=big.jsonl`);
    await page.getByText('90,000 fonts').waitFor();
    const grid = page.getByRole('grid');
    assert.equal(await grid.getAttribute('aria-rowcount'), '90000');
    for (const place of [0.1, 0.5, 0.9]) {
      const top = await grid.evaluate((element, part) => { element.scrollTop = element.scrollHeight * part; return element.scrollTop; }, place);
      await page.locator(`#row-${Math.ceil(top / 56) + 1}`).waitFor();
      assert.ok(await rows(page).count() < 60, 'rows are made for what is seen alone');
    }
    await grid.focus();
    await page.keyboard.press('Home');
    for (const search of ['onerror', 'gpj', 'NNNNNN']) {
      await page.getByRole('searchbox').fill(search);
      await page.getByText('1 of 90,000 fonts').waitFor();
      const name = await page.locator('font-list .name bdi').evaluate((element) => ({ text: element.textContent, children: element.childElementCount,
        width: element.getBoundingClientRect().right - element.parentElement.getBoundingClientRect().right }));
      assert.equal(name.children, 0);
      assert.ok(hostile.some((each) => each.startsWith(name.text.trim())), name.text);
    }
    assert.equal(await page.locator('font-list .row').evaluate((row) => row.scrollWidth <= row.clientWidth), true, 'a long name is cut');
    assert.equal(await page.title(), 'Fonts');
    await page.getByRole('searchbox').fill('nothing like this');
    await page.getByText('No font is called “nothing like this”.').waitFor();
    await assertAccessible(page);
    await page.close();
  });

  test('says when the host is gone, and all that was said follows the schemas', async () => {
    const page = await open();
    await rows(page).first().waitFor();
    host.process.kill('SIGINT');
    assert.equal(await host.ended, 128 + 2, host.errors);
    await page.getByText('The host does not answer.').waitFor();
    await page.close();
    assert.deepEqual(failures, []);
    const schema = (name) => new Ajv({ strict: false }).compile(JSON.parse(readFileSync(join(root, `../docs/panel-schemas/${name}.json`), 'utf8')));
    const validators = { core: schema('panel-to-plugin'), panel: schema('plugin-to-panel') };
    const said = readFileSync(recording, 'utf8').trim().split('\n').map((line) => JSON.parse(line)).filter(({ to }) => to);
    for (const { to, message } of said) assert.ok(validators[to](message), `${JSON.stringify(message)}: ${JSON.stringify(validators[to].errors)}`);
    const sent = new Set(said.filter(({ to }) => to === 'core').map(({ message }) => message.messageID));
    for (const id of [8, 9, 10, 11, 12, 13, 16, 17, 18, 32, 33, 34, 35, 36, 37, 38, 39, 40, 42, 44, 47, 48, 49, 51, 58, 59, 66, 67]) assert.ok(sent.has(id), `the panel never sent ${id}`);
  });
});
