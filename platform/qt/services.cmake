# SPDX-License-Identifier: MIT
# What of the slice needs no window: registry, sockets, remote access, threads, time, files, text
# and the reading of resources.
if(QUILL_DEVICE)
    include(${CMAKE_SOURCE_DIR}/tests/devices/stand_ins.cmake)
else()
    find_package(Qt6 6.2 REQUIRED COMPONENTS Core)
    find_package(SQLite3 REQUIRED)
endif()
find_package(Threads REQUIRED)

set(SERVICES export_settings files kernel posix_sockets registry registry_store remote_access
    resources run_values text winsock)
list(TRANSFORM SERVICES PREPEND services/)
list(TRANSFORM SERVICES APPEND .cpp)
quill_library(platform_services ${SERVICES})
# These work at the start, at the end and when a person asks.
quill_small(services/export_settings.cpp services/files.cpp services/run_values.cpp services/resources.cpp
    services/registry.cpp services/registry_store.cpp services/remote_access.cpp)
# Its strings are short: -O3 would unroll their loops.
set_source_files_properties(services/text.cpp PROPERTIES COMPILE_OPTIONS "$<$<CONFIG:Release>:-O2>")
target_link_libraries(platform_services PUBLIC Qt6::Core PRIVATE SQLite::SQLite3 Threads::Threads)
