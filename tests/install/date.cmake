# The date of a build is that of SOURCE_DATE_EPOCH, in UTC and as compilers write it. Run with -P and -D ROOT=FOLDER.
function(expect epoch wanted)
  set(ENV{SOURCE_DATE_EPOCH} ${epoch})
  set(PROJECT_SOURCE_DIR ${ROOT})
  include(${ROOT}/cmake/date.cmake)
  if(NOT orlo_date STREQUAL wanted)
    message(FATAL_ERROR "${epoch} seconds: ${orlo_date} instead of ${wanted}")
  endif()
endfunction()

expect(100000 "ORLO_DATE=\"Jan  2 1970\";ORLO_TIME=\"03:46:40\"")
expect(1763800000 "ORLO_DATE=\"Nov 22 2025\";ORLO_TIME=\"08:26:40\"")
