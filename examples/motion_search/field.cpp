#include "motion_search/field.hpp"

#include <chrono>
#include <numeric>

namespace motion_search {
namespace {

using Clock = std::chrono::steady_clock;

/// What three more vectors cost to code, in terms of SATD.
constexpr Mox32s kSplitCost = 200;

/// The luma of a macroblock, and of its 8 x 8 block k.
Target target_of(const Picture& current, const Picture& reference, int x, int y) {
  return {current.plane(0).at(x, y), current.plane(0).step(), reference.plane(0).at(x, y), reference.plane(0).step()};
}
Target quarter(const Target& t, int k) {
  const std::ptrdiff_t x = k % 2 * 8, y = k / 2 * 8;
  return {t.block + y * t.blockStep + x, t.blockStep, t.reference + y * t.referenceStep + x, t.referenceStep};
}

Mox32s satd_16x16(const Target& t, Vector vector) {
  std::array<Mox8u, 256> prediction;
  const Place at = place(t.reference, t.referenceStep, vector);
  Mox32s satd = 0;
  check(moxiCopy16x16HP_8u_C1R(at.sample, t.referenceStep, prediction.data(), 16, at.acc(), 0));
  check(moxiSATD16x16_8u32s_C1R(t.block, t.blockStep, prediction.data(), 16, &satd));
  return satd;
}

Mox32s satd_8x8(const Target& t, Vector vector) {
  std::array<Mox8u, 64> prediction;
  const Place at = place(t.reference, t.referenceStep, vector);
  Mox32s satd = 0;
  check(moxiCopy8x8HP_8u_C1R(at.sample, t.referenceStep, prediction.data(), 8, at.acc(), 0));
  check(moxiSATD8x8_8u32s_C1R(t.block, t.blockStep, prediction.data(), 8, &satd));
  return satd;
}

/// One vector or four, whichever leaves less after a transform.
void choose_partition(const Target& target, Match best, Macroblock& mb) {
  mb.vectors.fill(best.vector);
  std::array<Vector, 4> parts;
  Mox32s four = kSplitCost;
  for (int k = 0; k < 4; ++k) {
    const Target block = quarter(target, k);
    const Match part = refine(block, moxiSAD8x8_8u32s_C1R, search_around(block, best.vector));
    parts[static_cast<std::size_t>(k)] = part.vector;
    four += satd_8x8(block, part.vector);
  }
  mb.split = four < satd_16x16(target, best.vector);
  if (mb.split) mb.vectors = parts;
}

/// Compares the variance of the block with that of the error of its one vector, both 64 times per 8 x 8 block.
bool prediction_is_useless(const Target& t, Vector vector) {
  std::array<Mox32s, 4> sums, variances, errors, means;
  for (int k = 0; k < 4; ++k) {
    const Target block = quarter(t, k);
    const auto i = static_cast<std::size_t>(k);
    check(moxiVarSum8x8_8u32s_C1R(block.block, block.blockStep, &variances[i], &sums[i]));
  }
  const Place at = place(t.reference, t.referenceStep, vector);
  check(moxiVarMeanDiff16x16_8u32s_C1R(t.block, t.blockStep, at.sample, t.referenceStep, sums.data(), errors.data(),
                                       means.data(), at.mcType));
  const auto total = [](const std::array<Mox32s, 4>& values) {
    return std::accumulate(values.begin(), values.end(), 0);
  };
  return total(errors) > total(variances);
}

Match search(const Target& target, Method method, int range, std::span<const Vector> neighbours) {
  switch (method) {
    case Method::kFull: return full_search(target, range);
    case Method::kDiamond: return diamond_search(target, range, neighbours);
    case Method::kZero: break;
  }
  return match_at(target, moxiSAD16x16_8u32s, {});
}

/// Vectors of the macroblocks to the left, above, and above to the right, as far as there are any.
std::vector<Vector> neighbours_of(const Field& field, int column, int row) {
  std::vector<Vector> vectors;
  if (column > 0) vectors.push_back(field.at(column - 1, row).found);
  if (row > 0) vectors.push_back(field.at(column, row - 1).found);
  if (row > 0 && column + 1 < field.columns) vectors.push_back(field.at(column + 1, row - 1).found);
  return vectors;
}

/// The chroma vector in half samples of chroma, towards zero.
Vector chroma_vector(Vector luma) { return {luma.x / 2, luma.y / 2}; }

void predict_macroblock(const Macroblock& mb, const Picture& reference, int column, int row, Picture& out) {
  static constexpr std::array<Mox16s, 64> kNoResidual{};
  const auto copy = [&](auto* function, int x, int y, Vector v) {
    const Plane& from = reference.plane(0);
    const Place at = place(from.at(x, y), from.step(), v);
    check(function(at.sample, from.step(), out.plane(0).at(x, y), out.plane(0).step(), at.acc(), 0));
  };
  const auto compensate = [&](auto* function, int x, int y, Vector v) {
    for (int i = 1; i < 3; ++i) {
      const Plane& from = reference.plane(i);
      const Place at = place(from.at(x, y), from.step(), chroma_vector(v));
      check(function(at.sample, from.step(), kNoResidual.data(), 16, out.plane(i).at(x, y), out.plane(i).step(),
                     at.mcType, 0));
    }
  };
  if (!mb.split) {
    copy(moxiCopy16x16HP_8u_C1R, 16 * column, 16 * row, mb.vectors[0]);
    compensate(moxiMC8x8_8u_C1, 8 * column, 8 * row, mb.vectors[0]);
    return;
  }
  for (int k = 0; k < 4; ++k) {
    const Vector v = mb.vectors[static_cast<std::size_t>(k)];
    copy(moxiCopy8x8HP_8u_C1R, 16 * column + k % 2 * 8, 16 * row + k / 2 * 8, v);
    compensate(moxiMC4x4_8u_C1, 8 * column + k % 2 * 4, 8 * row + k / 2 * 4, v);
  }
}

}  // namespace

Field estimate(const Picture& current, const Picture& reference, Method method, int range) {
  Field field{current.columns(), current.rows(), {}, 0};
  for (int row = 0; row < field.rows; ++row) {
    for (int column = 0; column < field.columns; ++column) {
      const Target target = target_of(current, reference, 16 * column, 16 * row);
      const auto neighbours = neighbours_of(field, column, row);
      const auto start = Clock::now();
      const Match found = search(target, method, range, neighbours);
      field.seconds += std::chrono::duration<double>(Clock::now() - start).count();
      Macroblock mb{found.vector, found.sad, false, {}, false};
      const Match best = method == Method::kZero ? found : refine(target, moxiSAD16x16_8u32s, found);
      if (method != Method::kZero) choose_partition(target, best, mb);
      mb.useless = prediction_is_useless(target, best.vector);
      field.macroblocks.push_back(mb);
    }
  }
  return field;
}

Picture predict(const Field& field, const Picture& reference) {
  Picture out(reference.width(), reference.height(), 0);
  for (int row = 0; row < field.rows; ++row) {
    for (int column = 0; column < field.columns; ++column) {
      predict_macroblock(field.at(column, row), reference, column, row, out);
    }
  }
  return out;
}

}  // namespace motion_search
