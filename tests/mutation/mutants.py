"""Finds possible changes in C++ source, one thing at a time.

Works on the tokens of a text in the form that clang-format gives it: there, operators with two operands have a space on
either side, and the angle brackets, references and pointers of types have not.
"""

from __future__ import annotations

import dataclasses
import decimal
import hashlib
import re
from collections.abc import Iterator

from statements import Source, Statement
from tokens import Token, tokens_of, without_comments

_OPERATORS = {
    "arithmetic": {"+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"], "+=": ["-="], "-=": ["+="],
                   "*=": ["/="], "/=": ["*="], "&": ["|"], "|": ["&"], "^": ["&"], "<<": [">>"], ">>": ["<<"]},
    "comparison": {"<": ["<=", ">="], ">": [">=", "<="], "<=": ["<", ">"], ">=": [">", "<"], "==": ["!="],
                   "!=": ["=="]},
    "logic": {"&&": ["||"], "||": ["&&"]},
}
_STEPS = {"++": "--", "--": "++"}
_FLAGS = {"true": "false", "false": "true"}
_NUMBER = re.compile(r"(?P<digits>0[xX][0-9a-fA-F']+|[\d.']+(?:[eE][+-]?\d+)?)(?P<suffix>\w*)")
_NOT_A_CALL = {"if", "for", "while", "switch", "catch", "return", "asm", "__attribute__", "sizeof", "static_assert"}
_JUMPS = {"return", "break", "continue", "throw"}
_LOCKS = re.compile(r"lock_guard|\bLock\b")


@dataclasses.dataclass(frozen=True)
class Mutant:
    """A file with one thing changed: the text from `start` to `end` is replaced."""

    file: str
    kind: str
    start: int
    end: int
    replacement: str
    line: int
    before: str  # the lines that the change touches, with single spaces
    after: str
    changes_layout: bool  # or may do so: all that includes the file has to be compiled
    number: int  # among changes of this file that look alike

    @property
    def id(self) -> str:
        """A name that stays while the changed lines do."""
        words = "\0".join((self.file, self.kind, self.before, self.after, str(self.number)))
        return hashlib.sha1(words.encode()).hexdigest()[:8]

    def applied_to(self, text: str) -> str:
        """Returns the text with the change, and with as many lines as it had."""
        lost = text.count("\n", self.start, self.end) - self.replacement.count("\n")
        return text[:self.start] + self.replacement + "\n" * lost + text[self.end:]


@dataclasses.dataclass(frozen=True)
class _Change:
    kind: str
    start: int
    end: int
    replacement: str


def find_mutants(file: str, text: str) -> list[Mutant]:
    """Returns every mutant of the text, in the order of their places."""
    changes = sorted(set(_changes(text)), key=lambda change: (change.start, change.end, change.replacement))
    safe_places = _safe_places(text)
    mutants = []
    alike: dict[tuple[str, str, str], int] = {}
    seen = set()
    for change in changes:
        line, before, after = _shown(text, change)
        if before == after or (line, before, after) in seen:
            continue
        seen.add((line, before, after))
        number = alike[change.kind, before, after] = alike.get((change.kind, before, after), 0) + 1
        mutants.append(Mutant(file, change.kind, change.start, change.end, change.replacement, line, before, after,
                              not any(change.start in place for place in safe_places), number))
    return mutants


def _safe_places(text: str) -> list[range]:
    """Returns where no change alters the layout of a class: in functions, and in constants at the start of a line."""
    source = Source(tokens_of(text))
    functions = [range(source.tokens[opening].end, source.tokens[closing].start)
                 for opening, closing in source.partner.items()
                 if source.text(opening) == "{" and source.is_code(opening)]
    constants = [range(*match.span()) for match in re.finditer(r"^constexpr .*;$", text, re.MULTILINE)]
    return functions + constants


def _shown(text: str, change: _Change) -> tuple[int, str, str]:
    first = text.rfind("\n", 0, change.start) + 1
    last = text.find("\n", change.end)
    last = len(text) if last < 0 else last
    changed = text[first:change.start] + change.replacement + text[change.end:last]
    return text.count("\n", 0, change.start) + 1, _compact(text[first:last]), _compact(changed)


def _compact(text: str) -> str:
    """Returns the text without comments and with single spaces."""
    return " ".join(without_comments(text).split())


def _changes(text: str) -> Iterator[_Change]:
    source = Source(tokens_of(text))
    for index, token in enumerate(source.tokens):
        yield from _operator_changes(source, index, text)
        yield from _sign_changes(source, index, text)
        yield from _constant_changes(source, index, token)
        yield from _condition_changes(source, index, text)
        yield from _order_changes(source, index, text)
    yield from _statement_changes(source, text)


def _replaced(kind: str, token: Token, replacement: str) -> _Change:
    return _Change(kind, token.start, token.end, replacement)


def _operator_changes(source: Source, index: int, text: str) -> Iterator[_Change]:
    token = source.tokens[index]
    if token.kind != "mark":
        return
    if token.text in _STEPS:
        yield _replaced("arithmetic", token, _STEPS[token.text])
    has_two_operands = text[token.start - 1:token.start].isspace() and text[token.end:token.end + 1].isspace()
    if not has_two_operands or (token.text in {"<<", ">>"} and _is_stream(source, index)):
        return
    for kind, partners in _OPERATORS.items():
        for partner in partners.get(token.text, []):
            yield _replaced(kind, token, partner)


def _is_stream(source: Source, index: int) -> bool:
    """Returns whether the shift writes to a stream: its expression begins with a name and a shift."""
    while not _begins_expression(source, index):
        index = source.before(index)
    return source.tokens[index].kind == "word" and source.text(index + 1) == "<<"


def _begins_expression(source: Source, index: int) -> bool:
    if source.text(index - 1) in {";", "{", "}", "(", ""}:
        return True
    before = source.tokens[index - 1]
    return source.tokens[index].kind == "word" and (before.kind == "word" or before.text == ")")


def _sign_changes(source: Source, index: int, text: str) -> Iterator[_Change]:
    token = source.tokens[index]
    is_attached = not text[token.end:token.end + 1].isspace()
    if token.text == "-" and token.kind == "mark" and is_attached:
        yield _replaced("arithmetic", token, "")
    if token.text == "!" and token.kind == "mark":
        yield _replaced("negation", token, "")


def _constant_changes(source: Source, index: int, token: Token) -> Iterator[_Change]:
    if token.text in _FLAGS:
        yield _replaced("constant", token, _FLAGS[token.text])
    elif token.kind == "number":
        for other in _other_numbers(token.text):
            yield _replaced("constant", token, other)
    elif token.kind == "character":
        yield _replaced("text", token, "'~'")
    elif token.kind == "string" and token.text.endswith('"') and source.text(index - 2) != "asm" and (
            source.text(index - 3) != "asm"):
        yield _replaced("text", token, token.text[:-1] + '~"')


def _other_numbers(number: str) -> Iterator[str]:
    match = _NUMBER.fullmatch(number)
    if match is None:
        return
    digits, suffix = match["digits"].replace("'", ""), match["suffix"]
    if digits.lower().startswith("0x") or digits.isdigit():
        base, form = _whole_number_form(digits)
        value = int(digits, base)
        for other in (value + 1, value - 1):
            if other >= 0:
                yield form.format(other) + suffix
        return
    real = decimal.Decimal(digits)
    if real == 0:
        yield "1." + suffix
        return
    scaled = str((real * decimal.Decimal("1.01")).normalize())
    yield (scaled if "." in scaled or "E" in scaled else scaled + ".") + suffix
    yield "0." + suffix


def _whole_number_form(digits: str) -> tuple[int, str]:
    """Returns the base in which the number is written, and how to write another one in it."""
    if digits[:2].lower() == "0x":
        return 16, "{:#x}"
    return (8, "0{:o}") if len(digits) > 1 and digits.startswith("0") else (10, "{}")


def _condition_changes(source: Source, index: int, text: str) -> Iterator[_Change]:
    word = source.text(index)
    if word in {"if", "while"} and source.tokens[index].kind == "word":
        opening = index + 2 if source.text(index + 1) == "constexpr" else index + 1
        inside = {source.text(i) for i in range(opening + 1, source.partner[opening])}
        is_covered = source.text(opening + 1) == "!" or (inside & {"==", "!="} and not inside & {"&&", "||"})
        if not is_covered and not inside & {"=", ";"}:
            start, end = source.tokens[opening].end, source.tokens[source.partner[opening]].start
            yield _Change("condition", start, end, f"!({text[start:end]})")
    if word == "?":
        yield _branches_swapped(source, index, text)


def _branches_swapped(source: Source, question: int, text: str) -> _Change:
    colon = _scan(source, question + 1, {":"}, opens="?")
    end = _scan(source, colon + 1, {";", ",", ":", ")", "]", "}"}, opens="?")
    first = text[source.tokens[question + 1].start:source.tokens[colon - 1].end]
    second = text[source.tokens[colon + 1].start:source.tokens[end - 1].end]
    return _Change("condition", source.tokens[question + 1].start, source.tokens[end - 1].end,
                   f"({second}) : ({first})")


def _scan(source: Source, index: int, ends: set[str], opens: str) -> int:
    """Returns the index of the first token of `ends` that neither brackets nor `opens` with its colon enclose."""
    depth = 0
    while index < len(source.tokens) and (depth > 0 or source.text(index) not in ends):
        if source.text(index) == opens:
            depth += 1
        elif source.text(index) == ":" and depth > 0:
            depth -= 1
        index = source.after(index)
    return index


def _order_changes(source: Source, index: int, text: str) -> Iterator[_Change]:
    """Swaps neighbours in the arguments of a call or the items of a list."""
    if index not in source.partner or not _opens_a_list(source, index):
        return
    items = _items(source, index)
    for (first, first_end), (second, second_end) in zip(items, items[1:]):
        one = text[source.tokens[first].start:source.tokens[first_end - 1].end]
        other = text[source.tokens[second].start:source.tokens[second_end - 1].end]
        if one == other or _is_parameter(source, first, first_end) or _is_parameter(source, second, second_end):
            continue
        between = text[source.tokens[first_end - 1].end:source.tokens[second].start]
        yield _Change("order", source.tokens[first].start, source.tokens[second_end - 1].end, other + between + one)


def _opens_a_list(source: Source, index: int) -> bool:
    if source.text(index) == "(":
        before = source.tokens[index - 1]
        return before.text == ">" or (before.kind == "word" and before.text not in _NOT_A_CALL)
    return source.text(index) == "{" and not source.is_code(index) and not source.is_namespace(index)


def _items(source: Source, opening: int) -> list[tuple[int, int]]:
    items = []
    first = index = opening + 1
    while index < source.partner[opening]:
        if source.text(index) == ";":
            return []
        if source.text(index) == ",":
            items.append((first, index))
            first = index + 1
        index = source.after(index)
    if first < index:
        items.append((first, index))
    return items


def _is_parameter(source: Source, first: int, end: int) -> bool:
    return source.text(first) == "[" or source.is_declaration(Statement(first, end))


def _statement_changes(source: Source, text: str) -> Iterator[_Change]:
    for block in source.blocks():
        for statement, successor in zip(block, [*block[1:], None]):
            if statement is None:
                continue
            start, end = _span(source, statement)
            if _may_go(source, statement, text, has_successor=statement is not block[-1]):
                yield _Change("statement", start, end, ";")
            if successor is not None and _may_swap(source, statement, successor):
                second_start, second_end = _span(source, successor)
                yield _Change("order", start, second_end,
                              text[second_start:second_end] + text[end:second_start] + text[start:end])


def _span(source: Source, statement: Statement) -> tuple[int, int]:
    return source.tokens[statement.first].start, source.tokens[statement.end - 1].end


def _may_go(source: Source, statement: Statement, text: str, has_successor: bool) -> bool:
    start, end = _span(source, statement)
    if source.is_declaration(statement):
        return _LOCKS.search(text[start:end]) is not None
    is_result = source.text(statement.first) == "return" and source.text(statement.first + 1) != ";"
    return statement.end - statement.first > 1 and (
        not is_result or statement.is_conditional or has_successor)


def _may_swap(source: Source, first: Statement, second: Statement) -> bool:
    """Returns whether the order of the two could matter: one sets what the other uses, or is a call, which may."""
    if first.is_conditional or second.is_conditional:
        return False
    if source.text(first.first) in _JUMPS or source.text(second.first) in _JUMPS - {"return"}:
        return False
    first_set, second_set = source.set_name(first), source.set_name(second)
    if source.is_declaration(first) and first_set in source.names(second):
        return False  # would not compile
    if "constexpr" in source.names(first) | source.names(second):
        return False
    if first_set and second_set:
        return first_set in source.names(second) or second_set in source.names(first)
    return all(not source.is_declaration(one) or source.has_call(one) for one in (first, second))
