"""Threads, forks, and that pixels are not copied on the way."""

import os
import signal
import threading
import time

import numpy as np
import pytest

import orlune_ptk as ptk
from orlune_ptk import lowlevel


def test_eight_threads_at_once(rng):
    pictures = [rng.integers(0, 256, (64, 48 + n), dtype=np.uint8) for n in range(8)]
    wanted = [np.array(ptk.median(picture, 5)) for picture in pictures]
    wrong = []

    def work(number):
        try:
            for _ in range(40):
                image = ptk.Image(pictures[number])
                if not np.array_equal(ptk.median(image, 5), wanted[number]):
                    wrong.append("median")
                with pytest.raises(ptk.PtkError) as caught:
                    ptk.fft(image)
                if caught.value.function != "ZEL_FFT":
                    wrong.append(caught.value.function)
                if len(ptk.particles(image)) == 0:
                    wrong.append("particles")
        except BaseException as error:
            wrong.append(error)

    threads = [threading.Thread(target=work, args=(number,)) for number in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not wrong


def test_one_thread_at_a_time_is_inside(monkeypatch):
    inside, most = [0], [0]
    original = lowlevel._GetErrorMode

    def watched():
        inside[0] += 1
        most[0] = max(most[0], inside[0])
        time.sleep(0.002)
        inside[0] -= 1
        return original()

    monkeypatch.setattr(lowlevel, "_GetErrorMode", watched)
    threads = [threading.Thread(target=lowlevel.ZEL_GetErrorMode) for _ in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert most[0] == 1


def in_a_child(work):
    """Whether work, done in a forked child, gives True in time."""
    child = os.fork()
    if child == 0:
        signal.alarm(20)
        try:
            os._exit(0 if work() else 1)
        except BaseException:
            os._exit(2)
    return os.waitpid(child, 0)[1] == 0


def test_a_forked_child_works_on_while_threads_of_its_parent_are_inside(rng):
    picture = rng.integers(0, 256, (700, 700), dtype=np.uint8)  # large enough for several workers
    image = ptk.Image(picture)
    wanted = np.array(ptk.median(image, 5))
    done = threading.Event()

    def busy():
        while not done.is_set():
            ptk.median(image, 5)

    threads = [threading.Thread(target=busy) for _ in range(2)]
    for thread in threads:
        thread.start()
    try:
        for _ in range(3):
            assert in_a_child(lambda: np.array_equal(ptk.median(image, 5), wanted))
    finally:
        done.set()
        for thread in threads:
            thread.join()
    assert np.array_equal(ptk.median(image, 5), wanted)


def test_ten_operations_copy_no_pixels(gray, monkeypatch):
    image = ptk.Image(gray)
    before = ptk.pixel_copies()
    called = []
    for name in list(vars(lowlevel)):
        if name.startswith("ZEL_"):
            function = getattr(lowlevel, name)

            def recorded(*arguments, _function=function, _name=name):
                called.append(_name)
                return _function(*arguments)

            monkeypatch.setattr(lowlevel, name, recorded)

    smooth = ptk.median(image, 3)
    edges = ptk.edges(smooth)
    summed = ptk.add(smooth, edges)
    light = ptk.threshold(summed, ptk.auto_threshold(summed))
    closed = ptk.morphology(light, "close", 5)
    filled = ptk.fill_holes(closed)
    inner = ptk.reject_border(filled)
    numbered, count = ptk.label(inner)
    hulls = ptk.convex_hulls(numbered)
    turned = ptk.rotate(hulls, 30)

    array = np.asarray(turned)
    assert array.ctypes.data == turned._info().firstPixel
    assert ptk.pixel_copies() == before
    moving = {
        "ZEL_Copy",
        "ZEL_ImageToArray",
        "ZEL_ArrayToImage",
        "ZEL_ImageToImage",
        "ZEL_Convert",
        "ZEL_Extract",
    }
    assert not moving & set(called)
    others = {"ZEL_Create", "ZEL_Dispose", "ZEL_GetImageInfo", "ZEL_SetImageSize"}
    assert [name for name in called if name not in others] == [
        "ZEL_NthOrder",
        "ZEL_GrayEdge",
        "ZEL_Add",
        "ZEL_AutoBThreshold",
        "ZEL_Threshold",
        "ZEL_Morphology",
        "ZEL_FillHole",
        "ZEL_RejectBorder",
        "ZEL_Label",
        "ZEL_Convex",
        "ZEL_Rotate",
    ]


def test_copies_are_counted(gray):
    before = ptk.pixel_copies()
    image = ptk.Image(gray)
    assert ptk.pixel_copies() == before + 1
    ptk.median(image, 15)  # wants a border of 7
    assert ptk.pixel_copies() == before + 2
    ptk.median(ptk.Image.zeros((9, 9), border=7), 15)
    assert ptk.pixel_copies() == before + 2
