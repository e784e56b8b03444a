# velmo_module(NAME [USES MODULE...] [PRIVATE LIBRARY...])
#
# One library a module, with its headers in include/velmocore/NAME and its sources
# in Classes/NAME. USES names the modules whose headers it may include; a stamp
# that every build of the module depends on checks this, so a module cannot reach
# for what its row does not name.
set(VELMO_MODULES "")

# While the major number is 0, a minor one may change what programs were compiled with.
set(VELMO_SOVERSION ${PROJECT_VERSION_MAJOR})
if(PROJECT_VERSION_MAJOR EQUAL 0)
  string(APPEND VELMO_SOVERSION ".${PROJECT_VERSION_MINOR}")
endif()

function(velmo_module name)
  cmake_parse_arguments(MODULE "" "" "USES;PRIVATE" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/Classes/${name}/*.cpp)
  file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/Classes/${name}/*.h
       ${PROJECT_SOURCE_DIR}/include/velmocore/${name}/*.h)

  set(allowed ${name} ${MODULE_USES})
  foreach(used IN LISTS MODULE_USES)
    list(APPEND allowed ${VELMO_CLOSURE_${used}})
  endforeach()
  list(REMOVE_DUPLICATES allowed)
  set(VELMO_CLOSURE_${name} ${allowed} PARENT_SCOPE)
  list(JOIN allowed "," allowed_text)

  set(stamp ${PROJECT_BINARY_DIR}/modules/${name}.checked)
  add_custom_command(OUTPUT ${stamp}
    COMMAND ${CMAKE_COMMAND} -DMODULE=${name} -DALLOWED=${allowed_text} -DSTAMP=${stamp}
            -DROOT=${PROJECT_SOURCE_DIR} -P ${PROJECT_SOURCE_DIR}/cmake/CheckModule.cmake
    DEPENDS ${sources} ${headers} ${PROJECT_SOURCE_DIR}/cmake/CheckModule.cmake
    COMMENT "Checking what module ${name} includes" VERBATIM)

  add_library(velmo-${name} ${sources} ${stamp})
  add_library(velmo::${name} ALIAS velmo-${name})
  set_target_properties(velmo-${name} PROPERTIES EXPORT_NAME ${name}
    VERSION ${PROJECT_VERSION} SOVERSION ${VELMO_SOVERSION}
    OUTPUT_NAME velmocore-${name})
  target_compile_features(velmo-${name} PUBLIC cxx_std_20)
  target_include_directories(velmo-${name}
    PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
           $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
    PRIVATE ${PROJECT_SOURCE_DIR}/Classes)
  if(VELMO_FUZZ)  # tells the fuzzer which ways an input takes
    target_compile_options(velmo-${name} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
  list(TRANSFORM MODULE_USES PREPEND velmo::)
  target_link_libraries(velmo-${name} PUBLIC ${MODULE_USES}
    PRIVATE $<BUILD_INTERFACE:velmo_options> fmt::fmt ${MODULE_PRIVATE})
  # What most sources include is compiled once under the sanitizers. The plain builds go without,
  # so that a missing include is noticed.
  if(VELMO_SANITIZE AND VELMO_MODULES)
    target_precompile_headers(velmo-${name} REUSE_FROM velmo-platform)
  elseif(VELMO_SANITIZE)
    target_precompile_headers(velmo-${name} PRIVATE <algorithm> <array> <functional> <memory> <optional>
      <span> <string> <string_view> <vector> <fmt/core.h> <velmocore/platform/String.h>)
  endif()
  set(VELMO_MODULES ${VELMO_MODULES} ${name} PARENT_SCOPE)
endfunction()

# velmo::velmocore is all modules at once.
function(velmo_umbrella)
  add_library(velmocore INTERFACE)
  add_library(velmo::velmocore ALIAS velmocore)
  list(TRANSFORM VELMO_MODULES PREPEND velmo:: OUTPUT_VARIABLE all)
  target_link_libraries(velmocore INTERFACE ${all})
endfunction()
