// The worker of Node: one run after the other.

import { parentPort } from 'node:worker_threads';
import { answerTo, type Task } from '../runner.js';
import { runInNode, type PlainNodeRun } from './run.js';

parentPort?.on('message', (task: Task<PlainNodeRun>) => parentPort?.postMessage(answerTo(task, runInNode)));
