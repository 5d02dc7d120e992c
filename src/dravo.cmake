# dravo: prepares, identifies and scans pairs, on the stages of qn-dravo.
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(Threads REQUIRED)
find_package(tomlplusplus REQUIRED)

set(DRAVO_TOOLS_SOURCES
  cli/identify.cpp
  cli/merge.cpp
  cli/pair_options.cpp
  cli/prepare.cpp
  cli/scan.cpp
  pairs/element_label.cpp
  pairs/fragments.cpp
  pairs/identification.cpp
  pairs/input_text.cpp
  pairs/pair_file.cpp
  pairs/pair_table.cpp
  pairs/parameters.cpp
  pairs/principal_frames.cpp
  pairs/xyz_file.cpp
  scan/axis.cpp
  scan/chunk_maker.cpp
  scan/growing_file.cpp
  scan/merge.cpp
  scan/ordered_chunks.cpp
  scan/pair_placer.cpp
  scan/plan.cpp
  scan/plan_keys.cpp
  scan/pose_writer.cpp
  scan/progress.cpp
  scan/progress_file.cpp
  scan/random_pose.cpp
  scan/result_files.cpp
  scan/scan.cpp
  scan/scan_files.cpp
  scan/scan_record.cpp
  scan/zipped_list.cpp)
list(TRANSFORM DRAVO_TOOLS_SOURCES PREPEND ${PROJECT_SOURCE_DIR}/src/)

# dravo_tools_library(name stages): everything but main, on a build of the stages.
function(dravo_tools_library name stages)
  add_library(${name} STATIC ${DRAVO_TOOLS_SOURCES})
  target_link_libraries(${name} PUBLIC ${stages} CLI11::CLI11 nlohmann_json::nlohmann_json
    Threads::Threads tomlplusplus::tomlplusplus)
endfunction()

dravo_tools_library(dravo_tools dravo)
add_executable(dravo-cli src/cli/main.cpp)
set_target_properties(dravo-cli PROPERTIES
  OUTPUT_NAME dravo)
target_link_libraries(dravo-cli PRIVATE dravo_tools)
install(TARGETS dravo-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
