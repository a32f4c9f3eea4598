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
set(CMAKE_INSTALL_RPATH "$ORIGIN/../lib")

set(CALDER_SANITIZERS "" CACHE STRING "Sanitizers to build with, for example address,undefined")

find_package(Boost 1.74 REQUIRED)

# The flags of every room and test; generated code and other people's headers are not bound by them.
add_library(calder_settings INTERFACE)
target_include_directories(calder_settings INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(calder_settings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Symbols of the unique kind would keep a plug-in from ever being unloaded.
  target_compile_options(calder_settings INTERFACE -fno-gnu-unique)
  # g++ 12 sees overlapping copies in "x" + std::string that are not there (GCC bug 105651).
  target_compile_options(calder_settings INTERFACE -Wno-restrict)
endif()
if(CALDER_SANITIZERS)
  add_compile_options(-fsanitize=${CALDER_SANITIZERS} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${CALDER_SANITIZERS})
endif()

# calder_room(NAME kind SOURCES ... USES ...): the library calder_NAME of one room.
function(calder_room name kind)
  cmake_parse_arguments(ROOM "" "" "SOURCES;USES" ${ARGN})
  add_library(calder_${name} ${kind} ${ROOM_SOURCES})
  target_link_libraries(calder_${name} PUBLIC ${ROOM_USES} PRIVATE calder_settings)
  target_include_directories(calder_${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
  set_target_properties(calder_${name} PROPERTIES VERSION ${PROJECT_VERSION}
                                                  SOVERSION ${PROJECT_VERSION_MAJOR})
endfunction()
