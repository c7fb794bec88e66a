"""The hues of a frame and how strong they are, in OKLab.

Björn Ottosson, "A perceptual color space for image processing", 2020: https://bottosson.github.io/posts/oklab
"""
import numpy as np

from frames import blur

SRGB_TO_CONES = np.array([
    [0.4122214708, 0.2119034982, 0.0883024619],
    [0.5363325363, 0.6806995451, 0.2817188376],
    [0.0514459929, 0.1073969566, 0.6299787005],
])
CONES_TO_OKLAB = np.array([
    [0.2104542553, 1.9779984951, 0.0259040371],
    [0.7936177850, -2.4285922050, 0.7827717662],
    [-0.0040720468, 0.4505937099, -0.8086757660],
])
BLUR, STEP = 2, 4  # pixels: the dither goes, and what is left need not all be looked at


def oklab(frame):
    """Lightness (0 to 1), green to red, blue to yellow."""
    coded = frame / 255
    # sRGB's transfer function, IEC 61966-2-1.
    light = np.where(coded <= 0.04045, coded / 12.92, ((coded + 0.055) / 1.055) ** 2.4)
    return np.cbrt(light @ SRGB_TO_CONES) @ CONES_TO_OKLAB


def hues(frame):
    """The mean hue and the standard deviation around it, in degrees and weighted by chroma; the mean chroma."""
    thin = np.stack([blur(frame[:, :, channel], BLUR)[::STEP, ::STEP] for channel in range(3)], 2).clip(0, 255)
    lab = oklab(thin)
    opponents = lab[..., 1] + 1j * lab[..., 2]
    chroma = np.abs(opponents)
    mean = opponents.sum() / chroma.sum()
    concentration = max(abs(mean), 1e-9)
    deviation = np.sqrt(max(0, -2 * np.log(concentration)))  # the circular one
    return float(np.degrees(np.angle(mean)) % 360), float(np.degrees(deviation)), float(chroma.mean())
