# What is installed, and how others find it: `find_package(calder)` or `pkg-config calder`.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Both from where they are installed to where the libraries are, wherever the whole is moved to. The
# directories of a system are searched anyhow: there -DCMAKE_SKIP_INSTALL_RPATH=ON leaves this out.
file(RELATIVE_PATH calder_libraries_from_programs
     ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/${calder_libraries_from_programs}")

# Header files name each other from the root of this tree, where nobody else is; installed, from
# include/, where everybody is. So they are copied with `"csp/x.h"` written as `<calder/csp/x.h>`.
set(calder_header_directory ${PROJECT_BINARY_DIR}/include)
set(calder_rewritten_include [[s|^(# *include) "([a-z_]+/[a-z_/]+\.h)"|\1 <calder/\2>|]])

# calder_installed_headers(ROOM FILES...): these of one room, as calder/ROOM/FILE.
function(calder_installed_headers room)
  set(copies)
  foreach(header ${ARGN})
    set(source ${CMAKE_CURRENT_SOURCE_DIR}/${header})
    cmake_path(GET header PARENT_PATH folder)
    set(copy ${calder_header_directory}/calder/${room}/${header})
    file(MAKE_DIRECTORY ${calder_header_directory}/calder/${room}/${folder})
    add_custom_command(OUTPUT ${copy}
                       COMMAND sed -E ${calder_rewritten_include} ${source} > ${copy}
                       DEPENDS ${source} VERBATIM)
    list(APPEND copies ${copy})
    install(FILES ${copy} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/calder/${room}/${folder}
            COMPONENT development)
  endforeach()
  if(copies)
    add_custom_target(calder_${room}_headers ALL DEPENDS ${copies})
  endif()
endfunction()

# calder_installed_library(TARGET ROOM): a shared library that others link as calder::ROOM.
function(calder_installed_library target room)
  # The headers need it, and whoever links has to say nothing.
  target_compile_features(${target} INTERFACE cxx_std_20)
  # Nothing may be missing until a program is linked, and calls within the library need no detour.
  target_link_options(${target} PRIVATE -Wl,-Bsymbolic-functions)
  if(NOT CALDER_SANITIZERS) # whose functions are in the program
    target_link_options(${target} PRIVATE -Wl,--no-undefined)
  endif()
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${room}
                                             VERSION ${PROJECT_VERSION}
                                             SOVERSION ${PROJECT_VERSION_MAJOR})
  install(TARGETS ${target} EXPORT calderTargets
          LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
                  COMPONENT libraries NAMELINK_COMPONENT development
          INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  set_property(GLOBAL APPEND PROPERTY CALDER_COMPONENTS ${room})
  set_property(GLOBAL APPEND PROPERTY CALDER_LIBRARIES ${target})
endfunction()

# The rest, when all rooms are known.
function(calder_install_package)
  install(TARGETS calder RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT command)

  # As they stand in the tree, so that the pages lead to each other.
  install(FILES README.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT command)
  file(GLOB pages CONFIGURE_DEPENDS docs/*.md)
  install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT command)
  file(GLOB examples CONFIGURE_DEPENDS examples/*.csp)
  install(FILES ${examples} DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT command)
  install(DIRECTORY examples/construct DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples
          COMPONENT development)

  get_property(rooms GLOBAL PROPERTY CALDER_COMPONENTS)
  list(JOIN rooms " " CALDER_COMPONENTS)
  set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/calder)
  configure_package_config_file(cmake/calderConfig.cmake.in ${PROJECT_BINARY_DIR}/calderConfig.cmake
                                INSTALL_DESTINATION ${package_directory})
  # Before 1.0 a new minor version may differ from the last one in anything.
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/calderConfigVersion.cmake
                                   COMPATIBILITY SameMinorVersion)
  install(FILES ${PROJECT_BINARY_DIR}/calderConfig.cmake ${PROJECT_BINARY_DIR}/calderConfigVersion.cmake
          DESTINATION ${package_directory} COMPONENT development)
  install(EXPORT calderTargets NAMESPACE calder:: DESTINATION ${package_directory}
          COMPONENT development)

  list(REVERSE rooms) # a library stands before those that it needs
  list(TRANSFORM rooms PREPEND "-lcalder_")
  list(JOIN rooms " " CALDER_LINKED_LIBRARIES)
  file(RELATIVE_PATH CALDER_PREFIX_FROM_PKGCONFIG ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
       ${CMAKE_INSTALL_PREFIX})
  # Below the prefix, unless they are absolute.
  cmake_path(APPEND CALDER_PKGCONFIG_LIBDIR "\${prefix}" ${CMAKE_INSTALL_LIBDIR})
  cmake_path(APPEND CALDER_PKGCONFIG_INCLUDEDIR "\${prefix}" ${CMAKE_INSTALL_INCLUDEDIR})
  configure_file(cmake/calder.pc.in ${PROJECT_BINARY_DIR}/calder.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/calder.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
          COMPONENT development)
endfunction()
