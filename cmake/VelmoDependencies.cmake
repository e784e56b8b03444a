# Third-party libraries. All are private to the modules that link them: none
# shows in a public header. The installed package finds them with this file too.
include(CMakeFindDependencyMacro)
find_dependency(ICU COMPONENTS uc i18n)
find_dependency(fmt)
find_dependency(ZLIB)
find_dependency(OpenSSL COMPONENTS Crypto)
find_dependency(PkgConfig)
pkg_check_modules(plist REQUIRED IMPORTED_TARGET libplist-2.0)
pkg_check_modules(deflate REQUIRED IMPORTED_TARGET libdeflate)
pkg_check_modules(archive REQUIRED IMPORTED_TARGET libarchive)
pkg_check_modules(systemd REQUIRED IMPORTED_TARGET libsystemd)
pkg_check_modules(curl REQUIRED IMPORTED_TARGET libcurl)
