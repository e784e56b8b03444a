# Headers, libraries, the tool, find_package(velmocore COMPONENTS ...) and
# pkg-config velmocore.
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/velmocore)

list(TRANSFORM VELMO_MODULES PREPEND velmo- OUTPUT_VARIABLE module_targets)
install(TARGETS ${module_targets} velmocore EXPORT velmocore)
install(DIRECTORY include/velmocore DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY resources/ DESTINATION ${CMAKE_INSTALL_DATADIR}/velmocore
        FILES_MATCHING PATTERN "StopWords*" PATTERN "*.feeds.stylesheet.css")
install(EXPORT velmocore NAMESPACE velmo:: DESTINATION ${package_dir}
        FILE velmocoreTargets.cmake)

configure_package_config_file(cmake/velmocoreConfig.cmake.in
  ${PROJECT_BINARY_DIR}/velmocoreConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/velmocoreConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/velmocoreConfig.cmake
              ${PROJECT_BINARY_DIR}/velmocoreConfigVersion.cmake
              cmake/VelmoDependencies.cmake
        DESTINATION ${package_dir})

# Linkers resolve static libraries from left to right: users come first.
set(VELMO_PC_LIBS "")
foreach(module IN LISTS VELMO_MODULES)
  string(PREPEND VELMO_PC_LIBS "-lvelmocore-${module} ")
endforeach()
# Who links static libraries needs what these link as well.
if(BUILD_SHARED_LIBS)
  set(VELMO_PC_REQUIRES "Requires.private")
else()
  set(VELMO_PC_REQUIRES "Requires")
endif()
# From the file to the prefix, so that an installed copy can be moved.
file(RELATIVE_PATH VELMO_PC_PREFIX
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/velmocore.pc.in ${PROJECT_BINARY_DIR}/velmocore.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/velmocore.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
