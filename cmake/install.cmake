# Installation: the library, the public headers, pkg-config file and CMake package.
include(CMakePackageConfigHelpers)

set(public_headers oci.h ocidfn.h oci1.h ociapr.h oratypes.h oro.h nzt.h)
list(TRANSFORM public_headers PREPEND ${PROJECT_SOURCE_DIR}/include/)
foreach(header IN LISTS surface_headers)
  list(APPEND public_headers ${PROJECT_BINARY_DIR}/include/${header}.h)
endforeach()

set_target_properties(zevoci PROPERTIES EXPORT_NAME oci)
install(TARGETS zevoci EXPORT zevociTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES ${public_headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# Paths in zevoci.pc count from its own place, so that an installed tree can be moved.
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_from_pkgconfig /p/${pkgconfig_dir} /p)
string(REGEX REPLACE "/$" "" prefix_from_pkgconfig ${prefix_from_pkgconfig})
configure_file(cmake/zevoci.pc.in zevoci.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zevoci.pc DESTINATION ${pkgconfig_dir})

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zevoci)
configure_package_config_file(cmake/zevociConfig.cmake.in zevociConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(zevociConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zevociConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/zevociConfigVersion.cmake DESTINATION ${package_dir})
install(EXPORT zevociTargets NAMESPACE zevoci:: DESTINATION ${package_dir})

include(cmake/dropin.cmake)
