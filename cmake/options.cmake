# How every target of the project is compiled: link to orlo_options.

add_library(orlo_options INTERFACE)

target_compile_definitions(orlo_options INTERFACE ORLO_VERSION="${PROJECT_VERSION}")

# a score must not depend on whether the machine can multiply and add in one step
target_compile_options(orlo_options INTERFACE -ffp-contract=off)

target_compile_options(orlo_options INTERFACE
  -Wall -Wextra -Wpedantic
  -Wshadow -Wundef
  -Wconversion -Wsign-conversion -Wdouble-promotion
  -Wold-style-cast -Wcast-qual -Wcast-align -Wextra-semi
  $<$<CXX_COMPILER_ID:GNU>:-Wmissing-declarations -Wduplicated-cond -Wlogical-op>
  $<$<BOOL:${ORLO_WERROR}>:-Werror>)

if(ORLO_SANITIZE)
  set(sanitizers -fsanitize=address,undefined,float-cast-overflow -fno-sanitize-recover=all)
  target_compile_options(orlo_options INTERFACE ${sanitizers} -fno-omit-frame-pointer)
  target_compile_definitions(orlo_options INTERFACE _GLIBCXX_ASSERTIONS)
  target_link_options(orlo_options INTERFACE ${sanitizers})
endif()
