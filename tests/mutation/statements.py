"""The statements of C++ source, as far as a mutation needs to know them."""

from __future__ import annotations

import dataclasses
from collections.abc import Iterator

from tokens import Token, brackets_of

_BEFORE_CODE = {")", "]", "else", "do", "try", "const", "noexcept", "override", "mutable"}
_DECLARING = {"const", "constexpr", "static", "auto", "using", "typedef", "template"}
_NOT_A_TYPE = {"return", "throw", "delete", "new", "case", "goto"}
_LABELS = {"case", "default", "public", "private", "protected"}


@dataclasses.dataclass(frozen=True)
class Statement:
    """A statement that ends at a semicolon of its own, from the token `first` to before the token `end`."""

    first: int
    end: int
    is_conditional: bool = False  # stands under a condition or a loop, without braces


class Source:
    """The tokens of a text, their brackets and their statements."""

    def __init__(self, tokens: list[Token]) -> None:
        self.tokens = tokens
        self.partner = brackets_of(tokens)
        self._opening = {closing: opening for opening, closing in self.partner.items()}

    def text(self, index: int) -> str:
        """Returns the text of a token, or an empty text."""
        return self.tokens[index].text if 0 <= index < len(self.tokens) else ""

    def after(self, index: int) -> int:
        """Returns the index after a token, or after the bracket that it opens."""
        return self.partner.get(index, index) + 1

    def before(self, index: int) -> int:
        """Returns the index before a token, or that of the bracket which the token before it closes."""
        return self._opening.get(index - 1, index - 1)

    def blocks(self) -> Iterator[list[Statement | None]]:
        """Yields the statements of each block of code; None stands for one that is not simple, or a label."""
        for index in sorted(self.partner):
            if self.text(index) == "{" and self.is_code(index):
                yield self._statements(index + 1, self.partner[index])

    def is_code(self, brace: int) -> bool:
        """Returns whether the brace opens a block of statements rather than a list, a class or a namespace."""
        before = self.text(brace - 1)
        if before in _BEFORE_CODE:
            return True
        return before in {"{", ";"} and self._surrounding_brace_is_code(brace)

    def is_declaration(self, statement: Statement) -> bool:
        """Returns whether the statement declares a name."""
        if self.text(statement.first) in _DECLARING:
            return True
        if self.text(statement.first) in _NOT_A_TYPE:
            return False
        words = [index for index in range(statement.first, statement.end) if self.tokens[index].kind == "word"]
        return any(self._declares(index) for index in words)

    def is_namespace(self, brace: int) -> bool:
        """Returns whether the brace opens a namespace."""
        index = brace - 1
        while index > 0 and self.text(index) != "namespace" and (
                self.tokens[index].kind == "word" or self.text(index) == "::"):
            index -= 1
        return self.text(index) == "namespace"

    def set_name(self, statement: Statement) -> str:
        """Returns the name that a declaration or an assignment sets, or nothing where it is neither."""
        for index in range(statement.first, statement.end):
            if self.text(index) in {"=", "+=", "-=", "*=", "/=", "++", "--"}:
                is_before = self.text(index) in {"++", "--"} and index == statement.first
                return self.text(index + 1 if is_before else index - 1)
            if self.text(index) in {"(", "{", "["}:
                break
        return self.text(index - 1) if self.is_declaration(statement) else ""

    def names(self, statement: Statement) -> set[str]:
        """Returns the words of the statement."""
        return {self.text(index) for index in range(statement.first, statement.end)
                if self.tokens[index].kind == "word"}

    def has_call(self, statement: Statement) -> bool:
        """Returns whether there are parentheses."""
        return any(self.text(index) == "(" for index in range(statement.first, statement.end))

    def _declares(self, word: int) -> bool:
        before = self.tokens[word - 1]
        if before.kind == "word":
            return before.text not in _NOT_A_TYPE
        is_attached = before.end < self.tokens[word].start and before.start == self.tokens[word - 2].end
        return before.text in {"&", "*", ">"} and is_attached

    def _surrounding_brace_is_code(self, brace: int) -> bool:
        around = [index for index, end in self.partner.items()
                  if index < brace < end and self.text(index) == "{"]
        return bool(around) and self.is_code(max(around))

    def _statements(self, index: int, end: int) -> list[Statement | None]:
        found: list[Statement | None] = []
        while index < end:
            index = self._statement(index, found, is_conditional=False)
        return found

    def _statement(self, index: int, found: list[Statement | None], is_conditional: bool) -> int:
        """Adds the statement to the list, and the one under it without braces; returns the index after it."""
        word = self.text(index)
        if word == "{":
            found.append(None)
            return self.after(index)
        if word in {"if", "for", "while", "switch", "catch"}:
            found.append(None)
            condition = index + 2 if self.text(index + 1) == "constexpr" else index + 1
            return self._statement(self.after(condition), found, is_conditional=True)
        if word in {"else", "do", "try"}:
            found.append(None)
            return self._statement(index + 1, found, is_conditional=True)
        if word in _LABELS:
            found.append(None)
            while self.text(index) not in {":", ""}:
                index += 1
            return index + 1
        end = index
        while end < len(self.tokens) and self.text(end) != ";":
            end = self.after(end)
        found.append(Statement(index, end + 1, is_conditional))
        return end + 1
