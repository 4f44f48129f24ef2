# pkg-config file, the dissector's place, and the Debian package:
#   cpack -G DEB --config <build>/CPackConfig.cmake
# builds qrx-host_<version>_<arch>.deb with the library, its header, the CMake
# package, qrx_host.pc, the tools (qrx-sim, qrx, qrx-job when built), the
# Wireshark dissector and the translations that the build installs.

# qrx_host.pc, relocatable: its prefix is found from its own folder.
set(QRX_PC_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH QRX_PC_PREFIX_FROM_PCDIR /root/${QRX_PC_DIR} /root)
string(REGEX REPLACE "/$" "" QRX_PC_PREFIX_FROM_PCDIR "${QRX_PC_PREFIX_FROM_PCDIR}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/qrx_host.pc.in ${PROJECT_BINARY_DIR}/qrx_host.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qrx_host.pc DESTINATION ${QRX_PC_DIR})

# Tools whose own folder does not install them.
if(TARGET qrx-job)
  install(TARGETS qrx-job RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

# The Debian package a library file comes from ("libjsoncpp25"), or the
# fallback when dpkg does not know it.
function(qrx_debian_package_of out library fallback)
  set(${out} ${fallback} PARENT_SCOPE)
  get_filename_component(real "${library}" REALPATH)
  execute_process(COMMAND dpkg -S "${real}" OUTPUT_VARIABLE owner ERROR_QUIET RESULT_VARIABLE rc)
  if(rc EQUAL 0 AND owner MATCHES "^([^:,]+)")
    set(${out} ${CMAKE_MATCH_1} PARENT_SCOPE)
  endif()
endfunction()

find_library(QRX_JSONCPP_LIBRARY NAMES jsoncpp HINTS ${JSONCPP_LIBRARY_DIRS})
qrx_debian_package_of(QRX_DEB_JSONCPP "${QRX_JSONCPP_LIBRARY}" libjsoncpp25)
get_target_property(QRX_QTCORE_LOCATION Qt5::Core LOCATION)
get_target_property(QRX_QTNETWORK_LOCATION Qt5::Network LOCATION)
qrx_debian_package_of(QRX_DEB_QTCORE "${QRX_QTCORE_LOCATION}" libqt5core5a)
qrx_debian_package_of(QRX_DEB_QTNETWORK "${QRX_QTNETWORK_LOCATION}" libqt5network5)

set(CPACK_PACKAGE_NAME qrx-host)
set(CPACK_PACKAGE_VENDOR "qrx_host developers")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Host library and tools that drive a robot controller over TCP")
set(CPACK_PACKAGE_DESCRIPTION
    "qrx_host is a C API (libqrx_host.so, qrx_host.h) that lets a program drive an industrial robot controller\n"
    "over its framed TCP link. The package carries the library, its header, CMake and pkg-config files,\n"
    "qrx-sim (a controller simulator), qrx (a command-line tool) and a Wireshark dissector.")
set(CPACK_PACKAGE_CONTACT "qrx_host developers <qrx-host@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "${QRX_DEB_QTCORE} (>= 5.15), ${QRX_DEB_QTNETWORK} (>= 5.15), ${QRX_DEB_JSONCPP}, zlib1g, libc6, libstdc++6")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "tshark | wireshark")
include(CPack)
