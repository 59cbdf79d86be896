# The shared library and its version script: the published names of surface.cmake, and the
# helpers listed in helpers.exports.

file(STRINGS cmake/helpers.exports helpers)
set(exported ${published})
if(ZEVOCI_EXPORT_HELPERS)
  list(APPEND exported ${helpers})
endif()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
  cmake/helpers.exports)
list(JOIN exported ";\n    " exported)
file(CONFIGURE OUTPUT zevoci.map @ONLY CONTENT
"ZEVOCI_11 {
  global:
    @exported@;
  local:
    *;
};
")

add_library(zevoci SHARED)
target_link_libraries(zevoci PRIVATE zevoci_objects zevoci_sanitizers)
target_include_directories(zevoci INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
  $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include> $<INSTALL_INTERFACE:include>)
set_target_properties(zevoci PROPERTIES
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
  LINK_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/zevoci.map LINKER_LANGUAGE CXX)
target_link_options(zevoci PRIVATE
  -Wl,--version-script=${CMAKE_CURRENT_BINARY_DIR}/zevoci.map -Wl,-Bsymbolic-functions
  -Wl,--no-undefined-version)
if(ZEVOCI_SANITIZE STREQUAL "")
  target_link_options(zevoci PRIVATE -Wl,--no-undefined)
endif()
add_library(zevoci::oci ALIAS zevoci)
