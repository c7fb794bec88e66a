"""All measures of frames, and their summary over many of them."""
import math
import statistics

import banding
import colour
import frames
import lattice
import mass
import motion
import texelgrid
import tone
from thresholds import THRESHOLDS


def _lattice(frame, plane):
    for scale, (harmonic, axes) in lattice.orientation(plane).items():
        yield f"lattice_{scale}", harmonic
        yield f"axes_{scale}", axes


def _banding(frame, plane):
    yield "equal_neighbours", banding.equal_neighbours(frame, plane)
    yield "flat_runs", banding.flat_runs(frame)


def _texel_grid(frame, plane):
    yield "texel_grid", texelgrid.modulation(plane)


def _tone(frame, plane):
    yield from zip(("luminance_1", "luminance_50", "luminance_99"), tone.luminances(plane))
    yield "clipped_high", tone.clipped_high(frame)
    yield "pinned_to_zero", tone.pinned_to_zero(frame)


def _mass(frame, plane):
    yield "mass", mass.half_width(plane)


def _colour(frame, plane):
    yield from zip(("hue", "hue_deviation", "chroma"), colour.hues(frame))


ALL = (_lattice, _banding, _texel_grid, _tone, _mass, _colour)
FAULTS = (_lattice, _banding, _tone)
GRAIN = (_texel_grid, _banding)


def measures_of_frame(path, kinds=ALL):
    """Measures of a single frame, by their keys. Those of the lattice are complex: see `summary`."""
    frame = frames.load(path)
    plane = frames.luminance(frame)
    return {key: value for kind in kinds for key, value in kind(frame, plane)}


def measures_of_pair(earlier, later):
    """What changes between two consecutive frames, by its key."""
    most, nearly_all = motion.change(frames.load(earlier), frames.load(later))
    return {"change_most": most, "change_999": nearly_all}


def summary(measured, keys=tuple(THRESHOLDS)):
    """Of many frames' measures: key, mean, worst (NaN where it says nothing), whether the threshold holds."""
    for key in keys:
        values = [measures[key] for measures in measured if key in measures]
        if not values:
            continue
        threshold = THRESHOLDS[key]
        mean, worst = _mean(key, values), math.nan
        if not key.startswith("lattice"):  # of a single frame it is mostly the clouds' own
            worst = threshold.worst(values)
        yield key, mean, worst, threshold.holds(worst if threshold.of_each else mean)


def uncertainty_of_axes(measured, key):
    """Two standard errors of the mean ratio of axis to diagonal energy, as a factor. It is large: the masses of single
    frames lie this way or that, so that 16 frames leave 12 to 20 % open and 64 half of that."""
    logarithms = [math.log(measures[key]) for measures in measured if key in measures]
    return math.exp(2 * statistics.stdev(logarithms) / math.sqrt(len(logarithms)))


def uncertainty_of_lattice(measured, key):
    """Two standard errors of the mean harmonic: single clouds leave about 0.03 open after 64 frames."""
    harmonics = [measures[key] for measures in measured if key in measures]
    mean = sum(harmonics) / len(harmonics)
    variance = sum(abs(harmonic - mean) ** 2 for harmonic in harmonics) / (len(harmonics) - 1)
    return 2 * math.sqrt(variance / len(harmonics))


def _mean(key, values):
    values = [value for value in values if not math.isnan(abs(value))]
    if not values:
        return math.nan
    if key.startswith("axes"):  # ratios
        return math.exp(sum(math.log(value) for value in values) / len(values))
    mean = sum(values) / len(values)
    return abs(mean) if key.startswith("lattice") else mean
