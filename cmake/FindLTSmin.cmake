# The headers of LTSmin's interface to language modules, and the folder of its programs.
#
# CALDER_LTSMIN, of the cache or the environment, is the prefix where it is installed; OFF does without.
# Otherwise it is looked for where `scripts/setup --ltsmin` puts it, where pkg-config knows one, and in the
# directories of the system. Sets LTSmin_FOUND and LTSmin_BINARY_DIR and makes LTSmin::LTSmin, which is
# headers alone: the programs have the functions. Nothing is remembered, since it may come and go between
# two builds.

set(CALDER_LTSMIN "$ENV{CALDER_LTSMIN}" CACHE STRING
    "Where LTSmin is installed; OFF for doing without; by default it is looked for")
set(LTSmin_built_here ${PROJECT_SOURCE_DIR}/build/ltsmin)
# A build looks whether this list is still true, and configures again if it is not.
file(GLOB LTSmin_seen CONFIGURE_DEPENDS ${LTSmin_built_here}/include/ltsmin/dlopen-api.h)

unset(LTSmin_INCLUDE_DIR)
if(CALDER_LTSMIN)
  find_path(LTSmin_INCLUDE_DIR ltsmin/dlopen-api.h
            PATHS ${CALDER_LTSMIN}/include NO_DEFAULT_PATH NO_CACHE)
  if(NOT LTSmin_INCLUDE_DIR)
    message(FATAL_ERROR "CALDER_LTSMIN is ${CALDER_LTSMIN}, which has no include/ltsmin/dlopen-api.h "
                        "(`CALDER_LTSMIN= scripts/build` looks for one again)")
  endif()
elseif(CALDER_LTSMIN STREQUAL "")
  find_package(PkgConfig QUIET)
  if(PkgConfig_FOUND)
    pkg_check_modules(LTSmin_pkgconfig QUIET ltsmin)
  endif()
  find_path(LTSmin_INCLUDE_DIR ltsmin/dlopen-api.h
            HINTS ${LTSmin_built_here}/include ${LTSmin_pkgconfig_INCLUDE_DIRS} NO_CACHE)
endif()
find_path(LTSmin_popt_INCLUDE_DIR popt.h NO_CACHE)

set(LTSmin_FOUND FALSE)
if(LTSmin_INCLUDE_DIR AND LTSmin_popt_INCLUDE_DIR)
  set(LTSmin_FOUND TRUE)
  cmake_path(SET LTSmin_BINARY_DIR NORMALIZE "${LTSmin_INCLUDE_DIR}/../bin")
  add_library(LTSmin::LTSmin INTERFACE IMPORTED)
  target_include_directories(LTSmin::LTSmin SYSTEM INTERFACE ${LTSmin_INCLUDE_DIR})
endif()
