# SPDX-License-Identifier: AGPL-3.0-or-later

# Reading the framework's headers takes two thirds of the time of compiling a file of ours, so GCC reads them
# once per build tree. The sources still include what they use: the linter compiles them without this.

set(VELKOR_HEADERS_STEM "${CMAKE_BINARY_DIR}/CMakeFiles/velkor_headers.dir/cmake_pch.hxx")

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_GENERATOR STREQUAL "Ninja")
    file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/velkor_headers.cpp" CONTENT "")
    add_library(velkor_headers OBJECT EXCLUDE_FROM_ALL "${CMAKE_BINARY_DIR}/velkor_headers.cpp")
    target_include_directories(velkor_headers PRIVATE $<TARGET_PROPERTY:Velkor,INCLUDE_DIRECTORIES>)
    target_compile_definitions(velkor_headers PRIVATE $<TARGET_PROPERTY:Velkor,COMPILE_DEFINITIONS>)
    target_link_libraries(velkor_headers PRIVATE velkor_flags)
    target_compile_options(velkor_headers PRIVATE $<TARGET_PROPERTY:Velkor,COMPILE_OPTIONS>)
    target_precompile_headers(velkor_headers PRIVATE
        <juce_audio_formats/juce_audio_formats.h>
        <juce_audio_processors/juce_audio_processors.h>
        <algorithm>
        <array>
        <functional>
        <map>
        <string>
        <vector>)
    set(VELKOR_HEADERS_FILE "${VELKOR_HEADERS_STEM}.gch")
endif()

# Compiles the given sources of the current directory, which build on the whole framework, with our warnings
# and the headers that are read already.
function(velkor_juce_sources)
    velkor_own_sources(${ARGN})

    if(VELKOR_HEADERS_FILE)
        # GCC forgets that a precompiled header was a system's: its own std::string then warns of itself.
        set(library_warnings -Wno-array-bounds -Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread)
        set_source_files_properties(${ARGN} PROPERTIES
            COMPILE_OPTIONS "${VELKOR_WARNINGS};${library_warnings};-fPIC;-Winvalid-pch;-include;${VELKOR_HEADERS_STEM}"
            OBJECT_DEPENDS "${VELKOR_HEADERS_FILE}")
    endif()
endfunction()
