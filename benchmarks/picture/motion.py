"""How much changes from one frame to the next."""
import numpy as np


def change(earlier, later):
    """The largest change of any channel, and the one that 99.9 % of the pixels stay below, in levels."""
    changes = np.abs(later - earlier).max(2)
    return float(changes.max()), float(np.percentile(changes, 99.9))
