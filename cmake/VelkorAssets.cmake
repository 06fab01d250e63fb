# SPDX-License-Identifier: AGPL-3.0-or-later

# The archive of presets that the plug-in carries. Packed by a program of our own: what CMake packs holds the
# builder's user number, umask and time zone.
add_executable(velkor_pack_presets tools/pack_presets.cpp)
velkor_own_sources(tools/pack_presets.cpp)
target_link_libraries(velkor_pack_presets PRIVATE juce::juce_core velkor_flags)
target_compile_definitions(velkor_pack_presets PRIVATE
    JUCE_STANDALONE_APPLICATION=1
    JUCE_USE_CURL=0
    $<IF:$<CONFIG:Debug>,DEBUG=1;_DEBUG=1,NDEBUG=1>)

set(VELKOR_PRESET_DIR "${CMAKE_SOURCE_DIR}/resources/presets")
set(VELKOR_PRESET_ARCHIVE "${CMAKE_BINARY_DIR}/Presets.zip")
file(GLOB VELKOR_PRESETS CONFIGURE_DEPENDS
    "${VELKOR_PRESET_DIR}/Factory/*.zbpreset"
    "${VELKOR_PRESET_DIR}/User/*.zbpreset")

add_custom_command(OUTPUT "${VELKOR_PRESET_ARCHIVE}"
    COMMAND velkor_pack_presets "${VELKOR_PRESET_DIR}" "${VELKOR_PRESET_ARCHIVE}"
    DEPENDS velkor_pack_presets ${VELKOR_PRESETS}
    COMMENT "Packing the presets"
    VERBATIM)

# The symbols are made of the file names alone: no two may be equal.
file(GLOB VELKOR_ARTWORK CONFIGURE_DEPENDS
    "${CMAKE_SOURCE_DIR}/resources/images/*.png"
    "${CMAKE_SOURCE_DIR}/resources/logos/*.svg"
    "${CMAKE_SOURCE_DIR}/resources/fonts/*.otf"
    "${CMAKE_SOURCE_DIR}/resources/fonts/*.ttf")

juce_add_binary_data(velkor_assets SOURCES "${VELKOR_PRESET_ARCHIVE}" ${VELKOR_ARTWORK})
target_link_libraries(velkor_assets PRIVATE velkor_flags)
