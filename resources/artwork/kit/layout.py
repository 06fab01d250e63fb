# SPDX-License-Identifier: AGPL-3.0-or-later
"""Reads the placement table that the panel's code is built from, so that the pictures cannot drift away from it."""

import re
from dataclasses import dataclass


class LayoutError(Exception):
    """The table is not written as this reader expects; the text says where."""


@dataclass(frozen=True)
class Row:
    """One control: its parameter (or the first of two), its picture if it names one, its box in design pixels."""

    parameter: str
    watched: str
    image: str
    x: float
    y: float
    width: float
    height: float

    @property
    def cx(self):
        return self.x + self.width / 2

    @property
    def cy(self):
        return self.y + self.height / 2

    @property
    def right(self):
        return self.x + self.width

    @property
    def bottom(self):
        return self.y + self.height


# Array, the constants that stand for a width and a height that the rows do not carry.
ARRAYS = {
    "kBigSliders": (None, "kBigSliderHeight"),
    "kSmallSliders": ("kSmallSliderWidth", "kSmallSliderHeight"),
    "kMultipliers": ("kMultiplierWidth", "kMultiplierHeight"),
    "kToggles": ("kToggleWidth", "kToggleHeight"),
    "kWaves": ("kWaveWidth", "kWaveHeight"),
    "kLabels": (None, "kLabelHeight"),
}
AREAS = ("kModMatrix", "kSignalMatrix", "kMidiLed")


class Layout:
    """The table, array by array; `by` finds a control by its parameter."""

    def __init__(self, text):
        text = re.sub(r"//[^\n]*|/\*.*?\*/", "", text, flags=re.DOTALL)
        self.constants = {name: float(value) for name, value in
                          re.findall(r"constexpr float (\w+) = ([\d.]+)f;", text)}
        self.width, self.height = self._constant("kWidth"), self._constant("kHeight")
        self.arrays = {name: self._array(text, name, *sizes) for name, sizes in ARRAYS.items()}
        self.areas = {name: self._area(text, name) for name in AREAS}

    def by(self, array, parameter):
        """The row of this parameter; a LayoutError if there is none."""
        for row in self.arrays[array]:
            if row.parameter == parameter:
                return row
        raise LayoutError(f"{array} has no row for {parameter}")

    def _constant(self, name):
        if name not in self.constants:
            raise LayoutError(f"the constant {name} is missing")
        return self.constants[name]

    def _array(self, text, name, width, height):
        found = re.search(rf"std::array<\w+, (\d+)> {name} \{{\{{(.*?)\}}\}};", text, re.DOTALL)
        if not found:
            raise LayoutError(f"the array {name} is missing")
        lines = [line.strip() for line in found[2].splitlines() if line.strip()]
        if len(lines) != int(found[1]):
            raise LayoutError(f"{name} is declared with {found[1]} rows and has {len(lines)}")
        return [self._row(name, line, width, height) for line in lines]

    def _row(self, name, line, width, height):
        found = re.fullmatch(r"\{\s*(.+?)\s*\},?", line)
        cells = [cell.strip() for cell in found[1].split(",")] if found else []
        words = [cell for cell in cells if re.fullmatch(r"[A-Za-z_][\w:]*", cell)]
        numbers = [float(cell.rstrip("f")) for cell in cells if re.fullmatch(r"-?\d+(\.\d+)?f?", cell)]
        wanted = 2 if width else 3
        if not words or len(words) + len(numbers) != len(cells) or len(numbers) != wanted:
            raise LayoutError(f"{name}: cannot read the row {line}")
        image = words[1].removeprefix("ToggleImage::") if "::" in words[-1] else ""
        watched = words[1] if len(words) > 1 and not image else words[0]
        wide = self._constant(width) if width else numbers[2]
        return Row(words[0], watched, image, numbers[0], numbers[1], wide, self._constant(height))

    def _area(self, text, name):
        found = re.search(rf"constexpr Area {name}\s*\{{([^}}]*)\}}", text)
        numbers = [float(cell.strip().rstrip("f")) for cell in found[1].split(",")] if found else []
        if len(numbers) != 4:
            raise LayoutError(f"the area {name} is missing or has not four numbers")
        return Row(name, name, "", *numbers)
