# SPDX-License-Identifier: MIT
# What a packaged program is built with, so that an error in it is harder to use for an attack. The
# package's tests look for each of these in the finished program.
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
add_compile_options(-fstack-protector-strong -fstack-clash-protection -Wformat -Werror=format-security)
add_compile_definitions($<$<NOT:$<CONFIG:Debug>>:_FORTIFY_SOURCE=2>)
add_link_options(-pie LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack LINKER:--as-needed)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|i.86")
    add_compile_options(-fcf-protection)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
    add_compile_options(-mbranch-protection=standard)
endif()

# The same program wherever the tree lies.
add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}=. -ffile-prefix-map=${CMAKE_BINARY_DIR}=build)
