# Installs the package where the interpreter of the prefix finds it.
execute_process(COMMAND ${interpreter} ${find_folder} ${CMAKE_INSTALL_PREFIX}
  OUTPUT_VARIABLE platlib OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
file(INSTALL ${package} DESTINATION ${platlib} USE_SOURCE_PERMISSIONS
  PATTERN __pycache__ EXCLUDE PATTERN .mypy_cache EXCLUDE)
