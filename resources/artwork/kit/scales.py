# SPDX-License-Identifier: AGPL-3.0-or-later
"""Where a fader's marks stand: positions from 0 to 1 on its travel, worked out from what the parameter shows there."""

import math

from .layout import LayoutError


def even(steps):
    return [step / steps for step in range(steps + 1)]


def logarithmic(values, low, high):
    return [math.log(value / low) / math.log(high / low) for value in values]


def gain(decibels, top):
    """A gain fader is cubic in amplitude: 60 dB to the decade of its travel."""
    return [10 ** ((value - top) / 60) for value in decibels]


LEVEL = ([*gain((-48, -24, -12, -6), 3), 1.0], gain((0,), 3))
EVEN = (even(10), [])
CENTRE = ([0, 0.125, 0.25, 0.375, 0.625, 0.75, 0.875, 1], [0.5])

# Minor marks, and the marks that a hand looks for: unity, centre, a decade, a pure response.
SCALES = {
    "Time": (even(8), []),
    "Fine": CENTRE,
    "Feedback": (gain((-60, -48, -36, -24, -18, -12, -6, 0), 0), []),
    "Sensitivity": EVEN,
    "Rate": (logarithmic((0.01, 0.02, 0.05, 0.2, 0.5, 2, 5, 10), 0.01, 10), logarithmic((0.1, 1), 0.01, 10)),
    "Skew": CENTRE,
    "Freq": (logarithmic((40, 50, 200, 500, 2000, 5000, 18000), 40, 18000),
             logarithmic((100, 1000, 10000), 40, 18000)),
    "Reso": EVEN,
    "Mode": ([1 / 6, 1 / 2, 5 / 6], [0, 1 / 3, 2 / 3, 1]),
    "Saturation": (even(11), []),
    "Level": LEVEL,
    "Pan": ([0, 0.25, 0.75, 1], [0.5]),
}


def response(mode, points=17):
    """The filter's answer in decibels at that place of its Mode fader, over two octaves to each side of cut-off."""
    if mode < 1 / 3:
        notch, low, band, high = 1 - 3 * mode, 3 * mode, 0, 0
    elif mode < 2 / 3:
        notch, low, band, high = 0, 2 - 3 * mode, 3 * mode - 1, 0
    else:
        notch, low, band, high = 0, 0, 3 - 3 * mode, 3 * mode - 2
    out = []
    for octave in (4 * point / (points - 1) - 2 for point in range(points)):
        s = 1j * 2 ** octave
        gain_there = abs((notch * (s * s + 1) + low + band * s + high * s * s) / (s * s + 0.8 * s + 1))
        out.append(20 * math.log10(max(gain_there, 1e-3)))
    return out


def marks(parameter):
    """The two lists for a parameter, found by the word that its name ends or begins with."""
    stem = parameter.rstrip("12")
    for word, lists in SCALES.items():
        if stem.endswith(word):
            return lists
    raise LayoutError(f"no scale for {parameter}")
