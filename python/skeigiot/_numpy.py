"""NumPy, imported when it is first needed: it takes longer to import than the rest of the package."""

from __future__ import annotations

import importlib
from typing import TYPE_CHECKING, Any

if TYPE_CHECKING:
    import numpy as np
else:

    class _Numpy:
        """Replaces the module until it is needed; attributes are kept after their first use."""

        def __getattr__(self, name: str) -> Any:
            value = getattr(importlib.import_module("numpy"), name)
            setattr(self, name, value)
            return value

    np = _Numpy()

__all__ = ["np"]
