# What of the slice needs no window: registry, sockets, remote access, threads, time, files, text
# and the reading of resources.
if(QUILL_DEVICE)
    include(${CMAKE_SOURCE_DIR}/tests/devices/stand_ins.cmake)
else()
    find_package(Qt6 6.2 REQUIRED COMPONENTS Core)
    find_package(SQLite3 REQUIRED)
endif()
find_package(Threads REQUIRED)

quill_library(platform_services
    accelerators.cpp address_lookup.cpp bitmaps.cpp clock.cpp device_root.cpp dial_log.cpp dialog_template.cpp files.cpp
    formatted_text.cpp handles.cpp host_names.cpp local_memory.cpp local_socket.cpp posix_sockets.cpp ras.cpp registry.cpp
    registry_store.cpp resources.cpp strings.cpp testing_services.cpp wide_text.cpp winsock.cpp
    winsock_errors.cpp)
target_link_libraries(platform_services PUBLIC Qt6::Core PRIVATE SQLite::SQLite3 Threads::Threads)
