// Files that live in memory: a tree of folders, each a map of names. A path is followed as systems do it, part by part, so that
// "a/../b" is there only where the folder "a" is.

import { Errno, Fault, Kind, type Files, type OpenFile, type Opening, type Stat } from './files.js';

const LONGEST_NAME = 255, LONGEST_PATH = 4095; // as systems have them
const SMALLEST = 4096; // room that a file gets when it is first written

let inodes = 0n; // of all trees, so that no two files are taken for one

class File {
    readonly inode = ++inodes;
    size: number;
    written = false; // made, changed or renamed by the program

    constructor(private bytes: Uint8Array, private shared: boolean) {
        this.size = bytes.length;
    }

    contents(): Uint8Array {
        return this.bytes.subarray(0, this.size);
    }

    read(into: Uint8Array, position: number): number {
        const part = this.bytes.subarray(position, Math.min(position + into.length, this.size));
        into.set(part);
        return part.length;
    }

    write(from: Uint8Array, position: number): number {
        const end = position + from.length;
        this.makeRoom(end);
        this.bytes.set(from, position);
        this.size = Math.max(this.size, end);
        return from.length;
    }

    resize(size: number): void {
        this.makeRoom(size);
        if (size < this.size) this.bytes.fill(0, size, this.size); // what follows a shorter file is empty when it grows again
        this.size = size;
    }

    // by halves again, so that a file that is written piece by piece is not copied for each; what came from outside stays as it is
    private makeRoom(size: number): void {
        this.written = true;
        if (size <= this.bytes.length && !this.shared) return;
        try {
            const bytes = new Uint8Array(Math.max(size, size > this.bytes.length ? this.size * 1.5 : this.size, SMALLEST));
            bytes.set(this.contents());
            this.bytes = bytes;
            this.shared = false;
        } catch {
            throw new Fault(Errno.nospc);
        }
    }
}

class Folder {
    readonly inode = ++inodes;
    readonly entries = new Map<string, File | Folder>();

    constructor(readonly parent?: Folder) {}
}

// where a path leads: an entry of a folder, which need not be there; a folder itself has no name when the path doesn't end with one
interface Place {
    folder: Folder;
    name: string;
    node: File | Folder | undefined;
}

export class MemoryFiles implements Files {
    private readonly root = new Folder();

    /** Makes a folder, and those that it is in. */
    addFolder(path: string): void {
        this.makeFolders(path.split('/'));
    }

    /** Makes a file; its bytes are not copied, and never changed. */
    addFile(path: string, bytes: Uint8Array): void {
        const parts = path.split('/');
        const name = parts.pop();
        if (!name) throw new TypeError(`"${path}" is no name of a file`);
        this.makeFolders(parts).entries.set(name, new File(bytes, true));
    }

    /** The bytes of a file. */
    contents(path: string): Uint8Array {
        const { node } = this.find(path);
        if (!(node instanceof File)) throw new Fault(Errno.noent);
        return node.contents();
    }

    /** All files, by their paths. */
    list(): Map<string, { bytes: Uint8Array; written: boolean }> {
        const found = new Map<string, { bytes: Uint8Array; written: boolean }>();
        const look = (folder: Folder, path: string) => {
            for (const [name, node] of folder.entries)
                if (node instanceof Folder) look(node, `${path}/${name}`);
                else found.set(`${path}/${name}`, { bytes: node.contents(), written: node.written });
        };
        look(this.root, '');
        return found;
    }

    open(path: string, how: Opening): OpenFile {
        const place = this.find(path);
        if (place.node !== undefined && how.create && how.exclusive) throw new Fault(Errno.exist);
        if (place.node === undefined && !how.create) throw new Fault(Errno.noent);
        if (place.node instanceof Folder) {
            if (how.write || how.create) throw new Fault(Errno.isdir);
            return openFolder(place.node);
        }
        if (how.folder) throw new Fault(Errno.notdir);
        let file = place.node;
        if (file === undefined) {
            if (path.endsWith('/')) throw new Fault(Errno.isdir);
            file = new File(new Uint8Array(), false);
            file.written = true;
            place.folder.entries.set(place.name, file);
        }
        if (how.truncate) file.resize(0);
        return openFile(file, how);
    }

    stat(path: string): Stat {
        const { node } = this.find(path);
        if (node === undefined) throw new Fault(Errno.noent);
        return statOf(node);
    }

    readLink(path: string): string {
        this.stat(path);
        throw new Fault(Errno.inval); // there are none
    }

    unlink(path: string): void {
        const { folder, name, node } = this.find(path);
        if (node === undefined) throw new Fault(Errno.noent);
        if (node instanceof Folder) throw new Fault(Errno.isdir);
        folder.entries.delete(name);
    }

    rename(from: string, to: string): void {
        const source = this.find(from), target = this.find(to);
        if (source.node === undefined) throw new Fault(Errno.noent);
        if (source.node instanceof Folder) throw new Fault(Errno.notsup);
        if (target.node instanceof Folder) throw new Fault(Errno.isdir);
        source.folder.entries.delete(source.name);
        target.folder.entries.set(target.name, source.node);
        source.node.written = true;
    }

    private makeFolders(parts: string[]): Folder {
        let folder = this.root;
        for (const part of parts) {
            if (part === '' || part === '.') continue;
            if (part === '..') throw new TypeError('".." can\'t stand in the name of a file that is given');
            const next = folder.entries.get(part) ?? new Folder(folder);
            if (next instanceof File) throw new TypeError(`"${part}" is both a file and a folder`);
            folder.entries.set(part, next);
            folder = next;
        }
        return folder;
    }

    private find(path: string): Place {
        if (path.length > LONGEST_PATH) throw new Fault(Errno.nametoolong);
        let place: Place = { folder: this.root, name: '', node: this.root };
        for (const part of path.split('/')) {
            if (place.node === undefined) {
                if (part === '') continue; // "new/" is told from "new" where it is opened
                throw new Fault(Errno.noent);
            }
            if (place.node instanceof File) throw new Fault(Errno.notdir);
            const folder: Folder = place.node;
            if (part === '' || part === '.') continue;
            if (part.length > LONGEST_NAME) throw new Fault(Errno.nametoolong);
            if (part === '..') place = { folder, name: '', node: folder.parent ?? folder };
            else place = { folder, name: part, node: folder.entries.get(part) };
        }
        return place;
    }
}

function statOf(node: File | Folder): Stat {
    const file = node instanceof File;
    return { device: 1n, inode: node.inode, kind: file ? Kind.regular : Kind.folder, size: file ? BigInt(node.size) : 0n };
}

function openFile(file: File, how: Opening): OpenFile {
    const only = (allowed: boolean) => {
        if (!allowed) throw new Fault(Errno.badf);
    };
    return {
        seekable: true,
        terminal: false,
        stat: () => statOf(file),
        read: (into, position) => (only(how.read), file.read(into, position)),
        write: (from, position) => (only(how.write), file.write(from, position)),
        resize: size => (only(how.write), file.resize(size)),
        close: () => {},
    };
}

function openFolder(folder: Folder): OpenFile {
    const refuse = () => {
        throw new Fault(Errno.isdir);
    };
    return { seekable: true, terminal: false, stat: () => statOf(folder), read: refuse, write: refuse, resize: refuse, close: () => {} };
}

/** A stream that gives bytes to the program. */
export function source(bytes: Uint8Array): OpenFile {
    let at = 0;
    return {
        ...stream(),
        read(into) {
            const part = bytes.subarray(at, at + into.length);
            into.set(part);
            at += part.length;
            return part.length;
        },
    };
}

/** A stream that keeps what the program writes. */
export function sink(): OpenFile & { contents(): Uint8Array } {
    const file = new File(new Uint8Array(), false);
    return { ...stream(), write: from => file.write(from, file.size), contents: () => file.contents() };
}

// like a pipe: of no kind, without positions
function stream(): OpenFile {
    const inode = ++inodes;
    const refuse = () => {
        throw new Fault(Errno.badf);
    };
    return {
        seekable: false,
        terminal: false,
        stat: () => ({ device: 2n, inode, kind: Kind.unknown, size: 0n }),
        read: refuse,
        write: refuse,
        resize: refuse,
        close: () => {},
    };
}
