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
  velmo_describe(velmo-${name} ${name} "" ${ARGN})
  if(VELMO_FUZZ)  # tells the fuzzer which ways an input takes
    target_compile_options(velmo-${name} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
  # What most sources include is compiled once under the sanitizers. The plain builds go without,
  # so that a missing include is noticed.
  if(VELMO_SANITIZE AND VELMO_MODULES)
    target_precompile_headers(velmo-${name} REUSE_FROM velmo-platform)
  elseif(VELMO_SANITIZE)
    target_precompile_headers(velmo-${name} PRIVATE <algorithm> <array> <functional> <memory> <optional>
      <span> <string> <string_view> <vector> <fmt/core.h> <velmocore/platform/String.h>)
  endif()
  if(BUILD_SHARED_LIBS AND NOT VELMO_SANITIZE)
    set(map ${PROJECT_SOURCE_DIR}/cmake/velmocore.map)
    target_link_options(velmo-${name} PRIVATE LINKER:--version-script=${map})
    set_target_properties(velmo-${name} PROPERTIES LINK_DEPENDS ${map})
  endif()
  if(VELMO_STATIC_TOO)  # the same objects, which are position-independent in all builds
    add_library(velmo-${name}-static STATIC $<TARGET_OBJECTS:velmo-${name}>)
    velmo_describe(velmo-${name}-static ${name} "-static" ${ARGN})
  endif()

  set(needs fmt::fmt ${MODULE_PRIVATE})
  list(FILTER needs EXCLUDE REGEX "BUILD_INTERFACE")
  set(VELMO_USES_${name} ${MODULE_USES} PARENT_SCOPE)
  set(VELMO_NEEDS_${name} ${needs} PARENT_SCOPE)
  set(VELMO_MODULES ${VELMO_MODULES} ${name} PARENT_SCOPE)
endfunction()

# What a module's library and its static twin have in common.
function(velmo_describe target name suffix)
  cmake_parse_arguments(MODULE "" "" "USES;PRIVATE" ${ARGN})
  add_library(velmo::${name}${suffix} ALIAS ${target})
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name}
    VERSION ${PROJECT_VERSION} SOVERSION ${VELMO_SOVERSION}
    OUTPUT_NAME velmocore-${name} DEFINE_SYMBOL "" LINKER_LANGUAGE CXX)
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_include_directories(${target}
    PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
           $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
    PRIVATE ${PROJECT_SOURCE_DIR}/Classes)
  list(TRANSFORM MODULE_USES PREPEND velmo::)
  list(TRANSFORM MODULE_USES APPEND "${suffix}")
  target_link_libraries(${target} PUBLIC ${MODULE_USES}
    PRIVATE $<BUILD_INTERFACE:velmo_options> fmt::fmt ${MODULE_PRIVATE})
endfunction()

# velmo::velmocore is all modules at once.
function(velmo_umbrella)
  add_library(velmocore INTERFACE)
  add_library(velmo::velmocore ALIAS velmocore)
  list(TRANSFORM VELMO_MODULES PREPEND velmo:: OUTPUT_VARIABLE all)
  target_link_libraries(velmocore INTERFACE ${all})
  if(VELMO_STATIC_TOO)
    add_library(velmocore-static INTERFACE)
    set_target_properties(velmocore-static PROPERTIES EXPORT_NAME velmocore)
    list(TRANSFORM all APPEND -static)
    target_link_libraries(velmocore-static INTERFACE ${all})
  endif()
endfunction()
