# Run at install time (install(CODE) includes it): writes qrx_host.pc for the
# prefix being installed to. Its paths are relative to the file's own folder,
# so an unpacked package or a moved prefix works wherever it lies. A prefix
# other than /usr (the package's, where the loader looks by itself) also gives
# the programs linked through it an rpath to the library, so they run without
# LD_LIBRARY_PATH (and, in /usr/local, without waiting for an ldconfig run).
#   QRX_PC_TEMPLATE, QRX_PC_LIBDIR_REL, QRX_PC_INCLUDEDIR_REL, PROJECT_VERSION,
#   QRX_PC_STAGE: set by the caller.
file(RELATIVE_PATH QRX_PC_UP /root/${QRX_PC_LIBDIR_REL}/pkgconfig /root)
string(REGEX REPLACE "/$" "" QRX_PC_UP "${QRX_PC_UP}")
set(QRX_PC_PREFIX "\${pcfiledir}/${QRX_PC_UP}")
set(QRX_PC_LIBDIR "\${prefix}/${QRX_PC_LIBDIR_REL}")
set(QRX_PC_INCLUDEDIR "\${prefix}/${QRX_PC_INCLUDEDIR_REL}/qrx_host")
set(QRX_PC_RPATH "")
if(NOT CMAKE_INSTALL_PREFIX MATCHES "^/usr/?$")
  set(QRX_PC_RPATH " -Wl,-rpath,\${libdir}")
endif()
configure_file(${QRX_PC_TEMPLATE} ${QRX_PC_STAGE}/qrx_host.pc @ONLY)
file(INSTALL ${QRX_PC_STAGE}/qrx_host.pc DESTINATION ${CMAKE_INSTALL_PREFIX}/${QRX_PC_LIBDIR_REL}/pkgconfig)
