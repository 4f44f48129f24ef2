# pkg-config file, manual pages, the package's documents, and the Debian
# package:
#   cpack -G DEB --config <build>/CPackConfig.cmake
# builds qrx-host_<version>_<arch>.deb with the library, its headers, the CMake
# package, qrx_host.pc, the tools (qrx-sim, qrx, qrx-job) with their manual
# pages, the Wireshark dissector and the translations that the build installs.

# qrx_host.pc of the build folder: the headers in the source tree, the
# library where the build puts it, with an rpath to it
#   PKG_CONFIG_PATH=build cc app.c $(pkg-config --cflags --libs qrx_host)
set(QRX_PC_PREFIX ${PROJECT_BINARY_DIR})
set(QRX_PC_LIBDIR $<TARGET_FILE_DIR:qrx_host>)
set(QRX_PC_INCLUDEDIR ${PROJECT_SOURCE_DIR}/src/api)
set(QRX_PC_RPATH " -Wl,-rpath,\${libdir}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/qrx_host.pc.in ${PROJECT_BINARY_DIR}/qrx_host.pc.build @ONLY)
file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/qrx_host.pc INPUT ${PROJECT_BINARY_DIR}/qrx_host.pc.build)
# The installed one is written at install time, for the prefix installed to.
install(CODE "
  set(QRX_PC_TEMPLATE \"${CMAKE_CURRENT_LIST_DIR}/qrx_host.pc.in\")
  set(QRX_PC_STAGE \"${PROJECT_BINARY_DIR}/pkgconfig-install\")
  set(QRX_PC_LIBDIR_REL \"${CMAKE_INSTALL_LIBDIR}\")
  set(QRX_PC_INCLUDEDIR_REL \"${CMAKE_INSTALL_INCLUDEDIR}\")
  set(PROJECT_VERSION \"${PROJECT_VERSION}\")
  include(\"${CMAKE_CURRENT_LIST_DIR}/install_pc.cmake\")")

include(${CMAKE_CURRENT_LIST_DIR}/manpages.cmake)

# copyright and the changelog, compressed as Debian wants it (gzip -9n: no
# name, no time stamp).
set(QRX_DOC_DIR ${CMAKE_INSTALL_DATADIR}/doc/qrx-host)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/debian/changelog)
execute_process(COMMAND gzip -9nc ${CMAKE_CURRENT_LIST_DIR}/debian/changelog
  OUTPUT_FILE ${PROJECT_BINARY_DIR}/changelog.gz RESULT_VARIABLE QRX_GZIP_RESULT)
if(NOT QRX_GZIP_RESULT EQUAL 0)
  message(FATAL_ERROR "gzip of debian/changelog failed")
endif()
install(FILES ${CMAKE_CURRENT_LIST_DIR}/debian/copyright ${PROJECT_BINARY_DIR}/changelog.gz
  DESTINATION ${QRX_DOC_DIR})

set(QRX_DEB_MAINTAINER "qrx_host developers <qrx-host@qrx-host.invalid>"
  CACHE STRING "Maintainer of the Debian package")

set(CPACK_PACKAGE_NAME qrx-host)
set(CPACK_PACKAGE_VENDOR "qrx_host developers")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Host library and tools that drive a robot controller over TCP")
# One string: lines of the extended description, each under 80 columns.
string(CONCAT CPACK_PACKAGE_DESCRIPTION
  "qrx_host is a C API (libqrx_host.so, qrx_host.h) that lets a program\n"
  "drive an industrial robot controller over its framed TCP link.\n"
  "The package carries the library, its C and C++ headers, CMake and\n"
  "pkg-config files, qrx-sim (a controller simulator), qrx (a command-line\n"
  "tool), qrx-job (a job-file checker) and a Wireshark dissector.")
set(CPACK_PACKAGE_CONTACT "${QRX_DEB_MAINTAINER}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
# Depends from the binaries themselves (dpkg-shlibdeps), the library's
# shlibs file, and an ldconfig trigger.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/debian/triggers)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "tshark | wireshark")
include(CPack)
