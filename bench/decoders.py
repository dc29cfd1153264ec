"""Decoders timed on streams: moxdec with each generation of the library and, where it is installed, ffmpeg."""

import os
import re
import shutil
import statistics
import subprocess
from pathlib import Path
from typing import Callable, NamedTuple

from clips import more_copies, repeated

RUNS = 9
LONG_ENOUGH = 0.2  # seconds of user time of one run with e9
SSE_FLAGS = ["-cpuflags", "sse4.1+sse3+ssse3+sse2+sse+mmx+mmxext+cmov"]  # as far as e9 goes

# What ffmpeg calls the formats of bare streams; it guesses that of other files.
FORMATS = {".264": "h264", ".m1v": "mpegvideo", ".m2v": "mpegvideo", ".m4v": "m4v", ".261": "h261", ".263": "h263",
           ".avs": "cavsvideo", ".dv": "dv"}


class Run(NamedTuple):
    seconds: float  # of user time
    pictures: int
    report: str


class Decoder(NamedTuple):
    """A program that decodes to nowhere and reports how many pictures there were."""
    name: str
    command: Callable  # of the stream, and of the number of pictures if not all
    count: str  # pattern of that number in the report; the last match tells
    environment: dict = {}

    def run(self, stream, pictures=None):
        process = subprocess.Popen(self.command(stream, pictures), env={**os.environ, **self.environment}, text=True,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        with process.stdout:
            report = process.stdout.read()
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        counts = re.findall(self.count, report)
        if process.returncode or not counts:
            raise RuntimeError(f"{self.name} fails on {stream}: " + "".join(report.splitlines()[-1:]))
        return Run(usage.ru_utime, int(counts[-1]), report)


def moxdec(build, generation):
    def command(stream, pictures):
        return [build / "bin/moxdec", stream] + (["--frames", str(pictures)] if pictures else [])

    return Decoder(generation, command, r"(\d+) frames,", {"LD_LIBRARY_PATH": f"{build}/lib/{generation}:{build}/lib"})


def ffmpeg(name, flags):
    def command(stream, pictures):
        form = FORMATS.get(Path(stream).suffix)
        return (["ffmpeg", "-v", "error", "-nostats", "-progress", "-", "-threads", "1", *flags]
                + (["-f", form] if form else []) + ["-i", stream, "-fps_mode", "passthrough"]
                + (["-frames:v", str(pictures)] if pictures else []) + ["-f", "null", "-"])

    return Decoder(name, command, r"frame=\s*(\d+)")


def available(build):
    decoders = [moxdec(build, generation) for generation in ("px", "e9", "v3")]
    if shutil.which("ffmpeg"):
        decoders += [ffmpeg("ffmpeg", []), ffmpeg("ffmpeg SSE4.1", SSE_FLAGS)]
    return decoders


def lengthened(path, folder, decoders):
    """So many copies of a stream, one after the other, that e9 has work for long enough."""
    e9 = decoders[1]
    copies = 1
    while True:
        stream = repeated(path, copies, folder)
        seconds = e9.run(stream).seconds
        if seconds >= LONG_ENOUGH:
            return stream
        copies = more_copies(copies, seconds, LONG_ENOUGH)


def rate(pictures, whole, first):
    """Pictures a second from the user times of runs on all pictures and on the first one alone, so that what a program
    needs to start and to guess what it is given does not count; None if there is too little to tell."""
    seconds = statistics.median(whole) - statistics.median(first)
    return (pictures - 1) / seconds if pictures > 1 and seconds > 0 else None


class Result(NamedTuple):
    size: str
    pictures: int
    rates: dict  # pictures a second, by the decoder's name


def measure(stream, decoders):
    """Runs all decoders in turn, RUNS times. One that fails, or that finds another number of pictures than the first
    decoder, which is ours, does not do the same work and is left out."""
    reference = decoders[0].run(stream)
    able = [decoders[0]]
    for decoder in decoders[1:]:
        try:
            pictures = decoder.run(stream).pictures
            if pictures != reference.pictures:
                raise RuntimeError(f"{decoder.name} on {stream}: {pictures} pictures, not {reference.pictures}")
            able.append(decoder)
        except RuntimeError as error:
            print(f"left out: {error}")
    whole = {decoder.name: [] for decoder in able}
    first = {decoder.name: [] for decoder in able}
    for _ in range(RUNS):
        for decoder in able:
            whole[decoder.name].append(decoder.run(stream).seconds)
            first[decoder.name].append(decoder.run(stream, 1).seconds)
    size = re.findall(r"\d+x\d+", reference.report)[-1]
    return Result(size, reference.pictures,
                  {name: rate(reference.pictures, whole[name], first[name]) for name in whole})
