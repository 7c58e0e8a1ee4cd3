// Runs by the typed interface, in this thread and in workers.

import assert from 'node:assert/strict';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import test from 'node:test';
import { load, run, runSync, text } from 'orlo';
import { compileAtOnce } from '../dist/compiled.js';
import { runInMemory } from '../dist/run.js';
import { answerTo, makeRunner, type Answer } from '../dist/runner.js';

const piece = 'i1 = 3 0 1 {\np2 1\np3 1\n}\n';
const score = '\n;I-block #1 (i1):\ni1    0.000  1.000 \n\ne\n';
const large = 'i1 = 3 0 9000 {\np2 .001\np3 1\n}\n'; // nine million events

test('a run gives the files that it has written, status and screen', async () => {
    const result = await run({ program: 'orlo', args: ['in.orlo', 'out.sco'], files: { 'in.orlo': piece } });
    assert.equal(result.status, 0);
    assert.deepEqual(Object.keys(result.files), ['out.sco']);
    assert.equal(text(result.files['out.sco']!), score);
    assert.match(text(result.screen), /1 events generated in block #1/);
    assert.equal(result.output.length, 0);
    assert.deepEqual(result.removed, []);
});

test('a run that fails leaves an earlier output', () => {
    const result = runSync({ program: 'orlo', args: ['in.orlo', 'out.sco'], files: { 'in.orlo': 'x', 'out.sco': 'earlier' } });
    assert.equal(result.status, 1);
    assert.match(text(result.screen), /ERROR/);
    assert.deepEqual(result.files, {});
});

test('names are those of the working folder, and absolute ones are others', () => {
    const files = { 'sub/in.orlo': '#include |part|\n', 'part': piece, '/part': 'another' };
    const result = runSync({ program: 'orlo', args: ['sub/../sub/in.orlo', '/out.sco'], files: { ...files, 'empty/': '' } });
    assert.equal(text(result.screen).includes('ERROR'), false);
    assert.deepEqual(Object.keys(result.files), ['/out.sco']);
});

test('bytes are written as they are', () => {
    const files = { 'in.orlo': new TextEncoder().encode(piece) };
    assert.equal(text(runSync({ program: 'orlo', args: ['in.orlo', 'out.sco'], files }).files['out.sco']!), score);
});

test('the standard output is apart from the screen', () => {
    const result = runSync({ program: 'orlo-explain', args: ['in.orlo'], files: { 'in.orlo': piece } });
    assert.equal(result.status, 0);
    assert.equal(JSON.parse(text(result.output)).piece.folder, '/piece');
    assert.equal(result.screen.length, 0);
});

test('runs know nothing of each other', async () => {
    const results = await Promise.all([1, 2, 3].map(start => run({
        program: 'orlo', args: ['in.orlo', 'out.sco'], files: { 'in.orlo': piece.replace('3 0 1', `3 ${start} 1`) },
    })));
    for (const [i, { files }] of results.entries()) assert.match(text(files['out.sco']!), new RegExp(`^i1 +${i + 1}\\.000`, 'm'));
});

test('memory that runs out is an error of the run', () => {
    const result = runSync({ program: 'orlo', args: ['in.orlo', 'out.sco'], files: { 'in.orlo': large }, memoryPages: 1000 });
    assert.equal(result.status, 1);
    assert.match(text(result.screen), /ERROR: Line 3: Yikes, out of memory!/);
});

const lines = (count: number, line: (at: number) => string) => Array.from({ length: count }, (_, at) => line(at)).join('');

// pieces that need memory in different rooms, and where orlo's own part of the output stands when it does not end well
const greedy = {
    events: 'i1 = 4 0 -9000 {\np2 .01\np3 1\np4 RA(T 1 [0 1])\n}\n',
    constants: lines(9000, at => `#const c${at} ${at}\n`) + piece,
    macros: lines(900, at => `#define m${at} #${'x'.repeat(1500)}#\n`) + piece,
    calls: `#define m(x) #$x $x#\ni1 = 4 0 3000 {\np2 1\np3 1\np4 ${'$m(1) '.repeat(200)}\n}\n`,
};
const commands = {
    orlo: [['in.orlo', 'out'], /ERROR: .*Yikes, out of memory!/],
    'orlo-explain': [['-o', 'out', 'in.orlo'], /^orlo-explain: not enough memory$/m],
    'orlo-view': [['-o', 'out', 'in.orlo'], /not enough memory$|Yikes, out of memory!/m],
} as const;

for (const [program, [args, told]] of Object.entries(commands) as [keyof typeof commands, (typeof commands)[keyof typeof commands]][])
    test(`wherever memory runs out, ${program} says so`, () => {
        for (const [name, contents] of Object.entries(greedy)) {
            let complete = 0, exhausted = 0;
            for (let pages = 24; pages < 160; pages += pages < 64 ? 2 : 12) {
                const { status, screen, files } = runSync({ program, args, files: { 'in.orlo': contents }, memoryPages: pages });
                if (status === 0) {
                    ++complete;
                    continue;
                }
                ++exhausted;
                assert.equal(status, 1, `${name}, ${pages} pages`);
                assert.match(text(screen), told, `${name}, ${pages} pages`);
                assert.deepEqual(Object.keys(files).filter(file => file !== 'out'), [], 'what is left');
            }
            assert.ok(complete > 0 && exhausted > 0, `${name}: ${complete} runs are complete, ${exhausted} are not`);
        }
    });

test('a run in a folder reads and writes there', async () => {
    const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'orlo-run-'));
    test.after(() => fs.rmSync(folder, { recursive: true }));
    fs.writeFileSync(path.join(folder, 'in.orlo'), piece);
    const result = await run({ program: 'orlo', args: ['in.orlo', 'out.sco'], folder });
    assert.equal(result.status, 0);
    assert.equal(fs.readFileSync(path.join(folder, 'out.sco'), 'utf8'), score);
    assert.deepEqual(fs.readdirSync(folder).sort(), ['in.orlo', 'out.sco']);
    const outside = await run({ program: 'orlo', args: ['in.orlo', '../out.sco'], folder });
    assert.equal(outside.status, 1);
    assert.match(text(outside.screen), /Can't open "\.\.\/out\.sco"/);
    await assert.rejects(run({ program: 'orlo', folder, files: {} }), TypeError);
});

test('a run with a signal gives what another gives', async () => {
    const given = { program: 'orlo', args: ['in.orlo', 'out.sco'], files: { 'in.orlo': piece } } as const;
    const { signal } = new AbortController();
    const [one, two] = [await run({ ...given, signal }), await run({ ...given, signal })];
    assert.deepEqual(one, runSync(given));
    assert.deepEqual(two, one);
});

test('a run is stopped at once', async () => {
    await load('orlo');
    const stopping = new AbortController();
    const running = run({ program: 'orlo', args: ['in.orlo', 'out.sco'], files: { 'in.orlo': large }, signal: stopping.signal });
    await new Promise(resolve => setTimeout(resolve, 200));
    const start = performance.now();
    stopping.abort();
    await assert.rejects(running, { name: 'AbortError' });
    assert.ok(performance.now() - start < 100);
    await new Promise(resolve => setTimeout(resolve, 100));
    const before = process.cpuUsage();
    await new Promise(resolve => setTimeout(resolve, 300));
    const { user, system } = process.cpuUsage(before);
    assert.ok(user + system < 100_000, `${user + system} microseconds of work`);
    await assert.rejects(run({ program: 'orlo', signal: stopping.signal }), { name: 'AbortError' });
    const { signal } = new AbortController();
    const next = await run({ program: 'orlo', args: ['in.orlo', 'out.sco'], files: { 'in.orlo': piece }, signal });
    assert.equal(next.status, 0);
});

test('what a worker can\'t do rejects the run', async () => {
    const { signal } = new AbortController();
    await assert.rejects(run({ program: 'orlo', memoryPages: 1, signal }), /memory/i);
    await assert.rejects(run({ program: 'orlo', folder: '/nowhere/at/all', signal }), /ENOENT/);
});

// a module that imports a memory, and whose start is a trap
const trapping = new Uint8Array([
    0, 0x61, 0x73, 0x6d, 1, 0, 0, 0, 1, 4, 1, 0x60, 0, 0, 2, 15, 1, 3, 0x65, 0x6e, 0x76, 6, 0x6d, 0x65, 0x6d, 0x6f, 0x72, 0x79, 2, 0, 3,
    3, 2, 1, 0, 7, 10, 1, 6, 0x5f, 0x73, 0x74, 0x61, 0x72, 0x74, 0, 0, 10, 5, 1, 3, 0, 0, 0xb,
]);

test('a trap is no result', async () => {
    const compiled = compileAtOnce(trapping);
    assert.equal(compiled.pages, 3);
    let threads = 0;
    const runner = makeRunner({
        bring: async () => compiled,
        execute: runInMemory,
        newThread: () => {
            ++threads;
            let tell: (answer: Answer) => void;
            return {
                post: task => setImmediate(() => tell(answerTo(task as Parameters<typeof answerTo>[0], runInMemory))),
                onAnswer: answered => (tell = answered),
                terminate: () => {},
                keepAlive: () => {},
            };
        },
    });
    await assert.rejects(runner.run({ program: 'orlo' }), WebAssembly.RuntimeError);
    const { signal } = new AbortController();
    for (let i = 0; i < 3; ++i) await assert.rejects(runner.run({ program: 'orlo', signal }), /unreachable/);
    assert.equal(threads, 1);
    assert.throws(() => runner.runSync({ program: 'orlo' }), WebAssembly.RuntimeError);
});
