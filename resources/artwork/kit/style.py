# SPDX-License-Identifier: AGPL-3.0-or-later
"""The design language as numbers: colours, type, radii, and the few SVG phrases that all pictures share.
docs/design.md tells why they are what they are."""

import re
from xml.sax.saxutils import escape

# The interface's seven colours. Everything else is a mix of two of them, or of one with white.
DARK1, DARK2 = "#0f0f0f", "#242424"
LIGHT1, LIGHT2 = "#c5c7c7", "#7f8384"
TEAL, RED, AMBER = "#3fadae", "#c24444", "#ffae00"
WHITE = "#ffffff"


def mix(first, second, share):
    """The colour that far from the first (0) to the second (1), in sRGB."""
    pairs = zip(*(bytes.fromhex(c[1:]) for c in (first, second)))
    return "#" + bytes(round(a + (b - a) * share) for a, b in pairs).hex()


FACE_TOP, FACE_BOTTOM = mix(LIGHT1, WHITE, 0.10), mix(LIGHT1, LIGHT2, 0.12)
PLATE_TOP, PLATE_BOTTOM = mix(LIGHT1, WHITE, 0.52), mix(LIGHT1, WHITE, 0.30)
DEEP_TOP, DEEP_BOTTOM = mix(DARK2, LIGHT2, 0.09), mix(DARK1, DARK2, 0.62)
BAND = mix(DARK2, LIGHT2, 0.16)
WELL = mix(DARK1, "#000000", 0.35)

INK = mix(DARK1, DARK2, 0.35)          # captions and titles on the face and the pale plates
INK_SOFT = mix(DARK2, LIGHT2, 0.30)    # second-rank words there
INK_LIGHT = mix(LIGHT1, WHITE, 0.25)   # captions on the deep plates and on lit keys
INK_DIM = mix(LIGHT1, LIGHT2, 0.45)    # second-rank words there
TICK = mix(DARK2, LIGHT2, 0.55)        # minor ticks on pale plates

FAMILY = "Dosis"
TITLE, CAPTION, SMALL = 12.4, 9.6, 9.0
RADIUS_PLATE, RADIUS_WELL, RADIUS_KEY = 6.0, 4.0, 3.0

LICENCE = "<!-- SPDX-License-Identifier: AGPL-3.0-or-later -->"
GENERATED = "<!-- Written by scripts/make-artwork: change what it is made from, not this file. -->"


def contrast(first, second):
    """The contrast ratio of two colours, 1 to 21, after WCAG 2.1's definition of relative luminance."""
    def luminance(colour):
        parts = [v / 255 for v in bytes.fromhex(colour[1:])]
        parts = [v / 12.92 if v <= 0.04045 else ((v + 0.055) / 1.055) ** 2.4 for v in parts]
        return 0.2126 * parts[0] + 0.7152 * parts[1] + 0.0722 * parts[2]

    low, high = sorted((luminance(first), luminance(second)))
    return (high + 0.05) / (low + 0.05)


# What is written on what: make-artwork --check wants LEAST_CONTRAST of each. Where the ground shades from top to
# bottom, its worse end counts.
LEAST_CONTRAST = 4.5
PAIRS = [
    # words, their colour, the ground
    ("value text on a pale plate", "#0c0c0d", PLATE_BOTTOM),
    ("titles and captions on a pale plate", INK, PLATE_BOTTOM),
    ("second-rank words on a pale plate", INK_SOFT, PLATE_BOTTOM),
    ("words on the face", INK, FACE_BOTTOM),
    ("titles and captions on a deep plate", INK_LIGHT, DEEP_TOP),
    ("captions on a band of a deep plate", INK_LIGHT, BAND),
    ("second-rank words on a deep plate", INK_DIM, DEEP_TOP),
    ("word on a raised key", INK, mix(LIGHT1, WHITE, 0.40)),
    ("word on a pressed key", INK_LIGHT, mix(DARK2, LIGHT2, 0.10)),
    ("word on the pressed KILL key", INK_LIGHT, mix(RED, DARK1, 0.22)),
    ("number in a badge", PLATE_TOP, INK),
]


def n(value):
    """A number as SVG wants it: no more than three decimals, none to spare."""
    text = f"{value:.3f}".rstrip("0").rstrip(".")
    return "0" if text in ("", "-0") else text


def attributes(values):
    return "".join(f' {key.rstrip("_").replace("_", "-")}="{n(v) if isinstance(v, (int, float)) else v}"'
                   for key, v in values.items())


def tag(name, content=None, **values):
    """One SVG element; an underscore in an attribute's name stands for a hyphen."""
    return f"<{name}{attributes(values)}/>" if content is None else f"<{name}{attributes(values)}>{content}</{name}>"


def rect(x, y, width, height, radius, fill, **more):
    return tag("rect", x=x, y=y, width=width, height=height, rx=radius, fill=fill, **more)


def line(x1, y1, x2, y2, colour, width, **more):
    return tag("path", d=f"M{n(x1)} {n(y1)}L{n(x2)} {n(y2)}", stroke=colour, stroke_width=width, fill="none", **more)


def text(words, x, y, fill, size=CAPTION, anchor="start", weight=600, spacing=0.35, **more):
    """Words with their baseline at y. The spacing after the last letter is taken back where it would show."""
    shift = {"start": 0.0, "middle": spacing / 2, "end": spacing}[anchor]
    return tag("text", escape(words), x=x + shift, y=y, fill=fill, font_family=FAMILY, font_size=size,
               font_weight=weight, letter_spacing=spacing, text_anchor=anchor, **more)


def gradient(name, top, bottom):
    """A straight fall of light from top to bottom of its element. A pair instead of a colour adds an opacity."""
    stops = ""
    for offset, colour in enumerate((top, bottom)):
        colour, opacity = colour if isinstance(colour, tuple) else (colour, 1)
        stops += tag("stop", offset=offset, stop_color=colour, **({"stop_opacity": opacity} if opacity < 1 else {}))
    return tag("linearGradient", stops, id=name, x1=0, y1=0, x2=0, y2=1)


def document(width, height, body, defs=""):
    """A whole SVG file of that size in pixels."""
    head = f'<svg xmlns="http://www.w3.org/2000/svg" width="{n(width)}" height="{n(height)}" ' \
           f'viewBox="0 0 {n(width)} {n(height)}">'
    defs = ["<defs>", *[f"  {d}" for d in ([defs] if isinstance(defs, str) else defs)], "</defs>"] if defs else []
    return "\n".join([head, LICENCE, GENERATED, *defs, *body, "</svg>"]) + "\n"


def glyph(folder, name, x, y, width, height, colour):
    """The drawing of a glyph's file, fitted into a box, with its currentColor set."""
    source = (folder / f"{name}.svg").read_text()
    box = [float(v) for v in re.search(r'viewBox="([^"]+)"', source)[1].split()]
    inner = re.search(r"<svg[^>]*>(.*)</svg>", re.sub(r"<!--.*?-->", "", source, flags=re.DOTALL), re.DOTALL)[1]
    inner = " ".join(inner.split()).replace("currentColor", colour)
    scale = min(width / box[2], height / box[3])
    x += (width - box[2] * scale) / 2
    y += (height - box[3] * scale) / 2
    return tag("g", inner, transform=f"translate({n(x)} {n(y)}) scale({n(scale)})")
