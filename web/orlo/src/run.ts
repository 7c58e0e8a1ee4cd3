// What a run is given and what it gives, and a run on files in memory.

import type { Compiled } from './compiled.js';
import type { Files, OpenFile } from './files.js';
import { MemoryFiles, sink, source } from './memory-files.js';
import { execute, type Guest } from './wasi.js';

export const programs = ['orlo', 'orlo-explain', 'orlo-view'] as const;
export type Program = (typeof programs)[number];

/** What a run is given. */
export interface Run {
    program: Program;
    /** Arguments, as on the command line. */
    args?: readonly string[];
    /**
     * Files by name. A name without a slash in front is one in the working folder; one that ends with a slash is a folder that may
     * be empty. Texts are written as UTF-8.
     */
    files?: Readonly<Record<string, Uint8Array | string>>;
    /** Standard input; empty when it is left out. */
    stdin?: Uint8Array | string;
    /** Environment. */
    env?: Readonly<Record<string, string>>;
    /** Stops the run at once; it is made in a worker then. */
    signal?: AbortSignal;
    /** The most memory that the program gets, in pages of 64 KiB; 4 GiB when it is left out. */
    memoryPages?: number;
}

/** What a run gives. */
export interface Result {
    /** The exit status: 0 for a complete run. */
    status: number;
    /** Files that the run has made or written, by name as in `Run.files`. */
    files: Record<string, Uint8Array>;
    /** Names of given files that the run has removed. */
    removed: string[];
    /** What was shown: the standard error stream. */
    screen: Uint8Array;
    /** The standard output stream. */
    output: Uint8Array;
}

/** A run as it is made somewhere, perhaps in another thread. */
export type PlainRun = Omit<Run, 'signal'>;

export type Modules = Partial<Record<Program, Compiled>>;

export const WORKING_FOLDER = '/piece';
/** What the programs keep here while they run is nobody's, and gone with the run. */
export const TEMPORARY_FOLDER = '/.orlo-temporary';

const encoder = new TextEncoder();
const decoder = new TextDecoder();

/** The text of bytes, read as UTF-8; what is none becomes U+FFFD. */
export const text = (bytes: Uint8Array): string => decoder.decode(bytes);

const bytesOf = (given: Uint8Array | string) => (typeof given === 'string' ? encoder.encode(given) : given);

const pathOf = (name: string) => (name.startsWith('/') ? name : `${WORKING_FOLDER}/${name}`);

const nameOf = (path: string) => (path.startsWith(`${WORKING_FOLDER}/`) ? path.slice(WORKING_FOLDER.length + 1) : path);

/** Runs a program, which may have orlo run for it. */
export function executeWithOrlo(program: Compiled, guest: Guest, orlo: () => Compiled): number {
    return execute(program, {
        ...guest,
        runOrlo(args, name) {
            const screen = appending(guest.files, name);
            const status = execute(orlo(), { ...guest, args, streams: [guest.streams[0], screen, screen] });
            screen.close();
            return status;
        },
    });
}

// a file as a stream that is written at its end
function appending(files: Files, name: string): OpenFile {
    const file = files.open(name, { read: false, write: true, create: false, exclusive: false, truncate: false, folder: false });
    return { ...file, seekable: false, write: from => file.write(from, Number(file.stat().size)) };
}

/** What a run gives besides files. */
export type Shown = Pick<Result, 'status' | 'screen' | 'output'>;

/** Runs a program, which must have been brought, on whatever files. */
export function runOn(files: Files, temporaryFolder: string, modules: Modules, run: PlainRun): Shown {
    const module = (program: Program) => {
        const found = modules[program];
        if (found === undefined) throw new Error(`there is no module of ${program}`);
        return found;
    };
    const output = sink(), screen = sink();
    const guest: Guest = {
        args: [run.program, ...(run.args ?? [])],
        env: { ...run.env, PWD: WORKING_FOLDER, TMPDIR: temporaryFolder },
        streams: [source(bytesOf(run.stdin ?? '')), output, screen],
        files,
        memoryPages: run.memoryPages,
    };
    const status = executeWithOrlo(module(run.program), guest, () => module('orlo'));
    return { status, screen: screen.contents(), output: output.contents() };
}

/** Runs a program on files in memory. */
export function runInMemory(modules: Modules, run: PlainRun): Result {
    const files = new MemoryFiles();
    files.addFolder(WORKING_FOLDER);
    files.addFolder(TEMPORARY_FOLDER);
    const given = Object.entries(run.files ?? {});
    for (const [name, contents] of given)
        if (name.endsWith('/')) files.addFolder(pathOf(name));
        else files.addFile(pathOf(name), bytesOf(contents));
    const shown = runOn(files, TEMPORARY_FOLDER, modules, run);
    const left = new Map([...files.list()].filter(([path]) => !path.startsWith(`${TEMPORARY_FOLDER}/`)));
    return {
        ...shown,
        files: Object.fromEntries([...left].filter(([, { written }]) => written).map(([path, { bytes }]) => [nameOf(path), bytes])),
        removed: given.map(([name]) => name).filter(name => !name.endsWith('/') && !left.has(pathOf(name))),
    };
}
