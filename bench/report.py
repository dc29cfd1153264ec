#!/usr/bin/env python3
"""Times kernels and decoders of the built tree side by side: tables, CSV files and a picture of both.

usage: ./dev bench [--large] [FILTER] [STREAM...]

FILTER is a regular expression that chooses rows of kernels and streams by name; without it all are timed. STREAMs are
files to be timed as well. --large adds two streams of 1280x720, which are encoded first if they are not there, and a
run on everything then also puts the picture into the documentation.
"""

import csv
import math
import re
import shutil
import subprocess
import sys
from pathlib import Path

import clips
import decoders
import picture

TREE = Path(__file__).resolve().parents[1]
BUILD = TREE / "build"
RESULTS = BUILD / "bench"
STREAMS = RESULTS / "streams"
PART = RESULTS / "part"  # of runs on a part, which leave the results of the last whole run alone
STREAMS_HEADING = """
moxdec with each generation, and ffmpeg with one thread where it is installed: pictures a second of user time, without
what a run on the first picture alone takes. Median of {} runs in turn; bundled streams are repeated to be long."""
RATIOS = {"v3/ffmpeg": ("v3", "ffmpeg"), "e9/SSE4.1": ("e9", "ffmpeg SSE4.1")}
DOCUMENTED = TREE / "docs/speed.svg"


def main(arguments):
    large = "--large" in arguments
    streams = [Path(a) for a in arguments if Path(a).is_file()]
    filters = [a for a in arguments if a != "--large" and Path(a) not in streams]
    if len(filters) > 1 or any(f.startswith("-") for f in filters):
        sys.exit(__doc__[__doc__.index("usage"):].strip())
    pattern = filters[0] if filters else ""
    results = PART if filters else RESULTS
    for folder in results, STREAMS:
        folder.mkdir(parents=True, exist_ok=True)

    timed = time_kernels(pattern, results / "kernels.csv")
    timed += time_streams(pattern, large, streams, results / "streams.csv")
    if not timed:
        sys.exit(f"bench: {pattern} matches no kernel and no stream")
    if not filters:
        picture.draw(results)
        if large:
            DOCUMENTED.parent.mkdir(exist_ok=True)
            shutil.copy(results / picture.NAME, DOCUMENTED)
    print(f"\nresults: {results}")


def time_kernels(pattern, table):
    """Whether there were any; the program prints them."""
    bench = [BUILD / "bin/moxvc_bench", f"--benchmark_filter={pattern or '.'}"]
    listed = subprocess.run(bench + ["--benchmark_list_tests"], capture_output=True, text=True).stdout
    if listed.strip():
        subprocess.run(bench + [f"--csv={table}"], check=True)
    return bool(listed.strip())


def time_streams(pattern, large, files, table):
    """Whether there were any; prints them one by one."""
    streams = clips.BUNDLED + (clips.make_large(STREAMS) if large else [])
    streams = [clip for clip in streams if re.search(pattern, clip.path.name)]
    streams += [clips.Clip(file.stem, file) for file in files]
    if not streams:
        return False
    programs = decoders.available(BUILD)
    names = [program.name for program in programs]
    print(STREAMS_HEADING.format(decoders.RUNS))
    print_line("", ["size", "pictures", *names, *RATIOS])
    with open(table, "w", newline="", buffering=1) as file:  # an interrupted run leaves what it has
        out = csv.writer(file)
        out.writerow(["stream", "size", "pictures", *names])
        for clip in streams:
            path = clip.path
            if clip in clips.BUNDLED:
                path = decoders.lengthened(path, STREAMS, programs)
            result = decoders.measure(path, programs)
            rates = [result.rates.get(name) for name in names]
            out.writerow([clip.title, result.size, result.pictures, *map(number, rates)])
            ratios = [quotient(result.rates.get(a), result.rates.get(b)) for a, b in RATIOS.values()]
            print_line(clip.title, [result.size, result.pictures, *map(number, rates + ratios)])
    return True


def print_line(title, cells):
    print(f"{title:24}" + "".join(f"{cell:>14}" for cell in cells), flush=True)


def number(value):
    """Three digits that count."""
    return "" if value is None else f"{value:.{max(0, 2 - math.floor(math.log10(value)))}f}"


def quotient(a, b):
    return a / b if a and b else None


if __name__ == "__main__":
    try:
        main(sys.argv[1:])
    except (RuntimeError, re.error, subprocess.CalledProcessError) as error:
        sys.exit(f"bench: {error}")
