"""The tokens of C++ source, without comments and preprocessor lines."""

from __future__ import annotations

import dataclasses
import re

_PATTERN = re.compile(
    r"""
    (?P<comment>//[^\n]* | /\*.*?\*/)
  | (?P<preprocessor>^[ \t]*\#(?:[^\n\\]|\\.)*)
  | (?P<string>(?:u8|[uUL])?(?:R"(?P<delimiter>[^(\s]*)\(.*?\)(?P=delimiter)" | "(?:[^"\\\n]|\\.)*"))
  | (?P<character>(?:u8|[uUL])?'(?:[^'\\\n]|\\.)+')
  | (?P<number>\.?\d(?:[eEpP][+-](?=\d)|'(?=\w)|[\w.])*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<mark><<=|>>=|->|::|\.\.\.|\+\+|--|<<|>>|&&|\|\||[-+*/%&|^<>=!]=|[^\s\w])
    """,
    re.VERBOSE | re.DOTALL | re.MULTILINE)

_IGNORED = ("comment", "preprocessor")
_CLOSING = {"(": ")", "[": "]", "{": "}"}


@dataclasses.dataclass(frozen=True)
class Token:
    """A token and its place in the text."""

    kind: str
    text: str
    start: int

    @property
    def end(self) -> int:
        """The place of the next character."""
        return self.start + len(self.text)


def tokens_of(text: str) -> list[Token]:
    """Returns the tokens of the text."""
    return [Token(match.lastgroup or "", match.group(), match.start())
            for match in _PATTERN.finditer(text) if match.lastgroup not in _IGNORED]


def brackets_of(tokens: list[Token]) -> dict[int, int]:
    """Returns the index of the closing bracket for each opening one."""
    partners = {}
    opened = []
    for index, token in enumerate(tokens):
        if token.kind != "mark":
            continue
        if token.text in _CLOSING:
            opened.append(index)
        elif opened and token.text == _CLOSING[tokens[opened[-1]].text]:
            partners[opened.pop()] = index
    return partners


def without_comments(text: str) -> str:
    """Returns the text without its comments."""
    return _PATTERN.sub(lambda match: "" if match.lastgroup == "comment" else match.group(), text)
