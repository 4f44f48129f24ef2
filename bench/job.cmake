# Job program model: create, toJson and toString of a 100 000-instruction
# program beside their baselines (build/bench/bench_job).
if(TARGET qrx_job)
  add_executable(bench_job ${CMAKE_CURRENT_LIST_DIR}/bench_job.cpp)
  target_link_libraries(bench_job PRIVATE qrx_job benchmark::benchmark)
  target_compile_options(bench_job PRIVATE -Wall -Wextra)
endif()
