# SPDX-License-Identifier: AGPL-3.0-or-later
"""The panel's background: the face, its plates, the faders' slots and scales, the wells of the grids, every caption.
What belongs to a control stands where the placement table puts that control; only plates and titles have numbers of
their own, below."""

from .flow import flow, signature
from .layout import LayoutError
from .scales import marks, response
from .style import (BAND, CAPTION, DARK1, DEEP_BOTTOM, DEEP_TOP, FACE_BOTTOM, FACE_TOP, INK, INK_DIM, INK_LIGHT,
                    INK_SOFT, LIGHT1, LIGHT2, PLATE_BOTTOM, PLATE_TOP, RADIUS_PLATE, RADIUS_WELL, SMALL, TICK, TITLE,
                    WELL, WHITE, document, gradient, line, mix, n, rect, tag, text)

LIP = mix(DARK1, LIGHT2, 0.35)  # the lit lower edge of a slot or well on a deep plate

# x, y, width, height, deep, title, number, baseline of the title
PLATES = [
    (25, 22, 115, 184, False, "DELAY", "1", 39.5),
    (145, 22, 115, 184, False, "DELAY", "2", 39.5),
    (25, 214, 235, 62, False, "ENVELOPE FOLLOWER", "", 232),
    (25, 284, 115, 156, False, "LFO", "1", 302),
    (145, 284, 115, 156, False, "LFO", "2", 302),
    (275, 22, 115, 136, False, "FILTER", "1", 39.5),
    (395, 22, 115, 136, False, "FILTER", "2", 39.5),
    (275, 166, 115, 70, False, "SATURATION", "1", 184),
    (395, 166, 115, 70, False, "SATURATION", "2", 184),
    (525, 22, 200, 214, False, "INPUT & MIX", "", 39.5),
    (275, 244, 235, 196, True, "MODULATION", "", 260.5),
    (525, 244, 200, 196, True, "SIGNAL", "", 260.5),
]
TITLE_INSET = 12

FADER_CAPTIONS = {
    "Delay1Time": "TIME", "Delay1Fine": "FINE SPEED", "Delay1Feedback": "FEEDBACK",
    "Delay2Time": "TIME", "Delay2Fine": "FINE SPEED", "Delay2Feedback": "FEEDBACK",
    "EnvSensitivity": "SENSITIVITY", "LFO1Rate": "RATE", "LFO1Skew": "SKEW", "LFO2Rate": "RATE", "LFO2Skew": "SKEW",
    "Filter1Freq": "FREQ", "Filter1Reso": "RESONANCE", "Filter1Mode": "MODE",
    "Filter2Freq": "FREQ", "Filter2Reso": "RESONANCE", "Filter2Mode": "MODE",
    "Saturation1": "DRIVE", "Saturation2": "DRIVE",
    "InputLevel": "INPUT", "WetLevel": "WET", "DryLevel": "DRY",
    "Output1Level": "LEVEL 1", "Output2Level": "LEVEL 2",
}

MOD_COLUMNS = ("ENVELOPE", "LFO 1", "LFO 2", "MIDI NOTE", "MIDI GATE", "MOD WHEEL")
MOD_ROWS = {
    "Delay1Mod": "DELAY 1 SPEED", "Delay2Mod": "DELAY 2 SPEED", "LFO1Mod": "LFO 1 RATE", "LFO2Mod": "LFO 2 RATE",
    "Filter1Mod": "FILTER 1 FREQ", "Filter2Mod": "FILTER 2 FREQ", "Pan1Mod": "PAN 1", "Pan2Mod": "PAN 2",
    "Level1Mod": "LEVEL 1", "Level2Mod": "LEVEL 2",
}
SIGNAL_COLUMNS = ("INPUT L", "INPUT R", "DELAY 1", "DELAY 2", "FILTER 1", "FILTER 2", "SAT 1", "SAT 2")
SIGNAL_ROWS = (("DELAY IN",), ("DELAY", "FEEDBACK"), ("FILTER IN",), ("SAT IN",), ("OUTPUT",))
ROWS = 10

LARGE_HANDLE, SMALL_HANDLE = 16, 12  # widths on the panel, that is, what a fader's travel is short of its width


def plates():
    out = []
    for x, y, width, height, deep, title, number, baseline in PLATES:
        out.append(rect(x, y + 1.5, width, height, RADIUS_PLATE, DARK1, fill_opacity=0.34, filter="url(#soft)"))
        out.append(rect(x, y, width, height, RADIUS_PLATE, "url(#deep)" if deep else "url(#plate)"))
        out.append(rect(x + 0.7, y + 0.7, width - 1.4, height - 1.4, RADIUS_PLATE - 0.7, "none",
                        stroke=f"url(#{'deepedge' if deep else 'edge'})", stroke_width=1.4))
        ink = INK_LIGHT if deep else INK
        if deep:
            out.append(text("COLUMN → ROW", x + width - TITLE_INSET, baseline, INK_DIM, SMALL, "end",
                            spacing=0.5))
        out.append(text(title, x + TITLE_INSET, baseline, ink, TITLE, spacing=0.9))
        if number:
            left = x + width - TITLE_INSET - 13
            out.append(rect(left, baseline - 11.2, 13, 13, 3, INK))
            out.append(text(number, left + 6.5, baseline - 1.1, PLATE_TOP, 10.5, "middle", spacing=0))
    return out


def slot(row, middle, handle, deep=False):
    """A fader's slot: as long as the handle's centre travels, and a little more."""
    x, width, high = row.x + handle / 2 - 5, row.width - handle + 10, 5.0 if handle == LARGE_HANDLE else 4.0
    top = middle - high / 2
    return [rect(x, top + 1.3, width, high, high / 2, LIP if deep else WHITE, fill_opacity=1 if deep else 0.85),
            rect(x, top, width, high, high / 2, WELL if deep else "url(#slot)")]


def scale(row, handle):
    """The marks above a slot; the long dark ones are those that a hand looks for."""
    minor, major = marks(row.parameter)
    out = []
    for position in minor:
        x = row.x + handle / 2 + position * (row.width - handle)
        out.append(line(x, row.y + 0.5, x, row.y + 3.6, TICK, 1.3))
    for position in major:
        x = row.x + handle / 2 + position * (row.width - handle)
        out.append(line(x, row.y - 0.9, x, row.y + 3.6, INK, 1.8))
    return out


def faders(layout):
    out = []
    for row in layout.arrays["kBigSliders"]:
        out += scale(row, LARGE_HANDLE) + slot(row, row.cy, LARGE_HANDLE)
    values = {row.parameter: row for row in layout.arrays["kLabels"]}
    named = {"Pan1", "Pan2", *FADER_CAPTIONS}
    if strangers := {row.parameter for row in layout.arrays["kBigSliders"]} - named:
        raise LayoutError(f"no caption for {', '.join(sorted(strangers))}")
    for parameter, words in FADER_CAPTIONS.items():
        fader, value = layout.by("kBigSliders", parameter), values[parameter]
        out.append(text(words, fader.x + 2.5, value.cy + 3.4, INK))
    for number in "12":
        row = layout.by("kBigSliders", f"Pan{number}")
        base = values[f"Output{number}Level"].cy + 3.4
        out.append(text("L", row.x + 3, base, INK_SOFT, SMALL))
        out.append(text(f"PAN {number}", row.cx, base, INK, anchor="middle"))
        out.append(text("R", row.right - 3, base, INK_SOFT, SMALL, "end"))
        out += responses(layout.by("kBigSliders", f"Filter{number}Mode"))
    for parameter, words in (("EnvAttack", "ATTACK"), ("EnvDecay", "DECAY")):
        row = layout.by("kSmallSliders", parameter)
        out += slot(row, row.cy, SMALL_HANDLE)
        out.append(text(words, row.x - 4, row.cy + 3.4, INK, anchor="end"))
    return out


def responses(row):
    """The filter's seven responses over the Mode fader, each a small curve above its mark."""
    out, wide, high = [], 9.4, 6.6
    for step in range(7):
        levels = response(step / 6)
        left = row.x + LARGE_HANDLE / 2 + step / 6 * (row.width - LARGE_HANDLE) - wide / 2
        points = [(left + wide * index / (len(levels) - 1), row.y - 10.5 + high * min(max((2 - level) / 16, 0), 1))
                  for index, level in enumerate(levels)]
        out.append(tag("path", d="M" + "L".join(f"{n(x)} {n(y)}" for x, y in points), fill="none",
                       stroke=INK if step % 2 == 0 else INK_SOFT, stroke_width=1.3, stroke_linecap="round",
                       stroke_linejoin="round"))
    return out


def bands(left, right, grid, bend=None):
    """Alternating bands, one to a pair of rows. With a bend they slide down to the depth faders on the way."""
    out, high = [], grid.height / ROWS
    for pair in range(0, ROWS // 2, 2):
        top, bottom = grid.y + pair * 2 * high, grid.y + (pair * 2 + 2) * high
        if bend:
            x1, x2, drop = bend
            middle = (x1 + x2) / 2
            d = (f"M{n(left)} {n(top)}H{n(x1)}C{n(middle)} {n(top)} {n(middle)} {n(top + drop)} {n(x2)} {n(top + drop)}"
                 f"H{n(right)}V{n(bottom + drop)}H{n(x2)}C{n(middle)} {n(bottom + drop)} {n(middle)} {n(bottom)} "
                 f"{n(x1)} {n(bottom)}H{n(left)}Z")
        else:
            d = f"M{n(left)} {n(top)}H{n(right)}V{n(bottom)}H{n(left)}Z"
        out.append(tag("path", d=d, fill=BAND))
    return out


def well(grid, columns, pairs):
    """The dark bed of a grid, a little wider than its cells, with a rule between groups of columns."""
    x, y, width, height = grid.x - 3, grid.y - 2.5, grid.width + 6, grid.height + 5
    out = [rect(x, y + 1.3, width, height, RADIUS_WELL, LIP), rect(x, y, width, height, RADIUS_WELL, WELL)]
    high = grid.height / ROWS
    for pair in range(0, ROWS // 2, 2):
        out.append(rect(grid.x - 1, grid.y + pair * 2 * high, grid.width + 2, 2 * high, 1.5, mix(WELL, LIGHT2, 0.13)))
    for column in pairs:
        line_x = grid.x + column * grid.width / columns
        out.append(line(line_x, y + 2, line_x, y + height - 2, mix(WELL, LIGHT2, 0.42), 1.2))
    return out


def column_captions(grid, names):
    out, wide = [], grid.width / len(names)
    for column, words in enumerate(names):
        x, y = grid.x + (column + 0.5) * wide + 2.4, grid.y - 6.5
        out.append(text(words, 0, 0, INK_LIGHT, 9.3, transform=f"translate({n(x)} {n(y)}) rotate(-45)"))
    return out


def modulation(layout):
    grid = layout.areas["kModMatrix"]
    depths = [layout.by("kSmallSliders", parameter) for parameter in MOD_ROWS]
    drops = {fader.cy - grid.y - (row + 0.5) * grid.height / ROWS for row, fader in enumerate(depths)}
    if len(drops) != 1:
        raise LayoutError(f"the depth faders do not follow the rows of the modulation grid: they are off by {drops}")
    drop = drops.pop()
    out = bands(grid.x - 10, depths[0].right + 3, grid, (grid.right + 8, depths[0].x - 6, drop))
    out += well(grid, len(MOD_COLUMNS), (1, 3)) + column_captions(grid, MOD_COLUMNS)
    centre = depths[0].cx
    out.append(line(centre, depths[0].y - 3, centre, depths[-1].bottom + 2, mix(DARK1, LIGHT2, 0.75), 1.3))
    for fader, words in zip(depths, MOD_ROWS.values()):
        out += slot(fader, fader.cy, SMALL_HANDLE, deep=True)
        out.append(text(words, grid.right + 7, fader.cy + 2.6, INK_LIGHT, CAPTION, spacing=0.25))
    base = depths[0].y - 5.5
    out.append(text("DEPTH", centre, base, INK_LIGHT, SMALL, "middle"))
    out.append(text("−", depths[0].x + 6, base, INK_DIM, SMALL + 1, "middle", spacing=0))
    out.append(text("+", depths[0].right - 6, base, INK_DIM, SMALL + 1, "middle", spacing=0))
    return out


def signal(layout):
    grid = layout.areas["kSignalMatrix"]
    high = grid.height / ROWS
    out = bands(grid.x - 8, grid.right + 66, grid)
    out += well(grid, len(SIGNAL_COLUMNS), (2, 4, 6)) + column_captions(grid, SIGNAL_COLUMNS)
    for row in range(ROWS):
        out.append(text(str(row % 2 + 1), grid.right + 9.5, grid.y + (row + 0.5) * high + 3.3, INK_LIGHT, CAPTION,
                        "middle", spacing=0))
    for pair, words in enumerate(SIGNAL_ROWS):
        middle = grid.y + (pair * 2 + 1) * high
        for index, word in enumerate(words):
            base = middle + 3.2 + (index - (len(words) - 1) / 2) * 9.4
            size = CAPTION if len(words) == 1 else SMALL
            out.append(text(word, grid.right + 18, base, INK_LIGHT, size, spacing=0.15))
    return out


def sections(layout):
    """Words that belong to keys: over the multipliers, the phase keys and the outputs."""
    phase, lamp = layout.by("kToggles", "PhaseInvert1"), layout.areas["kMidiLed"]
    out = [text("PHASE", phase.x + 2.5, phase.y - 3.6, INK)]
    output = layout.by("kBigSliders", "Output1Level")
    base = output.y - 6.4
    out.append(text("OUTPUTS", output.x + 2.5, base, INK, CAPTION, spacing=0.9))
    out.append(line(output.x + 50, base - 3.3, 713, base - 3.3, TICK, 1.3))
    out.append(text("MIDI IN", lamp.right + 3, lamp.cy + 3.5, INK, CAPTION, spacing=0.6))
    return out


def draw(layout):
    defs = [
        gradient("face", FACE_TOP, FACE_BOTTOM),
        gradient("plate", PLATE_TOP, PLATE_BOTTOM),
        gradient("deep", DEEP_TOP, DEEP_BOTTOM),
        gradient("edge", mix(LIGHT1, WHITE, 0.92), mix(LIGHT2, WHITE, 0.42)),
        gradient("deepedge", mix(DARK1, LIGHT2, 0.62), DARK1),
        gradient("cast", (DARK1, 0.42), (DARK1, 0)),
        gradient("slot", DARK1, mix(DARK1, LIGHT2, 0.45)),
        '<filter id="soft" x="-10%" y="-10%" width="120%" height="125%"><feGaussianBlur stdDeviation="1.8"/></filter>',
    ]
    body = [rect(0, 0, layout.width, layout.height, 0, "url(#face)"),
            rect(0, 0, layout.width, 9, 0, "url(#cast)"),
            *plates(), *faders(layout), *modulation(layout), *signal(layout), *sections(layout), *flow(),
            *signature()]
    return document(layout.width, layout.height, body, defs)
