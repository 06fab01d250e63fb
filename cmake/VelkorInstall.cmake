# SPDX-License-Identifier: AGPL-3.0-or-later

# What an installation holds, as a tree below a prefix. "velkor" is what both packages and `cmake --install` give,
# "manual" what both packages hold beside it, "debian" and "archive" are for one of the packages.
if(NOT CMAKE_SYSTEM_NAME STREQUAL "Linux" OR NOT VELKOR_BUILD_TOOLS)
    return()
endif()

set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(VELKOR_PACKAGING "${CMAKE_SOURCE_DIR}/packaging")
set(VELKOR_PACKAGING_OUT "${CMAKE_BINARY_DIR}/packaging")
set(VELKOR_DEBIAN_REVISION 1)

# Of the documents; SOURCE_DATE_EPOCH sets it.
string(TIMESTAMP VELKOR_DATE "%Y-%m-%d" UTC)
string(TIMESTAMP VELKOR_DATE_RFC "%a, %d %b %Y %H:%M:%S +0000" UTC)

# --- documents ------------------------------------------------------------------------------------

# Reads a licence in the form that Debian's copyright file wants: indented, an empty line as a full stop.
function(velkor_read_licence variable file start)
    file(READ "${file}" text)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
    string(FIND "${text}" "${start}" begin)
    string(SUBSTRING "${text}" ${begin} -1 text)
    string(STRIP "${text}" text)
    string(REGEX REPLACE "[ \t]*\n" "\n " text " ${text}")
    string(REGEX REPLACE "\n (\n )+" "\n .\n " text "${text}")
    set(${variable} "${text}" PARENT_SCOPE)
endfunction()

velkor_read_licence(VELKOR_AGPL "${CMAKE_SOURCE_DIR}/LICENSE" "GNU AFFERO GENERAL PUBLIC LICENSE")
velkor_read_licence(VELKOR_OFL "${CMAKE_SOURCE_DIR}/resources/fonts/Dosis-OFL.txt" "SIL OPEN FONT LICENSE Version")

foreach(document com.zubrow.Velkor.metainfo.xml copyright debian/changelog man/velkor.1 man/velkor-render.1)
    configure_file("${VELKOR_PACKAGING}/${document}.in" "${VELKOR_PACKAGING_OUT}/${document}" @ONLY)
endforeach()

# Compresses a document to NAME.gz without its name and time, as Debian wants it.
function(velkor_compress source name)
    set(compressed "${VELKOR_PACKAGING_OUT}/${name}.gz")
    add_custom_command(OUTPUT "${compressed}"
        COMMAND sh -c "gzip -9nc \"$1\" >\"$2\"" sh "${source}" "${compressed}"
        DEPENDS "${source}"
        VERBATIM)
    set_property(GLOBAL APPEND PROPERTY VELKOR_COMPRESSED "${compressed}")
endfunction()

velkor_compress("${CMAKE_SOURCE_DIR}/CHANGELOG.md" changelog)
velkor_compress("${VELKOR_PACKAGING_OUT}/debian/changelog" changelog.Debian)
velkor_compress("${VELKOR_PACKAGING_OUT}/man/velkor.1" velkor.1)
velkor_compress("${VELKOR_PACKAGING_OUT}/man/velkor-render.1" velkor-render.1)
get_property(compressed GLOBAL PROPERTY VELKOR_COMPRESSED)
add_custom_target(velkor_documents ALL DEPENDS ${compressed})

# The page is made where its presets and pictures stand, so it depends on all that docs holds.
if(VELKOR_BUILD_MANUAL)
    set(manual "${VELKOR_PACKAGING_OUT}/manual.html")
    file(GLOB_RECURSE pages CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/docs/*")
    add_custom_command(OUTPUT "${manual}"
        COMMAND "${CMAKE_SOURCE_DIR}/scripts/make-manual" "${manual}"
        DEPENDS "${CMAKE_SOURCE_DIR}/scripts/make-manual" ${pages}
        VERBATIM)
    add_custom_target(velkor_manual DEPENDS "${manual}")
    add_dependencies(velkor_documents velkor_manual)
    install(FILES "${manual}" DESTINATION share/doc/velkor COMPONENT manual)
    install(DIRECTORY "${CMAKE_SOURCE_DIR}/docs/patches" DESTINATION share/doc/velkor COMPONENT manual)
endif()

# --- programs and plug-ins --------------------------------------------------------------------------

set(VELKOR_VST3 "$<GENEX_EVAL:$<TARGET_PROPERTY:Velkor_VST3,JUCE_PLUGIN_ARTEFACT_FILE>>")
set(VELKOR_LV2 "$<GENEX_EVAL:$<TARGET_PROPERTY:Velkor_LV2,JUCE_PLUGIN_ARTEFACT_FILE>>")

# A library of a bundle is no program: no file in there is executable.
set(bundle_permissions
    FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ
    DIRECTORY_PERMISSIONS ${CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
install(DIRECTORY "${VELKOR_VST3}" DESTINATION lib/vst3 COMPONENT velkor ${bundle_permissions})
install(DIRECTORY "${VELKOR_LV2}" DESTINATION lib/lv2 COMPONENT velkor ${bundle_permissions})
install(PROGRAMS "$<TARGET_FILE:Velkor_Standalone>" DESTINATION bin RENAME velkor COMPONENT velkor)
install(PROGRAMS "$<TARGET_FILE:velkor-render>" DESTINATION bin COMPONENT velkor)

# CMake strips targets that it installs by name; a bundle and a renamed program are none to it. The compilers'
# names go in any case.
install(CODE "
    set(root \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}\")
    file(GLOB_RECURSE binaries
        \"\${root}/lib/vst3/Velkor.vst3/*.so\" \"\${root}/lib/lv2/Velkor.lv2/*.so\" \"\${root}/bin/velkor*\")

    foreach(binary IN LISTS binaries)
        if(CMAKE_INSTALL_DO_STRIP)
            set(command \"${CMAKE_STRIP}\" --strip-unneeded)
        else()
            set(command \"${CMAKE_OBJCOPY}\")
        endif()

        execute_process(COMMAND \${command} --remove-section=.comment \"\${binary}\" COMMAND_ERROR_IS_FATAL ANY)
    endforeach()" COMPONENT velkor)

# --- the rest ---------------------------------------------------------------------------------------

install(FILES "${VELKOR_PACKAGING_OUT}/velkor.1.gz" "${VELKOR_PACKAGING_OUT}/velkor-render.1.gz"
    DESTINATION share/man/man1 COMPONENT velkor)
install(FILES "${VELKOR_PACKAGING_OUT}/copyright" "${VELKOR_PACKAGING_OUT}/changelog.gz"
    DESTINATION share/doc/velkor COMPONENT velkor)
install(FILES "${VELKOR_PACKAGING}/velkor.desktop" DESTINATION share/applications COMPONENT velkor)
install(FILES "${VELKOR_PACKAGING_OUT}/com.zubrow.Velkor.metainfo.xml"
    DESTINATION share/metainfo COMPONENT velkor)
install(FILES "${VELKOR_PACKAGING}/icons/velkor.svg"
    DESTINATION share/icons/hicolor/scalable/apps COMPONENT velkor)

foreach(size 48 128 256)
    install(FILES "${VELKOR_PACKAGING}/icons/velkor-${size}.png"
        DESTINATION share/icons/hicolor/${size}x${size}/apps RENAME velkor.png COMPONENT velkor)
endforeach()

install(FILES "${VELKOR_PACKAGING_OUT}/changelog.Debian.gz" DESTINATION share/doc/velkor COMPONENT debian)
install(FILES "${VELKOR_PACKAGING}/debian/lintian-overrides"
    DESTINATION share/lintian/overrides RENAME velkor COMPONENT debian)
install(FILES "${VELKOR_PACKAGING}/debian/doc-base"
    DESTINATION share/doc-base RENAME velkor COMPONENT debian)

install(PROGRAMS "${VELKOR_PACKAGING}/archive/install" DESTINATION . COMPONENT archive)
install(FILES "${VELKOR_PACKAGING}/archive/README" DESTINATION . COMPONENT archive)
install(FILES "${CMAKE_SOURCE_DIR}/resources/fonts/RobotoCondensed-Apache-2.0.txt"
    DESTINATION share/doc/velkor RENAME Apache-2.0.txt COMPONENT archive)
