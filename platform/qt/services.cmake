# What of the slice needs no window: registry, sockets, remote access, threads, time, files, text
# and the reading of resources.
find_package(Qt6 6.2 REQUIRED COMPONENTS Core)
find_package(SQLite3 REQUIRED)
find_package(Threads REQUIRED)

set(SERVICES accelerators address_lookup bitmaps clock device_root dial_log dialog_template files
    formatted_text handles host_names local_memory local_socket menu_resource posix_sockets ras registry
    registry_store resources strings wide_text winsock winsock_errors)
list(TRANSFORM SERVICES PREPEND services/)
list(TRANSFORM SERVICES APPEND .cpp)
quill_library(platform_services ${SERVICES} testing_services.cpp)
target_link_libraries(platform_services PUBLIC Qt6::Core PRIVATE SQLite::SQLite3 Threads::Threads)
