// A command line: the process's own streams, and all files of the system.

import fs from 'node:fs';
import { executeWithOrlo, TEMPORARY_FOLDER, type Program } from '../run.js';
import { hostFile, HostFiles, wholeSystem } from './host-files.js';
import { readModule } from './modules.js';

const CANT_RUN = 126; // as shells have it
const CRASHED = 134;

/** Runs a program as the process; does not return. */
export function command(program: Program): never {
    const { workingFolder, toHost } = wholeSystem(process.cwd());
    let status = CANT_RUN;
    try {
        const compiled = readModule(program);
        status = CRASHED;
        status = executeWithOrlo(compiled, {
            args: [program, ...process.argv.slice(2)],
            env: { ...process.env as Record<string, string>, PWD: workingFolder, TMPDIR: TEMPORARY_FOLDER },
            streams: [hostFile(0, true), hostFile(1, true), hostFile(2, true)],
            files: new HostFiles(toHost),
        }, () => readModule('orlo'));
    } catch (fault) {
        fs.writeSync(2, `${program}: ${status === CRASHED ? 'ended by a fault of its own: ' : ''}${(fault as Error).message}\n`);
    }
    process.exit(status);
}
