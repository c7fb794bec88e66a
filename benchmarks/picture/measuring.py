"""All measures of frames, and their summary over many of them."""
import math

import banding
import colour
import frames
import lattice
import mass
import motion
import texelgrid
import tone
from thresholds import THRESHOLDS


def measures_of_frame(path):
    """Every measure of a single frame, by its key. Those of the lattice are complex: see `summary`."""
    frame = frames.load(path)
    plane = frames.luminance(frame)
    measures = {}
    for scale, (harmonic, axes) in lattice.orientation(plane).items():
        measures[f"lattice_{scale}"] = harmonic
        measures[f"axes_{scale}"] = axes
    measures["equal_neighbours"] = banding.equal_neighbours(frame, plane)
    measures["flat_runs"] = banding.flat_runs(frame)
    measures["texel_grid"] = texelgrid.modulation(plane)
    measures["luminance_1"], measures["luminance_50"], measures["luminance_99"] = tone.luminances(plane)
    measures["clipped_high"] = tone.clipped_high(frame)
    measures["pinned_to_zero"] = tone.pinned_to_zero(frame)
    measures["mass"] = mass.half_width(plane)
    measures["hue"], measures["hue_deviation"], measures["chroma"] = colour.hues(frame)
    return measures


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


def _mean(key, values):
    values = [value for value in values if not math.isnan(abs(value))]
    if not values:
        return math.nan
    if key.startswith("axes"):  # ratios
        return math.exp(sum(math.log(value) for value in values) / len(values))
    mean = sum(values) / len(values)
    return abs(mean) if key.startswith("lattice") else mean
