# Run by CPack on the files of a package before it is built: turns them into what Debian's policy wants of a .deb.

if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

set(usr ${CPACK_TEMPORARY_DIRECTORY}/usr)

function(compress)
  execute_process(COMMAND gzip --best --no-name --force ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(GLOB pages ${usr}/share/man/man?/*.?)
compress(${pages})

file(REMOVE ${usr}/share/doc/orlo/LICENSE) # the file copyright says it
file(COPY ${CPACK_ORLO_DEBIAN_FILES} DESTINATION ${usr}/share/doc/orlo
  FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
compress(${usr}/share/doc/orlo/changelog)
