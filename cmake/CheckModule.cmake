# Fails if a file of module MODULE includes a header of a module that is not in
# ALLOWED. Writes STAMP on success.
cmake_minimum_required(VERSION 3.25)
string(REPLACE "," ";" allowed "${ALLOWED}")
file(GLOB files ${ROOT}/Classes/${MODULE}/*.cpp ${ROOT}/Classes/${MODULE}/*.h
     ${ROOT}/include/velmocore/${MODULE}/*.h)
foreach(path IN LISTS files)
  file(STRINGS ${path} lines REGEX "^#include ([<]velmocore/|\")[a-z]+/")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE "^#include ([<]velmocore/|\")([a-z]+)/.*" "\\2" used "${line}")
    if(NOT used IN_LIST allowed)
      message(FATAL_ERROR "${path}: module ${MODULE} may not use module ${used}")
    endif()
  endforeach()
endforeach()
file(WRITE ${STAMP} "")
