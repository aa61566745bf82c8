// A user's world with folders and an agent of its own, and hosts in it that show the panel.
import { execFileSync, spawn } from 'node:child_process';
import { copyFileSync, existsSync, mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { basename, dirname, join, resolve } from 'node:path';
import { setTimeout as sleep } from 'node:timers/promises';
import { fileURLToPath } from 'node:url';

export const root = resolve(dirname(fileURLToPath(import.meta.url)), '..');
export const build = process.env.PANEL_BUILD ?? join(root, '../build/dev');

/** Polls until the condition gives something true. */
export async function eventually(condition, what = String(condition)) {
  for (let i = 0; i < 400; ++i) {
    const value = await condition();
    if (value) return value;
    await sleep(50);
  }
  throw new Error(`never came true: ${what}`);
}

export class World {
  constructor() {
    this.folder = join(mkdtempSync(join(tmpdir(), 'panel-')), 'Ünï ćode 字');
    this.env = { ...process.env, HOME: this.folder, XDG_RUNTIME_DIR: '', TMPDIR: join(this.folder, 'tmp'), USER: 'tester',
      XDG_DATA_HOME: join(this.folder, 'data'), XDG_CACHE_HOME: join(this.folder, 'cache'),
      XDG_CONFIG_HOME: join(this.folder, 'config'), FONTCONFIG_FILE: join(root, '../tests/support/fonts.conf') };
    for (const each of ['tmp', 'data', 'cache', 'config', 'fonts']) mkdirSync(join(this.folder, each), { recursive: true, mode: 0o700 });
    this.hosts = [];
  }

  pellwick(...words) {
    return execFileSync(join(build, 'lib/vantorix/Pellwick'), words, { env: this.env, encoding: 'utf8', stdio: ['ignore', 'pipe', 'pipe'] });
  }

  /** Fonts of the machine whose file names begin so. */
  addFonts(prefix, most = 4) {
    const files = execFileSync('fc-list', [':', 'file'], { encoding: 'utf8' }).split('\n')
      .map((line) => line.replace(/:\s*$/, '')).filter((file) => basename(file).startsWith(prefix) && file.endsWith('.ttf'))
      .sort().slice(0, most);
    if (!files.length) throw new Error(`the machine has no font of a file that begins with ${prefix}`);
    for (const file of files) copyFileSync(file, join(this.folder, 'fonts', basename(file)));
    this.pellwick('add', join(this.folder, 'fonts'));
    this.pellwick('launch-info');
  }

  /** The process of the agent; 0 when there is none. */
  agent() {
    try {
      return JSON.parse(this.pellwick('status', '--json', '--no-start')).process ?? 0;
    } catch {
      return 0;
    }
  }

  document(...families) {
    const path = join(this.folder, 'poster.svg');
    writeFileSync(path, `<svg xmlns="http://www.w3.org/2000/svg">${families.map((each) => `<text font-family="${each}">a</text>`).join('')}</svg>`);
    return path;
  }

  /** A host; its `url` is where the panel is. */
  async host(...words) {
    const process_ = spawn(join(build, 'bin/plugincore-host'), ['panel', '--for', '600', ...words], { env: this.env, stdio: ['ignore', 'pipe', 'pipe'] });
    const host = { process: process_, output: '', errors: '', ended: new Promise((done) => process_.on('exit', (code, signal) => done(signal ?? code))) };
    process_.stdout.on('data', (text) => { host.output += text; });
    process_.stderr.on('data', (text) => { host.errors += text; });
    this.hosts.push(host);
    await eventually(() => host.output.includes('\n') || process_.exitCode !== null, 'the host says where it is');
    if (process_.exitCode !== null) throw new Error(`the host ended: ${host.errors}`);
    host.url = host.output.trim();
    return host;
  }

  async end() {
    for (const host of this.hosts) {
      host.process.kill('SIGTERM');
      await host.ended;
    }
    try { this.pellwick('stop', '--no-start'); } catch { /* there is none */ }
    rmSync(dirname(this.folder), { recursive: true, force: true });
  }
}
export { existsSync, join, readFileSync, sleep };
