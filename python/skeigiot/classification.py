"""Scores of mood classes, and the rules by which one of them wins."""

from . import _skeigiot

__all__: list[str] = []
