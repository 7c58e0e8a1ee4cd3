// A program that is ready to run. Its memory is made by the host, which has to know how much of it the program begins with.

export interface Compiled {
    module: WebAssembly.Module;
    pages: number; // of 64 KiB each
}

const IMPORTS = 2; // the section's number
const FUNCTION = 0, TABLE = 1, MEMORY = 2; // what is imported; what is left is a global

export async function compile(bytes: BufferSource): Promise<Compiled> {
    return { module: await WebAssembly.compile(bytes), pages: pagesOf(bytes) };
}

export function compileAtOnce(bytes: BufferSource): Compiled {
    return { module: new WebAssembly.Module(bytes), pages: pagesOf(bytes) };
}

// module -> magic version { section size ... }; imports -> count { length room length name kind what }
function pagesOf(source: BufferSource): number {
    const bytes = ArrayBuffer.isView(source) ? new Uint8Array(source.buffer, source.byteOffset, source.byteLength) : new Uint8Array(source);
    let at = 8;
    const byte = () => bytes[at++] ?? 0;
    const number = () => {
        let value = 0;
        for (let shift = 0, last = 0x80; last >= 0x80; shift += 7) {
            last = byte();
            value += (last & 0x7f) * 2 ** shift;
        }
        return value;
    };
    const skip = (length: number) => void (at += length);
    const limits = () => {
        const hasMost = (byte() & 1) !== 0;
        const least = number();
        if (hasMost) number();
        return least;
    };
    while (at < bytes.length) {
        const section = byte();
        const end = number() + at;
        for (let count = section === IMPORTS ? number() : 0; count > 0; --count) {
            skip(number());
            skip(number());
            const kind = byte();
            if (kind === MEMORY) return limits();
            if (kind === FUNCTION) number();
            else if (kind === TABLE) byte(), limits();
            else skip(2);
        }
        at = end;
    }
    return 0;
}
