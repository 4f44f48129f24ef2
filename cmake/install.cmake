# Install rules and the CMake package: after `cmake --install`, a user writes
#   find_package(qrx_host REQUIRED)
#   target_link_libraries(app PRIVATE qrx_host::qrx_host)
include(CMakePackageConfigHelpers)

install(TARGETS qrx_host EXPORT qrx_hostTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# The public headers are the C API (qrx_host.h and the two it includes) and
# its header-only C++ layer; the rest of src/api is internal.
install(FILES ${PROJECT_SOURCE_DIR}/src/api/qrx_host.h ${PROJECT_SOURCE_DIR}/src/api/qrx_host_records.h
              ${PROJECT_SOURCE_DIR}/src/api/qrx_host_handles.h ${PROJECT_SOURCE_DIR}/src/api/qrx_host.hpp
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qrx_host)
if(TARGET qrx-sim)
  install(TARGETS qrx-sim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(EXPORT qrx_hostTargets NAMESPACE qrx_host::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qrx_host)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/qrx_hostConfig.cmake.in
  ${PROJECT_BINARY_DIR}/qrx_hostConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qrx_host)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qrx_hostConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/qrx_hostConfig.cmake ${PROJECT_BINARY_DIR}/qrx_hostConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qrx_host)
