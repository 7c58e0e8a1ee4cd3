// Runs a module when it is told to: modules.mjs PACKAGE PIECE, told by lines on the standard input.
//
// "run" runs orlo on the piece, "small" on the shortest one there is, each in a fresh instance on files in memory; both answer with the
// milliseconds that the run took, "size NAME" with the bytes of a module as it is and as brotli has it.

import fs from 'node:fs';
import path from 'node:path';
import readline from 'node:readline';
import { pathToFileURL } from 'node:url';
import { brotliCompressSync } from 'node:zlib';

const [folder, piece] = process.argv.slice(2);
const { load, runSync } = await import(pathToFileURL(path.join(folder, 'dist/node/index.js')).href);
await load('orlo');

const given = { run: fs.readFileSync(piece), small: new TextEncoder().encode('i1 = 3 0 1 {\np2 1\np3 1\n}\n') };

function measure(contents) {
    const before = performance.now();
    const { status } = runSync({ program: 'orlo', args: ['-s', 'in.orlo', 'out.sco'], files: { 'in.orlo': contents } });
    if (status !== 0) throw new Error(`orlo ended with ${status}`);
    return performance.now() - before;
}

for await (const line of readline.createInterface({ input: process.stdin })) {
    const [what, name] = line.split(' ');
    if (what === 'size') {
        const bytes = fs.readFileSync(path.join(folder, 'dist', name));
        console.log(bytes.length, brotliCompressSync(bytes).length);
    } else {
        console.log(measure(given[what]));
    }
}
