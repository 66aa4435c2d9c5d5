# SPDX-License-Identifier: MIT
# Replacements for libraries that are missing for another processor and that the services of the slice
# need: the toolkit's strings, and a registry store without SQLite.
add_library(Qt6::Core INTERFACE IMPORTED GLOBAL)
target_include_directories(Qt6::Core INTERFACE ${CMAKE_SOURCE_DIR}/tests/devices/toolkit)
add_library(SQLite::SQLite3 INTERFACE IMPORTED GLOBAL)
