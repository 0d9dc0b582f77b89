"""Connected pixels, numbered, measured, selected. A particle is a set of connected pixels other than 0; reports
are arrays of records, which pandas.DataFrame takes as they are."""

from __future__ import annotations

from ctypes import byref, c_int32
from typing import Any, Mapping, Sequence

import numpy as np
from numpy.typing import NDArray

from . import lowlevel
from ._arguments import Choice, Table, choice, connectivity_of, target, wraps
from .constants import ParticleMeasure
from .image import Image, ImageLike, PixelType, as_image
from .records import BASIC_PARTICLE_REPORT, PARTICLE_CRITERION, PARTICLE_REPORT


@wraps("ZEL_Label")
def label(
    source: ImageLike, connectivity: int = 8, dtype: PixelType = np.int16, out: Image | None = None
) -> tuple[Image, int]:
    """The number of each pixel's particle, and how many particles there are."""
    image, count = as_image(source), c_int32()
    destination = target(out, image, dtype)
    bordered = image.with_border(2)
    lowlevel.ZEL_Label(bordered, destination, connectivity_of(connectivity), byref(count))
    return destination, count.value


@wraps("ZEL_BasicParticle")
def basic_particles(image: ImageLike, connectivity: int = 8) -> NDArray[Any]:
    """Area and bounding rectangle of each particle."""
    source, reports, count = as_image(image).with_border(2), Table(BASIC_PARTICLE_REPORT), c_int32()
    lowlevel.ZEL_BasicParticle(source, connectivity_of(connectivity), reports.address(), byref(count))
    return reports.take(count)


@wraps("ZEL_Particle")
def particles(image: ImageLike, connectivity: int = 8) -> NDArray[Any]:
    """Measures each particle; particle_measures() derives more from these reports."""
    source, reports, count = as_image(image).with_border(2), Table(PARTICLE_REPORT), c_int32()
    lowlevel.ZEL_Particle(source, connectivity_of(connectivity), reports.address(), byref(count))
    return reports.take(count)


@wraps("ZEL_ParticleCoeffs")
def particle_measures(
    image: ImageLike, reports: NDArray[Any], measures: Sequence[Choice] | None = None
) -> NDArray[Any]:
    """Measures of particles by their names in small letters, or all 50, as an array with a field for each."""
    chosen = list(ParticleMeasure) if measures is None else measures
    numbers = np.array([choice(ParticleMeasure, each) for each in chosen], np.uint32)
    names = [ParticleMeasure(number).name.lower() for number in numbers]
    values = np.zeros((len(reports), len(numbers)), np.float32)
    records = np.ascontiguousarray(reports, PARTICLE_REPORT)
    lowlevel.ZEL_ParticleCoeffs(as_image(image), numbers, len(numbers), records, len(records), values)
    return values.view([(name, np.float32) for name in names]).reshape(-1)


@wraps("ZEL_ParticleDiscrim")
def select_particles(reports: NDArray[Any], ranges: Mapping[Choice, tuple[float, float]]) -> NDArray[Any]:
    """The reports whose fields lie in all of the given ranges, as {"area_pixels": (50, 1000)}."""
    rows = [(choice(ParticleMeasure, name), low, high) for name, (low, high) in ranges.items()]
    criteria = np.array(rows, PARTICLE_CRITERION)
    kept, count = np.array(reports, PARTICLE_REPORT), c_int32()
    if len(criteria) == 0:
        return kept
    lowlevel.ZEL_ParticleDiscrim(0, criteria, len(criteria), kept, len(kept), byref(count))
    return kept[: count.value]
