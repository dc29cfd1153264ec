"""Tests of what `./dev bench` makes of measurements."""

import sys
import unittest
from pathlib import Path
from xml.etree import ElementTree

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).parents[2] / "bench"))
import clips
import decoders
import picture
import report


def decoder(name, script):
    return decoders.Decoder(name, lambda stream, pictures: ["sh", "-c", script], r"(\d+) frames")


class Report(unittest.TestCase):
    def test_only_decoders_of_the_same_pictures_are_measured(self):
        decoders.RUNS = 1
        work = "i=0; while [ $i -lt 20000 ]; do i=$((i + 1)); done; "
        result = decoders.measure("6x6", [decoder("ours", work + "echo 6x6: 16x8, 3 frames"),
                                          decoder("short", "echo 2 frames"), decoder("dead", "echo 3 frames; exit 1"),
                                          decoder("mute", "true"), decoder("same", work + "echo 1 frames 3 frames")])
        self.assertEqual((result.size, result.pictures, list(result.rates)), ("16x8", 3, ["ours", "same"]))

    def test_rate_leaves_out_the_start_and_outliers(self):
        self.assertAlmostEqual(decoders.rate(11, [0.7, 9, 0.6, 0.7, 0], [0.2, 0.1, 0.2, 5, 0.2]), 20)
        self.assertIsNone(decoders.rate(11, [0.1], [0.1]))
        self.assertIsNone(decoders.rate(1, [0.2], [0.1]))

    def test_copies_grow_until_they_take_long_enough(self):
        self.assertEqual(clips.more_copies(5, 0.0, 0.2), 40)
        self.assertEqual(clips.more_copies(100, 0.1, 0.2), 250)
        self.assertEqual(clips.more_copies(1, 0.199, 0.2), 2)

    def test_three_digits(self):
        self.assertEqual([report.number(v) for v in (0.01234, 0.5, 9.876, 1234.5, None)],
                         ["0.0123", "0.500", "9.88", "1234", ""])


class Picture(unittest.TestCase):
    def row(self, family, counted, px, e9, v3):
        return {"family": family, "counted": counted, "px": px, "e9": e9, "v3": v3}

    def test_speedups_of_what_counts_and_was_measured(self):
        rows = [self.row("a", "1", "8", "4", "1"), self.row("a", "0", "8", "8", "8"), self.row("a", "1", "8", "1", "")]
        self.assertEqual(picture.speedups(rows), {"a": {"e9": [2, 8], "v3": [8]}})
        self.assertAlmostEqual(picture.geometric_mean([2, 8]), 4)

    def test_is_well_formed_whatever_is_missing(self):
        stream = {"stream": "I & P", "size": "16x16", "px": "10", "e9": "25", "v3": "", "ffmpeg": ""}
        for kernels in [], [self.row("a<b", "1", "3", "3", "")], [self.row("a", "1", "3", "9", "0.1")]:
            for streams in [], [stream, stream | {"v3": "30"}]:
                drawing = picture.svg(kernels, streams, "<processor>")
                texts = [e.text for e in ElementTree.fromstring(drawing).iter("{http://www.w3.org/2000/svg}text")]
                self.assertEqual("I & P, 16x16" in texts and "25" in texts, bool(streams))
                self.assertEqual(texts[-1], "<processor>")


if __name__ == "__main__":
    unittest.main()
