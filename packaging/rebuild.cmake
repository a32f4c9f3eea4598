# Run by CPack when the packages are written.
foreach(package ${CPACK_PACKAGE_FILES})
  execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/rebuild ${package} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
