"""Particles, their filters and shapes, and statistics, held to SciPy."""

import numpy as np
import pytest
from scipy import ndimage

import orlune_ptk as ptk

STRUCTURES = {4: ndimage.generate_binary_structure(2, 1), 8: ndimage.generate_binary_structure(2, 2)}


@pytest.mark.parametrize("connectivity", [4, 8])
def test_labels(blobs, connectivity):
    wanted, count = ndimage.label(blobs, STRUCTURES[connectivity])
    labels, found = ptk.label(blobs, connectivity)
    assert found == count > 5
    assert np.array_equal(labels, wanted)
    narrow, _ = ptk.label(blobs, connectivity, np.uint8)
    assert np.array_equal(narrow, wanted)
    with pytest.raises(ValueError):
        ptk.label(blobs, 6)


@pytest.mark.parametrize("connectivity", [4, 8])
def test_reports(blobs, connectivity):
    labels, count = ndimage.label(blobs, STRUCTURES[connectivity])
    image = ptk.Image(blobs)
    image.calibration = (1, 0.5, 2.0)
    reports, basic = ptk.particles(image, connectivity), ptk.basic_particles(image, connectivity)
    assert len(reports) == len(basic) == count
    boxes = ndimage.find_objects(labels)
    for both in (reports, basic):
        assert np.array_equal(both["area"], ndimage.sum(blobs, labels, range(1, count + 1)))
        assert np.array_equal(both["calibrated_area"], both["area"])
        assert np.array_equal(both["top"], [box[0].start for box in boxes])
        assert np.array_equal(both["left"], [box[1].start for box in boxes])
        assert np.array_equal(both["height"], [box[0].stop - box[0].start for box in boxes])
        assert np.array_equal(both["width"], [box[1].stop - box[1].start for box in boxes])
    y, x = np.mgrid[: blobs.shape[0], : blobs.shape[1]]
    index = range(1, count + 1)
    for field, values in {"sum_x": x, "sum_y": y, "sum_xx": x * x, "sum_xy": x * y}.items():
        assert np.allclose(reports[field], ndimage.sum(values, labels, index), rtol=1e-5), field


def test_measures_have_their_names(blobs):
    reports = ptk.particles(blobs)
    some = ptk.particle_measures(blobs, reports, ["centre_of_mass_x", "centre_of_mass_y", "area_percent"])
    labels, count = ndimage.label(blobs, STRUCTURES[8])
    centres = np.array(ndimage.center_of_mass(blobs, labels, range(1, count + 1)))
    assert np.allclose(some["centre_of_mass_x"], centres[:, 1], rtol=1e-5)
    assert np.allclose(some["centre_of_mass_y"], centres[:, 0], rtol=1e-5)
    assert np.isclose(some["area_percent"].sum(), blobs.mean() * 100, rtol=1e-5)
    every = ptk.particle_measures(blobs, reports)
    assert len(every.dtype) == 50 and np.array_equal(every["area_pixels"], reports["area"])


def test_reports_go_into_a_table(blobs):
    pandas = pytest.importorskip("pandas")
    table = pandas.DataFrame(ptk.particles(blobs))
    assert table["area"].sum() == blobs.sum()


def test_selection(blobs):
    reports = ptk.particles(blobs)
    kept = ptk.select_particles(reports, {"area_pixels": (20, 300), "top": (10, 1000)})
    wanted = reports[(reports["area"] >= 20) & (reports["area"] <= 300) & (reports["top"] >= 10)]
    assert 0 < len(wanted) < len(reports)
    assert np.array_equal(kept, wanted)
    assert np.array_equal(ptk.select_particles(reports, {}), reports)


def test_holes_and_particles_at_the_edge(blobs):
    background = STRUCTURES[4]
    assert np.array_equal(ptk.fill_holes(blobs), ndimage.binary_fill_holes(blobs, background))
    labels, _ = ndimage.label(blobs, STRUCTURES[8])
    at_edge = np.unique(np.concatenate([labels[0], labels[-1], labels[:, 0], labels[:, -1]]))
    assert np.array_equal(ptk.reject_border(blobs), blobs * ~np.isin(labels, at_edge))
    holes = ndimage.label(ndimage.binary_fill_holes(blobs, background) & ~blobs.astype(bool), background)[1]
    assert ptk.particles(blobs)["nb_holes"].sum() == holes


def test_filter_by_erosion(blobs):
    labels, count = ndimage.label(blobs, STRUCTURES[8])
    left = ndimage.minimum_filter(blobs, 3, mode="nearest")
    large = np.isin(labels, np.unique(labels[left != 0])) & (labels != 0)
    assert np.array_equal(ptk.filter_by_erosion(blobs), large)
    assert np.array_equal(ptk.filter_by_erosion(blobs, remove_large=True), (blobs != 0) & ~large)


def test_magic_wand(gray):
    smooth = ndimage.gaussian_filter(gray, 3)
    y, x = 17, 20
    near = np.abs(smooth.astype(int) - smooth[y, x]) <= 5
    labels, _ = ndimage.label(near, STRUCTURES[8])
    assert np.array_equal(ptk.magic_wand(smooth, x, y, 5), labels == labels[y, x])


def test_convex_hulls():
    ring = np.zeros((40, 40), np.uint8)
    ring[5:35, 5:35] = 1
    ring[10:35, 10:30] = 0  # a gate: its hull is the square
    wanted = np.zeros_like(ring)
    wanted[5:35, 5:35] = 1
    assert np.array_equal(ptk.convex_hulls(ring), wanted)


def test_distances(blobs):
    blobs[0] = blobs[-1] = 0
    erosions, left = blobs.astype(int), blobs
    while left.any():
        left = ndimage.minimum_filter(left, 3, mode="nearest")
        erosions += left
    assert np.array_equal(ptk.distance(blobs), erosions)
    exact = ndimage.distance_transform_edt(blobs)
    got = np.asarray(ptk.euclidean_distance(blobs)).astype(int)
    inside = np.s_[5:-5, 5:-5]
    assert (np.abs(got - np.trunc(exact))[inside] <= 1).all()


def disk(shape, y, x, radius):
    rows, columns = np.ogrid[: shape[0], : shape[1]]
    return ((rows - y) ** 2 + (columns - x) ** 2 <= radius * radius).astype(np.uint8)


def test_circles():
    picture = disk((90, 120), 30, 30, 15) | disk((90, 120), 60, 85, 22)
    drawn, reports = ptk.circles(picture)
    assert len(reports) == 2
    assert np.abs(reports["x"] - [30, 85]).max() <= 1 and np.abs(reports["y"] - [30, 60]).max() <= 1
    assert np.abs(reports["radius"] - [15, 22]).max() <= 1
    assert (np.asarray(drawn) == 255).any()


def test_skeletons_are_thin_and_stay_inside():
    picture = disk((60, 80), 30, 25, 12) | disk((60, 80), 30, 52, 14)
    picture[28:33, 20:55] = 1
    for kind in ("set_a", "set_b"):
        thin = np.asarray(ptk.skeleton(picture, kind))
        assert not (thin & ~picture).any()
        assert 0 < thin.sum() < picture.sum() / 3
        assert not ndimage.minimum_filter(thin, 3).any()


def test_touching_particles_are_taken_apart():
    picture = disk((60, 90), 30, 28, 16) | disk((60, 90), 30, 57, 16)
    assert ptk.label(picture)[1] == 1
    assert ptk.label(ptk.separate(picture, 8))[1] == 2


def test_labels_grow_until_they_meet():
    seeds = np.zeros((40, 40), np.uint8)
    seeds[20, 8], seeds[20, 31] = 1, 2
    grown = np.asarray(ptk.grow_labels(seeds))
    assert (grown[14:27, 2:15] == 1).all() and (grown[14:27, 25:38] == 2).all()
    assert ((grown == 1) | (grown == 2)).all()


def test_histograms(gray):
    counts, report = ptk.histogram(gray)
    assert np.array_equal(counts, np.bincount(gray.ravel(), minlength=256))
    assert (report["min"], report["max"], report["nb_pixels"]) == (gray.min(), gray.max(), gray.size)
    assert np.isclose(report["mean"], gray.mean()) and np.isclose(report["std_dev"], gray.std())
    mask = (gray > 90).astype(np.uint8)
    counts, report = ptk.histogram(gray, mask=mask)
    assert np.array_equal(counts, np.bincount(gray[gray > 90], minlength=256))
    floats = gray.astype(np.float32) * 3
    counts, report = ptk.histogram(floats, 1000)
    assert counts.sum() == gray.size and np.isclose(report["mean"], floats.mean())


def test_quantify(gray, blobs):
    whole, regions = ptk.quantify(gray)
    assert np.isclose(whole["mean"], gray.mean()) and whole["nb_pixels"] == gray.size and len(regions) == 0
    values = np.resize(gray, blobs.shape)
    labels, count = ndimage.label(blobs)
    whole, regions = ptk.quantify(values, labels.astype(np.uint8))
    index = range(1, count + 1)
    assert len(regions) == count
    assert np.allclose(regions["mean"], ndimage.mean(values, labels, index), rtol=1e-5)
    assert np.array_equal(regions["max"], ndimage.maximum(values, labels, index))


def test_centroids_and_profiles(gray):
    x, y = ptk.centroid(gray)
    assert np.allclose((y, x), ndimage.center_of_mass(gray), rtol=1e-5)
    values, report = ptk.line_profile(gray, (2, 5), (40, 5))
    assert np.array_equal(values, gray[5, 2:41])
    assert np.isclose(report["mean"], gray[5, 2:41].mean())
