"""Golden frames: what the software driver drew when somebody last looked and approved, and how much may differ."""
import pathlib
import subprocess
from dataclasses import dataclass

import numpy as np
from PIL import Image

SIZE = "320x180"
DIRECTORY = pathlib.Path(__file__).resolve().parent

# In levels of 255. Of one version of the software driver there is no difference at all, whatever the width of its
# vectors. Another may round differently: by a level where the dither decides, by a few on the steepest slopes. Changes
# beyond that are seen: a brightness of 0.54 instead of 0.5 or a zoom of 0.385 instead of 0.38 is out of tolerance.
MEAN_TOLERANCE = 1.5
PIXEL_TOLERANCE = 8
SHARE_WITHIN = 0.999


@dataclass(frozen=True)
class GoldenFrame:
    """A frame by its name, the time that seeds the clouds, its number and rate, and the settings off their defaults."""

    name: str
    seed: int
    number: int = 2
    rate: int = 1  # Hz: at 1 clouds have faded in with the second frame
    settings: tuple = ()
    size: str = SIZE

    @property
    def approved(self):
        return DIRECTORY / f"{self.name}.png"

    def draw(self, program, directory, *settings):
        """The picture's path. Given settings come after the frame's own."""
        words = [word for setting in self.settings + settings for word in ("--set", setting)]
        directory = pathlib.Path(directory) / self.name
        subprocess.run([program, "--headless", "--size", self.size, "--time", str(self.seed), "--fps", str(self.rate),
                        "--frames", str(self.number), "--output", directory, *words],
                       check=True, stdout=subprocess.DEVNULL)
        return directory / f"frame-{self.number:06}.png"


GOLDEN_FRAMES = (
    GoldenFrame("defaults", 97),
    GoldenFrame("two-minutes-later", 97, 120),
    GoldenFrame("half-faded-in", 122, 26, 60),
    GoldenFrame("vivid-and-dark", 15, settings=("Colors=1", "Brightness=0")),
    GoldenFrame("near-and-grey", 40, settings=("Zoom=0", "Colors=0")),
    GoldenFrame("far-and-bright", 74, settings=("Zoom=1", "Brightness=1")),
    GoldenFrame("enlarged-with-wisps", 32, size="600x800"),
)


@dataclass(frozen=True)
class Difference:
    """Of two pictures: the mean over channels, and the share of pixels with every channel within the tolerance."""

    mean: float
    share_within: float
    picture: Image.Image  # eight times as strong

    def is_tolerable(self):
        return self.mean <= MEAN_TOLERANCE and self.share_within >= SHARE_WITHIN

    def __str__(self):
        return (f"{self.mean:.2f} levels on average (at most {MEAN_TOLERANCE}), {100 * self.share_within:.2f} % of the "
                f"pixels within {PIXEL_TOLERANCE} levels (at least {100 * SHARE_WITHIN:g} %)")


def difference(expected_path, actual_path):
    """None where the pictures have different sizes."""
    expected, actual = (np.asarray(Image.open(path).convert("RGB"), int) for path in (expected_path, actual_path))
    if expected.shape != actual.shape:
        return None
    distance = np.abs(expected - actual)
    return Difference(float(distance.mean()), float((distance.max(2) <= PIXEL_TOLERANCE).mean()),
                      Image.fromarray(np.minimum(8 * distance, 255).astype(np.uint8)))
