"""The few statistics that the comparisons need."""

import math


def mean(values):
    values = list(values)
    return math.fsum(values) / len(values) if values else math.nan


def median(values):
    ordered = sorted(values)
    middle = len(ordered) // 2
    return ordered[middle] if len(ordered) % 2 else (ordered[middle - 1] + ordered[middle]) / 2


def share(conditions):
    """Share of the conditions that hold."""
    return mean(1.0 if condition else 0.0 for condition in conditions)


def correlation(xs, ys):
    """Pearson's; 0 if one of them does not vary."""
    mean_x, mean_y = mean(xs), mean(ys)
    deviations_x = [x - mean_x for x in xs]
    deviations_y = [y - mean_y for y in ys]
    spread = math.sqrt(math.fsum(x * x for x in deviations_x) * math.fsum(y * y for y in deviations_y))
    return math.fsum(x * y for x, y in zip(deviations_x, deviations_y)) / spread if spread else 0.0


def rank_correlation(xs, ys):
    """Spearman's."""
    return correlation(_ranks(xs), _ranks(ys))


def _ranks(values):
    return [sum(other < value for other in values) + (sum(other == value for other in values) - 1) / 2
            for value in values]


def margin(upper, lower):
    """How far the lowest of one group is above the highest of the other; positive if they are separate."""
    return min(upper) - max(lower)
