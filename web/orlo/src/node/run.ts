// Runs in Node: on files in memory, as in a page, or in a folder.

import { runInMemory, runOn, TEMPORARY_FOLDER, type Modules, type PlainRun, type Result } from '../run.js';
import { HostFiles, oneFolder } from './host-files.js';

/** What a run in Node is given. */
export interface PlainNodeRun extends PlainRun {
    /**
     * A folder that the program works in, instead of `files`: it reads and writes there, and can reach nothing else. The result has
     * no files then.
     */
    folder?: string;
}

export function runInNode(modules: Modules, run: PlainNodeRun): Result {
    if (run.folder === undefined) return runInMemory(modules, run);
    if (run.files !== undefined) throw new TypeError('a run has files or a folder, not both');
    const files = new HostFiles(oneFolder(run.folder));
    return { ...runOn(files, TEMPORARY_FOLDER, modules, run), files: {}, removed: [] };
}
