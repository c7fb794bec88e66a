"""How dark and bright a frame is, and what of it is lost at the ends."""
import numpy as np


def luminances(plane):
    """The levels that 1, 50 and 99 % of the pixels are below."""
    return tuple(float(level) for level in np.percentile(plane, [1, 50, 99]))


def clipped_high(frame):
    """The share of pixels with a channel at its highest level."""
    return float((frame >= 254.5).any(2).mean())


def pinned_to_zero(frame):
    """The share of pixels with a channel at 0."""
    return float((frame <= 0).any(2).mean())
