"""Regions, references, gauges, matching."""

import numpy as np
import pytest

import orlune_ptk as ptk
from orlune_ptk.regions import record_of


def test_regions_become_masks():
    model = np.zeros((50, 60), np.uint8)
    wanted = model.copy()
    wanted[10:30, 20:45] = 1
    assert np.array_equal(ptk.region_to_mask((10, 20, 20, 25), model), wanted)
    box = ptk.Region.rectangle(10, 20, 20, 25)
    hole = ptk.Region.rectangle(15, 25, 5, 5)
    wanted[15:20, 25:30] = 0
    assert np.array_equal(ptk.region_to_mask(box - hole, model), wanted)
    assert (box - hole).bounds == (10, 20, 20, 25)
    lying = ptk.region_to_mask(ptk.Region.rectangle(10, 20, 8, 6))
    assert lying.offset == (20, 10) and lying.shape == (8, 6) and np.asarray(lying).all()
    line = ptk.region_to_mask(ptk.Region.line((3, 4), (20, 4)), model, value=9)
    assert (np.asarray(line)[4, 3:21] == 9).all() and np.asarray(line).sum() == 18 * 9
    both = ptk.Region.point(1, 1) + ptk.Region.polygon([(10, 10), (20, 10), (20, 20), (10, 20)])
    mask = np.asarray(ptk.region_to_mask(both, model))
    assert mask[1, 1] == 1 and mask[10:21, 10:21].all() and mask.sum() == 122
    assert np.asarray(ptk.region_to_mask(ptk.Region.oval(5, 5, 20, 20), model))[15, 15] == 1
    assert len(ptk.Region.polyline([(0, 0), (5, 5), (9, 0)]).contours[0].points) == 3


def test_a_record_of_a_region_is_one_block():
    """It must not need anything that can go while the library reads it."""
    region = ptk.Region.rectangle(1, 2, 3, 4) + ptk.Region.point(7, 8) + ptk.Region.polygon(np.arange(300))
    record = record_of(region)
    words = record.view(np.int32)
    assert list(words[:5]) == [*region.bounds, 3]
    begins = (record[3:6] - np.uint64(record.ctypes.data)).astype(int) // 4
    for begin, contour in zip(begins, region.contours):
        count = len(contour.points)
        assert list(words[begin : begin + 3]) == [1, contour.shape, count]
        assert np.array_equal(words[begin + 3 : begin + 3 + 2 * count].reshape(-1, 2), contour.points)


def test_masks_become_regions(blobs):
    thick = np.zeros_like(blobs)
    thick[20:60, 10:50] = thick[5:15, 5:80] = 1
    thick[30:40, 30:40] = 0
    region = ptk.mask_to_region(thick)
    assert not all(contour.external for contour in region.contours)
    assert np.array_equal(ptk.region_to_mask(region, thick), thick)
    assert not any(not contour.external for contour in ptk.mask_to_region(blobs, external_only=True).contours)
    with pytest.raises(ValueError, match="points"):
        ptk.mask_to_region(blobs, max_points=5)


def test_the_flat_form():
    region = ptk.region_of_integers([2, 3, 12, 13, -32767, 3, 2, 3, 12, 13])
    assert region.bounds == (3, 2, 10, 10)
    contour = region.contours[0]
    assert contour.external and contour.shape == ptk.constants.RoiContourType.RECT
    assert np.array_equal(contour.points, [(2, 3), (12, 13)])


def test_places_and_moved_regions():
    place = ptk.find_place([(10, 10), (30, 30)])
    assert (place.x, place.y) == (10, 10) and abs(place.angle) == pytest.approx(45)
    moved = ptk.move_region((5, 6, 10, 12), ptk.Place(0, 0, 0), ptk.Place(20, 30, 0))
    assert moved.bounds == (35, 26, 10, 12)
    turned = ptk.move_region((5, 6, 10, 12), ptk.Place(10, 10, 0), ptk.Place(50, 50, 30))
    assert len(turned.contours[0].points) == 5


def test_rotation_is_detected():
    y, x = np.mgrid[0:101, 0:101] - 50
    angle = np.degrees(np.arctan2(y, x))
    reference = (128 + 100 * np.cos(np.radians(angle)) + 20 * np.cos(3 * np.radians(angle))).astype(np.uint8)
    test = (128 + 100 * np.cos(np.radians(angle - 40)) + 20 * np.cos(3 * np.radians(angle - 40))).astype(
        np.uint8
    )
    found = ptk.detect_rotation(reference, test, (50, 50), (50, 50), 35)
    assert min(abs(found - 40), abs(found - 320)) <= 2


def test_profiles_along_outlines(gray):
    samples, points, report = ptk.region_profile(gray, ptk.Region.line((3, 5), (20, 5)))
    assert np.array_equal(samples, gray[5, 3:21])
    assert np.array_equal(points, [(x, 5) for x in range(3, 21)])
    assert np.isclose(report["mean"], samples.mean())


@pytest.fixture
def bars():
    picture = np.full((30, 100), 20, np.uint8)
    picture[:, 30:60] = 200
    return picture


PATH = ptk.path_between((5, 15), (95, 15))


def test_paths():
    assert np.array_equal(PATH[:2], [(5, 15), (6, 15)]) and len(PATH) == 91


def test_edges_along_paths(bars):
    crossings = ptk.simple_edges(bars, PATH)
    assert np.abs(crossings - [(30, 15), (60, 15)]).max() <= 1
    edges, places = ptk.find_edges(bars, PATH, threshold=50)
    assert np.array_equal(edges["polarity"], [1, -1])
    assert np.diff(places[:, 0]) == pytest.approx(30, abs=1)
    pairs, ends = ptk.calipers(bars, PATH, 30, 5, "rise_fall", threshold=50)
    assert len(pairs) == 1 and pairs["distance"][0] == pytest.approx(30, abs=1)
    assert ends.shape == (1, 2, 2)
    distance = ptk.line_gauge(bars, (5, 15), (95, 15), threshold=50)
    assert distance.shape == (1,) and distance[0] == pytest.approx(30, abs=1)
    three = ptk.line_gauge(
        bars, (5, 15), (95, 15), threshold=50, extra_lines=[(0, 3), (0, 3), (0, -3), (0, -3)]
    )
    assert np.allclose(three, distance[0])
    length = ptk.line_gauge(bars, (5, 15), (95, 15), "point_to_point")
    assert length[0] == pytest.approx(90)


def test_values_between_pixels(gray):
    path = ptk.path_between((2, 5), (30, 5))
    assert np.array_equal(ptk.interpolate_path(gray, path), gray[5, 2:31])
    finer = ptk.interpolate_path(gray, path, 3)
    wanted = np.interp(np.arange(28 * 4 + 1) / 4, np.arange(29), gray[5, 2:31])
    assert np.allclose(finer, wanted, atol=1e-3)


def test_peaks():
    x = np.linspace(0, 6 * np.pi, 600)
    places, heights, bends = ptk.find_peaks(np.sin(x), 0.5, 9)
    spacing = x[1]
    assert np.allclose(places * spacing, np.pi * np.array([0.5, 2.5, 4.5]), atol=1e-2)
    assert np.allclose(heights, 1, atol=1e-3) and (bends < 0).all()
    valleys, _, _ = ptk.find_peaks(np.sin(x), -0.5, 9, "valleys")
    assert np.allclose(valleys * spacing, np.pi * np.array([1.5, 3.5, 5.5]), atol=1e-2)


def test_shapes_are_matched(rng):
    template = np.zeros((30, 30), np.uint8)
    template[5:25, 5:10] = 1
    template[20:25, 5:20] = 1
    picture = np.zeros((100, 120), np.uint8)
    picture[10:40, 10:40] = template
    picture[50:80, 60:90] = np.rot90(template)
    picture[70:90, 10:30] = 1
    numbers, reports = ptk.match_shapes(picture, template, 0.2)
    assert len(reports) == 2 and (reports["area"] == template.sum()).all()
    assert not np.asarray(numbers)[70:90, 10:30].any()
    none, reports = ptk.match_shapes(picture, np.zeros((5, 5), np.uint8))
    assert len(reports) == 0 and not np.asarray(none).any()


def test_measures_of_points(rng):
    angle = rng.random(30) * 2 * np.pi
    points = np.stack([50 + 20 * np.cos(angle), 40 + 20 * np.sin(angle)], axis=1)
    circle = ptk.fit_circle(points)
    assert circle[:3] == pytest.approx((50, 40, 40), abs=1e-3)
    assert circle.area == pytest.approx(np.pi * 400, rel=1e-4)
    assert ptk.angles([(10, 0), (0, 0), (0, 10)]) == pytest.approx([90])
    assert ptk.angles([(10, 0), (0, 10), (-10, 0)], origin=(0, 0)) == pytest.approx([90, 90])
    assert np.allclose(ptk.point_distances(points), np.hypot(*np.diff(points, axis=0).T), rtol=1e-4)
    with pytest.raises(ptk.PtkError):
        ptk.fit_circle(points[:2])
