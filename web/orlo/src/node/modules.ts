// The compiled programs, which stand beside what is built of this.

import fs from 'node:fs';
import { fileURLToPath } from 'node:url';
import { compileAtOnce } from '../compiled.js';
import type { Compiled } from '../compiled.js';
import type { Program } from '../run.js';

export function readModule(program: Program): Compiled {
    const place = fileURLToPath(new URL(`../${program}.wasm`, import.meta.url));
    let bytes;
    try {
        bytes = fs.readFileSync(place);
    } catch (error) {
        const reason = (error as Error).message;
        throw new Error(`can't read the module of ${program} (${reason}). In orlo's source folder, "cmake --preset wasm && `
            + 'cmake --build --preset wasm" builds it, and then "npm run build" in web/ puts it there.');
    }
    return compileAtOnce(bytes);
}
