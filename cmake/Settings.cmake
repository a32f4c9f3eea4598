# What holds for every target: the language, the warnings, where things are built to.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

option(CALDER_LATE_THREADS "Threads are late at random wherever it matters which comes first" OFF)
set(CALDER_SANITIZERS "" CACHE STRING "Sanitizers to build with, for example address,undefined")

find_package(Boost 1.74 REQUIRED)

# The flags of every room and test; generated code and other people's headers are not bound by them.
add_library(calder_settings INTERFACE)
target_include_directories(calder_settings INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(calder_settings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
# Whoever replaced a function of a library by one of his own would have to replace its inlined copies, too.
target_compile_options(calder_settings INTERFACE -fno-semantic-interposition)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Symbols of the unique kind would keep a plug-in from ever being unloaded.
  target_compile_options(calder_settings INTERFACE -fno-gnu-unique)
  # g++ 12 sees overlapping copies in "x" + std::string that are not there (GCC bug 105651).
  target_compile_options(calder_settings INTERFACE -Wno-restrict)
endif()
if(CALDER_LATE_THREADS)
  target_compile_definitions(calder_settings INTERFACE CALDER_LATE_THREADS)
endif()
if(CALDER_SANITIZERS)
  add_compile_options(-fsanitize=${CALDER_SANITIZERS} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${CALDER_SANITIZERS})
endif()

# calder_room(NAME kind SOURCES ... [HEADERS ...] [USES ...] [NEEDS ...] [ABSORBS ...]): the library
# calder_NAME of one room. HEADERS are those that others may include, and are installed; USES are rooms,
# NEEDS other libraries that no header shows. The kinds:
#   SHARED   the shared library, for everyone: a plug-in and its host must have the same one
#   HOST     a static library for all that is built here, whose tests look inside, and of the same
#            objects calder_NAME_shared, which is installed; it has those of the static rooms that it ABSORBS
#   STATIC   a part of another room, and not installed
function(calder_room name kind)
  cmake_parse_arguments(ROOM "" "" "SOURCES;HEADERS;USES;NEEDS;ABSORBS" ${ARGN})
  if(kind STREQUAL "SHARED")
    add_library(calder_${name} SHARED ${ROOM_SOURCES})
  else()
    add_library(calder_${name} STATIC ${ROOM_SOURCES})
  endif()
  target_link_libraries(calder_${name} PUBLIC ${ROOM_USES} PRIVATE ${ROOM_NEEDS} calder_settings)
  target_include_directories(calder_${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)

  if(kind STREQUAL "SHARED")
    calder_installed_library(calder_${name} ${name})
  elseif(kind STREQUAL "HOST")
    set(objects $<TARGET_OBJECTS:calder_${name}>)
    foreach(absorbed ${ROOM_ABSORBS})
      list(APPEND objects $<TARGET_OBJECTS:calder_${absorbed}>)
      list(REMOVE_ITEM ROOM_USES calder_${absorbed})
    endforeach()
    set(used)
    foreach(room ${ROOM_USES})
      if(TARGET ${room}_shared)
        set(room ${room}_shared)
      endif()
      list(APPEND used ${room})
    endforeach()
    add_library(calder_${name}_shared SHARED ${objects})
    target_link_libraries(calder_${name}_shared PUBLIC ${used} PRIVATE ${ROOM_NEEDS})
    set_target_properties(calder_${name}_shared PROPERTIES LINKER_LANGUAGE CXX
                                                           OUTPUT_NAME calder_${name})
    calder_installed_library(calder_${name}_shared ${name})
  endif()
  calder_installed_headers(${name} ${ROOM_HEADERS})
endfunction()
