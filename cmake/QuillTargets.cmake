# What every target of the tree shares: warnings, sanitizers, and the two kinds of target.

set(QUILL_WARNINGS -Wall -Wextra -Wconversion -Werror)
set(QUILL_SANITIZE_FLAGS "")
if(QUILL_SANITIZE)
    set(QUILL_SANITIZE_FLAGS -fsanitize=${QUILL_SANITIZE} -fno-sanitize-recover=undefined
                             -fno-omit-frame-pointer -g)
    add_compile_options(${QUILL_SANITIZE_FLAGS})
    add_link_options(${QUILL_SANITIZE_FLAGS})
endif()
if(QUILL_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# quill_library(NAME FILES...): one folder's static library. Headers are named from the top of the
# tree ("terminal/screen_buffer.h"), the slice as "windows_ce.h".
function(quill_library name)
    add_library(${name} STATIC ${ARGN})
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/platform)
    target_compile_options(${name} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:${QUILL_WARNINGS}>)
endfunction()

# quill_program(NAME FILES...): an executable built with the same warnings.
function(quill_program name)
    add_executable(${name} ${ARGN})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/platform)
    target_compile_options(${name} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:${QUILL_WARNINGS}>)
endfunction()

# quill_test(NAME LABEL FILES...): a GoogleTest program; each of its tests is a test of its own for
# ctest, carrying the label. Libraries are linked by the caller with target_link_libraries.
function(quill_test name label)
    quill_program(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE GTest::gtest)
    gtest_discover_tests(${name} TEST_PREFIX "${label}." DISCOVERY_TIMEOUT 60
                         PROPERTIES LABELS "${label}" TIMEOUT 120
                         ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()
