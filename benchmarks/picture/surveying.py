"""What the program's frames measure: over many seeds and hues, and at the ends of the settings."""
import concurrent.futures
import os

from measuring import ALL, FAULTS, GRAIN, measures_of_frame, measures_of_pair

ENDS_OF_SETTINGS = [f"{key}={value}" for key in ("Colors", "Brightness", "Speed", "Zoom") for value in (0, 1)]


def survey_of_defaults(program, seeds, seeds_in_motion):
    """The measures of four frames for each seed, of different hues, and of what moves."""
    return on_all_cores([(measures_around_hues, program, seed) for seed in seeds] +
                        [(measures_in_motion, program, seed) for seed in seeds_in_motion])


def survey_of_ends(program, seeds, seeds_in_motion):
    """The measures of faults for each setting that is all the way down or up while the others are at their defaults."""
    calls = {setting: [(measures_at, program, seed, setting) for seed in seeds] +
                      [(measures_in_motion, program, seed, setting) for seed in seeds_in_motion]
             for setting in ENDS_OF_SETTINGS}
    measured = iter(on_all_cores([call for of_setting in calls.values() for call in of_setting]))
    return {setting: [next(measured) for _ in of_setting] for setting, of_setting in calls.items()}


def survey_of_grain(program, seeds):
    """What large screens may show of the intermediate images, and what moves there."""
    return on_all_cores([call for seed in seeds
                         for call in ((measures_of_grain, program, seed), (measures_in_motion, program, seed))])


def on_all_cores(calls):
    """What these functions with their arguments give, lists of measures, in one list."""
    with concurrent.futures.ProcessPoolExecutor(os.cpu_count()) as workers:
        tasks = [workers.submit(*call) for call in calls]
        return [measures for task in tasks for measures in task.result()]


def measures_around_hues(program, seed):
    """Meanwhile the clouds have gone on by more than the picture's height, so that the forms are other ones too."""
    return [measures_of_frame(frame) for frame in program.frames_around_hues(seed)]


def measures_at(program, seed, *settings):
    """Of the first frame; away from the defaults only those of faults."""
    return [measures_of_frame(program.first_frame(seed, settings), FAULTS if settings else ALL)]


def measures_of_grain(program, seed):
    return [measures_of_frame(program.first_frame(seed), GRAIN)]


def measures_in_motion(program, seed, *settings):
    return [measures_of_pair(*program.consecutive_frames(seed, settings))]
