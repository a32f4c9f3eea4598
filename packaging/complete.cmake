# Run by CPack when what is installed stands in one folder for each component: adds what Debian wants to be
# in each package, and an installation by itself does not need.

# gzip writes neither name nor time into what it compresses: the same text gives the same bytes.
function(compress file)
  execute_process(COMMAND gzip -9nf ${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(source_directory ${CMAKE_CURRENT_LIST_DIR}/..)

file(READ ${source_directory}/LICENSE license)
string(STRIP "${license}" license)
string(REGEX REPLACE "\n\n" "\n.\n" license "${license}")
string(REPLACE "\n" "\n " license "${license}")

foreach(component ${CPACK_COMPONENTS_ALL})
  set(root ${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX}/share)
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})

  file(GLOB pages ${root}/man/man*/*)
  foreach(page ${pages})
    compress(${page})
  endforeach()

  set(documents ${root}/doc/${package})
  file(MAKE_DIRECTORY ${documents})
  file(WRITE ${documents}/copyright
"Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/
Upstream-Name: ${CPACK_PACKAGE_NAME}

Files: *
Copyright: 2026 Calder developers
License: BSL-1.0
 ${license}
")
  execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/changelog ${CPACK_DEBIAN_PACKAGE_SOURCE}
                          "${CPACK_DEBIAN_PACKAGE_MAINTAINER}"
                  INPUT_FILE ${source_directory}/CHANGELOG.md OUTPUT_FILE ${documents}/changelog
                  COMMAND_ERROR_IS_FATAL ANY)
  compress(${documents}/changelog)

  set(overrides ${CMAKE_CURRENT_LIST_DIR}/${package}.lintian-overrides)
  if(EXISTS ${overrides})
    configure_file(${overrides} ${root}/lintian/overrides/${package} COPYONLY)
  endif()
  execute_process(COMMAND chmod -R u=rwX,go=rX ${root} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
