#!/usr/bin/env node
import { command } from '../dist/node/command.js';

command('orlo-explain');
