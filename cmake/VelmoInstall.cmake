# What is installed, in components: runtime (shared libraries), development (headers, static
# libraries, find_package(velmocore COMPONENTS ...) and pkg-config velmocore), data (lists of
# words), documentation, and tool, which tools/velmo installs.
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/velmocore)
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(development COMPONENT development)

# An export a module, so that a program that asks for words gets the targets of no others.
function(velmo_install_target target name kind)
  install(TARGETS ${target} EXPORT velmocore-${kind}-${name}
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development ARCHIVE ${development})
  install(EXPORT velmocore-${kind}-${name} NAMESPACE velmo:: FILE ${name}.cmake
    DESTINATION ${package_dir}/${kind} ${development})
endfunction()

set(kind static)
if(BUILD_SHARED_LIBS)
  set(kind shared)
endif()
foreach(module IN LISTS VELMO_MODULES)
  velmo_install_target(velmo-${module} ${module} ${kind})
  if(VELMO_STATIC_TOO)
    velmo_install_target(velmo-${module}-static ${module} static)
  endif()
endforeach()
velmo_install_target(velmocore velmocore ${kind})
if(VELMO_STATIC_TOO)
  velmo_install_target(velmocore-static velmocore static)
endif()
install(DIRECTORY include/velmocore DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} ${development})

# The rows of the modules once more, for those who find the package.
set(VELMO_USES_velmocore ${VELMO_MODULES})
set(VELMO_MODULE_ROWS "")
foreach(module IN LISTS VELMO_MODULES ITEMS velmocore)
  list(JOIN VELMO_USES_${module} " " uses)
  list(JOIN VELMO_NEEDS_${module} " " needs)
  string(APPEND VELMO_MODULE_ROWS "  set(uses_${module} ${uses})\n  set(needs_${module} ${needs})\n")
endforeach()
list(JOIN VELMO_MODULES " " VELMO_ALL_MODULES)
configure_file(cmake/velmocoreConfig.cmake.in ${PROJECT_BINARY_DIR}/velmocoreConfig.cmake @ONLY)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/velmocoreConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/velmocoreConfig.cmake
              ${PROJECT_BINARY_DIR}/velmocoreConfigVersion.cmake
              cmake/VelmoDependencies.cmake
        DESTINATION ${package_dir} ${development})

# pkg-config velmocore-MODULE, and velmocore for all of them. Who links static libraries needs
# what these link as well: where there are no others, that is what is always asked for; where
# there are shared ones, it is named by flags, so that it need not be there for those.
# From the file to the prefix, so that an installed copy can be moved.
file(RELATIVE_PATH VELMO_PC_PREFIX
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
function(velmo_pkgconfig name libraries description)
  set(PC_NAME ${name})
  set(PC_DESCRIPTION "${description}")
  set(PC_LIBS "${libraries}")
  set(needs ${ARGN})
  set(PC_LIBS_PRIVATE "")
  if(BUILD_SHARED_LIBS)
    list(FILTER needs INCLUDE REGEX "^velmocore-")
    set(private ${ARGN})
    list(FILTER private EXCLUDE REGEX "^velmocore-")
    if(private)
      execute_process(COMMAND ${PKG_CONFIG_EXECUTABLE} --libs ${private}
        OUTPUT_VARIABLE PC_LIBS_PRIVATE OUTPUT_STRIP_TRAILING_WHITESPACE)
    endif()
  endif()
  list(JOIN needs " " PC_REQUIRES)
  configure_file(cmake/velmocore.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${pkgconfig_dir} ${development})
endfunction()

set(all ${VELMO_MODULES})
list(REVERSE all)  # linkers resolve static libraries from left to right: users come first
list(TRANSFORM all PREPEND velmocore-)
velmo_pkgconfig(velmocore "" "${PROJECT_DESCRIPTION}" ${all})
foreach(module IN LISTS VELMO_MODULES)
  set(needs ${VELMO_USES_${module}})
  list(REVERSE needs)
  list(TRANSFORM needs PREPEND velmocore-)
  foreach(target IN LISTS VELMO_NEEDS_${module})
    list(APPEND needs ${VELMO_PC_${target}})
  endforeach()
  velmo_pkgconfig(velmocore-${module} "-lvelmocore-${module}"
    "${PROJECT_DESCRIPTION}: ${module}" ${needs})
endforeach()

# The lists of words with where they come from, and the licences.
install(DIRECTORY resources/ DESTINATION ${CMAKE_INSTALL_DATADIR}/velmocore COMPONENT data
        FILES_MATCHING PATTERN "StopWords*" PATTERN "*.feeds.stylesheet.css")
install(FILES resources/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME words.md
        COMPONENT data)
install(FILES tests/data/licenses/stopwords-iso+stopwords-iso.LICENSE
        DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME LICENSE.stopwords-iso COMPONENT data)
install(FILES tests/data/licenses/unicode.LICENSE
        DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME LICENSE.unicode COMPONENT runtime)
foreach(component IN ITEMS runtime development tool data documentation)
  install(FILES LICENSE NOTICE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT ${component})
endforeach()

install(FILES README.md CHANGELOG.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR}
        COMPONENT documentation)
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT documentation
        FILES_MATCHING PATTERN "*.md" PATTERN "images/*" PATTERN "cookbook/*" PATTERN "expected/*")
