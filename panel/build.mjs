// node build.mjs [--out FOLDER]: makes the types from the schemas, then the client (dist/client.js) and the app.
// The app goes to FOLDER; without one, to dist/app.
import { mkdir, copyFile, readFile, writeFile } from 'node:fs/promises';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';
import { build } from 'esbuild';
import { compileFromFile } from 'json-schema-to-typescript';

const here = dirname(fileURLToPath(import.meta.url));
const argument = process.argv.indexOf('--out');
const out = argument > 0 ? resolve(process.argv[argument + 1]) : join(here, 'dist/app');

await mkdir(join(here, 'client/generated'), { recursive: true });
for (const [schema, name] of [['panel-to-plugin', 'ToPlugin'], ['plugin-to-panel', 'ToPanel']]) {
  const file = join(here, 'client/generated', `${name}.ts`);
  const types = await compileFromFile(join(here, `../docs/panel-schemas/${schema}.json`),
    { bannerComment: `// Made from docs/panel-schemas/${schema}.json by build.mjs.`, format: false });
  if ((await readFile(file, 'utf8').catch(() => '')) !== types) await writeFile(file, types);
}
const common = { bundle: true, format: 'esm', target: 'es2020', absWorkingDir: here };
await build({ ...common, entryPoints: ['client/index.ts'], outfile: 'dist/client.js' });
await build({ ...common, entryPoints: ['app/fonts.ts'], outfile: 'dist/fonts.js' });
await build({ ...common, entryPoints: ['app/main.ts'], outfile: join(out, 'panel.js'), minify: true });
for (const file of ['index.html', 'icon.svg']) await copyFile(join(here, 'app', file), join(out, file));
