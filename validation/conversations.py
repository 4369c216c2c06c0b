"""Conversations of two persons, with smiles by OpenFace and gaze coded by hand."""

from typing import NamedTuple

from alternatives import ActionUnits, options
from command import held
from measures import correlation, mean, median, share
from tables import Check, number, numbers, of_hundred, rows_of, table

NAMES = ["s1", "s5", "s11", "s13"]
PARTNER, CARD, ROOM = 3, 2, 1  # the codes of the gaze
FRAMES_PER_SECOND = 30
SETTLED_AFTER = 2 * FRAMES_PER_SECOND
ENGAGED_FROM = 0.6
POSITIVE_FROM = 0.2
CLEAR_SMILE, NO_SMILE = 2.0, 0.5  # AU12_r, 0 to 5
AWAY = 30  # degrees; our choice, the coding holds none
OTHER_ANGLES = [15, 20, 45]
COLUMNS = ["frame", "face_id", "confidence", "success", "gaze_angle_x", "gaze_angle_y", "AU06_r", "AU12_r"]
MEASURES = ["valence with AU12_r (D4)", "valence above 0.2 with a clear smile, without (D5)",
            "together, strangers (D6)"]


class Person(NamedTuple):
    """A person in a conversation: the codes and the estimates, frame by frame."""

    conversation: str
    name: str
    codes: list
    smiles: list
    valences: list
    attentions: list


class Looks(NamedTuple):
    """How attention follows looks at the partner and away that last."""

    rises: list
    falls: list
    seconds_to_rise: list
    seconds_to_fall: list


def validate(command, data):
    """Checks and tables."""
    conversations = _conversations(data)
    persons = _persons(command, conversations)
    return {
        "conversation_checks": [_attention_while_looking(persons), _attention_after_changes(persons),
                                       _time_with_attention(persons), _valence_with_smiles(persons),
                                       _valence_of_clear_smiles(persons), _smiles_are_answered(persons)],
        "conversation_persons": _table_of_persons(persons),
        "conversation_angles": _table_of_angles(command, conversations, persons),
    }


def path_of(data, name):
    return data / "dyads" / f"dyad_{name}_1080p.csv.gz"


def _persons(command, conversations, *options, away=AWAY):
    persons = []
    for name, rows in conversations.items():
        states = command.states(_as_openface(command, name, rows, away), "--fps", str(FRAMES_PER_SECOND), *options)
        persons += [_person(name, letter, rows, states[number]) for number, letter in enumerate("AB")]
    return persons


def _as_openface(command, name, rows, away):
    """A file like one of OpenFace whose eyes look in the coded directions."""
    return command.written_table(
        f"conversation_{name}.csv", COLUMNS,
        [_openface_row(row["frame"], number, row, letter, away) for row in rows for number, letter in enumerate("AB")])


def _openface_row(frame, number, row, letter, away):
    return [frame, number, 1, 1, *_gaze(_code(row, letter), away), row[f"{letter}_AU06_r"], row[f"{letter}_AU12_r"]]


def gaze_labels(data):
    """A table of OpenFace with all persons, and labels of their coded gaze, as rows."""
    recording, labels = [], []
    for first, rows in zip(range(0, 2 * len(NAMES), 2), _conversations(data).values()):
        for number, letter in enumerate("AB", first):
            recording += [_openface_row(index, number, row, letter, AWAY) for index, row in enumerate(rows)]
            labels += [[start / FRAMES_PER_SECOND, end / FRAMES_PER_SECOND,
                        "engaged" if at_partner else "not-engaged", number]
                       for start, end, at_partner in _runs([_code(row, letter) == PARTNER for row in rows])]
    return sorted(recording), labels


def _runs(values):
    """Start, end and value of each stretch of equal values."""
    ends = [index for index in range(1, len(values)) if values[index] != values[index - 1]] + [len(values)]
    return [(start, end, values[start]) for start, end in zip([0, *ends], ends)]


def _gaze(code, away):
    radians = 0.017453293 * away
    return {PARTNER: (0, 0), CARD: (0, radians), ROOM: (radians, 0)}[code]


def _code(row, letter):
    return int(float(row[f"{letter}_gaze_roi"]))


def _person(conversation, letter, rows, states):
    states = held(states, len(rows), FRAMES_PER_SECOND)
    return Person(conversation, letter, [_code(row, letter) for row in rows],
                  [float(row[f"{letter}_AU12_r"]) for row in rows],
                  [state.valence for state in states], [state.attention for state in states])


def _means_by_look(person):
    return tuple(mean(attention for attention, code in zip(person.attentions, person.codes)
                      if (code == PARTNER) == at_partner) for at_partner in (True, False))


def _attention_while_looking(persons):
    differences = [at_partner - away for at_partner, away in map(_means_by_look, persons)]
    return Check("D1", "each person's mean attention while at the partner's face is above that while away",
                 f"above by {numbers(sorted(differences))}", min(differences) > 0)


def _looks(persons):
    looks = Looks([], [], [], [])
    for person in persons:
        at_partner = [code == PARTNER for code in person.codes]
        engaged = [attention >= ENGAGED_FROM for attention in person.attentions]
        for frame in _lasting_changes(at_partner):
            looked = at_partner[frame]
            (looks.rises if looked else looks.falls).append(engaged[frame + SETTLED_AFTER] == looked)
            if engaged[frame] != looked and looked in engaged[frame:]:
                (looks.seconds_to_rise if looked else looks.seconds_to_fall).append(
                    engaged[frame:].index(looked) / FRAMES_PER_SECOND)
    return looks


def _lasting_changes(at_partner):
    return [frame for frame in range(1, len(at_partner) - SETTLED_AFTER)
            if at_partner[frame] != at_partner[frame - 1]
            and len(set(at_partner[frame:frame + SETTLED_AFTER + 1])) == 1]


def _attention_after_changes(persons):
    looks = _looks(persons)
    return Check("D2", "2 s after a change to the partner's face that lasts, attention is at 0.6 or more in 95 of 100 "
                 "cases; 2 s after a change away from it, below 0.6 in 95 of 100",
                 f"{of_hundred(looks.rises)} of 100 ({len(looks.rises)} changes, half of them within "
                 f"{number(median(looks.seconds_to_rise))} s); {of_hundred(looks.falls)} of 100 "
                 f"({len(looks.falls)} changes, half of them within {number(median(looks.seconds_to_fall))} s)",
                 min(share(looks.rises), share(looks.falls)) >= 0.95)


def _shares(person):
    return (share(code == PARTNER for code in person.codes),
            share(attention >= ENGAGED_FROM for attention in person.attentions))


def _time_with_attention(persons):
    differences = [engaged - coded for coded, engaged in map(_shares, persons)]
    return Check("D3", "the share of time with attention of 0.6 or more is within 0.1 of the share of time at the "
                 "partner's face, for each person",
                 f"differs by {numbers(sorted(differences))}", max(map(abs, differences)) <= 0.1)


def _correlations_with_smiles(persons):
    return [correlation(person.valences, person.smiles) for person in persons]


def _valence_with_smiles(persons):
    correlations = _correlations_with_smiles(persons)
    return Check("D4", "valence correlates with AU12_r in each person, 0.5 or more on average",
                 f"{numbers(sorted(correlations))}; {number(mean(correlations))} on average",
                 min(correlations) > 0 and mean(correlations) >= 0.5)


def _positive_when_smiling(persons):
    frames = [frame for person in persons for frame in zip(person.smiles, person.valences)]
    return (share(valence > POSITIVE_FROM for smile, valence in frames if smile >= CLEAR_SMILE),
            share(valence > POSITIVE_FROM for smile, valence in frames if smile < NO_SMILE))


def _valence_of_clear_smiles(persons):
    smiling, serious = _positive_when_smiling(persons)
    return Check("D5", "of the time with a clear smile (AU12_r of 2 or more) at least half has a valence above 0.2, of "
                 "that without (AU12_r below 0.5) at most a tenth", f"{number(smiling)}; {number(serious)}",
                 smiling >= 0.5 and serious <= 0.1)


def _answers(persons, series):
    """Mean correlation of partners in a conversation, and of all other pairs."""
    pairs = [(one, other) for index, one in enumerate(persons) for other in persons[index + 1:]]
    return tuple(mean(correlation(series(one), series(other)) for one, other in pairs
                      if (one.conversation == other.conversation) == together) for together in (True, False))


def _smiles_are_answered(persons):
    together, strangers = _answers(persons, lambda person: person.valences)
    of_smiles = _answers(persons, lambda person: person.smiles)
    return Check("D6", "valences of those who talk with each other correlate, and more than those of persons of "
                 "different conversations, on average",
                 f"{number(together)} against {number(strangers)} (of AU12_r itself: {number(of_smiles[0])} against "
                 f"{number(of_smiles[1])})", together > max(0.0, strangers))


def _table_of_persons(persons):
    return table(["person", "share of time at the partner's face", "share of time at 0.6 or more",
                  "mean attention while at it", "while away", "mean AU12_r", "mean valence",
                  "correlation of both"],
                 [[f"{person.conversation} {person.name}", *map(number, _shares(person)),
                   *map(number, _means_by_look(person)), number(mean(person.smiles)), number(mean(person.valences)),
                   number(correlation(person.valences, person.smiles))] for person in persons])


def _table_of_angles(command, conversations, default):
    rows = [_angle_row(f"{AWAY} (chosen)", default)]
    rows += [_angle_row(str(away), _persons(command, conversations, away=away)) for away in OTHER_ANGLES]
    return table(["degrees away", "smallest difference (D1)", "up, down after 2 s, of 100 (D2)",
                  "greatest difference of shares (D3)"], rows)


def _angle_row(name, persons):
    looks = _looks(persons)
    return [name, number(min(at_partner - away for at_partner, away in map(_means_by_look, persons))),
            f"{of_hundred(looks.rises)}, {of_hundred(looks.falls)}",
            number(max(abs(engaged - coded) for coded, engaged in map(_shares, persons)))]


def measures_of(command, data, units):
    """The measures of a choice of action units."""
    return _measures(_persons(command, _conversations(data), *options(command, units)))


def _conversations(data):
    return {name: rows_of(path_of(data, name)) for name in NAMES}


def _measures(persons):
    return [number(mean(_correlations_with_smiles(persons))), numbers(_positive_when_smiling(persons)),
            numbers(_answers(persons, lambda person: person.valences))]
