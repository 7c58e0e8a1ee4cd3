// Puts beside what is built of the sources: the modules, from where CMake has built them or from the folder that ORLO_MODULES names,
// and the licence. A module that isn't there is left out, with a word.

import fs from 'node:fs';
import { fileURLToPath } from 'node:url';

const here = new URL('./', import.meta.url);
const modules = process.env.ORLO_MODULES ?? fileURLToPath(new URL('../../build/wasm', here));

fs.copyFileSync(new URL('../../LICENSE', here), new URL('LICENSE', here));
for (const program of ['orlo', 'orlo-explain', 'orlo-view']) {
    const target = new URL(`dist/${program}.wasm`, here);
    try {
        fs.copyFileSync(`${modules}/${program}.wasm`, target);
    } catch (error) {
        fs.rmSync(target, { force: true });
        console.warn(`${program}.wasm is left out: ${error.message}`);
    }
}
