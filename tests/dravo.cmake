# Tests of dravo, beside those of qn-dravo.

dravo_results_library(dravo_sanitized)
add_executable(dravo-cli-sanitized)
target_link_libraries(dravo-cli-sanitized PRIVATE dravo_cli dravo_sanitized_results)
set_target_properties(dravo_sanitized_results PROPERTIES EXCLUDE_FROM_ALL ON)
dravo_sanitized_program(dravo-cli-sanitized)

dravo_test_programs(molecules protocol
  covalent_radii_test.cpp
  element_label_test.cpp
  foreign_format_test.cpp
  fragments_test.cpp
  frame_stream_test.cpp
  input_text_test.cpp
  molecule_test.cpp
  pair_check_test.cpp
  pair_file_test.cpp
  pose_range_test.cpp
  van_der_waals_radii_test.cpp
  xyz_file_test.cpp)

dravo_test_programs(identify protocol
  any_pair_test.cpp
  axes_test.cpp
  carried_frames_test.cpp
  closed_form_test.cpp
  contact_radii_test.cpp
  contacts_test.cpp
  frame_words_test.cpp
  hydrogen_bonds_test.cpp
  identification_test.cpp
  many_frames_test.cpp
  remarks_test.cpp
  rotors_test.cpp)

# Molecules for the tests of a folder: published ones and made ones.
add_library(test_molecules OBJECT support/made_molecules.cpp support/molecule_sets.cpp)
target_link_libraries(test_molecules PRIVATE dravo_test_support)
target_compile_options(test_molecules PRIVATE ${optimisation})
target_precompile_headers(test_molecules REUSE_FROM precompiled_test_headers)
function(dravo_test_molecules folder)
  foreach(program ${folder}_tests ${folder}_tests_sanitized)
    target_link_libraries(${program} PRIVATE test_molecules)
  endforeach()
endfunction()

dravo_test_molecules(identify)
dravo_test_molecules(molecules)

dravo_test_programs(symmetry protocol
  candidate_frames_test.cpp
  extended_frame_test.cpp
  facts_test.cpp
  made_molecules_test.cpp
  molecule_sets_test.cpp
  operations_test.cpp
  published_frames_test.cpp
  turned_test.cpp)
dravo_test_molecules(symmetry)

dravo_test_programs(scan results
  axis_lookup_test.cpp
  axis_test.cpp
  equal_poses_test.cpp
  exact_placer_test.cpp
  grid_lookup_test.cpp
  own_value_test.cpp
  pair_placer_test.cpp
  plan_description_test.cpp
  plan_keys_test.cpp
  plan_refusals_test.cpp
  plan_test.cpp
  placer_test.cpp
  poses_test.cpp
  random_pose_test.cpp
  scan_energies_test.cpp
  scan_test.cpp
  unique_poses_test.cpp
  zipped_list_test.cpp)
dravo_test_molecules(scan)
# It compares some hundred million pairs of atoms.
set_source_files_properties(scan/equal_poses_test.cpp PROPERTIES
  COMPILE_OPTIONS -O2 SKIP_PRECOMPILE_HEADERS ON)

dravo_test_programs(results results
  best_poses_test.cpp
  checksum_test.cpp
  dock_tables_test.cpp
  energy_report_test.cpp
  frame_table_test.cpp
  pose_choice_test.cpp
  pose_writer_test.cpp
  progress_file_test.cpp
  progress_test.cpp
  ranked_poses_test.cpp
  row_filter_test.cpp
  scan_energies_test.cpp
  scan_record_test.cpp
  scan_size_test.cpp
  status_line_test.cpp
  text_chunk_test.cpp)

dravo_test_programs(quantum results
  cp2k_input_test.cpp
  input_files_test.cpp
  job_scripts_test.cpp
  manifest_test.cpp
  new_folder_test.cpp
  outputs_test.cpp
  qcschema_input_test.cpp
  quantum_job_test.cpp
  user_template_test.cpp)

dravo_test_programs(view results
  base64_test.cpp
  chemiscope_test.cpp
  encoded_column_test.cpp
  first_map_test.cpp
  page_test.cpp
  pose_table_test.cpp
  shell_word_test.cpp
  thinning_test.cpp)
target_compile_definitions(view_test_objects PRIVATE DRAVO_DEFAULT_PROGRAM="")

# Programs of the tests find the worker beside themselves, as the built dravo does.
file(CREATE_LINK ${PROJECT_BINARY_DIR}/dravo-xtb-worker
  ${CMAKE_CURRENT_BINARY_DIR}/dravo-xtb-worker SYMBOLIC)

set(energy_tests
  child_process_test.cpp
  command_engine_test.cpp
  electrons_test.cpp
  energy_names_test.cpp
  engine_texts_test.cpp
  private_folder_test.cpp)
if(DRAVO_XTB)
  list(APPEND energy_tests forces_test.cpp s22_test.cpp xtb_engine_test.cpp xtb_worker_test.cpp)
endif()
dravo_test_programs(energy protocol ${energy_tests})
dravo_test_molecules(energy)
add_executable(fake_worker energy/fake_worker.cpp)
target_include_directories(fake_worker PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(fake_worker PRIVATE dravo_headers)
target_compile_definitions(energy_test_objects PRIVATE
  DRAVO_FAKE_WORKER="$<TARGET_FILE:fake_worker>")
foreach(program energy_tests energy_tests_sanitized)
  add_dependencies(${program} fake_worker)
  if(DRAVO_XTB)
    add_dependencies(${program} dravo-xtb-worker)
  endif()
endforeach()

set(dock_tests matchings_test.cpp same_minimum_test.cpp)
if(DRAVO_XTB)
  list(APPEND dock_tests dock_search_test.cpp minima_test.cpp starts_test.cpp)
endif()
dravo_test_programs(dock protocol ${dock_tests})
dravo_test_molecules(dock)
if(DRAVO_XTB)
  add_dependencies(dock_tests dravo-xtb-worker)
  add_dependencies(dock_tests_sanitized dravo-xtb-worker)
endif()

dravo_test_programs(scene protocol
  drawing_test.cpp
  pair_scene_test.cpp)

# The built dravo, as it is and sanitized.
add_library(watched_system MODULE cli/watched_system.cpp)
add_library(failing_system MODULE cli/failing_system.cpp)
foreach(library watched_system failing_system)
  target_include_directories(${library} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${library} PRIVATE dravo_options)
endforeach()
add_executable(cli_tests)
set_target_properties(cli_tests PROPERTIES UNITY_BUILD ${DRAVO_JOIN} UNITY_BUILD_MODE GROUP)

# cli_tests_of(group name...): tests/cli/name_test.cpp and so on, compiled as one by dravo_join.
function(cli_tests_of group)
  list(TRANSFORM ARGN REPLACE "(.+)" "cli/\\1_test.cpp")
  target_sources(cli_tests PRIVATE ${ARGN})
  set_source_files_properties(${ARGN} PROPERTIES UNITY_GROUP ${group})
endfunction()

cli_tests_of(scans best_scan exact_scan less_output other_scans scan_files scan_plans scan_poses
  scan_refusals scan_size scan_totals)
cli_tests_of(stops energy_kills interrupted missed_axes place resume scan_kills spoilt_scans)
cli_tests_of(usage angles formats merge messages_page program turned_axes usage)
cli_tests_of(energies durable energy energy_frames energy_scan)
cli_tests_of(exports collect export)
cli_tests_of(files convert extract faults pose_folders standard_input)
cli_tests_of(inputs checks contacts here prepare prepare_nudging prepare_refusals)
cli_tests_of(frames examples identify identify_frames tutorial)
cli_tests_of(manual completion manual)
cli_tests_of(pages chemiscope formats_page view view_results)
target_link_libraries(cli_tests PRIVATE dravo_test_support dravo_results test_molecules)
target_compile_options(cli_tests PRIVATE ${optimisation})
target_precompile_headers(cli_tests REUSE_FROM precompiled_test_headers)
add_dependencies(cli_tests dravo-cli qn-dravo failing_system watched_system)
if(DRAVO_XTB)
  cli_tests_of(dockings dock dock_parts dock_stops scan_energy_kills)
  cli_tests_of(scan_energies scan_energy view_energies)
  target_compile_definitions(cli_tests PRIVATE
    DRAVO_BUILT_XTB_WORKER="$<TARGET_FILE:dravo-xtb-worker>")
  add_dependencies(cli_tests dravo-xtb-worker)
endif()
if(DRAVO_PNG)
  target_sources(cli_tests PRIVATE cli/draw_test.cpp)
  target_compile_definitions(cli_tests PRIVATE DRAVO_BUILT_PNG_MODULE="$<TARGET_FILE:dravo-png>")
  # Reads the pictures.
  set_source_files_properties(cli/draw_test.cpp PROPERTIES INCLUDE_DIRECTORIES "${RSVG_INCLUDE_DIRS}")
  target_link_libraries(cli_tests PRIVATE ${RSVG_LINK_LIBRARIES})
  add_dependencies(cli_tests dravo-png)
endif()
target_compile_definitions(cli_tests PRIVATE
  DRAVO_FAILING_SYSTEM="$<TARGET_FILE:failing_system>"
  DRAVO_WATCHED_SYSTEM="$<TARGET_FILE:watched_system>"
  DRAVO_CLI="$<TARGET_FILE:dravo-cli>"
  DRAVO_SOURCES="${PROJECT_SOURCE_DIR}"
  DRAVO_DEFAULT_PROGRAM="$<TARGET_FILE:qn-dravo>")
gtest_discover_tests(cli_tests TEST_PREFIX cli/)
add_test(NAME sanitized/cli COMMAND cli_tests --gtest_brief=1 "--gtest_filter=-KilledAt*:*BenzeneDimer*:*ForEveryReason*")
set_tests_properties(sanitized/cli PROPERTIES COST 100 ENVIRONMENT
  "DRAVO_TOOL=$<TARGET_FILE:dravo-cli-sanitized>;ASAN_OPTIONS=detect_leaks=0")

# The Python of the distribution, which has its ASE and QCElemental; another one may come first on the path.
find_program(PYTHON_WITH_ASE NAMES python3 HINTS /usr/bin NO_CMAKE_ENVIRONMENT_PATH)
if(PYTHON_WITH_ASE)
  add_test(NAME cli/ase_read_back COMMAND ${PYTHON_WITH_ASE}
    ${CMAKE_CURRENT_SOURCE_DIR}/cli/ase_read_back.py $<TARGET_FILE:dravo-cli>
    ${PROJECT_SOURCE_DIR}/examples/formamide-dimer/QN-input-GEOMETRY.xyz $<TARGET_FILE:qn-dravo>)
  add_test(NAME cli/qcelemental_read_back COMMAND ${PYTHON_WITH_ASE}
    ${CMAKE_CURRENT_SOURCE_DIR}/cli/qcelemental_read_back.py $<TARGET_FILE:dravo-cli>)
  set_tests_properties(cli/ase_read_back cli/qcelemental_read_back PROPERTIES SKIP_RETURN_CODE 77)
  foreach(tool check_site code_blocks developing folders)
    add_test(NAME docs/${tool} COMMAND ${PYTHON_WITH_ASE} ${CMAKE_CURRENT_SOURCE_DIR}/docs/${tool}_test.py)
  endforeach()
  add_test(NAME docs/commands_run COMMAND ${PYTHON_WITH_ASE}
    ${CMAKE_CURRENT_SOURCE_DIR}/docs/commands_run_test.py $<TARGET_FILE:dravo-cli>)
endif()

# The script of the page of `dravo view`: its modules, and the page against the program.
find_program(DRAVO_NODE NAMES node nodejs)
if(DRAVO_NODE)
  foreach(part columns contacts drawings geometry map_model numbers page positions texts view)
    add_test(NAME page/${part} COMMAND ${DRAVO_NODE} ${CMAKE_CURRENT_SOURCE_DIR}/view/${part}_test.mjs)
    set_tests_properties(page/${part} PROPERTIES ENVIRONMENT
      "DRAVO_PROGRAM=$<TARGET_FILE:dravo-cli>;DRAVO_EXAMPLES=${PROJECT_SOURCE_DIR}/examples")
  endforeach()
endif()

# What somebody else gets: an installed library, found in two ways, and nothing of records in it.
add_test(NAME consumer/installed COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/consumer/run
  ${PROJECT_BINARY_DIR} ${PROJECT_SOURCE_DIR} ${CMAKE_CXX_COMPILER} $<IF:$<BOOL:${DRAVO_XTB}>,ON,OFF>)
add_test(NAME consumer/symbols COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/consumer/symbols
  $<TARGET_FILE:dravo> $<TARGET_FILE:dravo_protocol>)
set_tests_properties(consumer/installed PROPERTIES COST 90)
