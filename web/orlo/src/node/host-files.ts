// Files of the host. A guest's path is made one of the host's, or refused; from there on the host's own rules hold. What the program
// keeps for itself while it runs is in memory and never on a disk, and so is a file that it has made as nobody else's, until that gets
// the name of the file that it is to be: a process that is ended by a signal, and can do nothing then, leaves no part of one.

import fs from 'node:fs';
import path from 'node:path';
import tty from 'node:tty';
import { Errno, Fault, Kind, type Files, type OpenFile, type Opening, type Stat } from '../files.js';
import { MemoryFiles } from '../memory-files.js';
import { TEMPORARY_FOLDER, WORKING_FOLDER } from '../run.js';

/** The host's path for a guest's one; throws a Fault when there is none. A link that the path itself names is followed, or is not. */
export type ToHost = (guest: string, follow: boolean) => string;

const { constants } = fs;

const errnos: Record<string, number> = {
    EACCES: Errno.acces, EBADF: Errno.badf, EBUSY: Errno.busy, EDQUOT: Errno.dquot, EEXIST: Errno.exist, EFBIG: Errno.fbig,
    EINVAL: Errno.inval, EISDIR: Errno.isdir, ELOOP: Errno.loop, EMFILE: Errno.mfile, ENAMETOOLONG: Errno.nametoolong,
    ENFILE: Errno.nfile, ENOENT: Errno.noent, ENOSPC: Errno.nospc, ENOTDIR: Errno.notdir, ENOTEMPTY: Errno.notempty,
    ENXIO: Errno.nxio, EPERM: Errno.perm, EPIPE: Errno.pipe, EROFS: Errno.rofs, ESPIPE: Errno.spipe, ETXTBSY: Errno.txtbsy,
    EXDEV: Errno.xdev,
};

// what the host does; its error becomes the guest's
function host<T>(act: () => T): T {
    try {
        return act();
    } catch (error) {
        const code = (error as NodeJS.ErrnoException).code;
        if (error instanceof Fault || code === undefined) throw error;
        throw new Fault(errnos[code] ?? Errno.io);
    }
}

// a stream that was made not to wait has to be waited for here
function waiting(act: () => number): number {
    for (;;) {
        try {
            return act();
        } catch (error) {
            const code = (error as NodeJS.ErrnoException).code;
            if (code === 'EOF') return 0; // the end of a pipe, on Windows
            if (code !== 'EAGAIN') throw error;
            Atomics.wait(new Int32Array(new SharedArrayBuffer(4)), 0, 0, 2);
        }
    }
}

function statOf(about: fs.BigIntStats): Stat {
    const kind = about.isFile() ? Kind.regular
        : about.isDirectory() ? Kind.folder
        : about.isCharacterDevice() ? Kind.character
        : about.isBlockDevice() ? Kind.block
        : about.isSocket() ? Kind.socket
        : about.isSymbolicLink() ? Kind.link
        : Kind.unknown;
    return { device: about.dev, inode: about.ino, kind, size: about.size };
}

/**
 * An open file of the host, by its number. A stream that the process was started with is written where it stands, for others may
 * write to it, too; and it stays open.
 */
export function hostFile(fd: number, isStream = false): OpenFile {
    const stat = () => host(() => statOf(fs.fstatSync(fd, { bigint: true })));
    const { kind } = stat();
    const seekable = !isStream && (kind === Kind.regular || kind === Kind.folder || kind === Kind.block);
    const place = (position: number) => (seekable ? position : null);
    return {
        seekable,
        terminal: tty.isatty(fd),
        stat,
        read: (into, position) => host(() => waiting(() => fs.readSync(fd, into, 0, into.length, place(position)))),
        write: (from, position) => host(() => waiting(() => fs.writeSync(fd, from, 0, from.length, place(position)))),
        resize: bytes => host(() => fs.ftruncateSync(fd, bytes)),
        close: () => host(() => isStream || fs.closeSync(fd)),
    };
}

export class HostFiles implements Files {
    private readonly memory = new MemoryFiles();
    private readonly unfinished = new Map<string, string>(); // where in memory they are

    constructor(private readonly toHost: ToHost) {
        this.memory.addFolder(TEMPORARY_FOLDER);
    }

    open(guest: string, how: Opening): OpenFile {
        const kept = this.inMemory(guest) ?? (how.create && how.exclusive ? this.begin(guest) : undefined);
        if (kept !== undefined) return this.memory.open(kept, how);
        const flags = (how.write ? (how.read ? constants.O_RDWR : constants.O_WRONLY) : constants.O_RDONLY)
            | (how.create ? constants.O_CREAT : 0) | (how.truncate ? constants.O_TRUNC : 0)
            | (how.folder ? constants.O_DIRECTORY ?? 0 : 0);
        return host(() => hostFile(fs.openSync(this.toHost(guest, true), flags)));
    }

    stat(guest: string, follow: boolean): Stat {
        const kept = this.inMemory(guest);
        if (kept !== undefined) return this.memory.stat(kept);
        return host(() => statOf((follow ? fs.statSync : fs.lstatSync)(this.toHost(guest, follow), { bigint: true })));
    }

    readLink(guest: string): string {
        return host(() => fs.readlinkSync(this.toHost(guest, false)));
    }

    unlink(guest: string): void {
        const kept = this.inMemory(guest);
        if (kept === undefined) host(() => fs.unlinkSync(this.toHost(guest, false)));
        else this.memory.unlink(kept);
        this.unfinished.delete(guest);
    }

    rename(from: string, to: string): void {
        const kept = this.inMemory(from);
        if (kept === undefined) return host(() => fs.renameSync(this.toHost(from, false), this.toHost(to, false)));
        if (this.inMemory(to) !== undefined) throw new Fault(Errno.xdev);
        host(() => writeWhole(this.toHost(to, false), this.memory.contents(kept)));
        this.unlink(from);
    }

    private inMemory(guest: string): string | undefined {
        return guest === TEMPORARY_FOLDER || guest.startsWith(`${TEMPORARY_FOLDER}/`) ? guest : this.unfinished.get(guest);
    }

    // a file that nobody else has: what the host would say against it is said now
    private begin(guest: string): string {
        host(() => {
            const name = this.toHost(guest, false);
            if (fs.lstatSync(name, { throwIfNoEntry: false }) !== undefined) throw new Fault(Errno.exist);
            fs.accessSync(path.dirname(name), constants.W_OK);
        });
        const kept = `${TEMPORARY_FOLDER}/unfinished-${this.unfinished.size}`;
        this.unfinished.set(guest, kept);
        return kept;
    }
}

// an earlier file is replaced at once, where it may be written, and its mode stays
function writeWhole(name: string, bytes: Uint8Array): void {
    const earlier = fs.statSync(name, { throwIfNoEntry: false });
    if (earlier !== undefined) fs.accessSync(name, constants.W_OK);
    const beside = `${name}.${process.pid}`;
    fs.writeFileSync(beside, bytes, { flag: 'wx' });
    try {
        if (earlier !== undefined) fs.chmodSync(beside, earlier.mode);
        fs.renameSync(beside, name);
    } catch (error) {
        fs.unlinkSync(beside);
        throw error;
    }
}

/** A folder, which the guest has as its working folder, and nothing else, by whatever links. */
export function oneFolder(folder: string): ToHost {
    const root = fs.realpathSync.native(folder);
    const inside = (real: string) => {
        if (real !== root && !real.startsWith(root.endsWith(path.sep) ? root : root + path.sep)) throw new Fault(Errno.acces);
        return real;
    };
    return (guest, follow) => {
        if (guest !== WORKING_FOLDER && !guest.startsWith(`${WORKING_FOLDER}/`)) throw new Fault(Errno.noent);
        const parts = guest.slice(WORKING_FOLDER.length + 1).split(path.sep === '\\' ? /[\\/]/ : '/');
        if (path.sep === '\\' && parts.some(part => part.includes(':'))) throw new Fault(Errno.noent);
        const name = parts.pop() ?? '';
        const at = [root, ...parts].join(path.sep);
        if (name === '' || name === '.' || name === '..') return inside(fs.realpathSync.native(at + path.sep + name));
        const whole = path.join(inside(fs.realpathSync.native(at)), name);
        const isLink = follow && fs.lstatSync(whole, { throwIfNoEntry: false })?.isSymbolicLink();
        return isLink ? inside(fs.realpathSync.native(whole)) : whole;
    };
}

/**
 * All that the host has. Where paths begin with a slash they are the same for both; on Windows the guest has a working folder of its
 * own, and what it finds below that is the name as the user has written it.
 */
export function wholeSystem(folder: string, rules: path.PlatformPath = path): { workingFolder: string; toHost: ToHost } {
    if (rules.sep === '/') return { workingFolder: folder, toHost: guest => guest };
    const below = `${WORKING_FOLDER}/`;
    return {
        workingFolder: WORKING_FOLDER,
        toHost: guest => rules.resolve(folder, guest === WORKING_FOLDER ? '.' : guest.startsWith(below) ? guest.slice(below.length) : guest),
    };
}
