# What cmake --install puts where. Components: runtime, development, tools, documentation. Nothing of it names the place
# where it stands, so that the whole can be moved.
#
# Headers get a folder of their own: names like Format/ are too common for one that all libraries share.
option(TAL_INSTALL "Make install rules" ${PROJECT_IS_TOP_LEVEL})
set(CMAKE_INSTALL_DOCDIR share/doc/talobjectmodel CACHE STRING "Where documents go")
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
set(tal_install_include ${CMAKE_INSTALL_INCLUDEDIR}/talobjectmodel)
set(tal_install_cmake ${CMAKE_INSTALL_LIBDIR}/cmake/TalObjectModel)

# tal_install_header(BASE HEADER): one header, named from the folder BASE on.
function(tal_install_header base header)
  if(TAL_INSTALL)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${base}/${header} DESTINATION ${tal_install_include}/${folder} COMPONENT development)
  endif()
endfunction()

# tal_install_library(TARGET EXPORT INCLUDE): a library with the headers of a folder, as part of an export set.
function(tal_install_library target export include)
  if(TAL_INSTALL)
    target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:${tal_install_include}>)
    # Libraries find each other wherever the whole stands, and programs them. CMAKE_SKIP_INSTALL_RPATH=ON leaves it out.
    set_target_properties(${target} PROPERTIES INSTALL_RPATH $ORIGIN)
    install(TARGETS ${target} EXPORT ${export}
      LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
      ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
    install(DIRECTORY ${include}/ DESTINATION ${tal_install_include} COMPONENT development FILES_MATCHING PATTERN *.h)
  endif()
endfunction()

# tal_install_program(TARGET)
function(tal_install_program target)
  if(TAL_INSTALL)
    file(RELATIVE_PATH bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(${target} PROPERTIES INSTALL_RPATH $ORIGIN/${bin_to_lib})
    install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  endif()
endfunction()

# For find_package() and pkg-config, once the libraries are known.
function(tal_install_package)
  if(NOT TAL_INSTALL)
    return()
  endif()
  # Sources of 0.1 need not compile with 0.2; from 1.0 on, they do with all of the same major version.
  set(compatibility SameMajorVersion)
  if(PROJECT_VERSION VERSION_LESS 1)
    set(compatibility SameMinorVersion)
  endif()
  set(generated ${PROJECT_BINARY_DIR}/Generated)
  write_basic_package_version_file(${generated}/TalObjectModelConfigVersion.cmake COMPATIBILITY ${compatibility})
  configure_package_config_file(${PROJECT_SOURCE_DIR}/CMake/TalObjectModelConfig.cmake.in
    ${generated}/TalObjectModelConfig.cmake INSTALL_DESTINATION ${tal_install_cmake}
    NO_SET_AND_CHECK_MACRO)
  install(FILES ${generated}/TalObjectModelConfig.cmake ${generated}/TalObjectModelConfigVersion.cmake
    DESTINATION ${tal_install_cmake} COMPONENT development)
  install(EXPORT TalObjectModelTargets NAMESPACE Tal:: DESTINATION ${tal_install_cmake} COMPONENT development)
  if(TAL_BUILD_TOOLS)
    install(EXPORT TalDeviceStackTargets NAMESPACE Tal:: DESTINATION ${tal_install_cmake} COMPONENT development)
  endif()

  # A platform from elsewhere is a CMake package: what pkg-config would have to say of it is not known.
  if(TAL_PLATFORM_PROVIDER STREQUAL "bundled")
    set(libraries "")
    set(static_defines "")
    foreach(library IN ITEMS TalObjectModel ${tal_platform_libraries})  # who uses comes before who is used
      get_target_property(output ${library} OUTPUT_NAME)
      string(APPEND libraries " -l${output}")
      if(NOT BUILD_SHARED_LIBS)
        string(TOUPPER ${library} macro)
        string(APPEND static_defines " -D${macro}_STATIC_DEFINE")
      endif()
    endforeach()
    file(RELATIVE_PATH pc_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
    file(RELATIVE_PATH prefix_to_lib ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
    file(RELATIVE_PATH prefix_to_include ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_INCLUDEDIR}/talobjectmodel)
    set(modules talobjectmodel)
    if(TAL_BUILD_TOOLS)
      list(APPEND modules taldevicestack)
    endif()
    foreach(module IN LISTS modules)
      configure_file(${PROJECT_SOURCE_DIR}/CMake/${module}.pc.in ${generated}/${module}.pc @ONLY)
      install(FILES ${generated}/${module}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
    endforeach()
  endif()

  install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)
  install(DIRECTORY Docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation
    PATTERN *.in EXCLUDE PATTERN *.dox EXCLUDE)
  install(DIRECTORY Examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT documentation
    FILES_MATCHING PATTERN *.cpp)
endfunction()
