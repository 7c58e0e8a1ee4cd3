// The worker of a page: one run after the other.

import { runInMemory, type PlainRun } from './run.js';
import { answerTo, type Task } from './runner.js';

const scope = globalThis as unknown as { onmessage: unknown; postMessage(message: unknown): void };

scope.onmessage = (event: MessageEvent<Task<PlainRun>>) => scope.postMessage(answerTo(event.data, runInMemory));
