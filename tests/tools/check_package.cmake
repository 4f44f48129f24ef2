# cmake -P script: build the Debian package of BUILD_DIR with cpack, unpack it
# into a scratch root, check what it holds and declares, and build the C
# example DEMO_SOURCE against it with pkg-config and with find_package.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${out}\n${err}")
  endif()
  string(STRIP "${out}" out)
  set(run_output "${out}" PARENT_SCOPE)
endfunction()

function(expect_file pattern what)
  file(GLOB_RECURSE found ${root}/${pattern})
  if(NOT found)
    message(FATAL_ERROR "the package has no ${what} (${pattern})")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
run(cpack -G DEB --config ${BUILD_DIR}/CPackConfig.cmake -B ${WORK_DIR}/cpack)
file(GLOB deb ${WORK_DIR}/cpack/qrx-host_*.deb)
list(LENGTH deb count)
if(NOT count EQUAL 1)
  message(FATAL_ERROR "expected one qrx-host .deb, found: ${deb}")
endif()

# Debian's Qt and jsoncpp packages are declared.
run(dpkg-deb -f ${deb} Depends)
foreach(dependency libqt5core5a libqt5network5 libjsoncpp)
  if(NOT run_output MATCHES "${dependency}")
    message(FATAL_ERROR "Depends lacks ${dependency}: ${run_output}")
  endif()
endforeach()

set(root ${WORK_DIR}/root)
run(dpkg-deb -x ${deb} ${root})
expect_file("usr/include/qrx_host/qrx_host.h" "public header")
expect_file("usr/include/qrx_host/qrx_host.hpp" "public C++ header")
expect_file("usr/lib*/libqrx_host.so*" "shared library")
expect_file("usr/lib*/pkgconfig/qrx_host.pc" "pkg-config file")
expect_file("usr/lib*/cmake/qrx_host/qrx_hostConfig.cmake" "CMake package")
expect_file("usr/bin/qrx" "qrx tool")
expect_file("usr/bin/qrx-sim" "simulator")
expect_file("usr/lib/*/wireshark/plugins/qrx.lua" "Wireshark dissector")
expect_file("usr/share/qrx_host/translations/qrx_host_en.qm" "English translation")
file(GLOB_RECURSE pc ${root}/usr/lib*/pkgconfig/qrx_host.pc)
get_filename_component(pcdir ${pc} DIRECTORY)
file(GLOB_RECURSE library ${root}/usr/lib*/libqrx_host.so)
get_filename_component(libdir ${library} DIRECTORY)

# pkg-config: the flags point into the unpacked root.
run(${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pcdir} pkg-config --cflags --libs qrx_host)
separate_arguments(flags UNIX_COMMAND "${run_output}")
set(include_dir "")
foreach(flag ${flags})
  if(flag MATCHES "^-I(.+)")
    get_filename_component(include_dir "${CMAKE_MATCH_1}" REALPATH)
  endif()
endforeach()
get_filename_component(packaged_include "${root}/usr/include/qrx_host" REALPATH)
if(NOT include_dir STREQUAL packaged_include OR NOT run_output MATCHES "-lqrx_host")
  message(FATAL_ERROR "pkg-config flags do not point into the package: ${run_output}")
endif()
run(cc -std=c99 -D_POSIX_C_SOURCE=200809L ${DEMO_SOURCE} -o ${WORK_DIR}/demo-pkgconfig ${flags} -lm)

# find_package, from the same root.
run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/consumer -DCMAKE_PREFIX_PATH=${root}/usr
    -DDEMO_SOURCE=${DEMO_SOURCE})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/consumer)

# The packaged tool finds the packaged library.
run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${libdir} ${root}/usr/bin/qrx --help)
if(NOT run_output MATCHES "usage: qrx")
  message(FATAL_ERROR "the packaged qrx did not run: ${run_output}")
endif()
