// What memory and a folder of the host have in common, as a program sees them, and what a folder keeps from it.

import assert from 'node:assert/strict';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import test from 'node:test';
import { Errno, Fault, Kind, type Files, type Opening } from '../dist/files.js';
import { MemoryFiles } from '../dist/memory-files.js';
import { HostFiles, oneFolder, wholeSystem } from '../dist/node/host-files.js';
import { TEMPORARY_FOLDER } from '../dist/run.js';

const closed: Opening = { read: false, write: false, create: false, exclusive: false, truncate: false, folder: false };
const reading = { ...closed, read: true }, writing = { ...closed, write: true }, making = { ...writing, create: true };
const encoder = new TextEncoder();

// in the working folder: in ("hello"), sub/part ("part"), and the empty folder "empty"
function inMemory(): Files {
    const files = new MemoryFiles();
    files.addFile('/piece/in', encoder.encode('hello'));
    files.addFile('/piece/sub/part', encoder.encode('part'));
    files.addFolder('/piece/empty');
    return files;
}

function newFolder(): string {
    const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'orlo-files-'));
    test.after(() => fs.rmSync(folder, { recursive: true }));
    fs.mkdirSync(path.join(folder, 'own', 'sub'), { recursive: true });
    fs.mkdirSync(path.join(folder, 'own', 'empty'));
    fs.writeFileSync(path.join(folder, 'own', 'in'), 'hello');
    fs.writeFileSync(path.join(folder, 'own', 'sub', 'part'), 'part');
    fs.writeFileSync(path.join(folder, 'secret'), 'secret');
    return path.join(folder, 'own');
}

function contents(files: Files, name: string): string {
    const file = files.open(name, reading);
    const bytes = new Uint8Array(1000);
    const length = file.read(bytes, 0);
    assert.equal(file.read(bytes, length), 0);
    file.close();
    return new TextDecoder().decode(bytes.subarray(0, length));
}

function write(files: Files, name: string, text: string, how = making): void {
    const file = files.open(name, how);
    assert.equal(file.write(encoder.encode(text), 0), text.length);
    file.close();
}

const refused = (errno: keyof typeof Errno, act: () => unknown) =>
    assert.throws(act, (fault: unknown) => fault instanceof Fault && fault.errno === Errno[errno], errno);

for (const [where, make] of [['memory', inMemory], ['a folder', () => new HostFiles(oneFolder(newFolder()))]] as const) {
    test(`in ${where} a path leads where systems say`, () => {
        const files = make();
        for (const name of ['/piece/in', '/piece/./in', '/piece//in', '/piece/sub/../in', '/piece/sub/.././in'])
            assert.equal(contents(files, name), 'hello', name);
        for (const name of ['/piece/no', '/piece/no/../in', '/in', '/piece/sub/in', '/no/in'])
            refused('noent', () => files.open(name, reading));
        for (const name of ['/piece/in/', '/piece/in/x', '/piece/in/../in']) refused('notdir', () => files.open(name, reading));
        refused('nametoolong', () => files.open(`/piece/${'x'.repeat(256)}`, making));
    });

    test(`in ${where} a file has one inode by whatever name, and no other file has it`, () => {
        const files = make();
        const [one, same, other] = ['in', 'sub/../in', 'sub/part'].map(name => files.stat(`/piece/${name}`, true));
        assert.deepEqual(one, same);
        assert.notEqual(one?.inode, other?.inode);
        const file = files.open('/piece/in', reading);
        assert.deepEqual(file.stat(), one);
        file.close();
        assert.equal(one?.kind, Kind.regular);
        assert.equal(one?.size, 5n);
        assert.equal(files.stat('/piece/sub', true).kind, Kind.folder);
    });

    test(`in ${where} an earlier file is kept until it is made shorter`, () => {
        const files = make();
        write(files, '/piece/in', 'HE');
        assert.equal(contents(files, '/piece/in'), 'HEllo');
        const file = files.open('/piece/in', writing);
        file.resize(1);
        file.resize(3);
        file.close();
        assert.equal(contents(files, '/piece/in'), 'H\0\0');
        write(files, '/piece/in', 'x', { ...making, truncate: true });
        assert.equal(contents(files, '/piece/in'), 'x');
    });

    test(`in ${where} what is written beyond the end has zeros before it`, () => {
        const files = make();
        const file = files.open('/piece/new', { ...making, read: true });
        file.write(encoder.encode('end'), 3);
        file.close();
        assert.equal(contents(files, '/piece/new'), '\0\0\0end');
    });

    test(`in ${where} a file that is nobody else's gets its name later`, () => {
        const files = make();
        const exclusive = { ...making, exclusive: true };
        refused('exist', () => files.open('/piece/in', exclusive));
        refused('noent', () => files.open('/piece/no/new', exclusive));
        write(files, '/piece/in.1', 'new', exclusive);
        refused('exist', () => files.open('/piece/in.1', exclusive));
        assert.equal(files.stat('/piece/in.1', true).size, 3n);
        files.rename('/piece/in.1', '/piece/in');
        refused('noent', () => files.stat('/piece/in.1', true));
        assert.equal(contents(files, '/piece/in'), 'new');
        write(files, '/piece/in.1', 'newer', exclusive);
        files.unlink('/piece/in.1');
        refused('noent', () => files.stat('/piece/in.1', true));
    });

    test(`in ${where} folders are no files`, () => {
        const files = make();
        const folder = files.open('/piece/sub', reading);
        refused('isdir', () => folder.read(new Uint8Array(1), 0));
        folder.close();
        refused('isdir', () => files.open('/piece/sub', writing));
        refused('isdir', () => files.open('/piece/sub', making));
        refused('isdir', () => files.unlink('/piece/sub'));
        refused('notdir', () => files.open('/piece/in', { ...reading, folder: true }));
        refused('inval', () => files.readLink('/piece/in'));
        files.unlink('/piece/sub/part');
        refused('noent', () => files.unlink('/piece/sub/part'));
    });
}

test('files that are given are never changed', () => {
    const given = encoder.encode('hello');
    const files = new MemoryFiles();
    files.addFile('/in', given);
    write(files, '/in', 'HELLO');
    assert.equal(contents(files, '/in'), 'HELLO');
    assert.equal(new TextDecoder().decode(given), 'hello');
});

test('a program in a folder reaches nothing else', () => {
    const own = newFolder();
    fs.symlinkSync('../secret', path.join(own, 'link'));
    fs.symlinkSync('..', path.join(own, 'up'));
    fs.symlinkSync('in', path.join(own, 'inner'));
    fs.symlinkSync('../made', path.join(own, 'dangling'));
    const files = new HostFiles(oneFolder(own));
    for (const name of ['/piece/../secret', '/piece/link', '/piece/up/secret', '/piece/sub/../../secret', '/piece/..', '/piece/up']) {
        refused('acces', () => files.open(name, reading));
        refused('acces', () => files.stat(name, true));
    }
    for (const name of ['/piece/../made', '/piece/up/made', '/piece/up/own/../made']) refused('acces', () => files.open(name, making));
    refused('noent', () => files.open('/piece/dangling', making));
    refused('acces', () => files.unlink('/piece/up/secret'));
    refused('acces', () => files.rename('/piece/in', '/piece/up/in'));
    refused('acces', () => files.rename('/piece/up/secret', '/piece/secret'));
    for (const name of [path.join(own, 'in'), '/etc/passwd', '/', '/piece2']) refused('noent', () => files.stat(name, true));
    assert.equal(contents(files, '/piece/inner'), 'hello');
    assert.equal(contents(files, '/piece/up/own/in'), 'hello');
    assert.deepEqual(fs.readdirSync(path.dirname(own)).sort(), ['own', 'secret']);
});

test('what a program keeps for itself is on no disk', () => {
    const own = newFolder();
    const files = new HostFiles(oneFolder(own));
    write(files, `${TEMPORARY_FOLDER}/fileA`, 'mine', { ...making, exclusive: true });
    write(files, '/piece/out.1', 'mine', { ...making, exclusive: true });
    assert.equal(contents(files, `${TEMPORARY_FOLDER}/fileA`), 'mine');
    assert.deepEqual(fs.readdirSync(own).sort(), ['empty', 'in', 'sub']);
});

test('a file that replaces another keeps its mode', { skip: process.platform === 'win32' }, () => {
    const own = newFolder();
    fs.chmodSync(path.join(own, 'in'), 0o640);
    const files = new HostFiles(oneFolder(own));
    write(files, '/piece/in.1', 'new', { ...making, exclusive: true });
    files.rename('/piece/in.1', '/piece/in');
    assert.equal(fs.statSync(path.join(own, 'in')).mode & 0o777, 0o640);
    assert.deepEqual(fs.readdirSync(own).sort(), ['empty', 'in', 'sub']);
});

test('a command line has the files of the system, by the names that the user writes', () => {
    const posix = wholeSystem('/home/me', path.posix);
    assert.equal(posix.workingFolder, '/home/me');
    assert.equal(posix.toHost('/home/me/../you/in', true), '/home/me/../you/in');
    const { workingFolder, toHost } = wholeSystem('C:\\me', path.win32);
    assert.equal(workingFolder, '/piece');
    const names = { 'in.orlo': 'C:\\me\\in.orlo', 'sub\\in.orlo': 'C:\\me\\sub\\in.orlo', 'sub/in.orlo': 'C:\\me\\sub\\in.orlo',
        '..\\in.orlo': 'C:\\in.orlo', 'C:\\x\\in.orlo': 'C:\\x\\in.orlo', 'D:/x/in.orlo': 'D:\\x\\in.orlo' };
    for (const [name, expected] of Object.entries(names)) assert.equal(toHost(`/piece/${name}`, true), expected);
    assert.equal(toHost('/piece', true), 'C:\\me');
});
