"""What the program's frames measure: over many seeds and hues, and at the ends of the settings."""
import concurrent.futures
import os

from measuring import ALL, FAULTS, TONE_AND_COLOUR, measures_of_frame, measures_of_pair

ENDS_OF_SETTINGS = [f"{key}={value}" for key in ("Colors", "Brightness", "Speed", "Zoom") for value in (0, 1)]


def survey_of_defaults(program, seeds, seeds_in_motion, kinds=ALL):
    """The measures of a frame for each seed, of three more of other hues, and of what moves."""
    with _workers() as workers:
        around = [workers.submit(_around_hues, program, seed, kinds) for seed in seeds]
        pairs = [workers.submit(_motion, program, seed, ()) for seed in seeds_in_motion]
        return [measures for task in around + pairs for measures in task.result()]


def survey_of_ends(program, seeds, seeds_in_motion):
    """The measures of faults for each setting that is all the way down or up while the others are at their defaults."""
    with _workers() as workers:
        tasks = {setting: [workers.submit(_still, program, seed, (setting,)) for seed in seeds] +
                          [workers.submit(_motion, program, seed, (setting,)) for seed in seeds_in_motion]
                 for setting in ENDS_OF_SETTINGS}
        return {setting: [measures for task in of_setting for measures in task.result()]
                for setting, of_setting in tasks.items()}


def _workers():
    return concurrent.futures.ProcessPoolExecutor(os.cpu_count())


def _around_hues(program, seed, kinds):
    """The hue is of no account to the forms, so that those are measured once."""
    first, *others = program.frames_around_hues(seed)
    return [measures_of_frame(first, kinds), *(measures_of_frame(frame, TONE_AND_COLOUR) for frame in others)]


def _still(program, seed, settings):
    return [measures_of_frame(program.frame(seed, settings), FAULTS)]


def _motion(program, seed, settings):
    return [measures_of_pair(*program.consecutive_frames(seed, settings))]
