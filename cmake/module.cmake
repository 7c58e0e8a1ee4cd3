# Makes PROGRAM.wasm of a program for WebAssembly; nothing on other systems.
function(orlo_module program)
  if(ORLO_PLATFORM STREQUAL "wasi")
    find_program(ORLO_WASM_OPT wasm-opt REQUIRED)
    # what is opened goes through platform/wasi/folder
    target_link_options(${program} PRIVATE LINKER:--wrap=fopen)
    # memory that the host makes is zero, as WebAssembly has it: no zeros need to be in the file
    add_custom_command(TARGET ${program} POST_BUILD
      COMMAND ${ORLO_WASM_OPT} -O3 --enable-nontrapping-float-to-int --enable-sign-ext --zero-filled-memory --strip-debug
        --strip-producers $<TARGET_FILE:${program}> -o $<TARGET_FILE:${program}>.wasm
      VERBATIM)
  endif()
endfunction()
