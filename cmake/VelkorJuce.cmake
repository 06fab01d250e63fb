# SPDX-License-Identifier: AGPL-3.0-or-later

if(NOT EXISTS "${VELKOR_JUCE_DIR}/CMakeLists.txt")
    message(FATAL_ERROR "No JUCE source tree in ${VELKOR_JUCE_DIR}: "
        "run scripts/setup, or pass -DVELKOR_JUCE_DIR=<checkout of JUCE 8>")
endif()

file(STRINGS "${VELKOR_JUCE_DIR}/CMakeLists.txt" velkor_juce_project REGEX "^project\\(JUCE VERSION 8\\.")

if(NOT velkor_juce_project)
    message(FATAL_ERROR "Velkor needs JUCE 8; ${VELKOR_JUCE_DIR} holds another version")
endif()

add_subdirectory("${VELKOR_JUCE_DIR}" juce EXCLUDE_FROM_ALL)

# Undefined behaviour is looked for in our own files, the framework's headers in them: in its modules that would cost
# a third of their time.
if(VELKOR_SANITIZE MATCHES "undefined")
    file(GLOB velkor_juce_modules "${VELKOR_JUCE_DIR}/modules/juce_*/*.cpp")
    set_source_files_properties(${velkor_juce_modules} PROPERTIES COMPILE_OPTIONS -fno-sanitize=undefined)
endif()

# Debian's source tree leaves the bundled codecs out; a checkout of the framework brings them.
add_library(velkor_codecs INTERFACE)

if(NOT EXISTS "${VELKOR_JUCE_DIR}/modules/juce_graphics/image_formats/pnglib/png.h")
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(VELKOR_CODECS REQUIRED IMPORTED_TARGET
        zlib libpng libjpeg flac ogg vorbis vorbisenc vorbisfile)
    target_link_libraries(velkor_codecs INTERFACE PkgConfig::VELKOR_CODECS)
endif()
