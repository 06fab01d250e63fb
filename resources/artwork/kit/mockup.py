# SPDX-License-Identifier: AGPL-3.0-or-later
"""The window as it will look, composed from the rendered pictures: for looking at, not for shipping."""

import base64
import math
import re

from .style import LIGHT1, LIGHT2, RED, DARK1, rect, tag, text

WIDTHS = (600, 900, 1500)
FONT_HEIGHT = 1.264  # ascent and descent together, in ems: the framework sizes type by them

# Parameter: position of its handle, text of its label. What is not told stands at a half.
FADERS = {
    "Delay1Time": (0.38, "375 ms"), "Delay1Fine": (0.5, "x1.00"), "Delay1Feedback": (0.72, "-8.56 dB"),
    "Delay2Time": (0.55, "1/4D"), "Delay2Fine": (0.5, "x1.00"), "Delay2Feedback": (0.64, "-11.63 dB"),
    "EnvSensitivity": (0.4, "0.40"), "LFO1Rate": (0.32, "0.09 Hz"), "LFO1Skew": (0.5, "50%"),
    "LFO2Rate": (0.7, "1/16D"), "LFO2Skew": (0.22, "22%"), "Filter1Freq": (0.62, "1.75 kHz"),
    "Filter1Reso": (0.3, "3.00"), "Filter1Mode": (0.34, "Lowpass"), "Filter2Freq": (0.3, "250 Hz"),
    "Filter2Reso": (0.55, "5.50"), "Filter2Mode": (0.66, "Bandpass"), "Saturation1": (0.25, "2.8"),
    "Saturation2": (0.0, "0.0"), "InputLevel": (0.891, "+0.00 dB"), "WetLevel": (0.8, "-2.81 dB"),
    "DryLevel": (0.891, "+0.00 dB"), "Output1Level": (0.891, "+0.00 dB"), "Output2Level": (1.0, "+3.00 dB"),
    "Pan1": (0.25, ""), "Pan2": (0.75, ""), "EnvAttack": (0.1, ""), "EnvDecay": (0.6, ""),
    "Delay1Mod": (0.56, ""), "Filter1Mod": (0.8, ""), "Pan1Mod": (0.2, ""), "Level2Mod": (0.0, ""),
}
LIT = {"Delay2Sync", "Delay1Loop", "LFO2Sync", "LFO2Reset", "PhaseInvert2", "Delay2Bypass", "Kill"}
CHOICES = {"Delay1Multiplier": 1, "Delay2Multiplier": 0, "LFO1Wave": 1, "LFO2Wave": 3}
IMAGES = {"phaseL": "btn_phasel", "phaseR": "btn_phaser"}
SIGNAL = {(0, 0), (1, 1), (2, 4), (3, 5), (4, 8), (5, 9), (6, 2), (2, 6), (0, 8)}
MODULATION = {(1, 0), (2, 4), (2, 5), (0, 8), (0, 9), (5, 4), (3, 1), (1, 6)}


class Window:
    def __init__(self, resources):
        self.resources = resources
        self.uris = {}

    def image(self, name, x, y, width, height, frame=0, frames=1):
        """One frame of a strip, stretched into a box."""
        if name not in self.uris:
            data = base64.b64encode((self.resources / f"images/{name}.png").read_bytes()).decode()
            self.uris[name] = f"data:image/png;base64,{data}"
        picture = tag("image", x=0, y=-frame * height, width=width, height=frames * height,
                      preserveAspectRatio="none", href=self.uris[name])
        return tag("svg", picture, x=x, y=y, width=width, height=height, overflow="hidden")

    def controls(self, layout):
        out = [self.image("velkor_bg", 0, 0, layout.width, layout.height)]
        for array, name, wide in (("kBigSliders", "slider_lg", 16), ("kSmallSliders", "slider_sm", 12)):
            for row in layout.arrays[array]:
                position = FADERS.get(row.parameter, (0.5, ""))[0]
                out.append(self.image(name, row.x + position * (row.width - wide), row.y, wide, row.height))
        for array, name in (("kMultipliers", "sw_mult"), ("kWaves", "sw_wave")):
            for row in layout.arrays[array]:
                out.append(self.image(name, row.x, row.y, row.width, row.height, CHOICES[row.parameter], 4))
        for row in layout.arrays["kToggles"]:
            name = IMAGES.get(row.image, f"btn_{row.image}")
            out.append(self.image(name, row.x, row.y, row.width, row.height, int(row.parameter in LIT), 2))
        for row in layout.arrays["kLabels"]:
            size = 0.6 * row.height / FONT_HEIGHT
            out.append(text(FADERS[row.parameter][1], row.right, row.cy + 3.4, "#0c0c0d", size,
                            "end", weight=500, spacing=0))
        for area, columns, on in (("kModMatrix", 6, MODULATION), ("kSignalMatrix", 8, SIGNAL)):
            grid = layout.areas[area]
            wide, high = grid.width / columns, grid.height / 10
            out += [self.image("matrix_sw", grid.x + c * wide, grid.y + r * high, wide, high, int((c, r) in on), 2)
                    for r in range(10) for c in range(columns)]
        led = layout.areas["kMidiLed"]
        return out + [self.image("midi_led", led.x, led.y, led.width, led.height, 1, 2)]

    def logo(self, name, x, y, width, height, colour, opacity=1.0):
        """A logo fitted and centred in a box, in one colour."""
        source = (self.resources / f"logos/{name}.svg").read_text()
        box = [float(v) for v in re.search(r'viewBox="([^"]+)"', source)[1].split()]
        scale = min(width / box[2], height / box[3])
        path = "".join(tag("path", d=d, fill=colour, fill_opacity=opacity)
                       for d in re.findall(r' d="([^"]+)"', source))
        move = f"translate({x + (width - box[2] * scale) / 2} {y + (height - box[3] * scale) / 2}) scale({scale})"
        return tag("g", path, transform=move)

    def strip(self):
        """The editor's own strip, in its units: a hundredth of the window's width."""
        out = [rect(0, 0, 100, 5, 0, DARK1)]
        out.append(self.logo("logo_kana", 2 - 0.5 + 12, 1.5 - 0.15, 11, 3.3, LIGHT1, 0.25))
        out.append(self.logo("logo", 2, 1.5, 10, 3, LIGHT1))
        plain = {"size": 1 / FONT_HEIGHT, "anchor": "middle", "weight": 500, "spacing": 0}
        for words, x, wide in (("UNDO", 26, 4), ("REDO", 30.5, 4)):
            out.append(rect(x, 1.5, wide, 2, 0.3, LIGHT2, fill_opacity=0.2))
            out.append(text(words, x + wide / 2, 2.78, LIGHT2, **plain))
        out.append(rect(35.2, 1.2, 29.6, 2.6, 0.5, "none", stroke=LIGHT2, stroke_width=0.1))
        out += [tag("circle", cx=x, cy=2.5, r=0.25, fill=LIGHT2) for x in (36.25, 63.75)]
        out.append(text("Deep Water Echo *", 50, 2.92, LIGHT1, **{**plain, "size": 1.5 / FONT_HEIGHT}))
        star = ["M", *("L".join(f"{math.cos(a) * r} {math.sin(a) * r}" for i in range(10)
                                for a, r in [(-math.pi / 2 + i * math.pi / 5, 0.72 if i % 2 == 0 else 0.33)])), "Z"]
        out.append(tag("path", d="".join(star), fill=LIGHT1, fill_opacity=0.85, transform="translate(66.25 2.5)"))
        left = 100 - 1.5 * 7.633588 - 4 - 5.33
        out.append(rect(left, 1.5, 5.33, 2, 0.3, RED))
        out.append(text("BYPASS", left + 2.665, 2.78, DARK1, **plain))
        out.append(self.logo("logo_zubrow", 100 - 1.5 * 7.633588 - 2, 1.75, 1.5 * 7.633588, 1.5, LIGHT2))
        return out


def compose(layout, resources, width):
    """The whole window as one SVG, in pixels of that width."""
    window, unit = Window(resources), width / 100
    strip = tag("g", "".join(window.strip()), transform=f"scale({unit})")
    move = f"translate(0 {5 * unit}) scale({width / layout.width})"
    panel = tag("g", "".join(window.controls(layout)), transform=move)
    grip = "".join(tag("circle", cx=x, cy=y, r=0.25 * unit, fill=LIGHT2, fill_opacity=0.5)
                   for x, y in ((width - unit, 0.75 * width - unit), (width - unit, 0.75 * width - 2 * unit),
                                (width - 2 * unit, 0.75 * width - unit)))
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{width * 3 // 4}">'
            f"{strip}{panel}{grip}</svg>")
