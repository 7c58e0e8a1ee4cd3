# Run by CPack on the files of a package before it is built: they get the time of the commit, so that the same sources give the same
# package.

find_program(touch touch)
if(touch AND NOT "$ENV{SOURCE_DATE_EPOCH}" STREQUAL "")
  file(GLOB_RECURSE files LIST_DIRECTORIES true ${CPACK_TEMPORARY_DIRECTORY}/*)
  foreach(file IN LISTS files)
    execute_process(COMMAND ${touch} --no-dereference --date @$ENV{SOURCE_DATE_EPOCH} ${file})
  endforeach()
endif()
