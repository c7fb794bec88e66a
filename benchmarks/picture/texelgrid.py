"""Whether the texels of the intermediate images show in the frame, which is larger."""
import numpy as np

from frames import blur

IDEAL_PIXELS = 400000  # of an intermediate image, whose scale is between the next two
LEAST_SCALE, LARGEST_SCALE = 1, 3
PERIODS = np.linspace(0.985, 1.01, 60)  # about the expected one: the last texels lie outside the frame
SMOOTHING = 41  # pixels of the running mean that the slow changes are taken out with
ENDS = 4, 24  # pixels left out at the ends, before and after that


def intermediate_size(width, height):
    """Of the images that a frame of that size is made from, in texels."""
    scale = min(LARGEST_SCALE, max(LEAST_SCALE, np.sqrt(width * height / IDEAL_PIXELS)))
    return int(width / scale + 0.5), int(height / scale + 0.5)


def modulation(plane):
    """How much the plane's curvature changes with the period of the texels, in any phase, as a share of itself: 0 is no
    trace. The worse of columns and rows; NaN where the intermediate image is as large as the frame."""
    height, width = plane.shape
    texels_across, texels_down = intermediate_size(width, height)
    if texels_across >= width:
        return float("nan")
    smooth = blur(plane, 0.7)
    return float(max(_modulation_across(np.abs(np.diff(smooth, 2, axis=1)), texels_across / width),
                     _modulation_across(np.abs(np.diff(smooth, 2, axis=0)).T, texels_down / height)))


def _modulation_across(curvature, texels_a_pixel):
    profile = curvature.mean(0)[ENDS[0]:-ENDS[0]]
    slow = np.convolve(profile, np.ones(SMOOTHING) / SMOOTHING, "same")
    changes = (profile / slow - 1)[ENDS[1]:-ENDS[1]]
    window = np.hanning(changes.size)
    position = np.arange(changes.size)
    return max(2 * abs((changes * window * np.exp(-2j * np.pi * texels_a_pixel * period * position)).sum())
               for period in PERIODS) / window.sum()
