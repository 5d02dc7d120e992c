# Tests of dravo, beside those of qn-dravo.

dravo_tools_library(dravo_tools_sanitized dravo_sanitized)
add_executable(dravo-cli-sanitized ${PROJECT_SOURCE_DIR}/src/cli/main.cpp)
target_link_libraries(dravo-cli-sanitized PRIVATE dravo_tools_sanitized)

dravo_test_programs(pairs dravo_tools
  element_label_test.cpp
  fragments_test.cpp
  identification_test.cpp
  input_text_test.cpp
  pair_file_test.cpp
  xyz_file_test.cpp)

# The built dravo, as it is and sanitized.
add_executable(cli_tests
  cli/identify_test.cpp
  cli/prepare_test.cpp)
target_link_libraries(cli_tests PRIVATE dravo_test_support dravo_tools)
add_dependencies(cli_tests dravo-cli dravo-cli-sanitized qn-dravo)
target_compile_definitions(cli_tests PRIVATE
  DRAVO_CLI="$<TARGET_FILE:dravo-cli>"
  DRAVO_DEFAULT_PROGRAM="$<TARGET_FILE:qn-dravo>")
gtest_discover_tests(cli_tests TEST_PREFIX cli/)
add_test(NAME sanitized/cli COMMAND cli_tests --gtest_brief=1)
set_tests_properties(sanitized/cli PROPERTIES
  COST 100 ENVIRONMENT DRAVO_TOOL=$<TARGET_FILE:dravo-cli-sanitized>)
