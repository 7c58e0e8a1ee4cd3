// Runs for whoever asks: modules are brought and compiled once, a run that can be stopped is made in a worker, which is ended with it.

import type { Compiled } from './compiled.js';
import type { Modules, PlainRun, Program, Result, Run } from './run.js';

/** What a worker is told and what it answers. */
export interface Task<R extends PlainRun> {
    modules: Modules;
    run: R;
}
export type Answer = { result: Result } | { fault: string };

/** A worker, in a page or in Node. */
export interface Thread {
    post(task: unknown): void;
    terminate(): void;
    onAnswer(answered: (answer: Answer) => void, failed: (fault: Error) => void): void;
    keepAlive(alive: boolean): void; // whether the process waits for it
}

/** What is different in a page and in Node. */
export interface Surroundings<R extends PlainRun> {
    bring(program: Program): Promise<Compiled>;
    bringAtOnce?(program: Program): Compiled; // where that can be
    execute(modules: Modules, run: R): Result;
    newThread(): Thread;
}

export interface Runner<R extends PlainRun> {
    /** Brings and compiles a program, once. */
    load(program: Program): Promise<void>;
    /**
     * Runs a program. The promise is rejected when the program can't be brought, when it ends in a way that no program should, and,
     * with the reason of the signal, when that stops it.
     */
    run(run: R & Pick<Run, 'signal'>): Promise<Result>;
    /** Runs a program in this thread, which is busy meanwhile. In a page it must have been loaded. */
    runSync(run: R): Result;
}

/** What the page's and Node's worker do with a task. */
export function answerTo<R extends PlainRun>(task: Task<R>, execute: Surroundings<R>['execute']): Answer {
    try {
        return { result: execute(task.modules, task.run) };
    } catch (fault) {
        return { fault: messageOf(fault) };
    }
}

const messageOf = (fault: unknown) => (fault instanceof Error ? fault.message : String(fault));

/** Programs that a program runs, besides itself. */
const needed = (program: Program): Program[] => (program === 'orlo-view' ? [program, 'orlo'] : [program]);

export function makeRunner<R extends PlainRun>(surroundings: Surroundings<R>): Runner<R> {
    const modules: Modules = {};
    const coming = new Map<Program, Promise<void>>();
    const idle: Thread[] = [];

    function bring(program: Program): Promise<void> {
        const brought = coming.get(program) ?? surroundings.bring(program).then(module => void (modules[program] = module));
        coming.set(program, brought);
        brought.catch(() => coming.delete(program)); // the next may have better luck
        return brought;
    }

    const load = async (program: Program) => void (await Promise.all(needed(program).map(bring)));

    function runInThread(task: Task<R>, signal: AbortSignal): Promise<Result> {
        return new Promise((resolve, reject) => {
            const thread = idle.pop() ?? surroundings.newThread();
            thread.keepAlive(true);
            const stop = () => {
                thread.terminate();
                reject(signal.reason as Error);
            };
            signal.addEventListener('abort', stop, { once: true });
            thread.onAnswer(
                answer => {
                    signal.removeEventListener('abort', stop);
                    thread.keepAlive(false);
                    idle.push(thread);
                    if ('result' in answer) resolve(answer.result);
                    else reject(new Error(answer.fault));
                },
                fault => {
                    signal.removeEventListener('abort', stop);
                    thread.terminate();
                    reject(fault);
                },
            );
            thread.post(task);
        });
    }

    async function run({ signal, ...rest }: R & Pick<Run, 'signal'>): Promise<Result> {
        const plain = rest as unknown as R;
        signal?.throwIfAborted();
        await load(plain.program);
        signal?.throwIfAborted();
        return signal === undefined ? surroundings.execute(modules, plain) : runInThread({ modules, run: plain }, signal);
    }

    function runSync(run: R): Result {
        for (const program of needed(run.program)) {
            const module = modules[program] ?? surroundings.bringAtOnce?.(program);
            if (module === undefined) throw new Error(`${program} is not loaded: await load('${run.program}') first`);
            modules[program] = module;
        }
        return surroundings.execute(modules, run);
    }

    return { load, run, runSync };
}
