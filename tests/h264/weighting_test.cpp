#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <vector>

#include "moxvc.h"
#include "oracle/weighting.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using enum oracle::Formula;
using oracle::Weights;

constexpr int kLeast = std::numeric_limits<int>::min(), kMost = std::numeric_limits<int>::max();

Mox32s narrow(std::int64_t value) { return static_cast<Mox32s>(value); }

/// Arguments of any form. Forms in place have their result where `second` is, and those of one block read nothing else.
template <class T>
struct Arguments {
  const T* first;
  const T* second;
  T* result;
  Mox32s step1, step2, resultStep;
  Weights w;
  MoxiSize size;
  int depth;
};

enum Sizes { kPowers, kTwoTo16, kAny };
enum Steps { kUnsigned, kSigned, kUntested };
enum Places { kThree, kTwoSteps, kSecondInPlace, kOneInPlace };

template <class T>
struct Entry {
  const char* name;
  oracle::Formula formula;
  Places places;
  Sizes sizes;
  Steps steps;
  std::function<MoxStatus(const Arguments<T>&)> call;

  bool takes(MoxiSize size) const {
    const auto fits = [this](int side) {
      if (sizes == kPowers) return side == 2 || side == 4 || side == 8 || side == 16;
      return sizes == kAny || (side >= 2 && side <= 16);
    };
    return fits(size.width) && fits(size.height);
  }
};

MoxiBidirParams_16u record_of(const Arguments<Mox16u>& a) {
  return {a.first, a.step1, a.second, a.step2, a.result, a.resultStep, a.size.width, a.size.height, a.depth};
}

class Weighting : public PerGeneration {
 protected:
  /// Calls visit with an entry for each form.
  template <class Visit>
  void each(Visit visit) const {
    each_8u(visit);
    each_16u(visit);
  }

  template <class Visit>
  void each_8u(Visit visit) const {
    using A = const Arguments<Mox8u>&;
    const auto average = lib(MOX_FN(moxiWeightedAverage_H264_8u_C1IR));
    visit(Entry<Mox8u>{"WeightedAverage", kTwoWithOneOffset, kSecondInPlace, kPowers, kSigned, [=](A a) {
                         return average(a.first, a.result, a.resultStep, narrow(a.w.weight1), narrow(a.w.weight2),
                                        a.w.log2Wd, narrow(a.w.offset1), a.size);
                       }});
    for (const auto one :
         {lib(MOX_FN(moxiUniDirWeightBlock_H264_8u_C1IR)), lib(MOX_FN(moxiUniDirWeightBlock_H264_8u_C1R))}) {
      visit(Entry<Mox8u>{"UniDir", kOne, kOneInPlace, kPowers, kUnsigned, [=](A a) {
                           return one(a.result, a.resultStep, a.w.log2Wd, narrow(a.w.weight1), narrow(a.w.offset1),
                                      a.size);
                         }});
    }
    const auto p2 = lib(MOX_FN(moxiBiDirWeightBlock_H264_8u_P2P1R));
    visit(Entry<Mox8u>{"BiDir P2P1R", kExplicit, kTwoSteps, kPowers, kUnsigned, [=](A a) {
                         return p2(a.first, a.second, a.result, a.step1, a.resultStep, a.w.log2Wd, narrow(a.w.weight1),
                                   narrow(a.w.offset1), narrow(a.w.weight2), narrow(a.w.offset2), a.size);
                       }});
    const auto p3 = lib(MOX_FN(moxiBiDirWeightBlock_H264_8u_P3P1R));
    visit(Entry<Mox8u>{"BiDir P3P1R", kExplicit, kThree, kPowers, kUnsigned, [=](A a) {
                         return p3(a.first, a.second, a.result, a.step1, a.step2, a.resultStep, a.w.log2Wd,
                                   narrow(a.w.weight1), narrow(a.w.offset1), narrow(a.w.weight2), narrow(a.w.offset2),
                                   a.size);
                       }});
    const auto implicit2 = lib(MOX_FN(moxiBiDirWeightBlockImplicit_H264_8u_P2P1R));
    visit(Entry<Mox8u>{"BiDirImplicit P2P1R", kImplicit, kTwoSteps, kPowers, kUnsigned, [=](A a) {
                         return implicit2(a.first, a.second, a.result, a.step1, a.resultStep, narrow(a.w.weight1),
                                          narrow(a.w.weight2), a.size);
                       }});
    const auto implicit3 = lib(MOX_FN(moxiBiDirWeightBlockImplicit_H264_8u_P3P1R));
    visit(Entry<Mox8u>{"BiDirImplicit P3P1R", kImplicit, kThree, kAny, kUntested, [=](A a) {
                         return implicit3(a.first, a.second, a.result, a.step1, a.step2, a.resultStep,
                                          narrow(a.w.weight1), narrow(a.w.weight2), a.size);
                       }});
  }

  template <class Visit>
  void each_16u(Visit visit) const {
    using A = const Arguments<Mox16u>&;
    const auto mean = lib(MOX_FN(moxiBidir_H264_16u_P2P1R));
    visit(Entry<Mox16u>{"Bidir 16u", kMean, kThree, kTwoTo16, kUntested, [=](A a) {
                          const auto record = record_of(a);
                          return mean(&record);
                        }});
    const auto both = lib(MOX_FN(moxiBidirWeight_H264_16u_P2P1R));
    visit(Entry<Mox16u>{"BidirWeight 16u", kExplicit, kThree, kPowers, kSigned, [=](A a) {
                          const auto record = record_of(a);
                          return both(&record, a.w.log2Wd, narrow(a.w.weight1), narrow(a.w.offset1),
                                      narrow(a.w.weight2), narrow(a.w.offset2));
                        }});
    const auto implicit = lib(MOX_FN(moxiBidirWeightImplicit_H264_16u_P2P1R));
    visit(Entry<Mox16u>{"BidirWeightImplicit 16u", kImplicit, kThree, kPowers, kSigned, [=](A a) {
                          const auto record = record_of(a);
                          return implicit(&record, narrow(a.w.weight1), narrow(a.w.weight2));
                        }});
    const auto one = lib(MOX_FN(moxiUnidirWeight_H264_16u_IP2P1R));
    visit(Entry<Mox16u>{"UnidirWeight 16u", kOne, kOneInPlace, kPowers, kUnsigned, [=](A a) {
                          return one(a.result, a.resultStep, a.w.log2Wd, narrow(a.w.weight1), narrow(a.w.offset1),
                                     a.size, a.depth);
                        }});
  }
};

/// Numbers as in a stream, at the ends of their ranges, and any at all.
Weights random_weights(Random& random) {
  const auto pick = [&](std::initializer_list<int> values) { return values.begin()[random.bits() % values.size()]; };
  const auto any = [&] { return static_cast<Mox32s>(random.bits()); };
  Weights w;
  switch (random(0, 4)) {
    case 0: return {static_cast<Mox32u>(random(0, 7)), random(-128, 127), random(-128, 127), random(-128, 127), 0};
    case 1:
      w = {static_cast<Mox32u>(random(0, 7)), pick({-128, 127, 128, 1, 0}), pick({-128, 127, -1, 0}),
           pick({-128, 127, 128, -64, 0}), pick({-128, 127, 0})};
      break;
    case 2:  // around the ends of what words and doublewords hold
      w = {static_cast<Mox32u>(pick({0, 1, 6, 7, 8, 11, 12, 14, 15, 16})),
           pick({100, 127, 128, 129, -129, 4095, 32768, -32769}),
           pick({-65537, -65536, -32769, -32768, 32767, 32768, 65535, 65536, 127, 128, -129}),
           pick({0, 1, -28, -128, -129, -4096, 32768}), pick({-65536, 65535, 0})};
      break;
    case 3:
      w = {static_cast<Mox32u>(pick({0, 1, 30, 31, 32, 33, 63, 64, -1})), pick({kLeast, kMost, 1, -1}),
           pick({kLeast, kMost, 0, 1}), pick({kLeast, kMost, 1, 0}), pick({kLeast, kMost, 0, -1})};
      break;
    default: w = {random.bits() % 40, any(), any(), any(), any()};
  }
  return w;
}

/// Compares one call on random places with the oracle.
template <class T>
void expect_oracle(const Entry<T>& entry, MoxiSize size, int depth, Random& random) {
  const auto place = [&] {
    const Placement places[] = {Placement::at_end(), Placement::at_start(),
                                Placement::aligned(random(0, 15) * static_cast<int>(sizeof(T)))};
    return places[random.bits() % 3];
  };
  const auto step = [&] {
    constexpr int kExtra[] = {0, 0, 1, 7, 48, 300};
    const int above = size.width + kExtra[random.bits() % 6];
    return entry.steps == kSigned || random.chance(0.7) ? above : -above;
  };
  const int sourceStep = step(), secondStep = entry.places == kThree ? step() : sourceStep;
  const Plane<T> first(size.width, size.height, sourceStep, place()),
      second(size.width, size.height, secondStep, place()), expected(size.width, size.height, secondStep);
  const bool fits = sizeof(T) == 2 && depth >= 8 && depth <= 16 && random.chance(0.8);
  const int high = fits ? (1 << depth) - 1 : std::numeric_limits<T>::max();
  for (const auto* plane : {&first, &second}) fill(plane->memory(), kPatterns[random.bits() % 7], random, 0, high);
  const bool own = (entry.places == kThree || entry.places == kTwoSteps) && random.chance(0.8);
  const Plane<T> third(size.width, size.height, step(), place()), third_expected(size.width, size.height, third.step());
  const Plane<T>&result = own ? third : second, &want = own ? third_expected : expected;
  want.assign(result);
  const Weights w = random_weights(random);
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      const T a = entry.places == kOneInPlace ? second(x, y) : first(x, y);
      want(x, y) = static_cast<T>(oracle::weighted(entry.formula, w, a, second(x, y), sizeof(T) == 1 ? 8 : depth));
    }
  }
  ASSERT_EQ(entry.call({first.at(0, 0), second.at(0, 0), result.at(0, 0), sourceStep, secondStep, result.step(), w,
                        size, depth}),
            moxStsOk);
  ASSERT_TRUE(result.copy() == want.copy())
      << entry.name << " " << size.width << "x" << size.height << " depth " << depth << " log2Wd " << w.log2Wd
      << " weights " << w.weight1 << " " << w.weight2 << " offsets " << w.offset1 << " " << w.offset2;
}

TEST_P(Weighting, EqualsOracle) {
  Random random;
  each([&](const auto& entry) {
    for (int height = 1; height <= 17; ++height) {
      for (int width : {1, 2, 3, 4, 5, 7, 8, 9, 13, 16, 17, 40}) {
        if (!entry.takes({width, height})) continue;
        for (int round = 0; round < (entry.sizes == kPowers ? 40 : 8); ++round) {
          constexpr int kOddDepths[] = {16, 17, 20, 31, 32, 0, -1};
          const int depth = random.chance(0.8) ? random(8, 14) : kOddDepths[random.bits() % 7];
          expect_oracle(entry, {width, height}, depth, random);
          if (HasFatalFailure()) return;
        }
      }
    }
  });
}

struct SampleCase {
  const char* what;
  oracle::Formula formula;
  int a, b;
  Weights w;
  int depth, result;
};
// Worked out by hand. Weights are log2Wd, weight1, offset1, weight2, offset2; 8-bit forms run the rows of depth 8.
constexpr SampleCase kSampleCases[] = {
    // clang-format off
    {"no rounding", kOne, 10, 0, {0, 3, -5, 0, 0}, 8, 25},
    {"rounds down to 103", kOne, 100, 0, {5, 33, 2, 0, 0}, 8, 105},
    {"shift keeps the sign", kOne, 3, 0, {3, -5, 10, 0, 0}, 8, 8},
    {"clip to 0", kOne, 100, 0, {0, -1, 99, 0, 0}, 8, 0},
    {"clip to 255", kOne, 128, 0, {0, 2, 0, 0, 0}, 8, 255},
    {"log2Wd 32", kOne, 1, 0, {32, 8, kMost, 0, 0}, 8, 7},
    {"log2Wd 33", kOne, 9, 0, {33, 1, 0, 0, 0}, 8, 5},
    {"product and offset wrap", kOne, 2, 0, {0, 0x40000000, -1, 0, 0}, 8, 255},
    {"clip to 1023", kOne, 1000, 0, {0, 2, 0, 0, 0}, 10, 1023},
    {"depth 12", kOne, 1000, 0, {0, 2, 0, 0, 0}, 12, 2000},
    {"depth 16", kOne, 65535, 0, {0, 2, 0, 0, 0}, 16, 65535},
    {"offset is not scaled", kOne, 500, 0, {0, 1, 3, 0, 0}, 10, 503},
    {"log2Wd 0", kExplicit, 10, 13, {0, 1, 0, 1, 0}, 8, 12},
    {"offsets 1 and 0", kExplicit, 10, 13, {0, 1, 1, 1, 0}, 8, 13},
    {"offsets -1 and 0", kExplicit, 10, 13, {0, 1, -1, 1, 0}, 8, 12},
    {"offsets 0 and -3", kExplicit, 10, 13, {0, 1, 0, 1, -3}, 8, 11},
    {"one weight each", kExplicit, 10, 20, {2, 3, 0, -1, 0}, 8, 1},
    {"log2Wd 31", kExplicit, 1, 7, {31, kLeast, 0, 1, 0}, 8, 7},
    {"log2Wd -1", kExplicit, 1, 7, {0xFFFFFFFF, kLeast, 0, 1, 0}, 8, 7},
    {"clip to 1023", kExplicit, 1023, 1000, {0, 2, 0, 2, 0}, 10, 1023},
    {"the mean of 1 and 2", kImplicit, 1, 2, {0, 32, 0, 32, 0}, 8, 2},
    {"-64 and 128", kImplicit, 10, 20, {0, -64, 0, 128, 0}, 8, 30},
    {"128 and -64", kImplicit, 20, 255, {0, 128, 0, -64, 0}, 8, 0},
    {"clip to 1023", kImplicit, 1000, 10, {0, 128, 0, -64, 0}, 10, 1023},
    {"sum of 17 bits", kMean, 65535, 65534, {}, 10, 65535},
    {"halves upwards", kMean, 4, 7, {}, 8, 6},
    {"shift 0", kTwoWithOneOffset, 3, 4, {0, 2, 7, -1, 0}, 8, 9},
    {"shift 1", kTwoWithOneOffset, 3, 4, {1, 1, 0, 1, 0}, 8, 4},
    {"-256", kTwoWithOneOffset, 0, 0, {1, 1, -256, 1, 0}, 8, 0},
    {"511", kTwoWithOneOffset, 255, 0, {0, 2, 1, 0, 0}, 8, 255},
    // clang-format on
};

TEST_P(Weighting, SamplesByHand) {
  each([&]<class T>(const Entry<T>& entry) {
    for (const SampleCase& c : kSampleCases) {
      if (c.formula != entry.formula || (sizeof(T) == 1 && c.depth != 8)) continue;
      const Plane<T> first(8, 8, 8), second(8, 8, 8);
      std::ranges::fill(first.memory(), static_cast<T>(c.a));
      std::ranges::fill(second.memory(), static_cast<T>(entry.places == kOneInPlace ? c.a : c.b));
      ASSERT_EQ(entry.call({first.at(0, 0), second.at(0, 0), second.at(0, 0), 8, 8, 8, c.w, {8, 8}, c.depth}),
                moxStsOk);
      EXPECT_EQ(second.copy(), std::vector<T>(64, static_cast<T>(c.result))) << entry.name << ", " << c.what;
    }
  });
}

TEST_P(Weighting, SizesAndSteps) {
  each([]<class T>(const Entry<T>& entry) {
    const Plane<T> plane(32, 32, 32);
    const auto call = [&](MoxiSize size, int step1, int step2, int resultStep) {
      T* const middle = plane.at(8, 16);
      return entry.call({middle, middle, middle, step1, step2, resultStep, {}, size, 10});
    };
    for (int height = -1; height <= 18; ++height) {
      for (int width = 0; width <= 18; ++width) {
        EXPECT_EQ(call({width, height}, 18, 18, 18), entry.takes({width, height}) ? moxStsOk : moxStsBadSize)
            << entry.name << " " << width << "x" << height;
      }
    }
    const MoxStatus narrow = entry.steps == kUntested ? moxStsOk : moxStsBadStep;
    const MoxStatus upwards = entry.steps == kSigned ? moxStsBadStep : moxStsOk;
    const MoxStatus no_width = entry.steps == kUnsigned ? moxStsBadStep
                               : entry.sizes == kAny    ? moxStsOk
                                                        : moxStsBadSize;
    EXPECT_EQ(call({8, 2}, 8, 8, 8), moxStsOk) << entry.name;
    EXPECT_EQ(call({8, 2}, 8, 8, 7), narrow) << entry.name;
    EXPECT_EQ(call({8, 2}, 8, 8, -8), upwards) << entry.name;
    EXPECT_EQ(call({-8, 2}, 8, 8, 8), no_width) << entry.name;
    if (entry.places == kSecondInPlace || entry.places == kOneInPlace) return;
    EXPECT_EQ(call({8, 2}, 7, 8, 8), narrow) << entry.name;
    EXPECT_EQ(call({8, 2}, -8, 8, 8), upwards) << entry.name;
    if (entry.places == kTwoSteps) return;
    EXPECT_EQ(call({8, 2}, 8, 7, 8), narrow) << entry.name;
    EXPECT_EQ(call({8, 2}, 8, -8, 8), upwards) << entry.name;
  });
}

constexpr MoxiSize k8x8 = {8, 8}, k8x3 = {8, 3}, k9x8 = {9, 8};

TEST_P(Weighting, ArgumentsInPlace) {
  const Guarded<Mox8u> block(128);
  const Guarded<Mox16u> wide(128);
  Mox8u* const p = block.data();
  for (std::size_t i = 0; i < 128; ++i) block[i] = 100, wide[i] = 100;
  Call{lib(MOX_FN(moxiWeightedAverage_H264_8u_C1IR)), std::tuple{p, p, 16, 1, 1, 0, 0, k8x8}}
      .keeps(p, 128)
      .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsNullPointer, set<1>(nullptr)},
                     {moxStsBadStep, set<2>(7)},
                     {moxStsBadSize, set<7>(k8x3)},
                     {moxStsBadSize, set<7>(k9x8)}});
  for (const auto function :
       {lib(MOX_FN(moxiUniDirWeightBlock_H264_8u_C1IR)), lib(MOX_FN(moxiUniDirWeightBlock_H264_8u_C1R))}) {
    Call{function, std::tuple{p, 16, 1, 3, 1, k8x8}}.keeps(p, 128).expect_order({{moxStsNullPointer, set<0>(nullptr)},
                                                                                 {moxStsBadStep, set<1>(7)},
                                                                                 {moxStsBadSize, set<5>(k8x3)},
                                                                                 {moxStsBadSize, set<5>(k9x8)}});
  }
  Call{lib(MOX_FN(moxiUnidirWeight_H264_16u_IP2P1R)), std::tuple{wide.data(), 16, 1, 3, 1, k8x8, 10}}
      .keeps(wide.data(), 256)
      .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsBadStep, set<1>(7)},
                     {moxStsBadSize, set<5>(k8x3)},
                     {moxStsBadSize, set<5>(k9x8)}});
}

TEST_P(Weighting, ArgumentsOfTwoBlocks) {
  const Guarded<Mox8u> a(128), b(128), result(128);
  for (std::size_t i = 0; i < 128; ++i) a[i] = 90, b[i] = 200;
  const auto two_steps = [&](auto call, auto size) {
    constexpr std::size_t kSize = decltype(size)::value;
    call.keeps(result.data(), 128)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<1>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsBadStep, set<3>(7)},
                       {moxStsBadStep, set<4>(7)},
                       {moxStsBadSize, set<kSize>(k8x3)},
                       {moxStsBadSize, set<kSize>(k9x8)}});
  };
  const auto p2 = lib(MOX_FN(moxiBiDirWeightBlock_H264_8u_P2P1R));
  two_steps(Call{p2, std::tuple{a.data(), b.data(), result.data(), 16, 16, 1, 3, 1, 1, 1, k8x8}},
            std::integral_constant<std::size_t, 10>());
  const auto implicit2 = lib(MOX_FN(moxiBiDirWeightBlockImplicit_H264_8u_P2P1R));
  two_steps(Call{implicit2, std::tuple{a.data(), b.data(), result.data(), 16, 16, 32, 32, k8x8}},
            std::integral_constant<std::size_t, 7>());
  Call{lib(MOX_FN(moxiBiDirWeightBlock_H264_8u_P3P1R)),
       std::tuple{a.data(), b.data(), result.data(), 16, 16, 16, 1, 3, 1, 1, 1, k8x8}}
      .keeps(result.data(), 128)
      .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsNullPointer, set<1>(nullptr)},
                     {moxStsNullPointer, set<2>(nullptr)},
                     {moxStsBadStep, set<3>(7)},
                     {moxStsBadStep, set<4>(7)},
                     {moxStsBadStep, set<5>(7)},
                     {moxStsBadSize, set<11>(k8x3)},
                     {moxStsBadSize, set<11>(k9x8)}});
  Call{lib(MOX_FN(moxiBiDirWeightBlockImplicit_H264_8u_P3P1R)),
       std::tuple{a.data(), b.data(), result.data(), 16, 16, 16, 32, 32, k8x8}}
      .keeps(result.data(), 128)
      .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsNullPointer, set<1>(nullptr)},
                     {moxStsNullPointer, set<2>(nullptr)}});
}

TEST_P(Weighting, ArgumentsInRecords) {
  using Record = MoxiBidirParams_16u;
  const Guarded<Mox16u> a(128), b(128), result(128);
  for (std::size_t i = 0; i < 128; ++i) a[i] = 90, b[i] = 200;
  const Record record = {a.data(), 16, b.data(), 16, result.data(), 16, 8, 8, 10};
  const auto expect_order = [&](auto call, bool tests_steps) {
    using Faults = std::vector<typename decltype(call)::Fault>;
    Faults faults = {{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsNullPointer, set_field<0>(&Record::pSrc1, nullptr)},
                     {moxStsNullPointer, set_field<0>(&Record::pSrc2, nullptr)},
                     {moxStsNullPointer, set_field<0>(&Record::pDst, nullptr)}};
    if (tests_steps) {
      for (auto step : {&Record::srcStep1, &Record::srcStep2, &Record::dstStep}) {
        faults.push_back({moxStsBadStep, set_field<0>(step, 7)});
      }
    }
    faults.push_back({moxStsBadSize, set_field<0>(&Record::height, 17)});
    faults.push_back({moxStsBadSize, set_field<0>(&Record::width, 17)});
    if (tests_steps) faults.back() = {moxStsBadSize, set_field<0>(&Record::width, 9)};
    call.keeps(result.data(), 256).expect_order(faults);
  };
  expect_order(Call{lib(MOX_FN(moxiBidir_H264_16u_P2P1R)), std::tuple{&record}}, false);
  expect_order(Call{lib(MOX_FN(moxiBidirWeight_H264_16u_P2P1R)), std::tuple{&record, 1, 3, 1, 1, 1}}, true);
  expect_order(Call{lib(MOX_FN(moxiBidirWeightImplicit_H264_16u_P2P1R)), std::tuple{&record, 32, 32}}, true);
}

MOX_INSTANTIATE_GENERATIONS(Weighting);

}  // namespace
}  // namespace mox::test
