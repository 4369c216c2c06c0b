"""The middleware below the library: its clock and its log."""

from . import _skeigiot

__all__: list[str] = []
