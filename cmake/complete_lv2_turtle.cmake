# SPDX-License-Identifier: AGPL-3.0-or-later

# Run with -P after JUCE has written TURTLE: adds to it the licence of the plug-in URI, and a port for the transport.
# Ardour says nothing of the transport through a port that takes MIDI too if the track has no MIDI. JUCE numbers the
# control port behind the 4 audio ports and 4 ports more behind that; lv2_entry.cpp counts on it.
file(READ "${TURTLE}" turtle)
string(REGEX MATCHALL "lv2:index [0-9]+" ports "${turtle}")
list(LENGTH ports count)

if(NOT count EQUAL 9 OR NOT turtle MATCHES "lv2:index 4 ;\n[^]]*lv2:symbol \"in\"")
    message(FATAL_ERROR "${TURTLE} has other ports than expected")
endif()

file(APPEND "${TURTLE}" "
<${URI}>
\tlv2:port [
\t\ta lv2:InputPort , atom:AtomPort ;
\t\tatom:bufferType atom:Sequence ;
\t\tatom:supports time:Position ;
\t\tlv2:portProperty lv2:connectionOptional ;
\t\tlv2:index 9 ;
\t\tlv2:symbol \"transport\" ;
\t\tlv2:name \"Transport\" ;
\t] ;
\tdoap:license <https://spdx.org/licenses/AGPL-3.0-or-later> .
")
