// For pages and their workers.

import { compile } from './compiled.js';
import { runInMemory, type PlainRun, type Program } from './run.js';
import { makeRunner, type Answer, type Thread } from './runner.js';

export { programs, text, type PlainRun, type Program, type Result, type Run } from './run.js';

// written out, so that tools which gather a page's files find them
const places: Record<Program, URL> = {
    'orlo': new URL('./orlo.wasm', import.meta.url),
    'orlo-explain': new URL('./orlo-explain.wasm', import.meta.url),
    'orlo-view': new URL('./orlo-view.wasm', import.meta.url),
};

async function bring(program: Program) {
    const answer = await fetch(places[program]);
    if (!answer.ok) throw new Error(`can't load ${places[program].href}: ${answer.status} ${answer.statusText}`);
    return compile(await answer.arrayBuffer());
}

function newThread(): Thread {
    const worker = new Worker(new URL('./worker.js', import.meta.url), { type: 'module' });
    return {
        post: task => worker.postMessage(task),
        terminate: () => worker.terminate(),
        onAnswer(answered, failed) {
            worker.onmessage = (event: MessageEvent<Answer>) => answered(event.data);
            worker.onerror = event => failed(new Error(event.message || 'the worker can\'t be started'));
        },
        keepAlive: () => {},
    };
}

export const { load, run, runSync } = makeRunner<PlainRun>({ bring, newThread, execute: runInMemory });
