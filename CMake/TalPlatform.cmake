# Who provides the platform libraries: the open ones of this repository, or a CMake package.
#
# TAL_PLATFORM_PROVIDER is "bundled" or the name of a package for find_package(). Either defines these targets; their
# headers are <BasePlatform/AroValue.h>, <KnxStackApi/GroupValue.h> and so on.
set(TAL_PLATFORM_PROVIDER bundled CACHE STRING "bundled, or the CMake package that provides the platform targets")
set(tal_platform_libraries BasePlatform KnxStackApi KnxHelper DeviceStackClient TalLog)
list(TRANSFORM tal_platform_libraries PREPEND Tal:: OUTPUT_VARIABLE tal_platform_targets)

if(TAL_PLATFORM_PROVIDER STREQUAL "bundled")
  add_subdirectory(Platform)
  foreach(library IN LISTS tal_platform_libraries)
    add_library(Tal::${library} ALIAS ${library})
  endforeach()
  if(BUILD_SHARED_LIBS)  # static ones would have to tell what they are built with
    # The build tree itself can be another build's provider: -DTAL_PLATFORM_PROVIDER=TalPlatform -DTalPlatform_DIR=...
    export(TARGETS ${tal_platform_libraries} NAMESPACE Tal:: FILE ${PROJECT_BINARY_DIR}/Platform/TalPlatformTargets.cmake)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/TalPlatformConfig.cmake.in
      ${PROJECT_BINARY_DIR}/Platform/TalPlatformConfig.cmake @ONLY)
  endif()
else()
  find_package(${TAL_PLATFORM_PROVIDER} REQUIRED)
  foreach(library IN LISTS tal_platform_libraries)
    if(NOT TARGET Tal::${library})
      message(FATAL_ERROR "The platform provider '${TAL_PLATFORM_PROVIDER}' does not define the target Tal::${library}. "
        "It must define: ${tal_platform_libraries} (each with the prefix Tal::).")
    endif()
  endforeach()
endif()

add_library(tal_platform INTERFACE)
add_library(Tal::Platform ALIAS tal_platform)
target_link_libraries(tal_platform INTERFACE ${tal_platform_targets})
