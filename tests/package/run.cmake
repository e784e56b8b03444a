# Installs the build into a folder of its own and moves it away, so that nothing can depend on
# where it was. Builds and runs the consumer against the moved copy twice: found by
# find_package and found by pkg-config. Nothing that is installed may tell of the folders of
# the sources or of the build, so that it works where neither of them is.
cmake_policy(VERSION 3.25)
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result)
  if(result)
    message(FATAL_ERROR "failed: ${ARGV}")
  endif()
endfunction()

set(prefix ${WORK}/moved/prefix)
unset(ENV{VELMO_RESOURCES})
set(ENV{XDG_DATA_DIRS} ${WORK}/none)

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/first --strip)
file(MAKE_DIRECTORY ${WORK}/moved)
file(RENAME ${WORK}/first ${prefix})

cmake_path(GET SOURCE PARENT_PATH tests)
cmake_path(GET tests PARENT_PATH project)
file(GLOB_RECURSE installed LIST_DIRECTORIES false ${prefix}/*)
foreach(file IN LISTS installed)
  if(file MATCHES "[.]a$")  # only debugging information may tell of them
    run(strip --strip-debug ${file})
  endif()
  foreach(folder IN ITEMS ${project} ${BUILD} ${WORK})
    execute_process(COMMAND grep -qF ${folder}/ ${file} RESULT_VARIABLE missing)
    if(NOT missing)
      message(FATAL_ERROR "${file} tells of ${folder}")
    endif()
  endforeach()
endforeach()

# A program beside the installed lists, and the library if it is a shared one, finds them.
function(run_beside program)
  file(COPY ${program} DESTINATION ${prefix}/bin)
  cmake_path(GET program FILENAME name)
  run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${prefix}/${LIBDIR} ${prefix}/bin/${name})
endfunction()

run(${CMAKE_COMMAND} -G Ninja -S ${SOURCE}/consumer -B ${WORK}/cmake
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_BUILD_TYPE=Release)
run(${CMAKE_COMMAND} --build ${WORK}/cmake)
run_beside(${WORK}/cmake/consumer)

# By modules, too, and with nothing that only other modules need.
set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
run(pkg-config --exists velmocore)
execute_process(COMMAND pkg-config --cflags --libs velmocore-words velmocore-markup
  OUTPUT_VARIABLE flags RESULT_VARIABLE result OUTPUT_STRIP_TRAILING_WHITESPACE)
if(result OR flags MATCHES "curl|archive|storage")
  message(FATAL_ERROR "pkg-config does not find the modules and what they need: ${flags}")
endif()
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${COMPILER} -std=c++20 ${SOURCE}/consumer/main.cpp -o ${WORK}/consumer ${flags})
run_beside(${WORK}/consumer)

# A component is installed alone: the lists of words come with where they are from and their terms,
# and without a library.
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/data --component data)
file(GLOB_RECURSE data RELATIVE ${WORK}/data ${WORK}/data/*)
foreach(file IN ITEMS velmocore/StopWordsDE doc/velmocore/words.md doc/velmocore/LICENSE.stopwords-iso)
  if(NOT share/${file} IN_LIST data)
    message(FATAL_ERROR "the data lack ${file}")
  endif()
endforeach()
list(FILTER data EXCLUDE REGEX "^share/(velmocore|doc/velmocore)/")
if(data)
  message(FATAL_ERROR "no data: ${data}")
endif()
