# A toolchain for WebAssembly programs whose host has the interface WASI preview 1 (wasi-libc, libc++ and clang as Debian has them).
# Its libc++ knows no exceptions.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR wasm32)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_COMPILER_TARGET wasm32-wasi)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(ORLO_PLATFORM wasi)

set(CMAKE_CXX_FLAGS_INIT "-fno-exceptions -fno-rtti -mnontrapping-fptoint -msign-ext -D_WASI_EMULATED_SIGNAL")
set(CMAKE_CXX_FLAGS_RELEASE "-Os -flto -DNDEBUG" CACHE STRING "for pages: small, and as fast as with -O2")

# The stack lies below the data, so that one without end traps and overwrites nothing; the host makes the memory, and so limits it.
# With -O0 clang leaves wasm-opt to orlo_module.
set(CMAKE_EXE_LINKER_FLAGS_INIT
  "-lwasi-emulated-signal -O0 -Wl,-z,stack-size=1048576,--stack-first,--import-memory,--max-memory=4294967296")
