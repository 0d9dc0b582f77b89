#!/usr/bin/env python3
"""Reads picture files that were changed byte by byte with orlune, best one built with sanitizers.

Every picture of the folder (such as tests/journeys/foreign_pictures_test.py leaves) is changed in
several ways: bits turned, bytes and words replaced by numbers at the ends of ranges, parts cut out,
doubled or taken from another file, the end cut off. orlune may refuse what it reads, but has to end
by itself, within its time, with status 0 or 1. Files that it fails at are kept.

usage: mutate_pictures.py ORLUNE PICTURES WORK_FOLDER COUNT [SEED]
"""
import os
import random
import subprocess
import sys

ENDINGS = (".tif", ".tiff", ".png", ".jpg", ".jpeg", ".bmp", ".orln")
LARGEST = 200_000  # bytes
AT_ONCE = 40       # files of one call
SECONDS = 120
EXTREMES = (0, 1, 2, 0x7F, 0x80, 0xFF, 0x7FFF, 0x8000, 0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF)


def changed(data, others, chance):
    data = bytearray(data)
    for _ in range(chance.choice((1, 1, 2, 4, 16))):
        at = chance.randrange(min(len(data), chance.choice((64, 512, LARGEST))))
        way = chance.randrange(7)
        if way == 0:
            data[at] ^= 1 << chance.randrange(8)
        elif way == 1:
            data[at] = chance.randrange(256)
        elif way == 2:
            size = chance.choice((1, 2, 4))
            number = chance.choice(EXTREMES) & (256 ** size - 1)
            data[at:at + size] = number.to_bytes(size, chance.choice(("little", "big")))
        elif way == 3:
            del data[at:at + chance.randrange(1, 64)]
        elif way == 4:
            data[at:at] = data[at:at + chance.randrange(1, 64)]
        elif way == 5:
            other = chance.choice(others)
            start = chance.randrange(len(other))
            data[at:at + 32] = other[start:start + 32]
        else:
            del data[max(at, 16):]
        if not data:
            return bytes(16)
    return bytes(data)


def ends_well(command):
    environment = dict(os.environ, ASAN_OPTIONS="exitcode=99:allocator_may_return_null=1",
                       UBSAN_OPTIONS="halt_on_error=1:exitcode=98")
    try:
        run = subprocess.run(command, capture_output=True, timeout=SECONDS, env=environment)
    except subprocess.TimeoutExpired:
        return False, "no end"
    return run.returncode in (0, 1), run.stderr.decode(errors="replace")[-2000:]


def main():
    orlune, pictures, work, count = sys.argv[1:5]
    chance = random.Random(int(sys.argv[5]) if len(sys.argv) > 5 else 1)
    os.makedirs(work, exist_ok=True)
    kept = []
    for folder, _, names in os.walk(pictures):
        for name in sorted(names):
            path = os.path.join(folder, name)
            if name.lower().endswith(ENDINGS) and 0 < os.path.getsize(path) <= LARGEST:
                with open(path, "rb") as file:
                    kept.append((os.path.splitext(name)[1], file.read()))
    others = [data for _, data in kept]
    findings = done = 0
    while done < int(count):
        batch = []
        for _ in range(min(AT_ONCE, int(count) - done)):
            ending, data = kept[done % len(kept)]
            batch.append(os.path.join(work, f"changed{done}{ending}"))
            with open(batch[-1], "wb") as file:
                file.write(changed(data, others, chance))
            done += 1
        bad = set()
        for words in (["info", "--json"], ["inspect", "--quiet", "--rows", "1"]):
            if ends_well([orlune] + words + batch)[0]:
                continue
            for file in batch:  # which of them
                well, said = ends_well([orlune] + words + [file])
                if not well:
                    bad.add(file)
                    print(f"{file}: orlune {' '.join(words)}\n{said}")
        findings += len(bad)
        for file in batch:
            if file not in bad:
                os.remove(file)
    print(f"{done} changed pictures of {len(kept)} read, {findings} not well")
    return 1 if findings else 0


sys.exit(main())
