"""Summaries as Markdown."""
import math

from measuring import summary
from thresholds import FAULTS, THRESHOLDS


def number(value):
    return "" if math.isnan(value) else f"{value:.3g}"


def table(*rows):
    """The first row is the head."""
    head, *body = [f"| {' | '.join(row)} |" for row in rows]
    return "\n".join([head, "|---" * len(rows[0]) + "|", *body])


def summary_table(measured):
    """Each measure over all frames, with what is asked of it."""
    rows = []
    for key, mean, worst, holds in summary(measured):
        threshold = THRESHOLDS[key]
        of = ", each frame" if threshold.of_each else ""
        judged = ("pass" if holds else "**missed**") if str(threshold) and not math.isnan(mean) else ""
        rows.append((threshold.name, number(mean), number(worst), f"{threshold}{of}", judged))
    return table(("measure", "mean", "worst frame", "threshold", ""), *rows)


def ends_table(measured_by_setting):
    """The measures of faults, of each setting what is judged: the mean, or the worst frame."""
    summaries = {setting: {key: rest for key, *rest in summary(measured, FAULTS)}
                 for setting, measured in measured_by_setting.items()}
    rows = []
    for key in next(iter(summaries.values())):
        threshold = THRESHOLDS[key]
        cells = []
        for summaries_of_setting in summaries.values():
            mean, worst, holds = summaries_of_setting[key]
            value = number(worst if threshold.of_each else mean)
            cells.append(value if holds else f"{value} **missed**")
        rows.append((threshold.name, str(threshold), *cells))
    return table(("measure", "threshold", *summaries), *rows)


def hues_table(measured):
    """How bright and strong the frames of each quarter of the hue circle are."""
    quarters = [[] for _ in range(4)]
    for measures in measured:
        if "hue" in measures:
            quarters[int(measures["hue"] // 90) % 4].append(measures)
    keys = ("luminance_1", "luminance_50", "luminance_99", "clipped_high", "pinned_to_zero", "hue_deviation", "chroma")
    rows = []
    for quarter, frames in enumerate(quarters):
        means = [number(sum(frame[key] for frame in frames) / len(frames)) if frames else "" for key in keys]
        rows.append((f"{quarter * 90} to {quarter * 90 + 90}", str(len(frames)), *means))
    return table(("mean hue, degrees", "frames", *(THRESHOLDS[key].name for key in keys)), *rows)
