// What a program may ask of files, in the terms of WASI. Who keeps them is decided elsewhere.

/** Numbers of errors, as WASI has them. */
export const Errno = {
    acces: 2, again: 6, badf: 8, busy: 10, dquot: 19, exist: 20, fbig: 22, ilseq: 25, inval: 28, io: 29, isdir: 31, loop: 32,
    mfile: 33, nametoolong: 37, nfile: 41, noent: 44, nospc: 51, nosys: 52, notdir: 54, notempty: 55, notsup: 58, nxio: 60,
    perm: 63, pipe: 64, rofs: 69, spipe: 70, txtbsy: 74, xdev: 75,
} as const;

/** What the guest gets as the answer of a call that fails. */
export class Fault extends Error {
    constructor(readonly errno: number) {
        super(`error ${errno}`);
    }
}

/** Kinds of files, as WASI numbers them; pipes are of none. */
export const Kind = { unknown: 0, block: 1, character: 2, folder: 3, regular: 4, socket: 6, link: 7 } as const;

export interface Stat {
    device: bigint;
    inode: bigint; // one file, one pair of device and inode, as long as the run lasts
    kind: number;
    size: bigint;
}

/** An open file. Where nothing can be sought, the position is ignored. */
export interface OpenFile {
    readonly seekable: boolean;
    readonly terminal: boolean;
    stat(): Stat;
    read(into: Uint8Array, position: number): number; // 0 at the end
    write(from: Uint8Array, position: number): number;
    resize(bytes: number): void;
    close(): void;
}

export interface Opening {
    read: boolean;
    write: boolean;
    create: boolean;
    exclusive: boolean; // a file that exists is refused
    truncate: boolean;
    folder: boolean; // nothing but a folder is opened
}

/** Files by their absolute paths. Every function throws a Fault when it can't. */
export interface Files {
    open(path: string, how: Opening): OpenFile;
    stat(path: string, follow: boolean): Stat;
    readLink(path: string): string;
    unlink(path: string): void;
    rename(from: string, to: string): void;
}
