# cmake -P script: install BUILD_DIR into WORK_DIR/prefix, build CONSUMER_DIR
# against it and run the program; then the README's pkg-config lines, against
# the prefix and against the build folder's own qrx_host.pc.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/readme_build.cmake)
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${out}\n${err}")
  endif()
  set(run_output "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

if(NOT EXISTS ${prefix}/include/qrx_host/qrx_host.h)
  message(FATAL_ERROR "the public header was not installed")
endif()
file(GLOB headers RELATIVE ${prefix}/include/qrx_host ${prefix}/include/qrx_host/*)
list(SORT headers)
if(NOT headers STREQUAL "qrx_host.h;qrx_host.hpp;qrx_host_handles.h;qrx_host_records.h")
  message(FATAL_ERROR "qrx_host.h, the two headers it includes and qrx_host.hpp are public, installed: ${headers}")
endif()
if(NOT EXISTS ${prefix}/bin/qrx-sim)
  message(FATAL_ERROR "qrx-sim was not installed")
endif()

run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/consumer -DCMAKE_PREFIX_PATH=${prefix})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/consumer)
run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${prefix}/lib ${WORK_DIR}/consumer/consumer)
if(NOT run_output STREQUAL "no link: status 0, show nothing\n")
  message(FATAL_ERROR "unexpected output of the consumer: '${run_output}'")
endif()
run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${prefix}/lib ${WORK_DIR}/consumer/consumer_cpp)
if(NOT run_output STREQUAL "refused: no controller answered at 127.3.9.1:1\n")
  message(FATAL_ERROR "unexpected output of the C++ consumer: '${run_output}'")
endif()

# The README's lines: the prefix's qrx_host.pc gives the program an rpath,
# so it runs with no LD_LIBRARY_PATH; so does the build folder's.
foreach(page qrx qrx-sim qrx-job)
  if(NOT EXISTS ${prefix}/share/man/man1/${page}.1.gz)
    message(FATAL_ERROR "the manual page of ${page} was not installed")
  endif()
endforeach()
qrx_readme_build(${SOURCE_DIR}/README.md ${WORK_DIR}/readme-prefix ${SOURCE_DIR} ${prefix}/lib/pkgconfig "LD_LIBRARY_PATH=")
qrx_readme_build(${SOURCE_DIR}/README.md ${WORK_DIR}/readme-build ${SOURCE_DIR} ${BUILD_DIR} "LD_LIBRARY_PATH=")
