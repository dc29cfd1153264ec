#include "support/bench.hpp"

namespace mox::bench {
namespace {

constexpr int kStep = 64;  // of 8-bit blocks; 16-bit blocks have rows of 32 bytes
constexpr int kStep16 = 32;
constexpr std::size_t kSize = 17 * kStep + 32;

// References lie one byte off any alignment, as motion vectors leave them.
const Mox8u* const kRef = buffer<Mox8u>(kSize, 0, 255) + 1;
const Mox8u* const kRefB = buffer<Mox8u>(kSize, 0, 255) + 5;
const Mox8u* const kCur = buffer<Mox8u>(kSize, 0, 255);
Mox8u* const kDst = buffer<Mox8u>(kSize, 0, 255);
Mox16s* const kResidual = buffer<Mox16s>(256, -40, 40);
Mox16s* const kResidualV = buffer<Mox16s>(256, -40, 40);
Mox16s* const kDiff = buffer<Mox16s>(256, 0, 0);
Mox16s* const kDiffV = buffer<Mox16s>(256, 0, 0);
const Mox16u* const kWide = reinterpret_cast<const Mox16u*>(kResidual);

constexpr const char* kPositions[] = {"full", "FH", "HF", "HH"};
constexpr Mox32s mc_type(int position) { return position << 2; }
constexpr Mox32s acc(int position) { return position >> 1 | (position & 1) << 1; }

/// Rows of a table indexed by position and rounding: row(symbol, name, position, rounding) makes one.
class Rows {
 public:
  operator std::span<const Row>() const { return rows_; }

  /// All positions, both roundings where they differ.
  template <class Make>
  Rows& single(Make make) {
    for (int p = 0; p < 4; ++p) {
      rows_.push_back(make(kPositions[p], p, 0));
      if (p) rows_.push_back(make(std::string(kPositions[p]) + " to zero", p, 1));
    }
    return *this;
  }
  /// All pairs of positions.
  template <class Make>
  Rows& pairs(Make make) {
    for (int f = 0; f < 4; ++f) {
      for (int b = 0; b < 4; ++b) {
        rows_.push_back(make(std::string(kPositions[f]).append(" ").append(kPositions[b]), f, b));
      }
    }
    return *this;
  }
  Rows& add(Row row) {
    rows_.push_back(std::move(row));
    return *this;
  }

 private:
  std::vector<Row> rows_;
};

const Row kArithmeticRows[] = {
    call(MOX_FN(moxiCopy8x8_8u_C1R), "", kRef, kStep, kDst, kStep),
    call(MOX_FN(moxiCopy16x16_8u_C1R), "", kRef, kStep, kDst, kStep),
    call(MOX_FN(moxiAdd8x8_16s8u_C1IRS), "", kResidual, 16, kDst, kStep),
    loop(MOX_FN(moxiAdd8x8_16s8u_C1IRS), "four blocks in turn",
         [](auto* add) {
           static int block = 0;
           block = (block + 8) & 31;
           return add(kResidual, 16, kDst + block, kStep);
         }),
    call(MOX_FN(moxiAddC8x8_16s8u_C1IR), "", Mox16s{3}, kDst, kStep),
    call(MOX_FN(moxiAverage8x8_8u_C1IR), "", kRef, kStep, kDst, kStep),
    call(MOX_FN(moxiAverage16x16_8u_C1IR), "", kRef, kStep, kDst, kStep),
    call(MOX_FN(moxiAverage8x8_8u_C1R), "", kRef, kStep, kCur, kStep, kDst, kStep),
    call(MOX_FN(moxiAverage16x16_8u_C1R), "", kRef, kStep, kCur, kStep, kDst, kStep),
    call(MOX_FN(moxiSub4x4_8u16s_C1R), "", kCur, kStep, kRef, kStep, kDiff, 8),
    call(MOX_FN(moxiSub8x8_8u16s_C1R), "", kCur, kStep, kRef, kStep, kDiff, 16),
    call(MOX_FN(moxiSub16x16_8u16s_C1R), "", kCur, kStep, kRef, kStep, kDiff, kStep16),
    call(MOX_FN(moxiSub4x4_16u16s_C1R), "", kWide, kStep16, kWide, kStep16, kDiff, 8),
    call(MOX_FN(moxiSub8x8_16u16s_C1R), "", kWide, kStep16, kWide, kStep16, kDiff, 16),
};
const Family kArithmetic("block arithmetic", kArithmeticRows);

template <class Function>
auto mc(Symbol<Function> symbol) {
  return [=](const std::string& name, int position, int rounding) {
    return call(symbol, name, kRef, kStep, kResidual, kStep16, kDst, kStep, mc_type(position), rounding);
  };
}
template <class Function>
auto mc_pair(Symbol<Function> symbol) {
  return [=](const std::string& name, int f, int b) {
    return call(symbol, name, kRef, kStep, mc_type(f), kRefB, kStep, mc_type(b), kResidual, kStep16, kDst, kStep, 0);
  };
}
const Rows kMcRows = Rows()
                         .single(mc(MOX_FN(moxiMC16x16_8u_C1)))
                         .single(mc(MOX_FN(moxiMC16x8UV_8u_C1)))
                         .single(mc(MOX_FN(moxiMC8x8_8u_C1)))
                         .single(mc(MOX_FN(moxiMC4x8_8u_C1)))
                         .single(mc(MOX_FN(moxiMC4x4_8u_C1)))
                         .single(mc(MOX_FN(moxiMC4x2_8u_C1)))
                         .single(mc(MOX_FN(moxiMC2x4_8u_C1)))
                         .single(mc(MOX_FN(moxiMC2x2_8u_C1)))
                         .single([](const std::string& name, int position, int rounding) {
                           return call(MOX_FN(moxiMC8x8_16s8u_P2C2R), name, kRef, kStep, kResidual, kResidualV, 16,
                                       kDst, kStep, mc_type(position), rounding);
                         });
const Family kMc("motion compensation", kMcRows);

const Rows kMcPairRows = Rows()
                             .pairs(mc_pair(MOX_FN(moxiMC16x16B_8u_C1)))
                             .pairs(mc_pair(MOX_FN(moxiMC16x8BUV_8u_C1)))
                             .pairs(mc_pair(MOX_FN(moxiMC8x8B_8u_C1)))
                             .pairs(mc_pair(MOX_FN(moxiMC4x8B_8u_C1)))
                             .pairs(mc_pair(MOX_FN(moxiMC4x4B_8u_C1)))
                             .pairs(mc_pair(MOX_FN(moxiMC4x2B_8u_C1)))
                             .pairs(mc_pair(MOX_FN(moxiMC2x4B_8u_C1)))
                             .pairs(mc_pair(MOX_FN(moxiMC2x2B_8u_C1)))
                             .pairs([](const std::string& name, int f, int b) {
                               return call(MOX_FN(moxiMC8x8B_16s8u_P2C2R), name, kRef, kStep, mc_type(f), kRefB, kStep,
                                           mc_type(b), kResidual, kResidualV, 16, kDst, kStep, 0);
                             });
const Family kMcPair("motion compensation from two references", kMcPairRows);

template <class Function>
auto diff(Symbol<Function> symbol, Mox16s* predictor) {
  return [=](const std::string& name, int position, int rounding) {
    return call(symbol, name + (predictor ? " with P" : ""), kCur, kStep, kRef, kStep, kDiff, kStep16, predictor,
                kStep16, mc_type(position), rounding);
  };
}
template <class Function>
auto diff_pair(Symbol<Function> symbol) {
  return [=](const std::string& name, int f, int b) {
    return call(symbol, name, kCur, kStep, kRef, kStep, mc_type(f), kRefB, kStep, mc_type(b), kDiff, kStep16, 0);
  };
}
template <class Function>
auto diff_channels_pair(Symbol<Function> symbol) {
  return [=](const std::string& name, int f, int b) {
    return call(symbol, name, kCur, kStep, kRef, kStep, mc_type(f), kRefB, kStep, mc_type(b), kDiff, 16, kDiffV, 16, 0);
  };
}
const Rows kDiffRows = Rows()
                           .single(diff(MOX_FN(moxiGetDiff16x16_8u16s_C1), nullptr))
                           .single(diff(MOX_FN(moxiGetDiff16x16_8u16s_C1), kDiffV))
                           .single(diff(MOX_FN(moxiGetDiff16x8_8u16s_C1), nullptr))
                           .single(diff(MOX_FN(moxiGetDiff8x16_8u16s_C1), nullptr))
                           .single(diff(MOX_FN(moxiGetDiff8x8_8u16s_C1), nullptr))
                           .single(diff(MOX_FN(moxiGetDiff8x8_8u16s_C1), kDiffV))
                           .single(diff(MOX_FN(moxiGetDiff8x4_8u16s_C1), nullptr))
                           .single(diff(MOX_FN(moxiGetDiff8x8_8u16s_C2P2), kDiffV))
                           .single(diff(MOX_FN(moxiGetDiff8x4_8u16s_C2P2), kDiffV))
                           .add(call(MOX_FN(moxiGetDiff4x4_8u16s_C1), "", kCur, kStep, kRef, kStep, kDiff, kStep16));
const Family kDiffs("differences", kDiffRows);

const Rows kDiffPairRows = Rows()
                               .pairs(diff_pair(MOX_FN(moxiGetDiff16x16B_8u16s_C1)))
                               .pairs(diff_pair(MOX_FN(moxiGetDiff16x8B_8u16s_C1)))
                               .pairs(diff_pair(MOX_FN(moxiGetDiff8x16B_8u16s_C1)))
                               .pairs(diff_pair(MOX_FN(moxiGetDiff8x8B_8u16s_C1)))
                               .pairs(diff_pair(MOX_FN(moxiGetDiff8x4B_8u16s_C1)))
                               .pairs(diff_channels_pair(MOX_FN(moxiGetDiff8x8B_8u16s_C2P2)))
                               .pairs(diff_channels_pair(MOX_FN(moxiGetDiff8x4B_8u16s_C2P2)));
const Family kDiffPairs("differences from two references", kDiffPairRows);

template <class Function>
auto copy(Symbol<Function> symbol) {
  return [=](const std::string& name, int position, int rounding) {
    return call(symbol, name, kRef, kStep, kDst, kStep, acc(position), rounding);
  };
}
const Rows kCopyRows = Rows()
                           .single(copy(MOX_FN(moxiCopy16x16HP_8u_C1R)))
                           .single(copy(MOX_FN(moxiCopy16x8HP_8u_C1R)))
                           .single(copy(MOX_FN(moxiCopy8x8HP_8u_C1R)))
                           .single(copy(MOX_FN(moxiCopy8x4HP_8u_C1R)))
                           .single(copy(MOX_FN(moxiInterpolateAverage16x16_8u_C1IR)))
                           .single(copy(MOX_FN(moxiInterpolateAverage16x8_8u_C1IR)))
                           .single(copy(MOX_FN(moxiInterpolateAverage8x8_8u_C1IR)))
                           .single(copy(MOX_FN(moxiInterpolateAverage8x4_8u_C1IR)))
                           .single([](const std::string& name, int position, int rounding) {
                             return call(MOX_FN(moxiAdd8x8HP_16s8u_C1RS), name, kResidual, 16, kRef, kStep, kDst, kStep,
                                         acc(position), rounding);
                           });
const Family kCopies("half-pel copies", kCopyRows);

}  // namespace
}  // namespace mox::bench
