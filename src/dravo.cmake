# dravo: prepares, identifies and scans pairs, on the stages of qn-dravo.
include(CheckLibraryExists)
check_library_exists(${XXHASH_LIBRARY} XXH3_64bits_update_dispatch "" XXHASH_DISPATCHES)

add_library(dravo_nlopt INTERFACE)
target_include_directories(dravo_nlopt INTERFACE ${NLOPT_INCLUDE_DIR})
target_link_libraries(dravo_nlopt INTERFACE ${NLOPT_LIBRARY})

# What the library holds besides the stages.
set(DRAVO_LIBRARY_SOURCES
  src/common/installed_file.cpp
  src/common/markup.cpp
  src/dock/clusters.cpp
  src/dock/dock_names.cpp
  src/dock/dock_search.cpp
  src/dock/docking.cpp
  src/dock/final_minima.cpp
  src/dock/matchings.cpp
  src/dock/minimiser.cpp
  src/dock/rigid_pair.cpp
  src/dock/same_minimum.cpp
  src/energy/child_process.cpp
  src/energy/command_engine.cpp
  src/energy/electrons.cpp
  src/energy/energy.cpp
  src/energy/energy_names.cpp
  src/energy/engine_texts.cpp
  src/energy/frame_energies.cpp
  src/energy/pose_energy.cpp
  src/energy/private_folder.cpp
  src/energy/xtb_engine.cpp
  src/identify/axis_data.cpp
  src/identify/carried_frames.cpp
  src/identify/closed_form.cpp
  src/identify/contacts.cpp
  src/identify/frame_words.cpp
  src/identify/hydrogen_bonds.cpp
  src/identify/kept_frame.cpp
  src/identify/many_frames.cpp
  src/identify/identification.cpp
  src/identify/principal_frames.cpp
  src/identify/strict_frame.cpp
  src/molecules/bond_survey.cpp
  src/molecules/covalent_radii.cpp
  src/molecules/element_label.cpp
  src/molecules/foreign_format.cpp
  src/molecules/fragments.cpp
  src/molecules/frame_stream.cpp
  src/molecules/input_text.cpp
  src/molecules/molecule.cpp
  src/molecules/pair_check.cpp
  src/molecules/pair_file.cpp
  src/molecules/pair_table.cpp
  src/molecules/pose_range.cpp
  src/molecules/van_der_waals_radii.cpp
  src/molecules/wanted_frames.cpp
  src/molecules/xyz_file.cpp
  src/scan/axis.cpp
  src/scan/axis_lookup.cpp
  src/scan/equal_poses.cpp
  src/scan/grid_lookup.cpp
  src/scan/own_value.cpp
  src/scan/pair_placer.cpp
  src/scan/placer.cpp
  src/scan/plan.cpp
  src/scan/plan_keys.cpp
  src/scan/pose_maker.cpp
  src/scan/pose_source.cpp
  src/scan/poses.cpp
  src/scan/random_pose.cpp
  src/scan/scan.cpp
  src/scan/unique_poses.cpp
  src/scan/zipped_list.cpp
  src/scene/bild.cpp
  src/scene/colours.cpp
  src/scene/description.cpp
  src/scene/element_colours.cpp
  src/scene/molecule_scene.cpp
  src/scene/pair_scene.cpp
  src/scene/png.cpp
  src/scene/projection.cpp
  src/scene/scene_parts.cpp
  src/scene/svg.cpp
  src/scene/view_direction.cpp
  src/symmetry/candidate_frames.cpp
  src/symmetry/centred_atoms.cpp
  src/symmetry/extended_frame.cpp
  src/symmetry/facts.cpp
  src/symmetry/first_atom.cpp
  src/symmetry/matrices.cpp
  src/symmetry/operation_search.cpp
  src/symmetry/operations.cpp
  src/symmetry/superposition.cpp)
list(TRANSFORM DRAVO_LIBRARY_SOURCES PREPEND ${PROJECT_SOURCE_DIR}/)
set(DRAVO_LIBRARY_DEPENDENCIES Threads::Threads fmt::fmt
  $<BUILD_INTERFACE:dravo_nlopt> $<INSTALL_INTERFACE:nlopt>)

# libxtb stays in a program of its own: it keeps global state, may end the process, and brings
# another LAPACK.
set(DRAVO_LIBEXEC_FOLDER ${CMAKE_INSTALL_LIBEXECDIR}/dravo)
set(DRAVO_BUILT_WITH_XTB false)
if(DRAVO_XTB)
  set(DRAVO_BUILT_WITH_XTB true)
  add_executable(dravo-xtb-worker src/energy/xtb_worker.cpp)
  target_link_libraries(dravo-xtb-worker PRIVATE dravo_headers PkgConfig::XTB Threads::Threads)
  set_target_properties(dravo-xtb-worker PROPERTIES INSTALL_RPATH "${DRAVO_REFERENCE_RPATH}")
  install(TARGETS dravo-xtb-worker RUNTIME DESTINATION ${DRAVO_LIBEXEC_FOLDER})
endif()

# librsvg stays in a module that is loaded for a PNG: it brings dozens of libraries.
set(DRAVO_BUILT_WITH_PNG false)
if(DRAVO_PNG)
  set(DRAVO_BUILT_WITH_PNG true)
  add_library(dravo-png MODULE src/scene/png_module.cpp)
  set_target_properties(dravo-png PROPERTIES PREFIX "")
  target_link_libraries(dravo-png PRIVATE dravo_headers PkgConfig::RSVG)
  install(TARGETS dravo-png LIBRARY DESTINATION ${DRAVO_LIBEXEC_FOLDER})
endif()
configure_file(src/common/build_options.hpp.in ${PROJECT_BINARY_DIR}/generated/common/build_options.hpp
  @ONLY)

# The bytes of scans.
set(DRAVO_RESULTS_SOURCES
  src/quantum/collect.cpp
  src/quantum/cp2k_input.cpp
  src/quantum/cp2k_output.cpp
  src/quantum/export.cpp
  src/quantum/exported_poses.cpp
  src/quantum/gamess_input.cpp
  src/quantum/gaussian_input.cpp
  src/quantum/job_scripts.cpp
  src/quantum/manifest.cpp
  src/quantum/new_folder.cpp
  src/quantum/nwchem_input.cpp
  src/quantum/nwchem_output.cpp
  src/quantum/orca_input.cpp
  src/quantum/output_text.cpp
  src/quantum/psi4_input.cpp
  src/quantum/psi4_output.cpp
  src/quantum/qchem_input.cpp
  src/quantum/qcschema_input.cpp
  src/quantum/qcschema_output.cpp
  src/quantum/quantum_job.cpp
  src/quantum/quantum_text.cpp
  src/quantum/user_template.cpp
  src/quantum/xtb_input.cpp
  src/quantum/xtb_output.cpp
  src/results/best_poses.cpp
  src/results/best_results.cpp
  src/results/checksum.cpp
  src/results/dock_merge.cpp
  src/results/dock_results.cpp
  src/results/dock_run.cpp
  src/results/dock_tables.cpp
  src/results/durable.cpp
  src/results/energy_report.cpp
  src/results/energy_run.cpp
  src/results/energy_text.cpp
  src/results/extract.cpp
  src/results/frame_table.cpp
  src/results/growing_file.cpp
  src/results/interruption.cpp
  src/results/merge.cpp
  src/results/pose_choice.cpp
  src/results/pose_folders.cpp
  src/results/pose_writer.cpp
  src/results/poses_again.cpp
  src/results/progress.cpp
  src/results/progress_file.cpp
  src/results/ranked_poses.cpp
  src/results/record_text.cpp
  src/results/result_files.cpp
  src/results/row_filter.cpp
  src/results/scan_files.cpp
  src/results/scan_record.cpp
  src/results/scan_results.cpp
  src/results/scan_run.cpp
  src/results/scan_size.cpp
  src/results/selected_rows.cpp
  src/results/status_line.cpp
  src/results/table_rows.cpp
  src/results/text_chunk.cpp
  src/scan/plan_file.cpp
  src/view/base64.cpp
  src/view/chemiscope.cpp
  src/view/encoded_column.cpp
  src/view/first_map.cpp
  src/view/page.cpp
  src/view/pose_table.cpp
  src/view/results_data.cpp
  src/view/shell_word.cpp
  src/view/thinning.cpp
  src/view/trajectory_data.cpp
  src/view/view_data.cpp)
list(TRANSFORM DRAVO_RESULTS_SOURCES PREPEND ${PROJECT_SOURCE_DIR}/)

# The page of `dravo view`, joined from these in this order into one source.
set(DRAVO_PAGE_MODULES
  dom.js
  geometry.js
  numbers.js
  controls.js
  contacts.js
  pair.js
  distances.js
  options.js
  colours.js
  ticks.js
  diagram.js
  curves.js
  list.js
  columns.js
  poses.js
  map_model.js
  map_painting.js
  map.js
  player.js
  panels.js
  projection.js
  camera.js
  svg.js
  canvas.js
  view.js
  picture.js
  texts.js
  saving.js
  scene.js
  theme.js
  page.js)
set(page_parts ${DRAVO_PAGE_MODULES} page.css page.html)
list(TRANSFORM page_parts PREPEND ${PROJECT_SOURCE_DIR}/view/)
set(page_source ${PROJECT_BINARY_DIR}/generated/view/page_text.cpp)
list(JOIN DRAVO_PAGE_MODULES "," page_modules)
add_custom_command(OUTPUT ${page_source}
  COMMAND ${CMAKE_COMMAND} -DFOLDER=${PROJECT_SOURCE_DIR}/view -DMODULES=${page_modules}
    -DOUTPUT=${page_source} -P ${PROJECT_SOURCE_DIR}/cmake/view_page.cmake
  DEPENDS ${PROJECT_SOURCE_DIR}/cmake/view_page.cmake ${page_parts}
  VERBATIM)
add_library(dravo_page STATIC ${page_source})
target_link_libraries(dravo_page PRIVATE dravo_headers)
dravo_part_of_modules(dravo_page)

# dravo_results_library(library): the bytes of scans, on a build of the library.
function(dravo_results_library library)
  add_library(${library}_results STATIC ${DRAVO_RESULTS_SOURCES})
  target_include_directories(${library}_results PRIVATE ${XXHASH_INCLUDE_DIR})
  target_compile_definitions(${library}_results PRIVATE
    $<$<BOOL:${XXHASH_DISPATCHES}>:DRAVO_XXHASH_DISPATCHES>)
  target_link_libraries(${library}_results
    PUBLIC ${library}_protocol nlohmann_json::nlohmann_json
    PRIVATE dravo_page tomlplusplus::tomlplusplus ${XXHASH_LIBRARY})
  target_precompile_headers(${library}_results REUSE_FROM ${library})
  dravo_part_of_modules(${library}_results)
  dravo_join(${library}_results 15)
endfunction()

# dravo_program(library): the program dravo.
function(dravo_program library)
  dravo_results_library(${library})
  # Reading options need not be fast, only compiled fast.
  add_library(dravo_cli OBJECT
    src/cli/bash_completion.cpp
    src/cli/collect.cpp
    src/cli/completion.cpp
    src/cli/contact_report.cpp
    src/cli/convert.cpp
    src/cli/dock.cpp
    src/cli/dock_report.cpp
    src/cli/draw.cpp
    src/cli/drawing_options.cpp
    src/cli/energy.cpp
    src/cli/energy_frames.cpp
    src/cli/energy_options.cpp
    src/cli/energy_scan.cpp
    src/cli/export.cpp
    src/cli/extract.cpp
    src/cli/identify.cpp
    src/cli/identify_frames.cpp
    src/cli/long_output.cpp
    src/cli/main.cpp
    src/cli/merge.cpp
    src/cli/named_results.cpp
    src/cli/offered_values.cpp
    src/cli/opened_page.cpp
    src/cli/output_file.cpp
    src/cli/pair_options.cpp
    src/cli/pair_shown.cpp
    src/cli/place.cpp
    src/cli/pose_options.cpp
    src/cli/poses_shown.cpp
    src/cli/prepare.cpp
    src/cli/shard_option.cpp
    src/cli/scan.cpp
    src/cli/scan_energy.cpp
    src/cli/standard_output.cpp
    src/cli/usage.cpp
    src/cli/view.cpp
    src/cli/words.cpp
    src/cli/zsh_completion.cpp)
  target_link_libraries(dravo_cli PUBLIC dravo_headers CLI11::CLI11 fmt::fmt
    nlohmann_json::nlohmann_json)
  target_compile_options(dravo_cli PRIVATE -O1)
  dravo_join(dravo_cli 16)

  add_executable(dravo-cli)
  set_target_properties(dravo-cli PROPERTIES OUTPUT_NAME dravo)
  target_link_libraries(dravo-cli PRIVATE dravo_cli ${library}_results)
  install(TARGETS dravo-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

  # The program tells shells its options itself.
  set(completions ${PROJECT_BINARY_DIR}/completions)
  file(MAKE_DIRECTORY ${completions})
  add_custom_command(TARGET dravo-cli POST_BUILD
    COMMAND dravo-cli completion bash > ${completions}/dravo.bash
    COMMAND dravo-cli completion zsh > ${completions}/_dravo
    BYPRODUCTS ${completions}/dravo.bash ${completions}/_dravo
    VERBATIM)
endfunction()
