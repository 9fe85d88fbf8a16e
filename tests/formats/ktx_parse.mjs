// Reads NUMBER.ktx2 of a folder with ktx-parse, compares the levels with NUMBER.raw, and writes NUMBER.rewritten.ktx2; of some
// files also NUMBER.zstd.ktx2, with the levels compressed by the program zstd.
//   node ktx_parse.mjs FOLDER PATH-OF-KTX-PARSE [ZSTD]
import { execFileSync } from 'node:child_process';
import { readdirSync, readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';

const [folder, ktxParse, zstd] = process.argv.slice(2);
const { read, write } = await import(pathToFileURL(ktxParse));
const zstandard = 2;
let count = 0;
let failed = 0;

for (const name of readdirSync(folder).filter((file) => /^\d+\.ktx2$/.test(file))) {
    const path = join(folder, name.replace('.ktx2', ''));
    const container = read(new Uint8Array(readFileSync(`${path}.ktx2`)));
    const levels = Buffer.concat(container.levels.map((level) => Buffer.from(level.levelData)));
    const writer = container.keyValue.KTXwriter;
    count += 1;
    if (!levels.equals(readFileSync(`${path}.raw`)) || !String(writer).startsWith('MOKTexLib')) {
        console.log(`${name}: ktx-parse reads other levels, or another writer: ${writer}`);
        failed += 1;
    }
    writeFileSync(`${path}.rewritten.ktx2`, write(container, { keepWriter: true }));
    if (zstd === undefined || count % 8 !== 0) continue;
    container.supercompressionScheme = zstandard;
    for (const level of container.levels)
        level.levelData = new Uint8Array(execFileSync(zstd, ['-q', '-c'], { input: Buffer.from(level.levelData) }));
    writeFileSync(`${path}.zstd.ktx2`, write(container, { keepWriter: true }));
}
console.log(`${count} files, ${failed} failed`);
process.exit(count > 300 && failed === 0 ? 0 : 1);
