"""Whether slow gradients show the steps of 8 bits, as they do without dither."""
import numpy as np

from frames import blur, slopes

SLOW = (0.02, 0.35)  # levels a pixel: slower there is nothing to see, faster the steps are too short
ENOUGH = 1000  # pixels; a share of fewer says nothing
LONG_RUN = 16  # pixels


def equal_neighbours(frame, plane):
    """The share of pixels in slow gradients that equal their left neighbour; NaN without slow gradients."""
    slope = np.hypot(*slopes(blur(plane, plane.shape[0] / 180)))
    is_slow = ((slope > SLOW[0]) & (slope < SLOW[1]))[:, 1:]
    return float(_repeats(frame)[is_slow].mean()) if is_slow.sum() > ENOUGH else float("nan")


def flat_runs(frame):
    """The share of pixels in horizontal runs of at least 16 equal ones."""
    ends = np.pad(~_repeats(frame), ((0, 0), (0, 1)), constant_values=True)
    lengths = np.diff(np.flatnonzero(ends.ravel()), prepend=-1)
    return float(lengths[lengths >= LONG_RUN].sum() / lengths.sum())


def _repeats(frame):
    """Which pixels but the first of a row equal their left neighbours."""
    return np.all(frame[:, 1:] == frame[:, :-1], axis=2)
