# SPDX-License-Identifier: AGPL-3.0-or-later

if(APPLE)
    set(VELKOR_FORMATS VST3 AU Standalone)

    if(EXISTS "${VELKOR_JUCE_DIR}/modules/juce_audio_plugin_client/AAX/SDK")
        list(APPEND VELKOR_FORMATS AAX)
    endif()
elseif(WIN32)
    set(VELKOR_FORMATS VST3 Standalone)
else()
    set(VELKOR_FORMATS VST3 LV2 Standalone)
endif()

set(VELKOR_LV2_URI "urn:com.zubrow.Velkor")

juce_add_plugin(Velkor
    VERSION "${PROJECT_VERSION}"
    FORMATS ${VELKOR_FORMATS}
    PRODUCT_NAME "Velkor"
    DESCRIPTION "${PROJECT_DESCRIPTION}"
    COMPANY_NAME "${VELKOR_MAKER}"
    COMPANY_WEBSITE "${PROJECT_HOMEPAGE_URL}"
    COMPANY_EMAIL "mailto:${VELKOR_SUPPORT}"    # both formats want it as a link
    BUNDLE_ID com.zubrow.Velkor
    PLUGIN_MANUFACTURER_CODE Zbrw
    PLUGIN_CODE Vlkr
    IS_SYNTH FALSE
    IS_MIDI_EFFECT FALSE
    NEEDS_MIDI_INPUT TRUE
    NEEDS_MIDI_OUTPUT FALSE
    EDITOR_WANTS_KEYBOARD_FOCUS TRUE    # the browser walks by arrow keys, and names are typed
    MICROPHONE_PERMISSION_ENABLED TRUE
    MICROPHONE_PERMISSION_TEXT "Velkor processes the sound of the audio input."
    VST3_CATEGORIES Fx Delay
    AU_MAIN_TYPE kAudioUnitType_MusicEffect
    AAX_CATEGORY Delay
    LV2URI "${VELKOR_LV2_URI}"
    COPY_PLUGIN_AFTER_BUILD FALSE)

set(PLUGIN_SOURCES
    source/browser/archive_export.cpp
    source/browser/archive_import.cpp
    source/browser/browser_icons.cpp
    source/browser/browser_look.cpp
    source/browser/browser_strings.cpp
    source/browser/browser_view.cpp
    source/browser/busy_cover.cpp
    source/browser/column_drag.cpp
    source/browser/column_paint.cpp
    source/browser/factory_download.cpp
    source/browser/favorites_file.cpp
    source/browser/preset_adjectives.cpp
    source/browser/preset_listing.cpp
    source/browser/preset_nouns.cpp
    source/browser/zb_PresetManager.cpp
    source/browser/zb_PresetManagerColumn.cpp
    source/browser/zb_PresetManagerDeleteWindow.cpp
    source/browser/zb_PresetManagerDownloadPanel.cpp
    source/browser/zb_PresetManagerSaveWindow.cpp
    source/browser/zb_PresetManager_commands.cpp
    source/browser/zb_PresetManager_download.cpp
    source/browser/zb_PresetManager_favorites.cpp
    source/browser/zb_PresetManager_navigation.cpp
    source/browser/zb_PresetManager_tree.cpp
    source/parameters/build_parameters.cpp
    source/parameters/gain_parameter.cpp
    source/parameters/parameter_binding.cpp
    source/parameters/parameter_ranges.cpp
    source/parameters/parameter_table.cpp
    source/parameters/parameter_text.cpp
    source/parameters/sync_display_parameter.cpp
    source/processor/Lv2AudioProcessor.cpp
    source/processor/NoticingAudioProcessor.cpp
    source/processor/VelkorAudioProcessor.cpp
    source/processor/plugin_entry.cpp
    source/processor/process_block.cpp
    source/processor/song_position.cpp
    source/processor/zb_AudioProcessor.cpp
    source/state/document_guard.cpp
    source/state/document_scanner.cpp
    source/state/file_transfer.cpp
    source/state/first_run_install.cpp
    source/state/folder_listing.cpp
    source/state/folder_lock.cpp
    source/state/folder_snapshot.cpp
    source/state/global_settings.cpp
    source/state/name_cache.cpp
    source/state/name_cache_scanner.cpp
    source/state/parameter_state.cpp
    source/state/preset_document.cpp
    source/state/state_carriers.cpp
    source/state/stored_parameters.cpp
    source/state/unseen_presets.cpp
    source/state/utf8.cpp
    source/state/whole_file.cpp
    source/ui/AboutView.cpp
    source/ui/BitmapMatrix.cpp
    source/ui/BitmapSlider.cpp
    source/ui/MidiLed.cpp
    source/ui/SharedInterface.cpp
    source/ui/Starfield.cpp
    source/ui/ValueLabel.cpp
    source/ui/VelkorAudioProcessorEditor.cpp
    source/ui/VelkorControl.cpp
    source/ui/VelkorPanel.cpp
    source/ui/bitmap_switches.cpp
    source/ui/editor_paint.cpp
    source/ui/image_strip.cpp)

target_sources(Velkor PRIVATE ${PLUGIN_SOURCES})
velkor_juce_sources(${PLUGIN_SOURCES})

target_compile_definitions(Velkor PUBLIC
    JUCE_WEB_BROWSER=0
    JUCE_USE_CURL=1
    JUCE_LOAD_CURL_SYMBOLS_LAZILY=1     # https without a hard dependency of the bundle
    JUCE_MODAL_LOOPS_PERMITTED=1
    JUCE_VST3_CAN_REPLACE_VST2=0
    JUCE_DISABLE_JUCE_VERSION_PRINTING=1    # debug builds would greet on stderr
    JUCE_DISPLAY_SPLASH_SCREEN=0
    JUCE_REPORT_APP_USAGE=0
    JUCE_PLUGINHOST_VST3=1)             # for the host tests; the linker drops it from the plug-in

# The framework copies empty blocks by a memcpy of nothing from nowhere, where the sanitizer would stop.
if(VELKOR_SANITIZE MATCHES "undefined")
    set_source_files_properties("${VELKOR_JUCE_DIR}/modules/juce_core/juce_core.cpp" PROPERTIES
        COMPILE_OPTIONS -fno-sanitize=nonnull-attribute)
endif()

target_link_libraries(Velkor
    PRIVATE velkor_assets velkor_engine velkor_flags juce::juce_audio_utils
    PUBLIC velkor_codecs juce::juce_recommended_config_flags)

if(TARGET Velkor_LV2)
    # Debian's patched settings header sets this to the plug-in's name before the generated one is read.
    target_compile_definitions(Velkor_LV2 PRIVATE "JucePlugin_LV2URI=\"${VELKOR_LV2_URI}\"")

    # The entries of JUCE's LV2 client get other names, and ours are in front of them.
    target_compile_definitions(Velkor_LV2 PRIVATE
        lv2_descriptor=velkor_client_lv2_descriptor lv2ui_descriptor=velkor_client_lv2ui_descriptor)
    set(LV2_SOURCES source/processor/lv2_entry.cpp source/processor/lv2_song_events.cpp)
    target_sources(Velkor_LV2 PRIVATE ${LV2_SOURCES})
    velkor_own_sources(${LV2_SOURCES})
    target_include_directories(Velkor_LV2 PRIVATE "${CMAKE_SOURCE_DIR}/source")

    # JUCE writes the Turtle after each link, all but the licence and a port.
    add_custom_command(TARGET Velkor_LV2 POST_BUILD
        COMMAND "${CMAKE_COMMAND}"
            "-DTURTLE=$<GENEX_EVAL:$<TARGET_PROPERTY:Velkor_LV2,JUCE_PLUGIN_ARTEFACT_FILE>>/dsp.ttl"
            "-DURI=${VELKOR_LV2_URI}"
            -P "${CMAKE_SOURCE_DIR}/cmake/complete_lv2_turtle.cmake"
        VERBATIM)
endif()

# Two helpers load the plug-in after linking and make an instance of it, which works on the user's folders
# like any other. They get a home of their own.
set(VELKOR_SCRATCH_HOME "${CMAKE_BINARY_DIR}/scratch-home")
file(MAKE_DIRECTORY "${VELKOR_SCRATCH_HOME}")

if(UNIX AND NOT APPLE)
    foreach(helper juce_vst3_helper juce_lv2_helper)
        if(TARGET ${helper})
            target_sources(${helper} PRIVATE "${CMAKE_SOURCE_DIR}/cmake/scratch_home.cpp")
            target_compile_definitions(${helper} PRIVATE VELKOR_SCRATCH_HOME="${VELKOR_SCRATCH_HOME}")
        endif()
    endforeach()
endif()

foreach(target Velkor_VST3 Velkor_LV2 Velkor_Standalone)
    if(TARGET ${target})
        target_link_libraries(${target} PRIVATE velkor_flags)
    endif()
endforeach()

# The compiler's flags leave the library templates visible that we instantiate; the host or another plug-in may
# have them too, of another version. Nothing but the format's entries is exported, so nothing can be interposed.
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    foreach(format VST3 LV2)
        set(exports "${CMAKE_SOURCE_DIR}/cmake/exports_${format}.map")
        target_link_options(Velkor_${format} PRIVATE "-Wl,--version-script=${exports}")
        set_property(TARGET Velkor_${format} APPEND PROPERTY LINK_DEPENDS "${exports}")
    endforeach()
endif()

# Links a test, a tool or a benchmark to the very objects that the plug-in ships.
function(velkor_link_plugin target)
    target_link_libraries(${target} PRIVATE Velkor velkor_engine velkor_flags)
    target_include_directories(${target} PRIVATE
        ${CMAKE_SOURCE_DIR}/source $<TARGET_PROPERTY:Velkor,INCLUDE_DIRECTORIES>)
    target_compile_definitions(${target} PRIVATE $<TARGET_PROPERTY:Velkor,COMPILE_DEFINITIONS>)
endfunction()
