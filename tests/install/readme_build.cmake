# Included by the install and package tests: builds and runs a host program
# with the README's own lines (section "## Install": the `cc ... pkg-config`
# line and the `./PROGRAM ADDRESS` line after it), as a user types them.
#   qrx_readme_build(README WORK_DIR SOURCE_DIR PKG_CONFIG_DIR RUN_ENV)
# runs them in WORK_DIR (the README's relative paths resolve against
# SOURCE_DIR), pkg-config looking in PKG_CONFIG_DIR, the program started with
# the "NAME=VALUE" entries of RUN_ENV against an address where no controller
# answers (127.3.9.2, in the install tests' block); the program must load and
# report that nobody answered.
function(qrx_readme_build readme work_dir source_dir pkg_config_dir run_env)
  file(READ ${readme} text)
  string(REGEX MATCH "\n## Install\n(.*)" text "${text}")
  string(REGEX REPLACE "\n## [^\n]*\n.*" "" install_section "${CMAKE_MATCH_1}")
  string(REGEX MATCH "\n    (cc [^\n]*pkg-config[^\n]*)\n    (\\./[^ \n]+) [^\n]*" found "${install_section}")
  if(NOT found)
    message(FATAL_ERROR "the README's Install section has no cc/pkg-config line followed by a ./program line")
  endif()
  set(compile "${CMAKE_MATCH_1}")
  set(program "${CMAKE_MATCH_2}")
  file(MAKE_DIRECTORY ${work_dir})
  file(GLOB entries RELATIVE ${source_dir} ${source_dir}/*)
  foreach(entry ${entries})
    if(NOT EXISTS ${work_dir}/${entry})
      file(CREATE_LINK ${source_dir}/${entry} ${work_dir}/${entry} SYMBOLIC)
    endif()
  endforeach()
  execute_process(COMMAND ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pkg_config_dir} sh -c "${compile}"
    WORKING_DIRECTORY ${work_dir} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "the README's line failed: ${compile}\n${out}\n${err}")
  endif()
  execute_process(COMMAND ${CMAKE_COMMAND} -E env ${run_env} ${program} 127.3.9.2
    WORKING_DIRECTORY ${work_dir} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err TIMEOUT 60)
  if(NOT "${out}${err}" MATCHES "no controller answers at that address")
    message(FATAL_ERROR "${program} from the README's line did not run (${rc}):\n${out}\n${err}")
  endif()
endfunction()
