#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <type_traits>
#include <vector>

#include "block/block_planes.hpp"
#include "moxvc.h"
#include "oracle/metrics.hpp"
#include "support/library.hpp"
#include "support/null_pointers.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

enum class Distance { kSad, kSsd, kHadamard4, kHadamard8 };
/// How a function finds its positions: it has none, by two bits, or by comparison.
enum class Selector { kNone, kBits, kCompared };
using Results = std::vector<std::int64_t>;

/// What a function does. A part is what one of its results covers.
struct Form {
  int width, height;
  Distance distance;
  Selector selector = Selector::kNone;
  int part = 0;  ///< width and height of a part, or 0 for the whole block
  int channels = 1;
  int references = 1;

  std::size_t results() const { return static_cast<std::size_t>(channels * (part ? width * height / part / part : 1)); }
  /// Half-pel bits of an mcType: 2 for a half in x, 1 for a half in y.
  int position(int mcType) const {
    if (selector == Selector::kNone) return 0;
    if (selector == Selector::kCompared && mcType != 0 && mcType != 4 && mcType != 8) return 3;
    return static_cast<int>(static_cast<unsigned>(mcType) / 4 % 4);
  }
};

template <class T>
struct Reference {
  const T* data;
  int step, mcType;
};

/// A function on samples of type T, whatever its arguments are.
template <class T>
struct Entry {
  const char* name;
  Form form;
  std::function<MoxStatus(const T*, int, const Reference<T>*, Results&)> call;

  Results operator()(const Block<T>& source, const std::vector<Block<T>>& blocks, const int* mcTypes) const {
    Reference<T> references[2] = {};
    for (std::size_t i = 0; i < blocks.size(); ++i) references[i] = {blocks[i].data(), blocks[i].step(), mcTypes[i]};
    Results results(form.results());
    EXPECT_EQ(call(source.data(), source.step(), references, results), moxStsOk) << name;
    return results;
  }
};

/// Runs body with exactly as much memory as the results need, and takes them over.
template <class Result, class Body>
MoxStatus with_results(Results& results, Body body) {
  Guarded<Result> memory(results.size());
  const MoxStatus status = body(memory.data());
  std::copy(memory.begin(), memory.end(), results.begin());
  return status;
}

// One call for each signature.
template <class T, class Result>
auto adapt(MoxStatus (*f)(const T*, Mox32s, const T*, Mox32s, Result*)) {
  return [f](const T* src, int step, const Reference<T>* ref, Results& results) {
    return with_results<Result>(results, [&](Result* r) { return f(src, step, ref->data, ref->step, r); });
  };
}
template <class T>
auto adapt(MoxStatus (*f)(const T*, Mox32s, const T*, Mox32s, Mox32s*, Mox32s)) {
  return [f](const T* src, int step, const Reference<T>* ref, Results& results) {
    return with_results<Mox32s>(results, [&](Mox32s* r) { return f(src, step, ref->data, ref->step, r, ref->mcType); });
  };
}
auto adapt(decltype(moxiSqrDiff16x16_8u32s)* f) {
  return [f](const Mox8u* src, int step, const Reference<Mox8u>* ref, Results& results) {
    return with_results<Mox32s>(results, [&](Mox32s* r) { return f(src, step, ref->data, ref->step, ref->mcType, r); });
  };
}
auto adapt(decltype(moxiSqrDiff16x16B_8u32s)* f) {
  return [f](const Mox8u* src, int step, const Reference<Mox8u>* ref, Results& results) {
    return with_results<Mox32s>(results, [&](Mox32s* r) {
      return f(src, step, ref[0].data, ref[0].step, ref[0].mcType, ref[1].data, ref[1].step, ref[1].mcType, r);
    });
  };
}
auto adapt(decltype(moxiSAD8x8_8u32s_C2R)* f) {
  return [f](const Mox8u* src, int step, const Reference<Mox8u>* ref, Results& results) {
    Guarded<Mox32s> u(1), v(1);
    const MoxStatus status = f(src, step, ref->data, ref->step, u.data(), v.data(), ref->mcType);
    results = {u[0], v[0]};
    return status;
  };
}

class Metrics : public PerGeneration {
 protected:
  template <class Function>
  auto entry(Symbol<Function> symbol, const Form& form) const {
    const auto first = []<class T, class... Others>(MoxStatus (*)(const T*, Others...)) { return T(); };
    using T = decltype(first(static_cast<Function*>(nullptr)));
    return Entry<T>{symbol.name, form, adapt(lib(symbol))};
  }

  /// Calls visit with an entry for each function.
  template <class Visit>
  void each(Visit visit) const {
    using enum Distance;
    using enum Selector;
    visit(entry(MOX_FN(moxiSAD16x16_8u32s), {16, 16, kSad, kBits}));
    visit(entry(MOX_FN(moxiSAD16x8_8u32s_C1R), {16, 8, kSad, kBits}));
    visit(entry(MOX_FN(moxiSAD8x8_8u32s_C1R), {8, 8, kSad, kBits}));
    visit(entry(MOX_FN(moxiSAD16x16_16u32s_C1R), {16, 16, kSad, kBits}));
    visit(entry(MOX_FN(moxiSAD8x8_16u32s_C1R), {8, 8, kSad, kBits}));
    visit(entry(MOX_FN(moxiSAD4x4_16u32s_C1R), {4, 4, kSad, kBits}));
    visit(entry(MOX_FN(moxiSAD4x4_8u32s), {4, 4, kSad}));
    visit(entry(MOX_FN(moxiSAD4x8_8u32s_C1R), {4, 8, kSad}));
    visit(entry(MOX_FN(moxiSAD8x4_8u32s_C1R), {8, 4, kSad}));
    visit(entry(MOX_FN(moxiSAD8x16_8u32s_C1R), {8, 16, kSad}));
    visit(entry(MOX_FN(moxiSAD8x8_8u32s_C2R), {8, 8, kSad, kBits, 0, 2}));
    visit(entry(MOX_FN(moxiSAD16x16Blocks8x8_8u16u), {16, 16, kSad, kNone, 8}));
    visit(entry(MOX_FN(moxiSAD16x16Blocks4x4_8u16u), {16, 16, kSad, kNone, 4}));
    visit(entry(MOX_FN(moxiSAD16x16Blocks8x8_16u32u_C1R), {16, 16, kSad, kNone, 8}));
    visit(entry(MOX_FN(moxiSAD16x16Blocks4x4_16u32u_C1R), {16, 16, kSad, kNone, 4}));
    visit(entry(MOX_FN(moxiSSD8x8_8u32s_C1R), {8, 8, kSsd, kBits}));
    visit(entry(MOX_FN(moxiSSD4x4_8u32s_C1R), {4, 4, kSsd, kBits}));
    visit(entry(MOX_FN(moxiSqrDiff16x16_8u32s), {16, 16, kSsd, kCompared}));
    visit(entry(MOX_FN(moxiSqrDiff16x16B_8u32s), {16, 16, kSsd, kBits, 0, 1, 2}));
    visit(entry(MOX_FN(moxiSATD4x4_8u32s_C1R), {4, 4, kHadamard4}));
    visit(entry(MOX_FN(moxiSATD8x4_8u32s_C1R), {8, 4, kHadamard4}));
    visit(entry(MOX_FN(moxiSATD4x8_8u32s_C1R), {4, 8, kHadamard4}));
    visit(entry(MOX_FN(moxiSATD8x8_8u32s_C1R), {8, 8, kHadamard4}));
    visit(entry(MOX_FN(moxiSATD16x8_8u32s_C1R), {16, 8, kHadamard4}));
    visit(entry(MOX_FN(moxiSATD8x16_8u32s_C1R), {8, 16, kHadamard4}));
    visit(entry(MOX_FN(moxiSATD16x16_8u32s_C1R), {16, 16, kHadamard4}));
    visit(entry(MOX_FN(moxiSAT8x8D_8u32s_C1R), {8, 8, kHadamard8}));
    visit(entry(MOX_FN(moxiSAT8x8D_16u32s_C1R), {8, 8, kHadamard8}));
  }
};

std::int64_t distance(const Form& form, const oracle::Differences& differences) {
  switch (form.distance) {
    case Distance::kSad: return differences.power_sum(1);
    case Distance::kSsd: return differences.power_sum(2);
    case Distance::kHadamard4: return differences.hadamard_sum(4);
    case Distance::kHadamard8: break;
  }
  return differences.hadamard_sum(8);
}

template <class T>
Results expected(const Form& form, const Block<T>& source, const std::vector<Block<T>>& blocks, const int* mcTypes) {
  const int n = form.channels, w = form.part ? form.part : form.width, h = form.part ? form.part : form.height;
  Results results;
  for (int i = 0; i < static_cast<int>(form.results()); ++i) {
    const int channel = n > 1 ? i : 0, part = n > 1 ? 0 : i, x0 = part * w % form.width, y0 = part * w / form.width * h;
    const auto prediction = [&](int x, int y) {
      std::int64_t sum = 0;
      for (std::size_t r = 0; r < blocks.size(); ++r) {
        const int position = form.position(mcTypes[r]);
        const auto sample = [&](int sx, int sy) { return blocks[r].get(sx * n + channel, sy); };
        sum += oracle::rounded_mean(sample, x0 + x, y0 + y, position / 2, position % 2, 65535);
      }
      return blocks.size() == 2 ? (sum + 1) / 2 : sum;
    };
    const auto original = [&](int x, int y) { return source.get((x0 + x) * n + channel, y0 + y); };
    results.push_back(distance(form, oracle::Differences(w, h, original, prediction)));
  }
  return results;
}

/// Legal selectors, and others with the same bits 2 and 3.
int random_mc_type(Random& random) {
  const int others[] = {1, 2, 7, 16, 19, 23, -1, -4, -8, -16, 1 << 30, std::numeric_limits<int>::min()};
  return random.chance(0.7) ? 4 * random(0, 3) : others[random.bits() % std::size(others)];
}
/// A block with random step and place; two-channel forms take positive steps only.
template <class T>
Block<T> random_block(const Form& form, int width, int height, Random& random) {
  const int bytes = width * static_cast<int>(sizeof(T));
  const int step = form.channels == 2 ? random(1, 40) : random_step(bytes, random);
  return Block<T>(width, height, step, random_placement(random));
}
/// The largest samples: mostly all bits, also those of 10, 14 and 15 bits.
template <class T>
int random_maximum(Random& random) {
  const int maxima[] = {255, 65535, 1023, 16383, 32767};
  return sizeof(T) == 1 ? 255 : maxima[random.bits() % 5];
}

TEST_P(Metrics, EqualOracle) {
  Random random;
  each([&]<class T>(const Entry<T>& entry) {
    const Form& form = entry.form;
    for (int round = 0; round < 400; ++round) {
      const Block<T> source = random_block<T>(form, form.width * form.channels, form.height, random);
      const int maximum = random_maximum<T>(random);
      source.fill(kPatterns[random.bits() % 7], random, 0, maximum);
      int mcTypes[2] = {random_mc_type(random), random_mc_type(random)};
      std::vector<Block<T>> blocks;
      for (int r = 0; r < form.references; ++r) {
        const int p = form.position(mcTypes[r]);
        blocks.push_back(random_block<T>(form, (form.width + p / 2) * form.channels, form.height + p % 2, random));
        blocks.back().fill(kPatterns[random.bits() % 7], random, 0, maximum);
      }
      ASSERT_EQ(entry(source, blocks, mcTypes), expected(form, source, blocks, mcTypes))
          << entry.name << " mcType " << mcTypes[0] << " " << mcTypes[1] << " round " << round;
    }
  });
}

/// Blocks of one source value against one reference value give the same number at every position.
TEST_P(Metrics, FlatBlocks) {
  struct Case {
    int source, reference, mcType;
    std::int64_t difference;  ///< what each sample counts
  };
  const Case cases8[] = {{255, 0, 0, 255}, {0, 255, 12, 255}, {7, 7, 8, 0}, {254, 255, 4, 1}};
  const Case cases16[] = {{65535, 65535, 0, 0}, {1023, 0, 12, 1023},   {40000, 0, 0, 25536},  {32768, 0, 0, 32768},
                          {0, 40000, 4, 32767}, {0, 65535, 8, 32767},  {0, 20000, 12, 16383}, {0, 65535, 12, 16383},
                          {32767, 32767, 8, 0}, {16383, 16383, 12, 0}, {1023, 0, 0, 1023},    {0, 1023, 0, 1023},
                          {1024, 0, 0, 1024},   {0, 1024, 0, 1024},    {2047, 0, 0, 2047},    {0, 2048, 0, 2048}};
  each([&]<class T>(const Entry<T>& entry) {
    const Form& form = entry.form;
    const auto check = [&](const Case& c) {
      if (form.selector == Selector::kNone && c.mcType != 0) return;
      Random random;
      const Block<T> source(form.width * form.channels, form.height, 100, Placement::at_end());
      const Block<T> reference((form.width + 1) * form.channels, form.height + 1, 90, Placement::at_end());
      source.fill(Pattern::kLow, random, c.source, c.source),
          reference.fill(Pattern::kLow, random, c.reference, c.reference);
      const int mcTypes[2] = {c.mcType, c.mcType};
      const int samples = form.part ? form.part * form.part : form.width * form.height;
      // All of a flat block's Hadamard sum lies in one coefficient of each transform.
      const std::int64_t each = form.distance == Distance::kSsd ? c.difference * c.difference : c.difference;
      EXPECT_EQ(entry(source, std::vector<Block<T>>(static_cast<std::size_t>(form.references), reference), mcTypes),
                Results(form.results(), each * samples))
          << entry.name << ": " << c.source << " against " << c.reference << " at " << c.mcType;
    };
    if constexpr (sizeof(T) == 1) {
      for (const Case& c : cases8) check(c);
    } else {
      for (const Case& c : cases16) check(c);
    }
  });
}

/// A single difference is seen by every coefficient of its transform, at any place; a checkerboard by one.
TEST_P(Metrics, HadamardOfImpulseAndCheckerboard) {
  each([&]<class T>(const Entry<T>& entry) {
    const Form& form = entry.form;
    const bool large = form.distance == Distance::kHadamard8;
    if (!large && form.distance != Distance::kHadamard4) return;
    const int mcTypes[1] = {};
    Random random;
    const Block<T> flat(form.width, form.height, 64, Placement::at_end());
    flat.fill(Pattern::kLow, random, 0, 0);
    const Block<T> other = flat.twin();
    for (int i = 0; i < form.width * form.height; ++i) {
      for (int difference : {1, sizeof(T) == 1 ? 255 : 32767}) {
        other.set(i % form.width, i / form.width, difference);
        EXPECT_EQ(entry(other, {flat}, mcTypes), Results{(large ? 64 : 16) * difference}) << entry.name << " at " << i;
      }
      other.set(i % form.width, i / form.width, 0);
    }
    for (int i = 0; i < form.width * form.height; ++i) {
      (((i % form.width) + i / form.width) % 2 ? flat : other).set(i % form.width, i / form.width, 255);
    }
    EXPECT_EQ(entry(other, {flat}, mcTypes), Results{255 * form.width * form.height}) << entry.name;
  });
}

TEST_P(Metrics, NullPointers) {
  const auto check = [this](auto... symbols) { (expect_null_pointers(lib(symbols), 32, 1200), ...); };
  check(MOX_FN(moxiSAD16x16_8u32s), MOX_FN(moxiSAD16x8_8u32s_C1R), MOX_FN(moxiSAD8x8_8u32s_C1R),
        MOX_FN(moxiSAD16x16_16u32s_C1R), MOX_FN(moxiSAD8x8_16u32s_C1R), MOX_FN(moxiSAD4x4_16u32s_C1R),
        MOX_FN(moxiSAD4x4_8u32s), MOX_FN(moxiSAD4x8_8u32s_C1R), MOX_FN(moxiSAD8x4_8u32s_C1R),
        MOX_FN(moxiSAD8x16_8u32s_C1R), MOX_FN(moxiSAD16x16Blocks8x8_8u16u), MOX_FN(moxiSAD16x16Blocks4x4_8u16u),
        MOX_FN(moxiSAD16x16Blocks8x8_16u32u_C1R), MOX_FN(moxiSAD16x16Blocks4x4_16u32u_C1R),
        MOX_FN(moxiSSD8x8_8u32s_C1R), MOX_FN(moxiSSD4x4_8u32s_C1R), MOX_FN(moxiSqrDiff16x16_8u32s),
        MOX_FN(moxiSqrDiff16x16B_8u32s), MOX_FN(moxiSATD4x4_8u32s_C1R), MOX_FN(moxiSATD8x4_8u32s_C1R),
        MOX_FN(moxiSATD4x8_8u32s_C1R), MOX_FN(moxiSATD8x8_8u32s_C1R), MOX_FN(moxiSATD16x8_8u32s_C1R),
        MOX_FN(moxiSATD8x16_8u32s_C1R), MOX_FN(moxiSATD16x16_8u32s_C1R), MOX_FN(moxiSAT8x8D_8u32s_C1R),
        MOX_FN(moxiSAT8x8D_16u32s_C1R));
}

TEST_P(Metrics, TwoChannelArguments) {
  const std::vector<Mox8u> samples(400, 9);
  Mox32s sums[2] = {-1, -1};
  const Mox8u* const p = samples.data();
  for (int step : {0, -1, -32}) {
    Call{lib(MOX_FN(moxiSAD8x8_8u32s_C2R)), std::tuple{p, 32, p, 1, &sums[0], &sums[1], 0}}
        .keeps(sums, sizeof sums)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsNullPointer, set<4>(nullptr)},
                       {moxStsNullPointer, set<5>(nullptr)},
                       {moxStsBadStep, set<1>(step)},
                       {moxStsBadStep, set<3>(step)}});
  }
}

MOX_INSTANTIATE_GENERATIONS(Metrics);

}  // namespace
}  // namespace mox::test
