# SPDX-License-Identifier: AGPL-3.0-or-later

# `cpack -G DEB` and `cpack -G TGZ` in a build folder with VELKOR_DEBUG_SYMBOLS on; scripts/package runs both.
if(NOT CMAKE_SYSTEM_NAME STREQUAL "Linux" OR NOT VELKOR_BUILD_TOOLS)
    return()
endif()

set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_SOURCE_DIR}/cmake/cpack_generator.cmake")
set(CPACK_PACKAGE_NAME velkor)
set(CPACK_PACKAGE_VENDOR "${VELKOR_MAKER}")
set(CPACK_PACKAGE_CONTACT "${VELKOR_MAKER} <${VELKOR_SUPPORT}>")
set(CPACK_PACKAGE_FILE_NAME "velkor-${PROJECT_VERSION}-linux-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_PACKAGE_DESCRIPTION "Velkor is a stereo audio effect: two tape-like delay lines, two morphing
multimode filters and two saturators are free nodes, and a matrix says what
feeds what. Two LFOs, an envelope follower and three MIDI sources move delay
speeds, filters, pans and levels through a second matrix.
.
This package holds the VST3 and LV2 plug-ins, a program of its own, and
velkor-render, which takes sound files through the effect.")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS ${CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_COMPONENTS_ALL velkor)    # each generator adds its own
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PACKAGE_NAME velkor)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_RELEASE "${VELKOR_DEBIAN_REVISION}")
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

# Opened by name when a window is, so the linker knows nothing of them.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libx11-6, libxcursor1, libxext6, libxinerama1, libxrandr2, libxrender1")

# Not recommended: on a bare system they bring some 490 packages. Without a chooser program the plug-in
# shows JUCE's own, and every desktop has xdg-utils.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "xdg-utils, zenity | kdialog")

include(CPack)
