"""Whether a square lattice shows through, as it does where noise is drawn badly: slopes prefer its axes.

Light from one side makes slopes prefer one direction, which is a harmonic of two periods a turn. Of four periods there
is nothing but a lattice, and that of one frame's clouds, whose phase is another for each seed. So the fourth harmonic
is a complex number that is averaged over seeds before its size is taken: the clouds' share goes, a lattice's stays.
"""
import numpy as np

from frames import blur, slopes

# Standard deviations of the blur, in picture heights, that leave detail of a size and above.
SCALES = {"fine": 1 / 540, "mid": 1 / 120, "coarse": 1 / 40}

TILES_PER_HEIGHT = 12
LEAST_TILE = 8  # pixels
TINY = 1e-300  # keeps what has no slope, and so no weight, out of divisions by zero
SECTOR = np.pi / 12  # of the doubled angle: slopes within 7.5 degrees of an axis or of a diagonal count


def orientation(plane):
    """For each scale the fourth harmonic of the slopes' directions (complex, size 0 to 1), and how much more of their
    energy lies along the axes than along the diagonals (a ratio)."""
    height = plane.shape[0]
    return {scale: _orientation_of(plane, height * size) for scale, size in SCALES.items()}


def _orientation_of(plane, deviation):
    right, down = slopes(blur(plane, deviation))
    border = int(4 * deviation) + 2  # where the blur has seen what lies beyond the picture
    right, down = right[border:-border, border:-border], down[border:-border, border:-border]
    weights = _evened(right**2 + down**2, max(LEAST_TILE, plane.shape[0] // TILES_PER_HEIGHT))
    right, down = right[: weights.shape[0], : weights.shape[1]], down[: weights.shape[0], : weights.shape[1]]
    # Cosine and sine of twice the angle of each slope, without any angle.
    energy = np.maximum(right**2 + down**2, TINY)
    cosine, sine = (right**2 - down**2) / energy, 2 * right * down / energy
    harmonic = complex((weights * (cosine**2 - sine**2)).sum(), (weights * 2 * sine * cosine).sum()) / weights.sum()
    along_axes = weights[np.abs(sine) < np.sin(SECTOR)].sum()
    along_diagonals = weights[np.abs(cosine) < np.sin(SECTOR)].sum()
    return harmonic, float(along_axes / max(along_diagonals, TINY))


def _evened(energy, tile):
    """The energy of whole tiles, each weighted down by its own, so that no single edge decides."""
    rows, columns = energy.shape[0] // tile, energy.shape[1] // tile
    tiles = energy[: rows * tile, : columns * tile].reshape(rows, tile, columns, tile)
    totals = tiles.sum((1, 3), keepdims=True)
    return (tiles / (totals + np.percentile(totals, 25))).reshape(rows * tile, columns * tile)
