"""Estimates how the persons in front of a robot feel and attend."""

from . import classification, ko

__all__ = ["classification", "ko"]
