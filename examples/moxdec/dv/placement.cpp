#include "moxdec/dv/placement.hpp"

namespace moxdec::dv {
namespace {

/// A picture is five columns of superblocks of 27 macroblocks. The macroblocks of a segment are one of each column, and
/// lie this many sequences apart.
constexpr int kColumn[kMacroblocks] = {2, 1, 3, 0, 4}, kDistance[kMacroblocks] = {2, 6, 8, 0, 4};

/// Runs down one column and up the next.
constexpr int serpentine(int k, int rows) { return k / rows % 2 ? rows - 1 - k % rows : k % rows; }

Place place_411(int row, int k, int m) {
  constexpr int kFirst[] = {0, 4, 9, 13, 18}, kEdge = 22, kRows = 6;  // in macroblocks of 32x8
  const int column = kColumn[m];
  // Superblocks are 4 1/2 macroblocks wide: the second and the fourth begin in the middle of a column.
  const int n = column % 2 ? k + kRows / 2 : k, x = kFirst[column] + n / kRows;
  const int line = serpentine(n, kRows);
  if (x == kEdge) return {32 * x, 48 * row + 16 * line, Shape::kSquare};
  return {32 * x, 48 * row + 8 * line, Shape::kFourWide};
}

/// Superblocks of 9x3 macroblocks.
Place place_in_nine(int row, int k, int m, int height, Shape shape) {
  return {16 * (9 * kColumn[m] + k / 3), height * (3 * row + serpentine(k, 3)), shape};
}

Place place_720(int channel, int sequence, int k, int m) {
  constexpr int kSequences = 10;  // more of them carry no picture
  if (sequence >= kSequences) return {.used = false};
  const int n = kSegmentsPerSequence * sequence + k;
  return {16 * (12 * kColumn[m] + 6 * channel + n / 5 % 6),
          16 * (9 * ((n + kDistance[m] / 2 + 2 * channel) % 5) + n / 30)};
}

/// In macroblocks, without the rows above and below: segment n of a channel lies in one of several bands of rows, one
/// below the other. Channels 0 and 1 have every other row, 2 and 3 those between; one of the two has the left half of
/// each column of superblocks, the other the right half.
Place place_1080(int channel, int n, int m, int bands, int band, int first, int band_rows) {
  return {18 * kColumn[m] + 9 * (channel & 1) + n / bands % 9,
          first + band_rows * band + (channel >> 1) + 2 * (n / (9 * bands))};
}

/// Above the last row, which has 8 lines and macroblocks twice as wide, are 67 of 16 lines.
constexpr int kLastRow = 67;
Place in_samples(int x, int y) { return {16 * x, 16 * y, y == kLastRow ? Shape::kFourWide : Shape::kSquare}; }

Place place_1080_at_60(int channel, int sequence, int k, int m) {
  constexpr int kWidth = 80, kBands = 5, kFirst = 4, kBottom = 32, kLast = 56;
  const int n = kSegmentsPerSequence * sequence + k;
  const int band = (n + kDistance[m] / 2 + 2 * channel) % kBands;
  const Place place = place_1080(channel, n, m, kBands, band, kFirst, 12);
  if (place.x < kWidth) return in_samples(place.x, place.y);
  // Ten columns are too many: they fill four rows above the bands, three below, and the last one.
  const int x = place.x - kWidth, y = place.y - kFirst;
  if (y < kBottom) return in_samples(x + 10 * (y / 4), y % 4);
  if (y < kLast) return in_samples(x + 10 * ((y - kBottom) / 3), 64 + (y - kBottom) % 3);
  return in_samples(2 * (x + 10 * (y - kLast)), kLastRow);
}

Place place_1080_at_50(int channel, int sequence, int k, int m) {
  constexpr int kWidth = 90, kBands = 11;
  if (sequence < kBands) {
    const int n = kSegmentsPerSequence * sequence + k;
    const Place place = place_1080(channel, n, m, kBands, (n + kDistance[m] + 4 * channel) % kBands, 1, 6);
    return in_samples(place.x, place.y);
  }
  // The last sequence of the first channel has the first row and the last.
  if (channel > 0) return {.used = false};
  const int n = kSegmentsPerSequence * m + k;
  return n < kWidth ? in_samples(n, 0) : in_samples(2 * (n - kWidth), kLastRow);
}

}  // namespace

Place place_of(Shuffling shuffling, int sequences, int channel, int sequence, int k, int m) {
  const int row = (sequence + kDistance[m]) % sequences;
  switch (shuffling) {
    case Shuffling::k411: return place_411(row, k, m);
    case Shuffling::k420: return place_in_nine(row, k, m, 16, Shape::kSquare);
    case Shuffling::k422: return place_in_nine(2 * row + channel, k, m, 8, Shape::kTwoWide);
    case Shuffling::k720: return place_720(channel, sequence, k, m);
    case Shuffling::k1080At60: return place_1080_at_60(channel, sequence, k, m);
    case Shuffling::k1080At50: break;
  }
  return place_1080_at_50(channel, sequence, k, m);
}

}  // namespace moxdec::dv
