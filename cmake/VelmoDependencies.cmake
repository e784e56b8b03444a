# Third-party libraries. All are private to the modules that link them: none shows in a
# public header. An installed package finds them with this file too, and only for those who
# link static libraries: velmo_wanted then names the targets that the modules asked for need.
#
# A row: the target that modules link, what pkg-config calls it, and the package of CMake that
# has it with its component. What no package has, pkg-config makes a target of.
set(velmo_libraries
  "ICU::uc                  icu-uc        ICU     uc"
  "ICU::i18n                icu-i18n      ICU     i18n"
  "OpenSSL::Crypto          libcrypto     OpenSSL Crypto"
  "ZLIB::ZLIB               zlib          ZLIB"
  "fmt::fmt                 fmt           fmt"
  "PkgConfig::velmo_archive libarchive"
  "PkgConfig::velmo_curl    libcurl"
  "PkgConfig::velmo_deflate libdeflate"
  "PkgConfig::velmo_plist   libplist-2.0"
  "PkgConfig::velmo_systemd libsystemd")

set(velmo_missing "")
foreach(row IN LISTS velmo_libraries)
  separate_arguments(row UNIX_COMMAND "${row}")
  list(POP_FRONT row target module package component)
  set(VELMO_PC_${target} ${module})
  if(TARGET ${target} OR (DEFINED velmo_wanted AND NOT target IN_LIST velmo_wanted))
    continue()
  endif()
  if(package)
    find_package(${package} QUIET COMPONENTS ${component})
  else()
    find_package(PkgConfig QUIET)
    string(REPLACE "PkgConfig::" "" prefix ${target})
    pkg_check_modules(${prefix} QUIET IMPORTED_TARGET ${module})
  endif()
  if(NOT TARGET ${target})
    list(APPEND velmo_missing ${module})
  endif()
endforeach()

# pkg-config leaves some forty entries a library in the cache, which only we asked for.
if(DEFINED velmo_wanted)
  get_cmake_property(entries CACHE_VARIABLES)
  list(FILTER entries INCLUDE REGEX "^(velmo_|pkgcfg_lib_velmo_|__pkg_config_[a-z]+_velmo_)|^prefix_result$")
  foreach(entry IN LISTS entries)
    unset(${entry} CACHE)
  endforeach()
endif()
