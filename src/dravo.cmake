# dravo: prepares, identifies and scans pairs, on the stages of qn-dravo.
find_package(CLI11 REQUIRED)
find_package(fmt REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(Threads REQUIRED)
find_package(tomlplusplus REQUIRED)
find_path(XXHASH_INCLUDE_DIR xxhash.h REQUIRED)
find_library(XXHASH_LIBRARY xxhash REQUIRED)
include(CheckLibraryExists)
check_library_exists(${XXHASH_LIBRARY} XXH3_64bits_update_dispatch "" XXHASH_DISPATCHES)

set(DRAVO_TOOLS_SOURCES
  identify/identification.cpp
  identify/principal_frames.cpp
  molecules/element_label.cpp
  molecules/fragments.cpp
  molecules/input_text.cpp
  molecules/pair_file.cpp
  molecules/pair_table.cpp
  molecules/xyz_file.cpp
  results/checksum.cpp
  results/durable.cpp
  results/growing_file.cpp
  results/merge.cpp
  results/pose_folders.cpp
  results/pose_writer.cpp
  results/progress.cpp
  results/progress_file.cpp
  results/result_files.cpp
  results/scan_files.cpp
  results/scan_record.cpp
  results/scan_run.cpp
  results/text_chunk.cpp
  scan/axis.cpp
  scan/pair_placer.cpp
  scan/plan.cpp
  scan/plan_keys.cpp
  scan/pose_maker.cpp
  scan/pose_source.cpp
  scan/poses.cpp
  scan/random_pose.cpp
  scan/scan.cpp
  scan/zipped_list.cpp)
list(TRANSFORM DRAVO_TOOLS_SOURCES PREPEND ${PROJECT_SOURCE_DIR}/src/)

# dravo_tools_library(name stages): pairs and scans, on a build of the stages.
function(dravo_tools_library name stages)
  add_library(${name} STATIC ${DRAVO_TOOLS_SOURCES})
  target_include_directories(${name} PRIVATE ${XXHASH_INCLUDE_DIR})
  target_compile_definitions(${name} PRIVATE $<$<BOOL:${XXHASH_DISPATCHES}>:DRAVO_XXHASH_DISPATCHES>)
  target_link_libraries(${name} PUBLIC ${stages} fmt::fmt nlohmann_json::nlohmann_json Threads::Threads
    tomlplusplus::tomlplusplus ${XXHASH_LIBRARY})
endfunction()

dravo_tools_library(dravo_tools dravo)

# Reading options need not be fast, only compiled fast.
add_library(dravo_cli OBJECT
  src/cli/identify.cpp
  src/cli/main.cpp
  src/cli/merge.cpp
  src/cli/pair_options.cpp
  src/cli/prepare.cpp
  src/cli/scan.cpp)
target_link_libraries(dravo_cli PUBLIC dravo_headers CLI11::CLI11 fmt::fmt
  nlohmann_json::nlohmann_json)
target_compile_options(dravo_cli PRIVATE -O1)

add_executable(dravo-cli)
set_target_properties(dravo-cli PROPERTIES OUTPUT_NAME dravo)
target_link_libraries(dravo-cli PRIVATE dravo_cli dravo_tools)
install(TARGETS dravo-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
