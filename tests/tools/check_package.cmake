# cmake -P script: build the Debian package of BUILD_DIR with cpack, have
# lintian judge it, unpack it into a scratch root, check what it holds and
# declares, and build the C example DEMO_SOURCE against it with the README's
# pkg-config lines and with find_package.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/../install/readme_build.cmake)
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

# lintian: no error, and no warning but these, which the package keeps by
# design:
# - package-name-doesnt-match-sonames, link-to-shared-library-in-wrong-package:
#   one package holds the library, its development files and the tools (Debian
#   would split libqrx-host0, libqrx-host-dev and qrx-host);
# - maintscript-calls-ldconfig: CPack writes postinst/postrm calling ldconfig
#   for a library in /usr/lib by itself, beside the package's ldconfig trigger;
# - pkg-config-unavailable-for-cross-compilation: the library and qrx_host.pc
#   go to lib/, not to the multiarch folder, as in every install prefix.
find_program(LINTIAN lintian)
if(NOT LINTIAN)
  message(FATAL_ERROR "lintian is missing (scripts/common.sh installs it)")
endif()
run(${LINTIAN} --fail-on error,warning --suppress-tags
    package-name-doesnt-match-sonames,link-to-shared-library-in-wrong-package,maintscript-calls-ldconfig,pkg-config-unavailable-for-cross-compilation
    ${deb})

set(root ${WORK_DIR}/root)
run(dpkg-deb -x ${deb} ${root})

# Depends names the Debian package of every library that a packaged binary
# needs (dpkg-shlibdeps on the binaries, not a list kept by hand).
run(dpkg-deb -f ${deb} Depends)
string(REGEX REPLACE " \\([^)]*\\)" "" depends "${run_output}")
string(REGEX REPLACE "( \\| |, )" ";" depends "${depends}")
file(GLOB binaries ${root}/usr/bin/* ${root}/usr/lib/libqrx_host.so.*.*)
foreach(binary ${binaries})
  run(objdump -p ${binary})
  string(REGEX MATCHALL "NEEDED +[^\n]+" direct "${run_output}")
  string(REGEX REPLACE "NEEDED +" "" direct "${direct}")
  # where the loader finds each of them
  run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${root}/usr/lib ldd ${binary})
  string(REGEX MATCHALL "[^ \t\n]+ => /[^ ]+" needed "${run_output}")
  foreach(entry ${needed})
    string(REGEX REPLACE "^([^ ]+) => (.+)$" "\\1;\\2" entry "${entry}")
    list(GET entry 0 soname)
    list(GET entry 1 path)
    if(soname MATCHES "^libqrx_host" OR NOT soname IN_LIST direct)
      continue()
    endif()
    # dpkg knows a file under one of its merged-/usr names.
    get_filename_component(real ${path} REALPATH)
    string(REGEX REPLACE "^/usr/" "/" unmerged "${real}")
    set(owner "")
    foreach(name ${path} ${real} ${unmerged})
      execute_process(COMMAND dpkg -S ${name} OUTPUT_VARIABLE found RESULT_VARIABLE rc ERROR_QUIET)
      if(rc EQUAL 0 AND NOT owner)
        string(REGEX MATCH "^[^:,]+" owner "${found}")
      endif()
    endforeach()
    if(NOT owner IN_LIST depends)
      message(FATAL_ERROR "${binary} needs ${soname} of ${owner}, which Depends lacks: ${depends}")
    endif()
  endforeach()
endforeach()
expect_file("usr/include/qrx_host/qrx_host.h" "public header")
expect_file("usr/include/qrx_host/qrx_host_records.h" "queue records header")
expect_file("usr/include/qrx_host/qrx_host_handles.h" "handle API header")
expect_file("usr/include/qrx_host/qrx_host.hpp" "public C++ header")
expect_file("usr/lib*/libqrx_host.so*" "shared library")
expect_file("usr/lib*/pkgconfig/qrx_host.pc" "pkg-config file")
expect_file("usr/lib*/cmake/qrx_host/qrx_hostConfig.cmake" "CMake package")
expect_file("usr/bin/qrx" "qrx tool")
expect_file("usr/bin/qrx-sim" "simulator")
expect_file("usr/lib/*/wireshark/plugins/qrx.lua" "Wireshark dissector")
expect_file("usr/share/qrx_host/translations/qrx_host_en.qm" "English translation")
foreach(page qrx qrx-sim qrx-job)
  expect_file("usr/share/man/man1/${page}.1.gz" "manual page of ${page}")
endforeach()
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
# (the package is for /usr, where the loader looks: no rpath)
if(NOT include_dir STREQUAL packaged_include OR NOT run_output MATCHES "-lqrx_host" OR run_output MATCHES "rpath")
  message(FATAL_ERROR "pkg-config flags do not point into the package: ${run_output}")
endif()
# The README's lines, against the unpacked root (not installed: the loader
# needs to be told where the library lies).
get_filename_component(source_dir ${DEMO_SOURCE} DIRECTORY)
get_filename_component(source_dir ${source_dir} DIRECTORY)
qrx_readme_build(${source_dir}/README.md ${WORK_DIR}/readme ${source_dir} ${pcdir} "LD_LIBRARY_PATH=${libdir}")

# find_package, from the same root.
run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/consumer -DCMAKE_PREFIX_PATH=${root}/usr
    -DDEMO_SOURCE=${DEMO_SOURCE})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/consumer)

# The packaged tool finds the packaged library.
run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${libdir} ${root}/usr/bin/qrx --help)
if(NOT run_output MATCHES "usage: qrx")
  message(FATAL_ERROR "the packaged qrx did not run: ${run_output}")
endif()
