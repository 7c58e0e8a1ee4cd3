# Packages: "cpack -G DEB" in the build folder makes a .deb, "cpack --config CPackSourceConfig.cmake" a source tarball.

set(ORLO_MAINTAINER "orlo maintainers <maintainers@orlo.example>" CACHE STRING "who makes the package: NAME <ADDRESS>")

set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_NAME orlo)
set(CPACK_PACKAGE_VENDOR "the orlo authors")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "score generator for Csound and MIDI")
set(CPACK_PACKAGE_CONTACT ${ORLO_MAINTAINER})
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

find_program(ORLO_DPKG_DEB dpkg-deb)
find_program(ORLO_SHLIBDEPS dpkg-shlibdeps)
find_program(ORLO_FILE file)
if(ORLO_DPKG_DEB AND ORLO_SHLIBDEPS AND ORLO_FILE)
  set(CPACK_GENERATOR DEB)
else()
  set(CPACK_GENERATOR TGZ)
endif()

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${ORLO_MAINTAINER})
file(READ packaging/description.txt CPACK_DEBIAN_PACKAGE_DESCRIPTION)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS csound)

# what a .deb wants besides what is installed: changelog, copyright, man pages compressed
# (set whatever the generator is: -G may name another one, and Debian's tools may come later than the build folder)
string(TIMESTAMP changelog_date "%a, %d %b %Y %H:%M:%S +0000" UTC) # SOURCE_DATE_EPOCH, where it is set
configure_file(packaging/changelog.in ${PROJECT_BINARY_DIR}/packaging/changelog @ONLY)
set(CPACK_ORLO_DEBIAN_FILES ${PROJECT_BINARY_DIR}/packaging/changelog ${PROJECT_SOURCE_DIR}/packaging/copyright)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/finish_deb.cmake ${PROJECT_SOURCE_DIR}/cmake/settle_times.cmake)

# CPack is a program of its own, which has to know the time of the commit too
set(times)
if(NOT "$ENV{SOURCE_DATE_EPOCH}" STREQUAL "")
  set(times "set(ENV{SOURCE_DATE_EPOCH} $ENV{SOURCE_DATE_EPOCH})\n")
endif()
file(WRITE ${PROJECT_BINARY_DIR}/packaging/times.cmake "${times}")
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_BINARY_DIR}/packaging/times.cmake)

# by its component, so that install_manifest.txt goes on listing what "cmake --install" did, perhaps as root
set(CPACK_INSTALL_CMAKE_PROJECTS "${PROJECT_BINARY_DIR};${PROJECT_NAME};Unspecified;/")

set(CPACK_SOURCE_GENERATOR TGZ)
set(CPACK_SOURCE_PACKAGE_FILE_NAME orlo-${PROJECT_VERSION})
set(CPACK_SOURCE_STRIP_FILES OFF)
set(CPACK_SOURCE_IGNORE_FILES "^${PROJECT_SOURCE_DIR}/build/" "/[.]git(/|$)" "/__pycache__/" "/[.]cache/" "/_CPack_Packages/" "/node_modules/" "^${PROJECT_SOURCE_DIR}/web/orlo/(build|dist)/" "[.]pyc$")

include(CPack)
