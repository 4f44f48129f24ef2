# Manual pages of the installed tools, written by help2man from each tool's
# own --help, so the page never drifts from the tool; gzip -9n keeps them
# reproducible. Without help2man the pages are left out (the package then
# lacks them; scripts/common.sh installs it).
find_program(QRX_HELP2MAN help2man)
find_program(QRX_GZIP gzip)
set(QRX_MANPAGES
  "qrx|drive a robot controller from a terminal, one command at a time"
  "qrx-sim|a simulated robot controller for qrx_host"
  "qrx-job|check, format, upgrade and convert job files"
  "qrx-bridge|put the robot controllers of a cell on an MQTT broker")
if(QRX_HELP2MAN AND QRX_GZIP)
  set(pages "")
  foreach(entry ${QRX_MANPAGES})
    string(REPLACE "|" ";" entry "${entry}")
    list(GET entry 0 tool)
    list(GET entry 1 summary)
    if(NOT TARGET ${tool})
      continue()
    endif()
    set(page ${PROJECT_BINARY_DIR}/man/${tool}.1)
    add_custom_command(OUTPUT ${page}.gz
      COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/man
      COMMAND ${CMAKE_COMMAND} -E env QRX_LANG=en ${QRX_HELP2MAN} --no-info --section=1
        --version-string=${PROJECT_VERSION} --name=${summary} --output=${page} $<TARGET_FILE:${tool}>
      COMMAND ${QRX_GZIP} -9nf ${page}
      DEPENDS ${tool}
      COMMENT "Manual page of ${tool}"
      VERBATIM)
    list(APPEND pages ${page}.gz)
  endforeach()
  add_custom_target(manpages ALL DEPENDS ${pages})
  install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
else()
  message(STATUS "help2man or gzip not found: no manual pages")
endif()
