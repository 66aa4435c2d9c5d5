# SPDX-License-Identifier: MIT
# What the services of the slice need of libraries that are not there for another processor: the
# toolkit's text, and a store of the registry that does without SQLite.
add_library(Qt6::Core INTERFACE IMPORTED GLOBAL)
target_include_directories(Qt6::Core INTERFACE ${CMAKE_SOURCE_DIR}/tests/devices/toolkit)
add_library(SQLite::SQLite3 INTERFACE IMPORTED GLOBAL)
