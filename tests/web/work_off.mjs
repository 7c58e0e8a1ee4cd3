// Works off runs in one process: work_off.mjs PACKAGE TASKS ANSWERS. A task is a line of JSON, and so is its answer; bytes are base64.

import fs from 'node:fs';
import { pathToFileURL } from 'node:url';

const [from, tasks, answers] = process.argv.slice(2);
const { runSync } = await import(pathToFileURL(`${from}/dist/node/index.js`));

const decoded = text => new Uint8Array(Buffer.from(text, 'base64'));
const encoded = bytes => Buffer.from(bytes).toString('base64');
const each = (files, change) => Object.fromEntries(Object.entries(files).map(([name, data]) => [name, change(data)]));

function answer({ files, stdin, ...task }) {
    try {
        const result = runSync({ ...task, files: each(files, decoded), stdin: decoded(stdin) });
        const { status, removed, screen, output } = result;
        return { status, removed, files: each(result.files, encoded), screen: encoded(screen), stdout: encoded(output) };
    } catch (fault) {
        return { fault: String(fault) };
    }
}

const out = fs.openSync(answers, 'w');
for (const line of fs.readFileSync(tasks, 'ascii').split('\n'))
    if (line !== '') fs.writeSync(out, JSON.stringify(answer(JSON.parse(line))) + '\n');
