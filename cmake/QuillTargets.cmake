# SPDX-License-Identifier: MIT
# What every target of the tree shares: warnings, sanitizers, and the two kinds of target.

set(QUILL_WARNINGS -Wall -Wextra -Wconversion -Werror)
set(QUILL_SANITIZE_FLAGS "")
if(QUILL_SANITIZE)
    set(QUILL_SANITIZE_FLAGS -fsanitize=${QUILL_SANITIZE} -fno-sanitize-recover=undefined
                             -fno-omit-frame-pointer -g)
    add_compile_options(${QUILL_SANITIZE_FLAGS})
    add_link_options(${QUILL_SANITIZE_FLAGS})
endif()
if(WIN32)
    add_link_options(LINKER:--no-insert-timestamp) # the same program has the same bytes
endif()
if(QUILL_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# Where "windows_ce.h" is found: the slice, or the system's own headers by way of the adapter.
set(QUILL_PLATFORM_HEADERS ${CMAKE_SOURCE_DIR}/platform)
if(WIN32)
    set(QUILL_PLATFORM_HEADERS ${CMAKE_SOURCE_DIR}/platform/win32)
endif()

# The system's headers are large: on Windows they are compiled once for all files.
if(WIN32)
    set(EMPTY_SOURCE ${CMAKE_BINARY_DIR}/system_headers.cpp)
    file(CONFIGURE OUTPUT ${EMPTY_SOURCE} CONTENT "// Only the headers count.\n")
    add_library(platform_headers OBJECT ${EMPTY_SOURCE})
    target_precompile_headers(platform_headers PRIVATE ${CMAKE_SOURCE_DIR}/platform/win32/system.h)
    target_compile_options(platform_headers PRIVATE ${QUILL_WARNINGS})
endif()
function(quill_system_headers name)
    if(WIN32)
        target_precompile_headers(${name} REUSE_FROM platform_headers)
    endif()
endfunction()

# The layers, from the ground up: QUILL_LAYERS has their names, QUILL_BELOW_name what each may call.
# The rooms of platform/qt have the latter too.
set(QUILL_LAYER_TABLE ${CMAKE_SOURCE_DIR}/tests/layers.txt)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${QUILL_LAYER_TABLE})
file(STRINGS ${QUILL_LAYER_TABLE} QUILL_LAYER_ROWS REGEX "^[a-z]")
set(QUILL_LAYERS)
foreach(row ${QUILL_LAYER_ROWS})
    if(row MATCHES "^circle ")
        continue()
    endif()
    string(REGEX REPLACE " +" ";" row "${row}")
    list(POP_FRONT row layer folder platform)
    if(layer STREQUAL room)
        set(layer ${folder})
    else()
        list(APPEND QUILL_LAYERS ${layer})
    endif()
    list(REMOVE_ITEM row -)
    list(REVERSE row)
    set(QUILL_BELOW_${layer} ${row})
endforeach()

# quill_library(NAME FILES...): one folder's static library. A layer is linked with those that it may
# call. Headers are named from the top of the tree ("terminal/screen_buffer.h"), the slice as
# "windows_ce.h".
function(quill_library name)
    add_library(${name} STATIC ${ARGN})
    target_link_libraries(${name} PUBLIC ${QUILL_BELOW_${name}})
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR} ${QUILL_PLATFORM_HEADERS})
    target_compile_options(${name} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:${QUILL_WARNINGS}>)
    quill_system_headers(${name})
endfunction()

# What runs a few times a second at most, by the release program: small instead of fast.
# quill_small(FILES...) is for single files of a folder, quill_small_library(NAME) for all of them.
set(QUILL_SMALL $<$<AND:$<CONFIG:Release>,$<COMPILE_LANGUAGE:CXX>>:-Os>)
function(quill_small)
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS "${QUILL_SMALL}")
endfunction()
function(quill_small_library name)
    target_compile_options(${name} PRIVATE ${QUILL_SMALL})
endfunction()

# quill_program(NAME FILES...): an executable built with the same warnings.
function(quill_program name)
    add_executable(${name} ${ARGN})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR} ${QUILL_PLATFORM_HEADERS})
    target_compile_options(${name} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:${QUILL_WARNINGS}>)
    quill_system_headers(${name})
endfunction()

# Code of the tests themselves is neither optimised nor watched by the address sanitizer: that halves
# the time it takes to build, and the program that it drives is watched all the same. The thread
# sanitizer has to see both sides.
set(QUILL_TEST_OPTIONS -O0)
if(QUILL_SANITIZE MATCHES address)
    list(APPEND QUILL_TEST_OPTIONS -fno-sanitize=all)
endif()

# quill_test(NAME LABEL FILES...): a GoogleTest program; each of its tests is a test of its own for
# ctest, carrying the label. Libraries are linked by the caller with target_link_libraries.
function(quill_test name label)
    quill_program(${name} ${ARGN})
    target_compile_options(${name} PRIVATE ${QUILL_TEST_OPTIONS})
    target_link_libraries(${name} PRIVATE GTest::gtest)
    if(QUILL_DEVICE)
        quill_device_test(${name} ${label})
        return()
    endif()
    gtest_discover_tests(${name} TEST_PREFIX "${label}." DISCOVERY_TIMEOUT 60
                         PROPERTIES LABELS "${label}" TIMEOUT 120
                         ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()

# On another processor each program is one test: an emulator takes long to start. The program writes
# down what became of each of its own tests.
function(quill_device_test name label)
    set_property(GLOBAL APPEND PROPERTY QUILL_DEVICE_TESTS ${name})
    if(name IN_LIST QUILL_DEVICE_SHORT)
        list(APPEND label short)
    endif()
    list(GET label 0 prefix)
    add_test(NAME ${prefix}.${name}
             COMMAND ${name} --gtest_brief=1 --gtest_output=xml:${CMAKE_BINARY_DIR}/reports/${name}.xml)
    set_tests_properties(${prefix}.${name} PROPERTIES LABELS "${label}" TIMEOUT 1200 ENVIRONMENT
                         QUILL_JUDGE_ANSWERS=${CMAKE_SOURCE_DIR}/build/devices/judge.answers)
endfunction()

# quill_person_tests(TARGETS...): tests that drive the running program, with the headers that all of
# them read compiled once.
function(quill_person_tests)
    foreach(name ${ARGN})
        target_link_libraries(${name} PRIVATE test_support)
        target_compile_options(${name} PRIVATE ${QUILL_TEST_OPTIONS})
        target_precompile_headers(${name} REUSE_FROM test_support)
    endforeach()
endfunction()

# quill_plain_tests(TARGETS...): tests that do without the toolkit's windows, and share GoogleTest's
# headers in the same way.
function(quill_plain_tests)
    foreach(name ${ARGN})
        target_compile_options(${name} PRIVATE -fPIC)
        target_precompile_headers(${name} REUSE_FROM test_headers)
    endforeach()
endfunction()
