# SPDX-License-Identifier: AGPL-3.0-or-later

# Plain records and functions on juce_core alone: can be tested, fuzzed and timed without the rest.
set(ENGINE_SOURCES
    source/engine/delay_fad.cpp
    source/engine/delay_pair.cpp
    source/engine/engine.cpp
    source/engine/engine_controls.cpp
    source/engine/engine_globals.cpp
    source/engine/engine_tick.cpp
    source/engine/envelope_follower.cpp
    source/engine/filter_multimode.cpp
    source/engine/finite_values.cpp
    source/engine/gen_LFO.cpp
    source/engine/midi_sources.cpp
    source/engine/mod_router.cpp
    source/engine/ramp_lookup.cpp
    source/engine/router_panner.cpp
    source/engine/routing_plan.cpp
    source/engine/signal_matrix.cpp
    source/engine/stage_plan.cpp)

add_library(velkor_engine STATIC ${ENGINE_SOURCES})
velkor_own_sources(${ENGINE_SOURCES})
target_include_directories(velkor_engine
    PUBLIC ${CMAKE_SOURCE_DIR}/source
    PRIVATE $<TARGET_PROPERTY:juce::juce_core,INTERFACE_INCLUDE_DIRECTORIES>)
target_compile_definitions(velkor_engine PRIVATE
    $<TARGET_PROPERTY:juce::juce_core,INTERFACE_COMPILE_DEFINITIONS>
    JUCE_GLOBAL_MODULE_SETTINGS_INCLUDED=1
    $<IF:$<CONFIG:Debug>,DEBUG=1,NDEBUG=1>)
target_link_libraries(velkor_engine PRIVATE velkor_flags)
