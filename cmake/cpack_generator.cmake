# SPDX-License-Identifier: AGPL-3.0-or-later

# Read by cpack once for each generator, after all other settings.
if(CPACK_GENERATOR STREQUAL "DEB")
    list(APPEND CPACK_COMPONENTS_ALL manual debian)
    set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
else()
    list(APPEND CPACK_COMPONENTS_ALL manual archive)
    set(CPACK_PACKAGING_INSTALL_PREFIX /)
    set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
    set(CPACK_STRIP_FILES ON)
endif()
