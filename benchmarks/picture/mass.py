"""How large the clouds are."""
import numpy as np

from frames import blur

ROWS = 270  # about so many are left of the picture: enough for its large masses
LARGEST_DISTANCE = 0.7  # picture heights


def half_width(plane):
    """The distance, in picture heights, at which the luminance's autocorrelation has fallen to half."""
    step = max(1, plane.shape[0] // ROWS)
    small = blur(plane, step / 2)[::step, ::step]
    height = small.shape[0]
    correlation = _by_distance(_autocovariance(small - small.mean()), int(height * LARGEST_DISTANCE))
    correlation /= correlation[0]
    below = np.flatnonzero(correlation < 0.5)
    after = below[0] if below.size else correlation.size - 1
    before = after - 1
    part = (correlation[before] - 0.5) / (correlation[before] - correlation[after] + 1e-9)
    return float((before + part) / height)


def _autocovariance(plane):
    """For every shift, over the pixels that overlap."""
    doubled = tuple(2 * side for side in plane.shape)
    products = np.fft.irfft2(abs(np.fft.rfft2(plane, doubled)) ** 2, doubled)
    overlap = np.fft.irfft2(abs(np.fft.rfft2(np.ones_like(plane), doubled)) ** 2, doubled)
    return products / np.maximum(overlap, 1)


def _by_distance(covariance, reach):
    """The means over rings of one pixel's width. Shifts beyond half of each side are negative ones."""
    down, across = (np.minimum(np.arange(side), side - np.arange(side)) for side in covariance.shape)
    rings = np.floor(np.hypot(down[:, None], across[None]) + 0.5).astype(int).ravel()
    near = rings < reach
    return np.bincount(rings[near], covariance.ravel()[near], reach) / np.bincount(rings[near], minlength=reach)
