"""Frames of the clouds, drawn by the program itself."""
import pathlib
import subprocess

# The times that seed the clouds. The hue that each begins with follows from it; these are spread evenly over the
# circle, in an order in which each four lie in its four quarters.
SEEDS = (97, 122, 15, 40, 74, 163, 6, 81, 130, 16, 23, 73, 7, 32, 89, 64)

# For what averages over many clouds, whatever their hues.
MANY_SEEDS = tuple(range(1, 65))

HUE_PLACES = 4
QUARTER_OF_HUES = 24  # seconds: at 0.0105 turns a second
FRAMES_OF_FADE = 60  # at 60 Hz: clouds fade in over one second


class Program:
    """Draws into a folder of its own."""

    def __init__(self, path, directory, size):
        self._path = path
        self._directory = pathlib.Path(directory)
        self._size = size

    def first_frame(self, seed, settings=()):
        """A frame that the clouds begin with."""
        return self.draw(f"{seed}{_name(settings)}", seed, settings, "--fps", "1", "--frames", "2")[-1]

    def frames_around_hues(self, seed):
        """Frames of four hues, a quarter of the circle apart."""
        return self.draw(f"{seed}-hues", seed, (), "--fps", "1", "--frames", str(HUE_PLACES * QUARTER_OF_HUES),
                         "--every", str(QUARTER_OF_HUES))

    def consecutive_frames(self, seed, settings=()):
        """The first two frames after the fade, at 60 Hz."""
        for number in (1, 2):
            frames = self.draw(f"{seed}{_name(settings)}-pair", seed, settings, "--frames",
                               str(FRAMES_OF_FADE + number))
        return frames

    def draw(self, name, seed, settings, *options):
        """Runs the program, and gives the pictures that are then in the folder of that name."""
        directory = self._directory / f"{self._size}-{name}"
        subprocess.run([self._path, "--headless", "--size", self._size, "--time", str(seed), "--output", directory,
                        *(word for setting in settings for word in ("--set", setting)), *options],
                       check=True, stdout=subprocess.DEVNULL)
        return sorted(directory.glob("*.png"))


def _name(settings):
    return "".join(f"-{setting}" for setting in settings)
