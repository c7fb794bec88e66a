"""What is asked of the picture, in one place."""
import math
from dataclasses import dataclass


@dataclass(frozen=True)
class Threshold:
    """The range of a measure, and whether its mean over all frames must lie in it or that of each frame."""

    name: str
    least: float = -math.inf
    most: float = math.inf
    of_each: bool = False

    def holds(self, value):
        """What could not be measured holds."""
        return math.isnan(value) or self.least <= value <= self.most

    def worst(self, values):
        """The value that is furthest out of the range, or nearest to its border; without a range the largest."""
        measured = [value for value in values if not math.isnan(value)] or [math.nan]
        if not str(self):
            return max(measured)
        return max(measured, key=lambda value: max(_beyond(self.least, value), _beyond(value, self.most)))

    def __str__(self):
        if math.isinf(self.least):
            return "" if math.isinf(self.most) else f"at most {self.most:g}"
        return f"at least {self.least:g}" if math.isinf(self.most) else f"{self.least:g} to {self.most:g}"


def _beyond(smaller, larger):
    return smaller - larger if math.isfinite(smaller) and math.isfinite(larger) else -math.inf


# By the keys of `measuring`. Without a range: only told.
THRESHOLDS = {
    "lattice_fine": Threshold("lattice, fine", most=0.07),
    "lattice_mid": Threshold("lattice, mid", most=0.07),
    "lattice_coarse": Threshold("lattice, coarse", most=0.07),
    "axes_fine": Threshold("axis to diagonal energy, fine", 0.8, 1.25),
    "axes_mid": Threshold("axis to diagonal energy, mid", 0.8, 1.25),
    "axes_coarse": Threshold("axis to diagonal energy, coarse", 0.8, 1.25),
    "equal_neighbours": Threshold("equal neighbours in slow gradients", most=0.35),
    "flat_runs": Threshold("pixels in flat runs of 16 and more", most=0.002, of_each=True),
    "texel_grid": Threshold("modulation at the texel grid", most=0.08),
    "change_most": Threshold("change between 60 Hz frames, largest, levels", most=40, of_each=True),
    "change_999": Threshold("change between 60 Hz frames, 99.9 %, levels", most=12, of_each=True),
    "luminance_1": Threshold("luminance, 1 %", least=15),
    "luminance_50": Threshold("luminance, 50 %", 70, 150),
    "luminance_99": Threshold("luminance, 99 %", least=180),
    "clipped_high": Threshold("clipped high", most=0.01),
    "pinned_to_zero": Threshold("a channel at zero"),
    "mass": Threshold("cloud mass, half-width in heights", 0.08, 0.25),
    "hue_deviation": Threshold("hue spread, degrees", 12, 45),
    "chroma": Threshold("mean chroma", 0.04, 0.09),
}

# Of fewer, what is left of the clouds' own harmonics would be taken for a lattice. It falls with the number's root.
FRAMES_FOR_LATTICE = 16

# At the ends of a setting the picture may be dark, pale or empty; it may not be faulty.
FAULTS = ("lattice_fine", "lattice_mid", "lattice_coarse", "equal_neighbours", "flat_runs", "clipped_high",
          "pinned_to_zero", "change_most", "change_999")
