# Tests of dravo, beside those of qn-dravo.

# Here too fast compilation matters more.
set_source_files_properties(${DRAVO_TOOLS_SOURCES} PROPERTIES COMPILE_OPTIONS -O0)
dravo_tools_library(dravo_tools_sanitized dravo_sanitized)
add_executable(dravo-cli-sanitized)
target_link_libraries(dravo-cli-sanitized PRIVATE dravo_cli dravo_tools_sanitized)

dravo_test_programs(molecules dravo_tools
  element_label_test.cpp
  fragments_test.cpp
  input_text_test.cpp
  pair_file_test.cpp
  xyz_file_test.cpp)

dravo_test_programs(identify dravo_tools
  identification_test.cpp)

dravo_test_programs(scan dravo_tools
  axis_test.cpp
  ordered_chunks_test.cpp
  pair_placer_test.cpp
  plan_keys_test.cpp
  plan_test.cpp
  poses_test.cpp
  random_pose_test.cpp
  scan_test.cpp
  zipped_list_test.cpp)

dravo_test_programs(results dravo_tools
  checksum_test.cpp
  pose_writer_test.cpp
  progress_file_test.cpp
  progress_test.cpp
  scan_record_test.cpp
  text_chunk_test.cpp)

# The built dravo, as it is and sanitized.
add_library(watched_system MODULE cli/watched_system.cpp)
target_link_libraries(watched_system PRIVATE dravo_options)
add_executable(cli_tests
  cli/durable_test.cpp
  cli/identify_test.cpp
  cli/merge_test.cpp
  cli/pose_folders_test.cpp
  cli/prepare_test.cpp
  cli/resume_test.cpp
  cli/scan_test.cpp)
target_link_libraries(cli_tests PRIVATE dravo_test_support dravo_tools)
target_compile_options(cli_tests PRIVATE ${optimisation})
add_dependencies(cli_tests dravo-cli dravo-cli-sanitized qn-dravo watched_system)
target_compile_definitions(cli_tests PRIVATE
  DRAVO_CLI="$<TARGET_FILE:dravo-cli>"
  DRAVO_WATCHED_SYSTEM="$<TARGET_FILE:watched_system>"
  DRAVO_DEFAULT_PROGRAM="$<TARGET_FILE:qn-dravo>")
gtest_discover_tests(cli_tests TEST_PREFIX cli/)
add_test(NAME sanitized/cli COMMAND cli_tests --gtest_brief=1 --gtest_filter=-KilledAt*)
set_tests_properties(sanitized/cli PROPERTIES COST 100 ENVIRONMENT
  "DRAVO_TOOL=$<TARGET_FILE:dravo-cli-sanitized>;ASAN_OPTIONS=detect_leaks=0")

# The Python of the distribution, which has its ASE; another one may come first on the path.
find_program(DRAVO_PYTHON NAMES python3 HINTS /usr/bin NO_CMAKE_ENVIRONMENT_PATH)
if(DRAVO_PYTHON)
  add_test(NAME cli/ase_read_back COMMAND ${DRAVO_PYTHON}
    ${CMAKE_CURRENT_SOURCE_DIR}/cli/ase_read_back.py $<TARGET_FILE:dravo-cli>
    ${PROJECT_SOURCE_DIR}/examples/formamide-dimer/QN-input-GEOMETRY.xyz)
  set_tests_properties(cli/ase_read_back PROPERTIES SKIP_RETURN_CODE 77)
endif()
