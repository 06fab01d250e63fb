// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/lv2_song_events.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace
{

template <typename Number>
double readAs (const LV2_Atom& atom) noexcept
{
    Number number;
    std::memcpy (&number, &atom + 1, sizeof (number));
    return static_cast<double> (number);
}

}  // namespace

Lv2SongEvents::Lv2SongEvents (const LV2_URID_Map& map)
    : sequenceType (map.map (map.handle, LV2_ATOM__Sequence)),
      objectType (map.map (map.handle, LV2_ATOM__Object)),
      blankType (map.map (map.handle, LV2_ATOM__Blank)),
      resourceType (map.map (map.handle, LV2_ATOM__Resource)),
      intType (map.map (map.handle, LV2_ATOM__Int)),
      longType (map.map (map.handle, LV2_ATOM__Long)),
      floatType (map.map (map.handle, LV2_ATOM__Float)),
      doubleType (map.map (map.handle, LV2_ATOM__Double)),
      boolType (map.map (map.handle, LV2_ATOM__Bool)),
      position (map.map (map.handle, LV2_TIME__Position)),
      frame (map.map (map.handle, LV2_TIME__frame)), speed (map.map (map.handle, LV2_TIME__speed)),
      tempo (map.map (map.handle, LV2_TIME__beatsPerMinute)),
      beatsPerBar (map.map (map.handle, LV2_TIME__beatsPerBar)),
      beatUnit (map.map (map.handle, LV2_TIME__beatUnit)),
      bar (map.map (map.handle, LV2_TIME__bar)), barBeat (map.map (map.handle, LV2_TIME__barBeat)),
      beat (map.map (map.handle, LV2_TIME__beat))
{
}

std::optional<double> Lv2SongEvents::readNumber (const LV2_Atom& atom) const noexcept
{
    if (atom.size == 4 && (atom.type == intType || atom.type == boolType))
        return readAs<std::int32_t> (atom);

    if (atom.size == 8 && atom.type == longType)
        return readAs<std::int64_t> (atom);

    if (atom.size == 4 && atom.type == floatType)
        return readAs<float> (atom);

    if (atom.size == 8 && atom.type == doubleType)
        return readAs<double> (atom);

    return std::nullopt;
}

void Lv2SongEvents::add (const LV2_Atom_Sequence* sequence) noexcept
{
    if (sequence == nullptr || sequence->atom.type != sequenceType)
        return;

    const auto* const body = &sequence->body;

    for (const auto* item = lv2_atom_sequence_begin (body);
         ! lv2_atom_sequence_is_end (body, sequence->atom.size, item);
         item = lv2_atom_sequence_next (item))
    {
        const auto type = item->body.type;
        const auto* const object = reinterpret_cast<const LV2_Atom_Object*> (&item->body);

        if ((type == objectType || type == blankType || type == resourceType) &&
            object->atom.size >= sizeof (object->body) && object->body.otype == position)
            insert (readEvent (*object, item->time.frames));
    }
}

SongEvent Lv2SongEvents::readEvent (const LV2_Atom_Object& object,
                                    std::int64_t offset) const noexcept
{
    const LV2_URID keys[] = { frame, speed, tempo, beatsPerBar, beatUnit, bar, barBeat, beat };
    std::optional<double> SongEvent::*const members[] = {
        &SongEvent::songFrame, &SongEvent::speed, &SongEvent::tempo,   &SongEvent::beatsPerBar,
        &SongEvent::beatUnit,  &SongEvent::bar,   &SongEvent::barBeat, &SongEvent::beat
    };
    SongEvent event;
    event.offset = static_cast<int> (std::clamp<std::int64_t> (offset, 0, 1 << 30));

    for (const auto* property = lv2_atom_object_begin (&object.body);
         ! lv2_atom_object_is_end (&object.body, object.atom.size, property);
         property = lv2_atom_object_next (property))
    {
        const auto* const key = std::find (std::begin (keys), std::end (keys), property->key);

        if (key != std::end (keys))
            event.*members[key - std::begin (keys)] = readNumber (property->value);
    }

    return event;
}

void Lv2SongEvents::insert (const SongEvent& event) noexcept
{
    numEvents = std::min (numEvents, events.size() - 1);
    auto place = numEvents++;

    for (; place > 0 && events[place - 1].offset > event.offset; --place)
        events[place] = events[place - 1];

    events[place] = event;
}
