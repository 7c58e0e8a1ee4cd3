// For Node.

import { Worker } from 'node:worker_threads';
import type { Run } from '../run.js';
import { makeRunner, type Answer, type Thread } from '../runner.js';
import { readModule } from './modules.js';
import { runInNode, type PlainNodeRun } from './run.js';

export { programs, text, type PlainRun, type Program, type Result, type Run } from '../run.js';
export type { PlainNodeRun } from './run.js';

/** What a run in Node is given. */
export type NodeRun = PlainNodeRun & Pick<Run, 'signal'>;

function newThread(): Thread {
    const worker = new Worker(new URL('./worker.js', import.meta.url));
    return {
        post: task => worker.postMessage(task),
        terminate: () => void worker.terminate(),
        onAnswer(answered, failed) {
            worker.removeAllListeners();
            worker.on('message', (answer: Answer) => answered(answer));
            worker.on('error', failed);
        },
        keepAlive: alive => (alive ? worker.ref() : worker.unref()),
    };
}

export const { load, run, runSync } = makeRunner<PlainNodeRun>({
    bring: async program => readModule(program),
    bringAtOnce: readModule,
    newThread,
    execute: runInNode,
});
