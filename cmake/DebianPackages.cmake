# The Debian packages, one for each component of the installation: scripts/package builds them.

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL command libraries development)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# A name that never has a host: nobody is meant to answer.
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Calder developers <developers@calder.invalid>")
set(CPACK_DEBIAN_PACKAGE_SOURCE calder)

# Whatever the umask of who builds.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Where dpkg-shlibdeps finds the libraries of libcalder0, on which the packages depend by the next lines.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_COMPONENT_COMMAND_DEPENDS libraries)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS libraries)

# Each description begins with its synopsis, so there is none for all.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")

set(CPACK_DEBIAN_COMMAND_PACKAGE_NAME calder)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION science)
set(CPACK_DEBIAN_COMMAND_DESCRIPTION
"explorer and checker of processes of CSP
Calder reads models of concurrent systems, written as processes of CSP
(Communicating Sequential Processes), and explores them into labelled
transition systems.

The command finds deadlocks and answers what a model asserts (refinement in
three models, divergence, determinism), with a shortest way to where it does
not hold, and writes what was explored for other tools.")

set(calder_library_in_words
"Calder is the operator library of a process compiler for CSP (Communicating
Sequential Processes), with a host that explores processes into labelled
transition systems, compiles them to machines and compares them.")

set(CPACK_DEBIAN_LIBRARIES_PACKAGE_NAME libcalder0)
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARIES_DESCRIPTION
"operators of CSP and a host that explores them - shared libraries
${calder_library_in_words}

This package has the shared libraries.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libcalder-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS libboost-dev)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
"operators of CSP and a host that explores them - development files
${calder_library_in_words}

This package has the headers, and what CMake and pkg-config need to find
them.")

# What a program depends on that is linked with one of the libraries. The soname only counts the first
# number of the version, and before 1.0 a new second number may change anything.
math(EXPR calder_next_minor "${PROJECT_VERSION_MINOR} + 1")
set(calder_compatible
    "libcalder0 (>= ${PROJECT_VERSION}), libcalder0 (<< ${PROJECT_VERSION_MAJOR}.${calder_next_minor}~)")
get_property(calder_rooms GLOBAL PROPERTY CALDER_COMPONENTS)
set(calder_shlibs "")
foreach(room ${calder_rooms})
  string(APPEND calder_shlibs "libcalder_${room} ${PROJECT_VERSION_MAJOR} ${calder_compatible}\n")
endforeach()
set(calder_control_directory ${PROJECT_BINARY_DIR}/packaging)
file(WRITE ${calder_control_directory}/shlibs "${calder_shlibs}")
file(WRITE ${calder_control_directory}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_CONTROL_EXTRA
    ${calder_control_directory}/shlibs ${calder_control_directory}/triggers)

set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/complete.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/rebuild.cmake)

include(CPack)
