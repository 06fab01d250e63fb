# SPDX-License-Identifier: AGPL-3.0-or-later

# Every target links this. The sound is the same to the bit on every build of one compiler: products and
# sums are never fused, and fast-math stays off.
add_library(velkor_flags INTERFACE)
target_compile_options(velkor_flags INTERFACE -ffp-contract=off)

# What is not reached is not shipped: the static library holds hosting code that only tests call.
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    target_compile_options(velkor_flags INTERFACE -ffunction-sections -fdata-sections)
    target_link_options(velkor_flags INTERFACE -Wl,--gc-sections -Wl,-z,relro,-z,now)
endif()

# Functions and lines, which a stack trace needs, and no word of where it was built; the code itself stays the same.
if(VELKOR_DEBUG_SYMBOLS)
    add_compile_options(-g1 "-ffile-prefix-map=${CMAKE_SOURCE_DIR}=/usr/src/velkor")
endif()

if(VELKOR_SANITIZE)
    add_compile_options(-fsanitize=${VELKOR_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${VELKOR_SANITIZE})

    # A sixth of the time that GNU's linker takes for what the sanitizers make of a dozen test programs.
    find_program(VELKOR_LLD ld.lld)

    if(VELKOR_LLD)
        add_link_options(-fuse-ld=lld)
    endif()
endif()

# For our own files only; the framework's modules are compiled as they come.
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    set(VELKOR_WARNINGS -Wall -Wextra -Wshadow -Wconversion -Werror)

    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        list(APPEND VELKOR_WARNINGS -Wno-restrict)  # warns of std::string's own code (GCC bug 105651)
    endif()
else()
    set(VELKOR_WARNINGS /W4)
endif()

# Compiles the given sources of the current directory with our warnings as errors.
function(velkor_own_sources)
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS "${VELKOR_WARNINGS}")
endfunction()
