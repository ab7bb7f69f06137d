# What every target of this project shares: warnings, sanitizers, source paths without the build prefix, and the one
# function that makes a library with hidden visibility and an export header.
include(GenerateExportHeader)

add_library(tal_build INTERFACE)
target_compile_options(tal_build INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wold-style-cast
  $<$<BOOL:${TAL_WERROR}>:-Werror>
  -fno-semantic-interposition  # a library calls its own functions straight: nobody else replaces them
  -fno-plt                     # and those of others by one jump
  "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/="   # log records show TalObjectModel/..., wherever the tree stands
)
if(TAL_SANITIZE)
  set(tal_sanitize_flags -fsanitize=${TAL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_options(tal_build INTERFACE ${tal_sanitize_flags})
  target_link_options(tal_build INTERFACE ${tal_sanitize_flags})
endif()

# tal_library(NAME OUTPUT file-name [EXPORT header] [INCLUDE folder] SOURCES ... [PUBLIC libs] [PRIVATE libs])
# Shared or static, as BUILD_SHARED_LIBS says; it is installed with its headers. Public headers stand in Include/ beside
# the caller. The export header is generated: <NAME>/Export.h unless EXPORT says otherwise; its macro is NAME in
# capitals with _EXPORT behind it.
function(tal_library name)
  cmake_parse_arguments(ARG "" "OUTPUT;EXPORT;INCLUDE" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  if(NOT ARG_EXPORT)
    set(ARG_EXPORT ${name}/Export.h)
  endif()
  if(NOT ARG_INCLUDE)
    set(ARG_INCLUDE ${CMAKE_CURRENT_SOURCE_DIR}/Include)
  endif()
  add_library(${name} ${ARG_SOURCES})
  target_compile_features(${name} PUBLIC cxx_std_17)
  generate_export_header(${name} EXPORT_FILE_NAME ${PROJECT_BINARY_DIR}/Generated/${ARG_EXPORT})
  target_include_directories(${name} PUBLIC
    $<BUILD_INTERFACE:${ARG_INCLUDE}> $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/Generated>)
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE} $<BUILD_INTERFACE:tal_build>)
  if(NOT BUILD_SHARED_LIBS)
    string(TOUPPER ${name}_STATIC_DEFINE static_define)
    target_compile_definitions(${name} PUBLIC ${static_define})
  else()
    # Objects handed to log4cplus outlive a plug-in that brought the library along: once loaded it stays.
    target_link_options(${name} PRIVATE -Wl,-z,nodelete)
    if(NOT TAL_SANITIZE)  # a sanitizer's run-time may stand in the program only
      set(map ${PROJECT_SOURCE_DIR}/CMake/Exports.map)
      target_link_options(${name} PRIVATE -Wl,--no-undefined -Wl,--version-script=${map})
      set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS ${map})
    endif()
  endif()
  set_target_properties(${name} PROPERTIES OUTPUT_NAME ${ARG_OUTPUT} CXX_EXTENSIONS OFF POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  tal_install_library(${name} TalObjectModelTargets ${ARG_INCLUDE})
  tal_install_header(${PROJECT_BINARY_DIR}/Generated ${ARG_EXPORT})
endfunction()
