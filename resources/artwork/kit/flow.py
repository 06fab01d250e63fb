# SPDX-License-Identifier: AGPL-3.0-or-later
"""The key to the signal's way, along the panel's lower edge."""

from .style import CAPTION, INK, INK_LIGHT, INK_SOFT, PLATE_TOP, SMALL, line, n, rect, tag, text

STROKE = 1.4


def box(x, y, width, height, words, filled=False):
    return [rect(x, y, width, height, 4, INK if filled else "none", stroke=INK, stroke_width=STROKE),
            text(words, x + width / 2, y + height / 2 + 3.3, INK_LIGHT if filled else INK, SMALL, "middle",
                 spacing=0.5)]


def arrow(points, heads=("end",)):
    """A path of straight runs with a filled head at its end, or at both."""
    d = "M" + "L".join(f"{n(x)} {n(y)}" for x, y in points)
    out = [tag("path", d=d, fill="none", stroke=INK, stroke_width=STROKE, stroke_linejoin="round")]
    for head in heads:
        (x0, y0), (x1, y1) = points[-2:] if head == "end" else (points[1], points[0])
        dx, dy = (x1 > x0) - (x1 < x0), (y1 > y0) - (y1 < y0)
        tip = (x1 + dx * 2.5, y1 + dy * 2.5)
        side = [(tip[0] - dx * 5 + sign * dy * 2.8, tip[1] - dy * 5 + sign * dx * 2.8) for sign in (1, -1)]
        out.append(tag("path", d="M" + "L".join(f"{n(x)} {n(y)}" for x, y in (tip, *side)) + "Z", fill=INK))
    return out


def flow():
    """Input through the signal grid and its three kinds of node to the outputs; the dry way beside it."""
    main, nodes, dry, total = 478, 505, 459, 664
    out = box(275, main - 8.5, 50, 17, "INPUT")
    out += box(358, main - 8.5, 152, 17, "SIGNAL GRID", filled=True)
    for x, width, words in ((358, 42, "DELAY"), (405, 42, "FILTER"), (452, 58, "SATURATION")):
        out += box(x, nodes - 7.5, width, 15, words)
        out += arrow([(x + width / 2, main + 12), (x + width / 2, nodes - 11)], ("start", "end"))
    out += box(543, main - 8.5, 56, 17, "OUTPUTS")
    for left, right in ((325, 354.5), (510, 539.5), (599, total - 11), (total + 7.5, 700)):
        out += arrow([(left, main), (right, main)])
    out += arrow([(300, main - 8.5), (300, dry), (total, dry), (total, main - 11)])
    out.append(text("WET", 625, main - 4, INK, SMALL, "middle"))
    out.append(text("DRY", 625, dry - 4, INK, SMALL, "middle"))
    out.append(tag("circle", cx=total, cy=main, r=7.5, fill=PLATE_TOP, stroke=INK, stroke_width=STROKE))
    out.append(line(total - 3.5, main, total + 3.5, main, INK, STROKE))
    out.append(line(total, main - 3.5, total, main + 3.5, INK, STROKE))
    out.append(text("OUT", 725, main + 3.4, INK, CAPTION, "end", spacing=0.5))
    return out


def signature():
    """The product's line, between the lamp and the key."""
    out = [line(133, 465.5, 133, 507.5, INK_SOFT, STROKE)]
    for words, base in (("PATCHABLE", 481.5), ("DUAL DELAY", 500)):
        out.append(text(words, 145, base, INK, 15.5, weight=500, spacing=2.4))
    return out
