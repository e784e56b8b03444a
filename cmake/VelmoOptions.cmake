# Compiler settings of every target of the project.
find_program(CCACHE ccache)
if(CCACHE AND PROJECT_IS_TOP_LEVEL)
  # The sloppiness is what precompiled headers need; the base folder lets several
  # checkouts share the cache.
  cmake_path(GET PROJECT_SOURCE_DIR PARENT_PATH CCACHE_BASE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CCACHE_BASE}
      CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE})
endif()

add_library(velmo_options INTERFACE)
target_compile_options(velmo_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 sees overlaps that cannot be in every inlined std::string append.
  target_compile_options(velmo_options INTERFACE -Wno-restrict)
endif()
if(VELMO_WERROR)
  target_compile_options(velmo_options INTERFACE -Werror)
endif()
if(VELMO_SANITIZE)
  add_compile_options(-fsanitize=${VELMO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${VELMO_SANITIZE})
endif()
