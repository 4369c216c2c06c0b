"""Agreement with labels over time, by `skeigiot agree`: of conversations and of acted clips."""

import conversations
import faces
from tables import number, table

LABEL_COLUMNS = ["start", "end", "value", "person"]


def validate(command, data):
    """The table."""
    rows = [_row("gaze at the partner, coded frame by frame", _of_conversations(command, data))]
    if (data / "labels" / faces.CLIPS).exists():
        rows.append(_row("emotion acted in a clip", _of_clips(command, data)))
    return {"agreement": table(["label", "persons or clips", "kappa", "middle 95 %", "accuracy", "F1",
                                "best delay [s]", "kappa with it"], rows)}


def _of_conversations(command, data):
    rows, labels = conversations.gaze_labels(data)
    return command.agreement(command.written_table("conversations.csv", conversations.COLUMNS, rows),
                             command.written_table("gaze.csv", LABEL_COLUMNS, labels),
                             "--fps", str(conversations.FRAMES_PER_SECOND))


def _of_clips(command, data):
    columns, rows, labels = faces.clip_labels(data / "labels" / faces.CLIPS)
    return command.agreement(command.written_table("clips.csv", columns, rows),
                             command.written_table("emotions.csv", LABEL_COLUMNS, labels))


def _row(name, comparisons):
    together = comparisons[0]
    kappa = _measure(together["undelayed"], "kappa")
    return [name, str(together["undelayed"]["units"]), number(kappa["value"]),
            f"{number(kappa['low'])} to {number(kappa['high'])}",
            number(_measure(together["undelayed"], "accuracy")["value"]),
            ", ".join(f"{measure['class']} {number(measure['value'])}"
                      for measure in together["undelayed"]["measures"] if measure["name"] == "f1"),
            f"{together['best']['delay']:.1f}", number(_measure(together["best"], "kappa")["value"])]


def _measure(at_delay, name):
    return next(measure for measure in at_delay["measures"] if measure["name"] == name)
