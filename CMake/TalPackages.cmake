# Debian packages of what TalInstall.cmake installs: Scripts/packages.sh makes and checks them.
if(NOT TAL_INSTALL OR NOT TAL_PLATFORM_PROVIDER STREQUAL "bundled")
  return()
endif()
set(TAL_PACKAGE_CONTACT "libtalobjectmodel developers <talobjectmodel@example.org>" CACHE STRING
  "Who answers for the packages: NAME <ADDRESS>")
set(runtime libtalobjectmodel${PROJECT_VERSION_MAJOR})  # the soname's number

set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_NAME talobjectmodel)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGE_CONTACT ${TAL_PACKAGE_CONTACT})
set(CPACK_COMPONENTS_ALL runtime development tools documentation)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# No revision: a package that Debian makes of the same version, 0.1.0-1, is newer than this one.
set(CPACK_DEBIAN_PACKAGE_SOURCE talobjectmodel)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")  # what only adds keeps the soname
if(CMAKE_CROSSCOMPILING)
  execute_process(COMMAND dpkg-architecture -f -t ${CMAKE_LIBRARY_ARCHITECTURE} -qDEB_HOST_ARCH
    OUTPUT_VARIABLE CPACK_DEBIAN_PACKAGE_ARCHITECTURE OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()

# tal_package(COMPONENT NAME SECTION SUMMARY DESCRIPTION DEPENDS)
macro(tal_package component name section summary description depends)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}\n${description}")
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}")
endmacro()
set(what "Applications see a building with KNX as numbered objects that hold values;
the bus speaks in octets whose meaning a datapoint type fixes. This library
converts between the two, fixes which object has which number, and talks to
the device-stack service of an installation.")
set(same_version "(= ${PROJECT_VERSION})")
tal_package(runtime ${runtime} libs "object model of a KNX installation"
  "${what}\n.\nThis package holds the shared libraries: the object model and its\nplatform layer." "")
tal_package(development libtalobjectmodel-dev libdevel "object model of a KNX installation (development)"
  "${what}\n.\nThis package holds the headers, the device stack for inside a process as a\nstatic library, and what CMake and pkg-config need."
  "${runtime} ${same_version}, libboost-chrono-dev, libboost-date-time-dev, libboost-thread-dev, libboost-timer-dev, liblog4cplus-dev, nlohmann-json3-dev")
tal_package(tools talobjectmodel-tools utils "command line for values and objects of a KNX installation"
  "${what}\n.\nThis package holds talctl: it encodes and decodes values of all datapoint\ntypes, checks octets, reads and sets objects of an installation from a file,\nand shows telegrams." "${runtime} ${same_version}")
tal_package(documentation talobjectmodel-doc doc "object model of a KNX installation (documentation)"
  "${what}\n.\nThis package holds the documents and examples." "")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/CMake/Debian/triggers)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS talobjectmodel-doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)

# What Debian wants besides, and what CPack cannot say.
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/CMake/Debian/Finish.cmake)
include(CPack)
