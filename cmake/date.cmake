# The date and time that a program says it was built: of SOURCE_DATE_EPOCH (reproducible-builds.org), or of the commit, so that the
# same sources give the same bytes; where there is neither, the compiler's.
set(epoch "$ENV{SOURCE_DATE_EPOCH}")
if("${epoch}" STREQUAL "" AND EXISTS ${PROJECT_SOURCE_DIR}/.git)
  find_package(Git QUIET)
  if(Git_FOUND)
    execute_process(COMMAND ${GIT_EXECUTABLE} -C ${PROJECT_SOURCE_DIR} log -1 --format=%ct
      OUTPUT_VARIABLE epoch OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    execute_process(COMMAND ${GIT_EXECUTABLE} -C ${PROJECT_SOURCE_DIR} rev-parse --git-path logs/HEAD
      OUTPUT_VARIABLE log OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    get_filename_component(log "${log}" ABSOLUTE BASE_DIR ${PROJECT_SOURCE_DIR})
    if(EXISTS ${log}) # another commit is another date
      set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${log})
    endif()
  endif()
endif()
set(orlo_date)
if("${epoch}" MATCHES "^[0-9]+$")
  set(ENV{SOURCE_DATE_EPOCH} ${epoch}) # from here on string(TIMESTAMP) tells it
  string(TIMESTAMP day "%b %d %Y" UTC)
  string(TIMESTAMP time "%H:%M:%S" UTC)
  string(REPLACE " 0" "  " day ${day}) # as compilers write it
  set(orlo_date ORLO_DATE="${day}" ORLO_TIME="${time}")
endif()
