"""Frames as arrays, and what several measures need of them.

A frame is an array of height x width x 3 coded (sRGB) values, 0 to 255, row 0 at the top.
"""
import numpy as np
from PIL import Image

# Of the coded values, not of light: what the eye's lightness follows closely enough (weights: ITU-R BT.709).
LUMINANCE_WEIGHTS = np.array([0.2126, 0.7152, 0.0722])

# A Gaussian's tail is cut off there, in standard deviations.
BLUR_REACH = 3

SHORT_REACH = 6  # pixels


def load(path):
    """The frame in a picture file."""
    return np.asarray(Image.open(path).convert("RGB")).astype(np.float64)


def luminance(frame):
    """Height x width, 0 to 255."""
    return frame @ LUMINANCE_WEIGHTS


def blur(plane, deviation):
    """A plane under a Gaussian of that standard deviation, in pixels; beyond its borders it goes on as they are."""
    if deviation <= 0:
        return plane
    reach = int(BLUR_REACH * deviation + 0.5)
    kernel = np.exp(-0.5 * (np.arange(-reach, reach + 1) / deviation) ** 2)
    kernel /= kernel.sum()
    for axis in (0, 1):
        plane = _convolved(plane, kernel, axis)
    return plane


def slopes(plane):
    """The plane's slopes to the right and downwards, per pixel."""
    down, right = np.gradient(plane)
    return right, down


def _convolved(plane, kernel, axis):
    reach = kernel.size // 2
    padding = [(0, 0), (0, 0)]
    padding[axis] = (reach, reach)
    padded = np.pad(plane, padding, mode="edge")
    return _summed(padded, kernel, axis) if reach <= SHORT_REACH else _transformed(padded, kernel, axis)


def _summed(padded, kernel, axis):
    """One shifted plane after the other; fast for short kernels."""
    reach = kernel.size // 2
    part = [slice(None), slice(None)]

    def shifted(shift):
        part[axis] = slice(shift, padded.shape[axis] - 2 * reach + shift)
        return padded[tuple(part)]

    result = kernel[reach] * shifted(reach)
    for distance in range(1, reach + 1):  # the kernel is symmetric
        result += kernel[reach + distance] * (shifted(reach - distance) + shifted(reach + distance))
    return result


def _transformed(padded, kernel, axis):
    """By Fourier transforms; of the same speed for kernels of any length."""
    length = _fast_length(padded.shape[axis])
    spectrum = np.fft.rfft(padded, length, axis=axis)
    spectrum *= np.fft.rfft(kernel, length).reshape((-1, 1) if axis == 0 else (1, -1))
    result = np.fft.irfft(spectrum, length, axis=axis)
    return np.take(result, range(kernel.size - 1, padded.shape[axis]), axis=axis)


def _fast_length(least):
    """The next length whose only prime factors are 2, 3 and 5, which Fourier transforms are fast for."""
    while True:
        rest = least
        for factor in (2, 3, 5):
            while rest % factor == 0:
                rest //= factor
        if rest == 1:
            return least
        least += 1
