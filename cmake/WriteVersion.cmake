# Writes what the command says of itself, at build time and not when the tree is configured: the commit is
# another one after each commit. The file is touched only where it differs, so that a build recompiles it
# only then.
#
#     cmake -D SOURCE_DIR=. -D OUTPUT=version.cpp -D VERSION=0.2.0 -D COMPILER="g++ 12.2.0"
#           -D COMMIT= -P WriteVersion.cmake
#
# COMMIT is what stands for the commit; where it is empty git is asked: the first twelve digits, with
# -modified where a file that git knows differs. A tree that is no repository of its own has the commit
# `unknown`, also where it lies inside another one.

# git(RESULT WORDS ...): what git answers about the tree; RESULT-NOTFOUND where it has none.
function(git result)
  # A hook of another repository names that one to all that it runs.
  execute_process(COMMAND ${CMAKE_COMMAND} -E env --unset=GIT_DIR --unset=GIT_WORK_TREE --unset=GIT_INDEX_FILE
                          git --no-optional-locks ${ARGN}
                  WORKING_DIRECTORY ${SOURCE_DIR} RESULT_VARIABLE status
                  OUTPUT_VARIABLE answer ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT status EQUAL 0)
    set(answer "${result}-NOTFOUND")
  endif()
  set(${result} "${answer}" PARENT_SCOPE)
endfunction()

function(commit_of_tree result)
  set(${result} unknown PARENT_SCOPE)
  git(top rev-parse --show-toplevel)
  file(REAL_PATH ${SOURCE_DIR} own_top)
  git(hash rev-parse HEAD)
  if(NOT top STREQUAL own_top OR NOT hash)
    return()
  endif()
  string(SUBSTRING ${hash} 0 12 short_hash)
  git(changes status --porcelain --untracked-files=no)
  if(changes)
    string(APPEND short_hash -modified)
  endif()
  set(${result} ${short_hash} PARENT_SCOPE)
endfunction()

if(NOT COMMIT)
  commit_of_tree(COMMIT)
elseif(NOT COMMIT MATCHES "^[-+.:/_~0-9A-Za-z]+$")
  message(FATAL_ERROR "CALDER_COMMIT is no name of a commit: ${COMMIT}")
endif()
file(CONFIGURE OUTPUT ${OUTPUT} @ONLY CONTENT [[
#include "tools/version.h"

namespace Calder::Tools {

char const* const version = "@VERSION@ (commit @COMMIT@, @COMPILER@)";

} // namespace Calder::Tools
]])
