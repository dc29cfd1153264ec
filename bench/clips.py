"""The streams that decoders are timed on: bundled ones, repeated until they are long enough, and two large ones."""

import math
import subprocess
from pathlib import Path
from typing import NamedTuple


class Clip(NamedTuple):
    title: str
    path: Path


VECTORS = Path(__file__).parents[1] / "tests/vectors"
BUNDLED = [Clip(title, VECTORS / file) for title, file in (
    ("H.264 I", "h264_base_intra_filter.264"),
    ("H.264 I P B", "h264_main_b_spatial.264"),
    ("H.264 8x8, MBAFF", "h264_high_mbaff_8x8.264"),
    ("H.264 10 bits", "h264_hi10_ipb.264"),
    ("H.264 4:2:2", "h264_hi422_8bit.264"),
    ("MPEG-1", "mpeg1_ipb.m1v"),
    ("MPEG-2 interlaced", "mpeg2_int_fieldmc.m2v"),
    ("MPEG-4 interlaced", "mpeg4_int_altscan.m4v"),
    ("H.261", "h261_cif.261"),
    ("H.263", "h263_4cif_groups.263"),
    ("AVS", "avs_ip.avs"),  # without weights, which ffmpeg would leave out
    ("DV25", "dv25_ntsc.dv"),
    ("DV100", "dv100_720p60.dv"),
)]

# Slow zoom, rotating test picture, moving edges and some noise: motion of all kinds, and detail that costs bits.
LARGE_PICTURES = ["ffmpeg", "-v", "error", "-nostdin"] + [part for source in (
    "mandelbrot=s=1280x720:rate=30:maxiter=400:start_scale=1.5:end_scale=0.02:end_pts=500",
    "testsrc2=s=640x360:r=30",
    "gradients=s=1280x720:r=30:speed=0.02:n=6:seed=3",
) for part in ("-f", "lavfi", "-i", source)] + ["-filter_complex", (
    "[0][2]blend=all_mode=average[a];[1]rotate=0.05*t:fillcolor=none[b];"
    "[a][b]overlay=x='320+200*sin(t)':y='180+100*cos(1.3*t)',noise=alls=6:allf=t,format=yuv420p"),
    "-frames:v", "300", "-f", "yuv4mpegpipe", "-"]
LARGE = {
    Clip("H.264 720p I P", Path("large_ip.264")): "--bframes 0 --bitrate 10000 --keyint 100",
    Clip("H.264 720p I P B", Path("large_ipb.264")): "--bframes 2 --b-pyramid normal --weightp 2 --bitrate 8000",
}


def make_large(folder):
    """The large streams below the folder; those that are not there yet are encoded, which takes minutes."""
    clips = []
    for (title, file), options in LARGE.items():
        path = folder / file
        if not path.exists():
            print(f"encoding {path}", flush=True)
            encode(path, options.split())
        clips.append(Clip(title, path))
    return clips


def encode(path, options):
    part = path.with_suffix(".part.264")
    x264 = ["x264", "--quiet", "--no-progress", "--profile", "high", "--no-cabac", "--threads", "3", "--ref", "3",
            *options, "--demuxer", "y4m", "-o", str(part), "-"]
    with subprocess.Popen(LARGE_PICTURES, stdout=subprocess.PIPE) as pictures:
        subprocess.run(x264, stdin=pictures.stdout, check=True)
        pictures.stdout.close()
    if pictures.returncode:
        raise RuntimeError("ffmpeg could not make the pictures of " + path.name)
    part.rename(path)


def repeated(path, copies, folder):
    """A stream that is a whole number of copies of another one."""
    result = folder / path.name
    result.write_bytes(path.read_bytes() * copies)
    return result


def more_copies(copies, seconds, wanted):
    """So many copies should take the wanted time and some more, if this many have taken `seconds`, which are fewer; at
    most eightfold at once, since short times are not exact."""
    factor = 1.25 * wanted / seconds if seconds else math.inf
    return math.ceil(copies * min(8, factor))
