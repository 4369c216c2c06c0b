"""The compiled part of the package; its names are those of the packages that import them."""
