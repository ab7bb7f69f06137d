# Run by CPack when the packages are made.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/finish.sh ${package} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
