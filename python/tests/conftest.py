"""What the tests share: random arrays that are the same in each run."""

import os

import numpy as np
import pytest

os.environ.pop("DISPLAY", None)  # windows stay in memory, whatever desktop there is


@pytest.fixture
def rng():
    return np.random.default_rng(20261122)


@pytest.fixture
def gray(rng):
    return rng.integers(0, 256, (37, 45), dtype=np.uint8)


@pytest.fixture
def blobs(rng):
    """Particles of 0 and 1 with holes, of all shapes."""
    from scipy import ndimage

    return (ndimage.gaussian_filter(rng.normal(size=(80, 90)), 2) > 0.05).astype(np.uint8)
