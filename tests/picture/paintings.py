"""Pictures whose measures are known."""
import pathlib
import sys

import numpy as np

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "benchmarks/picture"))

from frames import blur  # noqa: E402, found where the line before says

HEIGHT, WIDTH = 360, 640


def white_noise(seed, height=HEIGHT, width=WIDTH):
    return np.random.default_rng(seed).normal(128, 30, (height, width))


def soft_noise(seed, deviation, height=HEIGHT, width=WIDTH):
    """White noise under a Gaussian: the same in all directions. Mean 128, standard deviation 30."""
    border = int(4 * deviation)
    noise = blur(white_noise(seed, height + 2 * border, width + 2 * border), deviation)
    noise = noise[border : border + height, border : border + width]
    return 128 + 30 * (noise - noise.mean()) / noise.std()


def lattice_noise(seed, cell, height=HEIGHT, width=WIDTH):
    """Random values at the corners of square cells, joined smoothly: what a lattice looks like."""
    values = np.random.default_rng(seed).normal(128, 30, (height // cell + 2, width // cell + 2))
    return resampled(values, _smooth_steps(height, cell), _smooth_steps(width, cell))


def _smooth_steps(pixels, cell):
    position = np.arange(pixels) / cell
    part = position % 1
    return position - part + part * part * (3 - 2 * part)


def resampled(values, rows, columns):
    """The bilinear values between those at whole numbers."""
    top, left = np.floor(rows).astype(int), np.floor(columns).astype(int)
    down, right = (rows - top)[:, None], columns - left
    across = values[:, left] * (1 - right) + values[:, left + 1] * right
    return across[top] * (1 - down) + across[top + 1] * down


def ramp():
    """Slow gradients, of another slope in each channel, in levels that are no whole numbers."""
    return 60 + np.arange(WIDTH)[None, :, None] * np.array([0.05, 0.08, 0.11]) + np.zeros((HEIGHT, 1, 1))


def rounded(picture):
    return np.floor(picture + 0.5)


def dithered(picture):
    return rounded(picture + np.random.default_rng(1).uniform(-0.5, 0.5, picture.shape))


def filled(*colours):
    """A frame with a vertical stripe of each colour."""
    stripes = [np.full((HEIGHT, WIDTH // len(colours), 3), colour, float) for colour in colours]
    return np.concatenate(stripes, axis=1)
