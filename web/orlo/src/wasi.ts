// The system that a module sees: the calls of WASI (preview 1) that the programs make. One that imports others is told that there is
// no such call.

import type { Compiled } from './compiled.js';
import { Errno, Fault, Kind, type Files, type OpenFile, type Opening, type Stat } from './files.js';

/** What a module runs with. */
export interface Guest {
    args: string[]; // the first is the program's name
    env: Record<string, string>;
    streams: [OpenFile, OpenFile, OpenFile];
    files: Files;
    memoryPages?: number | undefined; // the most that it may have, of 64 KiB each
    runOrlo?: RunOrlo | undefined;
}

/** Runs orlo on the same files; what it shows is added to a file. @returns its exit status */
export type RunOrlo = (args: string[], screen: string) => number;

interface Descriptor {
    file: OpenFile;
    position: number;
}

class Exit extends Error {
    constructor(readonly status: number) {
        super(`exit ${status}`);
    }
}

const STDIN = '/dev/stdin'; // what programs call their standard input where they need a name
const MOST_PAGES = 65536; // all that a module can address
const ROOT = 3; // the one folder that is open from the start
const CREATE = 1, FOLDER = 2, EXCLUSIVE = 4, TRUNCATE = 8, APPEND = 1; // how a path is opened
const READ = 1n << 1n, WRITE = 1n << 6n, SEEK_AND_TELL = (1n << 2n) | (1n << 5n), ALL_RIGHTS = (1n << 30n) - 1n;
const CANT_RUN = -1; // instead of a status

const encoder = new TextEncoder();
const decoder = new TextDecoder('utf-8', { fatal: true, ignoreBOM: true }); // names are taken as they are

/** Runs a program to its end. @returns the exit status; a trap is thrown as it is */
export function execute(program: Compiled, guest: Guest): number {
    let memory = new WebAssembly.Memory({ initial: program.pages, maximum: guest.memoryPages ?? MOST_PAGES });
    const descriptors: (Descriptor | undefined)[] = guest.streams.map(file => ({ file, position: 0 }));
    descriptors[ROOT] = { file: folderItself, position: 0 };

    const view = () => new DataView(memory.buffer);
    const bytes = (at: number, length: number) => new Uint8Array(memory.buffer, at, length);
    const put32 = (at: number, value: number) => view().setUint32(at, value, true);
    const put64 = (at: number, value: bigint) => view().setBigUint64(at, value, true);

    const text = (at: number, length: number) => {
        try {
            return decoder.decode(bytes(at, length));
        } catch {
            throw new Fault(Errno.ilseq);
        }
    };

    const path = (fd: number, at: number, length: number) => {
        if (fd !== ROOT) throw new Fault(Errno.badf);
        return '/' + text(at, length);
    };

    const open = (fd: number) => {
        const descriptor = descriptors[fd];
        if (descriptor === undefined) throw new Fault(Errno.badf);
        return descriptor;
    };

    const sought = (fd: number) => {
        const descriptor = open(fd);
        if (!descriptor.file.seekable) throw new Fault(Errno.spipe);
        return descriptor;
    };

    // goes over the pieces of memory of one call until one is not filled, or not taken, as a whole
    const transfer = (way: 'read' | 'write', fd: number, pieces: number, count: number, done: number) => {
        const descriptor = open(fd);
        let total = 0;
        for (let i = 0; i < count; ++i) {
            const piece = bytes(view().getUint32(pieces + 8 * i, true), view().getUint32(pieces + 8 * i + 4, true));
            const moved = piece.length > 0 ? descriptor.file[way](piece, descriptor.position) : 0;
            descriptor.position += moved;
            total += moved;
            if (moved < piece.length) break;
        }
        put32(done, total);
    };

    const putStat = (at: number, stat: Stat) => {
        bytes(at, 64).fill(0);
        put64(at, stat.device);
        put64(at + 8, stat.inode);
        view().setUint8(at + 16, stat.kind);
        put64(at + 24, 1n);
        put64(at + 32, stat.size);
    };

    // a list of texts: where each begins, and their bytes, each ended by a zero
    const listOf = (texts: string[]) => {
        const coded = texts.map(each => encoder.encode(each + '\0'));
        return {
            sizes(count: number, size: number) {
                put32(count, coded.length);
                put32(size, coded.reduce((sum, each) => sum + each.length, 0));
            },
            get(pointers: number, buffer: number) {
                for (const [i, each] of coded.entries()) {
                    put32(pointers + 4 * i, buffer);
                    bytes(buffer, each.length).set(each);
                    buffer += each.length;
                }
            },
        };
    };
    const args = listOf(guest.args);
    const env = listOf(Object.entries(guest.env).map(([name, value]) => `${name}=${value}`));

    const calls: Record<string, (...values: never[]) => number | void> = {
        args_sizes_get: args.sizes,
        args_get: args.get,
        environ_sizes_get: env.sizes,
        environ_get: env.get,

        clock_time_get(clock: number, _precision: bigint, at: number) {
            put64(at, clock === 0 ? BigInt(Date.now()) * 1_000_000n : BigInt(Math.round(performance.now() * 1e6)));
        },
        // seeds and names, no secrets
        random_get(at: number, length: number) {
            bytes(at, length).forEach((_, i, all) => (all[i] = Math.random() * 256));
        },
        proc_exit(status: number) {
            throw new Exit(status);
        },

        fd_prestat_get(fd: number, at: number) {
            if (fd !== ROOT) return Errno.badf;
            put32(at, 0);
            put32(at + 4, 1);
            return 0;
        },
        fd_prestat_dir_name(fd: number, at: number, length: number) {
            if (fd !== ROOT || length < 1) return Errno.inval;
            view().setUint8(at, '/'.charCodeAt(0));
            return 0;
        },
        // a terminal is a character device without the rights to seek and to tell
        fd_fdstat_get(fd: number, at: number) {
            const { file } = open(fd);
            bytes(at, 24).fill(0);
            view().setUint8(at, file.stat().kind);
            put64(at + 8, file.terminal ? ALL_RIGHTS & ~SEEK_AND_TELL : ALL_RIGHTS);
            put64(at + 16, ALL_RIGHTS);
        },
        fd_filestat_get: (fd: number, at: number) => putStat(at, open(fd).file.stat()),
        fd_filestat_set_size: (fd: number, size: bigint) => open(fd).file.resize(Number(size)),
        fd_read: (fd: number, pieces: number, count: number, done: number) => transfer('read', fd, pieces, count, done),
        fd_write: (fd: number, pieces: number, count: number, done: number) => transfer('write', fd, pieces, count, done),
        fd_seek(fd: number, offset: bigint, from: number, at: number) {
            const descriptor = sought(fd);
            const base = [0, descriptor.position, Number(descriptor.file.stat().size)][from];
            if (base === undefined || base + Number(offset) < 0) return Errno.inval;
            descriptor.position = base + Number(offset);
            put64(at, BigInt(descriptor.position));
            return 0;
        },
        fd_tell: (fd: number, at: number) => put64(at, BigInt(sought(fd).position)),
        fd_close(fd: number) {
            const { file } = open(fd);
            descriptors[fd] = undefined;
            file.close();
        },

        path_open(folder: number, _follow: number, at: number, length: number, how: number, rights: bigint, _inherited: bigint,
            flags: number, result: number) {
            if ((flags & APPEND) !== 0) return Errno.notsup;
            const opening: Opening = {
                read: (rights & READ) !== 0n, write: (rights & WRITE) !== 0n, create: (how & CREATE) !== 0,
                exclusive: (how & EXCLUSIVE) !== 0, truncate: (how & TRUNCATE) !== 0, folder: (how & FOLDER) !== 0,
            };
            const name = path(folder, at, length);
            const file = name === STDIN ? guest.streams[0] : guest.files.open(name, opening);
            const free = descriptors.findIndex(each => each === undefined);
            const fd = free < 0 ? descriptors.length : free;
            descriptors[fd] = { file, position: 0 };
            put32(result, fd);
            return 0;
        },
        path_filestat_get(fd: number, follow: number, at: number, length: number, result: number) {
            const name = path(fd, at, length);
            putStat(result, name === STDIN ? guest.streams[0].stat() : guest.files.stat(name, (follow & 1) !== 0));
        },
        path_unlink_file: (fd: number, at: number, length: number) => guest.files.unlink(path(fd, at, length)),
        path_rename: (fd: number, at: number, length: number, newFd: number, newAt: number, newLength: number) =>
            guest.files.rename(path(fd, at, length), path(newFd, newAt, newLength)),
        path_readlink(fd: number, at: number, length: number, buffer: number, size: number, used: number) {
            const target = encoder.encode(guest.files.readLink(path(fd, at, length))).subarray(0, size);
            bytes(buffer, target.length).set(target);
            put32(used, target.length);
        },
    };

    // the one call that is not of WASI; each argument is ended by a zero
    const run = (at: number, length: number, screenAt: number, screenLength: number) =>
        guest.runOrlo?.(text(at, length).split('\0').slice(0, -1), text(screenAt, screenLength)) ?? CANT_RUN;

    // numbers come as signed, addresses are not
    const guarded = (call: (...values: never[]) => number | void) => (...values: (number | bigint)[]) => {
        try {
            return call(...(values.map(value => (typeof value === 'number' ? value >>> 0 : value)) as never[])) ?? 0;
        } catch (fault) {
            if (fault instanceof Fault) return fault.errno;
            throw fault;
        }
    };

    const imports: Record<string, Record<string, WebAssembly.ImportValue>> = {};
    for (const { module: room, name, kind } of WebAssembly.Module.imports(program.module)) {
        const call = room === 'orlo' && name === 'run' ? run : calls[name];
        const value = kind === 'memory' ? memory : guarded(call ?? (() => Errno.nosys));
        (imports[room] ??= {})[name] = value;
    }
    const instance = new WebAssembly.Instance(program.module, imports);
    if (instance.exports['memory'] instanceof WebAssembly.Memory) memory = instance.exports['memory'];
    try {
        (instance.exports['_start'] as () => void)();
        return 0;
    } catch (end) {
        if (end instanceof Exit) return end.status;
        throw end;
    } finally {
        for (const descriptor of descriptors.slice(ROOT + 1)) descriptor?.file.close();
    }
}

const folderItself: OpenFile = {
    seekable: false,
    terminal: false,
    stat: () => ({ device: 0n, inode: 0n, kind: Kind.folder, size: 0n }),
    read: () => { throw new Fault(Errno.isdir); },
    write: () => { throw new Fault(Errno.badf); },
    resize: () => { throw new Fault(Errno.badf); },
    close: () => {},
};
