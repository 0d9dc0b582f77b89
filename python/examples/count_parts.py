"""Counts and measures the light parts in a picture, and writes another one in which each has its number as level.

usage: count_parts.py PICTURE [LABELS]
"""

import sys

import orlune_ptk as ptk


def main(picture: str, labels: str | None = None) -> None:
    image = ptk.read(picture, "uint8")
    level = ptk.auto_threshold(image)
    parts = ptk.fill_holes(ptk.reject_border(ptk.threshold(image, level)))
    reports = ptk.select_particles(ptk.particles(parts), {"area_pixels": (20, 1e9)})
    measures = ptk.particle_measures(
        parts, reports, ["centre_of_mass_x", "centre_of_mass_y", "waddel_diameter", "orientation"]
    )
    print(f"{len(reports)} parts lighter than {level}")
    for report, measure in zip(reports, measures):
        x, y, diameter, orientation = measure
        print(
            f"{report['area']:6d} pixels at {x:6.1f}, {y:6.1f}, diameter {diameter:5.1f}, {orientation:5.1f} degrees"
        )
    if labels is not None:
        numbered, _ = ptk.label(parts, dtype="uint8")
        ptk.write(numbered, labels)


if __name__ == "__main__":
    main(*sys.argv[1:])
