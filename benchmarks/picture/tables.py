"""Summaries as Markdown."""
import math

from thresholds import THRESHOLDS


def number(value):
    return "" if math.isnan(value) else f"{value:.3g}"


def summary_table(rows):
    """Of rows of `measuring.summary`."""
    lines = ["| measure | mean | worst frame | threshold | |", "|---|---|---|---|---|"]
    for key, mean, worst, holds in rows:
        threshold = THRESHOLDS[key]
        of = " in each frame" if threshold.of_each else ""
        judged = ("pass" if holds else "**missed**") if str(threshold) else ""
        lines.append(f"| {threshold.name} | {number(mean)} | {number(worst)} | {threshold}{of} | {judged} |")
    return "\n".join(lines)
