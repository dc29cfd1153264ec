#include "moxdec/h264/scaling.hpp"

#include <algorithm>

#include "common/h264_scaling_tables.hpp"

namespace moxdec::h264 {
namespace {

constexpr std::uint8_t kFlat = 16;

constexpr int list_size(int list) { return list < kLists4x4 ? 16 : 64; }

constexpr ScalingLists kDefaultLists = [] {
  ScalingLists lists{};
  for (int i = 0; i < kLists4x4; ++i) std::ranges::copy(example::kDefaultScaling4x4[i / 3], lists[i].begin());
  for (int i = kLists4x4; i < kScalingLists; ++i) lists[i] = example::kDefaultScaling8x8[i - kLists4x4];
  return lists;
}();

constexpr ScalingLists kFlatLists = [] {
  ScalingLists lists;
  for (ScalingList& list : lists) list.fill(kFlat);
  return lists;
}();

/// Values are written as differences. One that comes to 0 repeats the value before it up to the end or, at the very
/// beginning, stands for the default list.
ScalingList parse_scaling_list(BitReader& bits, int size, const ScalingList& default_list) {
  ScalingList list{};
  int last = 8;
  for (int i = 0; i < size; ++i) {
    const int next = (last + bits.se(-128, 127, "scaling list value") + 256) % 256;
    if (next == 0) {
      if (i == 0) return default_list;
      std::fill(list.begin() + i, list.begin() + size, static_cast<std::uint8_t>(last));
      return list;
    }
    list[i] = static_cast<std::uint8_t>(last = next);
  }
  return list;
}

/// Where one is left out, the first list of each kind comes from `fallback`, another is the same as the one before it.
ScalingLists complete(const CodedScalingLists& coded, const ScalingLists& fallback) {
  ScalingLists lists;
  for (int i = 0; i < kScalingLists; ++i) {
    const bool first_of_kind = i % 3 == 0 || i >= kLists4x4;
    lists[i] = coded[i] ? *coded[i] : first_of_kind ? fallback[i] : lists[i - 1];
  }
  return lists;
}

}  // namespace

CodedScalingLists parse_scaling_lists(BitReader& bits, int count_8x8) {
  CodedScalingLists lists;
  for (int i = 0; i < kLists4x4 + count_8x8; ++i) {
    if (!bits.flag()) continue;
    const int known = std::min(i, kScalingLists - 1);
    const ScalingList list = parse_scaling_list(bits, list_size(known), kDefaultLists[known]);
    if (i < kScalingLists) lists[i] = list;
  }
  return lists;
}

ScalingLists resolve_scaling_lists(const std::optional<CodedScalingLists>& sequence,
                                   const std::optional<CodedScalingLists>& picture) {
  const ScalingLists whole = sequence ? complete(*sequence, kDefaultLists) : kFlatLists;
  return picture ? complete(*picture, sequence ? whole : kDefaultLists) : whole;
}

LevelScales::LevelScales(const ScalingLists& lists) {
  for (int rem = 0; rem < 6; ++rem) {
    for (int list = 0; list < kLists4x4; ++list) {
      for (int i = 0; i < 16; ++i) {
        const int position = example::kZigzag4x4[i];
        const int factor = example::kLevelScale4x4[rem][example::kClasses4x4[position]];
        scales_4x4_[list][rem][position] = static_cast<Mox16s>(lists[list][i] * factor);
      }
    }
    for (int list = 0; list < 2; ++list) {
      for (int i = 0; i < 64; ++i) {
        const int position = example::kZigzag8x8[i], x = position % 4, y = position / 8 % 4;
        const int factor = example::kLevelScale8x8[rem][example::kClasses8x8[4 * y + x]];
        scales_8x8_[list][rem][position] = static_cast<Mox16s>(lists[kLists4x4 + list][i] * factor);
      }
    }
  }
  flat_4x4_ = std::all_of(lists.begin(), lists.begin() + kLists4x4, [](const ScalingList& list) {
    return std::all_of(list.begin(), list.begin() + 16, [](std::uint8_t value) { return value == kFlat; });
  });
}

}  // namespace moxdec::h264
