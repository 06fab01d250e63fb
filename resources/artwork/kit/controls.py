# SPDX-License-Identifier: AGPL-3.0-or-later
"""The strips of keys: nine buttons with one body, the multiplier's row and the wave selector's square."""

from .style import (AMBER, DARK1, DARK2, INK, INK_LIGHT, LIGHT1, LIGHT2, RADIUS_KEY, RED, TEAL, WHITE, document, glyph,
                    gradient, mix, rect, tag, text)

KEY_WIDTH, KEY_HEIGHT = 47, 18
MULTIPLIER_WIDTH, MULTIPLIER_HEIGHT = 92, 18
WAVE_WIDTH, WAVE_HEIGHT = 93, 36

# Symbol of the picture: its word, its sign (a file of glyphs/), the colour of its lamp.
BUTTONS = {
    "sync": ("SYNC", None, TEAL),
    "thru": ("THRU", None, AMBER),
    "loop": ("LOOP", None, TEAL),
    "reverse": ("REV", "reverse", TEAL),
    "reset": ("RESET", None, TEAL),
    "mono": ("MONO", None, TEAL),
    "kill": ("KILL", None, RED),
    "phasel": ("L", "phase", TEAL),
    "phaser": ("R", "phase", TEAL),
}
MULTIPLIERS = ("x1", "x2", "x4", "x8")
WAVES = ("wave_triangle", "wave_sine", "wave_square", "wave_random")  # down the columns of the square

DEFS = [
    gradient("raised", mix(LIGHT1, WHITE, 0.88), mix(LIGHT1, WHITE, 0.40)),
    gradient("pressed", DARK1, mix(DARK2, LIGHT2, 0.10)),
    gradient("alarm", mix(RED, DARK1, 0.42), mix(RED, DARK1, 0.22)),
    gradient("track", mix(LIGHT1, LIGHT2, 0.55), mix(LIGHT1, LIGHT2, 0.25)),
]
RIM_OFF, RIM_ON = mix(LIGHT2, DARK2, 0.25), DARK1


def key(x, y, width, height, lit, fill="pressed"):
    """A key's body within its cell: raised and pale, or pressed and dark. Light comes from above in both."""
    body = [rect(x, y + 0.9, width, height, RADIUS_KEY, WHITE, fill_opacity=0.55) if lit else
            rect(x, y + 1.1, width, height, RADIUS_KEY, DARK1, fill_opacity=0.30),
            rect(x, y, width, height, RADIUS_KEY, f"url(#{fill if lit else 'raised'})",
                 stroke=RIM_ON if lit else RIM_OFF, stroke_width=1.1)]
    if not lit:
        body.append(rect(x + 1.2, y + 1.0, width - 2.4, 1.1, 0.55, WHITE, fill_opacity=0.9))
    return "".join(body)


def lamp(cx, cy, colour, lit):
    """A ring when off; a bright dot in a halo when on."""
    if not lit:
        return tag("circle", cx=cx, cy=cy, r=2.2, fill=mix(LIGHT1, LIGHT2, 0.25), stroke=mix(LIGHT2, DARK2, 0.35),
                   stroke_width=1.2)
    return (tag("circle", cx=cx, cy=cy, r=4.6, fill=colour, fill_opacity=0.30)
            + tag("circle", cx=cx, cy=cy, r=2.9, fill=mix(colour, WHITE, 0.30))
            + tag("circle", cx=cx, cy=cy - 0.5, r=1.2, fill=mix(colour, WHITE, 0.85)))


def button(glyphs, name):
    """Two frames, off above on."""
    word, sign, colour = BUTTONS[name]
    body = []
    for frame in (0, 1):
        lit, top = frame == 1, frame * KEY_HEIGHT
        ink = INK_LIGHT if lit else INK
        lamp_colour = mix(colour, WHITE, 0.75) if colour == RED else colour
        body += [key(1.6, top + 1.6, KEY_WIDTH - 3.2, KEY_HEIGHT - 3.8, lit, "alarm" if colour == RED else "pressed"),
                 lamp(9.2, top + 8.7, lamp_colour, lit)]
        if sign:
            long = len(word) > 1
            body.append(glyph(glyphs, sign, 14.4 if long else 17, top + 3.9, 9.4 if long else 10.5, 9.6, ink))
        middle = 29.4 if not sign else 34.2 if long else 32.5
        body.append(text(word, middle, top + 12.2, ink, 10.0, "middle", spacing=0.2 if sign or len(word) > 4 else 0.4))
    return document(KEY_WIDTH, 2 * KEY_HEIGHT, body, DEFS)


def multiplier():
    """Four frames, each with another of the four keys pressed."""
    body = []
    step = (MULTIPLIER_WIDTH - 2) / 4
    for frame in range(4):
        top = frame * MULTIPLIER_HEIGHT
        for item, word in enumerate(MULTIPLIERS):
            lit, left = item == frame, 1 + item * step
            body.append(key(left + 0.8, top + 1.6, step - 1.6, MULTIPLIER_HEIGHT - 3.8, lit))
            body.append(text(word, left + step / 2, top + (11.4 if lit else 12.2),
                             INK_LIGHT if lit else INK, 10.0, "middle", spacing=0.2))
            if lit:
                body.append(rect(left + step / 2 - 5, top + 13.0, 10, 1.6, 0.8, mix(TEAL, WHITE, 0.30)))
    return document(MULTIPLIER_WIDTH, 4 * MULTIPLIER_HEIGHT, body, DEFS)


def waves(glyphs):
    """Four frames of four quarters, numbered down the columns; frame k has quarter k pressed."""
    body = []
    wide, high = WAVE_WIDTH / 2, WAVE_HEIGHT / 2
    for frame in range(4):
        for item, name in enumerate(WAVES):
            lit = item == frame
            left, top = (item // 2) * wide, frame * WAVE_HEIGHT + (item % 2) * high
            body.append(key(left + 1.6, top + 1.6, wide - 3.2, high - 3.8, lit))
            body.append(lamp(left + 9.2, top + 8.7, TEAL, lit))
            body.append(glyph(glyphs, name, left + 17, top + 3.2, 24, 11, INK_LIGHT if lit else INK))
    return document(WAVE_WIDTH, 4 * WAVE_HEIGHT, body, DEFS)
