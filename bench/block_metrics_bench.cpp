#include <array>

#include "support/bench.hpp"

namespace mox::bench {
namespace {

/// Source and reference of one kind of sample, and room for results.
template <class T>
struct Pictures {
  static constexpr Mox32s kStep = kPictureStep * sizeof(T);
  const T *source, *reference;
  explicit Pictures(int maximum) : source(picture<T>(0, maximum)), reference(picture<T>(0, maximum)) {}
};
const Pictures<Mox8u> k8u(255);
const Pictures<Mox16u> k16u(1023);
template <class T>
const Pictures<T>& pictures() {
  if constexpr (sizeof(T) == 1) {
    return k8u;
  } else {
    return k16u;
  }
}
/// References begin at an odd place, as most of a search's do.
constexpr int kOdd = 3;

template <class Result>
Result* results() {
  static Result* const memory = buffer<Result>(64, 0, 0);
  return memory;
}

constexpr const char* kPositions[] = {"full", "FH", "HF", "HH"};

/// Rows of a function at its four positions.
template <class T>
std::array<Row, 4> positions(Symbol<MoxStatus(const T*, Mox32s, const T*, Mox32s, Mox32s*, Mox32s)> symbol) {
  const auto row = [&](int i) {
    const Pictures<T>& p = pictures<T>();
    return call(symbol, kPositions[i], p.source, p.kStep, p.reference + kOdd, p.kStep, results<Mox32s>(), 4 * i);
  };
  return {row(0), row(1), row(2), row(3)};
}
template <class T, class Result>
Row plain(Symbol<MoxStatus(const T*, Mox32s, const T*, Mox32s, Result*)> symbol) {
  const Pictures<T>& p = pictures<T>();
  return call(symbol, "", p.source, p.kStep, p.reference + kOdd, p.kStep, results<Result>());
}
Row several(Symbol<decltype(moxiSAD8x8xN_8u16u_C1R)> symbol, const char* variant, int count) {
  return call(symbol, variant, k8u.source, k8u.kStep, k8u.reference + kOdd, k8u.kStep, results<Mox16u>(), count);
}
Row several(Symbol<decltype(moxiSAD8x8xNI_8u16u_C1R)> symbol, const char* variant, int count) {
  return call(symbol, variant, k8u.source, k8u.kStep, k8u.reference + kOdd, k8u.kStep, results<Mox16u>(), count,
              results<Mox32s>());
}
Row two_channels(int i) {
  return call(MOX_FN(moxiSAD8x8_8u32s_C2R), kPositions[i], k8u.source, k8u.kStep, k8u.reference + kOdd, k8u.kStep,
              results<Mox32s>(), results<Mox32s>() + 1, 4 * i);
}
Row squares(int i) {
  return call(MOX_FN(moxiSqrDiff16x16_8u32s), kPositions[i], k8u.source, k8u.kStep, k8u.reference + kOdd, k8u.kStep,
              4 * i, results<Mox32s>());
}
Row squares_of_two(int first, int second) {
  return call(MOX_FN(moxiSqrDiff16x16B_8u32s), std::string(kPositions[first]) + ", " + kPositions[second], k8u.source,
              k8u.kStep, k8u.reference + kOdd, k8u.kStep, 4 * first, k8u.reference + kOdd + 5, k8u.kStep, 4 * second,
              results<Mox32s>());
}
std::vector<Row> all_squares_of_two() {
  std::vector<Row> rows;
  for (int i = 0; i < 16; ++i) rows.push_back(squares_of_two(i / 4, i % 4));
  return rows;
}

/// Rows and groups of rows in one list.
std::vector<Row> list(std::initializer_list<std::vector<Row>> groups) {
  std::vector<Row> rows;
  for (const auto& group : groups) rows.insert(rows.end(), group.begin(), group.end());
  return rows;
}
std::vector<Row> group(const std::array<Row, 4>& rows) { return {rows.begin(), rows.end()}; }

const std::vector<Row> kSadRows = list({
    group(positions(MOX_FN(moxiSAD16x16_8u32s))),
    group(positions(MOX_FN(moxiSAD16x8_8u32s_C1R))),
    group(positions(MOX_FN(moxiSAD8x8_8u32s_C1R))),
    {plain(MOX_FN(moxiSAD4x4_8u32s)), plain(MOX_FN(moxiSAD4x8_8u32s_C1R)), plain(MOX_FN(moxiSAD8x4_8u32s_C1R)),
     plain(MOX_FN(moxiSAD8x16_8u32s_C1R))},
    {two_channels(0), two_channels(1), two_channels(2), two_channels(3)},
    group(positions(MOX_FN(moxiSAD16x16_16u32s_C1R))),
    group(positions(MOX_FN(moxiSAD8x8_16u32s_C1R))),
    group(positions(MOX_FN(moxiSAD4x4_16u32s_C1R))),
    {plain(MOX_FN(moxiSAD16x16Blocks8x8_8u16u)), plain(MOX_FN(moxiSAD16x16Blocks4x4_8u16u)),
     plain(MOX_FN(moxiSAD16x16Blocks8x8_16u32u_C1R)), plain(MOX_FN(moxiSAD16x16Blocks4x4_16u32u_C1R))},
});
const Family kSad("block_sad", kSadRows);

const std::vector<Row> kSsdRows = list({
    group(positions(MOX_FN(moxiSSD8x8_8u32s_C1R))),
    group(positions(MOX_FN(moxiSSD4x4_8u32s_C1R))),
    {squares(0), squares(1), squares(2), squares(3)},
    all_squares_of_two(),
});
const Family kSsd("block_ssd", kSsdRows);

const Row kCandidateRows[] = {
    several(MOX_FN(moxiSAD16x16xN_8u16u_C1R), "8", 8),    several(MOX_FN(moxiSAD8x8xN_8u16u_C1R), "8", 8),
    several(MOX_FN(moxiSAD4x4xN_8u16u_C1R), "8", 8),      several(MOX_FN(moxiSAD2x2xN_8u16u_C1R), "8", 8),
    several(MOX_FN(moxiSAD16x16xNI_8u16u_C1R), "16", 16), several(MOX_FN(moxiSAD8x8xNI_8u16u_C1R), "16", 16),
    several(MOX_FN(moxiSAD4x4xNI_8u16u_C1R), "16", 16),
};
const Family kCandidates("block_candidates", kCandidateRows);

const Row kHadamardRows[] = {
    plain(MOX_FN(moxiSATD4x4_8u32s_C1R)),   plain(MOX_FN(moxiSATD8x4_8u32s_C1R)),
    plain(MOX_FN(moxiSATD4x8_8u32s_C1R)),   plain(MOX_FN(moxiSATD8x8_8u32s_C1R)),
    plain(MOX_FN(moxiSATD16x8_8u32s_C1R)),  plain(MOX_FN(moxiSATD8x16_8u32s_C1R)),
    plain(MOX_FN(moxiSATD16x16_8u32s_C1R)), plain(MOX_FN(moxiSAT8x8D_8u32s_C1R)),
    plain(MOX_FN(moxiSAT8x8D_16u32s_C1R)),
};
const Family kHadamard("block_satd", kHadamardRows);

const Row kActivityRows[] = {
    call(MOX_FN(moxiFrameFieldSAD16x16_8u32s_C1R), "", k8u.source, k8u.kStep, results<Mox32s>(), results<Mox32s>() + 1),
    call(MOX_FN(moxiFrameFieldSAD16x16_16s32s_C1R), "", reinterpret_cast<const Mox16s*>(k16u.source), k16u.kStep,
         results<Mox32s>(), results<Mox32s>() + 1),
    call(MOX_FN(moxiSubSAD8x8_8u16s_C1R), "", k8u.source, k8u.kStep, k8u.reference + kOdd, k8u.kStep,
         buffer<Mox16s>(64, 0, 0), 16, results<Mox32s>()),
};
const Family kActivity("block_activity", kActivityRows);

}  // namespace
}  // namespace mox::bench
