# SPDX-License-Identifier: AGPL-3.0-or-later

# Run with -P after the framework has written TURTLE: adds the licence of the plug-in URI to it.
file(APPEND "${TURTLE}" "
<${URI}>
\tdoap:license <https://spdx.org/licenses/AGPL-3.0-or-later> .
")
