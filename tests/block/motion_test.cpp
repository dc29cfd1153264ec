#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "block/block_planes.hpp"
#include "moxvc.h"
#include "oracle/half_pel.hpp"
#include "support/library.hpp"
#include "support/null_pointers.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

enum class Work { kAdd, kAddWrapping, kDifference, kCopy, kAverage };
enum class Selector { kMcType, kAcc };
/// Planar, interleaved channels with 16-bit blocks interleaved too, or with a 16-bit block for each channel.
enum class Layout { kPlanar, kInterleaved, kSplit };

/// What a function does; W and H count the bytes of the 8-bit block.
struct Form {
  int width, height;
  Work work;
  int references = 1;
  Layout layout = Layout::kPlanar;
  Selector selector = Selector::kMcType;
  bool halfPel = true;

  int channels() const { return layout == Layout::kPlanar ? 1 : 2; }
  int blocks16() const { return layout == Layout::kSplit ? 2 : 1; }
  int width16() const { return width / blocks16(); }
  bool has_predictor() const {
    return work == Work::kDifference && references == 1 && layout == Layout::kPlanar && halfPel;
  }
  bool adds() const { return work == Work::kAdd || work == Work::kAddWrapping; }
};

struct Reference {
  const Mox8u* data;
  int step, selector;
};
/// Arguments of any of the functions; those that a function does not have stay empty.
struct Arguments {
  Reference ref[2];
  const Mox8u* cur;
  int curStep;
  Mox16s* block16[2];  ///< residuals or differences
  int step16[2];
  Mox8u* dst;
  int dstStep;
  Mox16s* predictor;
  int predictorStep;
  Mox32u rounding;
};
using Invoke = std::function<MoxStatus(const Arguments&)>;

// One call for each signature.
Invoke adapt(decltype(moxiMC16x16_8u_C1)* f) {
  return [f](const Arguments& a) {
    return f(a.ref[0].data, a.ref[0].step, a.block16[0], a.step16[0], a.dst, a.dstStep, a.ref[0].selector, a.rounding);
  };
}
Invoke adapt(decltype(moxiMC16x16B_8u_C1)* f) {
  return [f](const Arguments& a) {
    return f(a.ref[0].data, a.ref[0].step, a.ref[0].selector, a.ref[1].data, a.ref[1].step, a.ref[1].selector,
             a.block16[0], a.step16[0], a.dst, a.dstStep, a.rounding);
  };
}
Invoke adapt(decltype(moxiMC8x8_16s8u_P2C2R)* f) {
  return [f](const Arguments& a) {
    return f(a.ref[0].data, a.ref[0].step, a.block16[0], a.block16[1], a.step16[0], a.dst, a.dstStep, a.ref[0].selector,
             a.rounding);
  };
}
Invoke adapt(decltype(moxiMC8x8B_16s8u_P2C2R)* f) {
  return [f](const Arguments& a) {
    return f(a.ref[0].data, a.ref[0].step, a.ref[0].selector, a.ref[1].data, a.ref[1].step, a.ref[1].selector,
             a.block16[0], a.block16[1], a.step16[0], a.dst, a.dstStep, a.rounding);
  };
}
/// The predictor's place in planar forms is that of the second channel in others.
Invoke adapt(decltype(moxiGetDiff16x16_8u16s_C1)* f) {
  return [f](const Arguments& a) {
    Mox16s* const second = a.predictor ? a.predictor : a.block16[1];
    return f(a.cur, a.curStep, a.ref[0].data, a.ref[0].step, a.block16[0], a.step16[0], second,
             a.predictor ? a.predictorStep : a.step16[1], a.ref[0].selector, a.rounding);
  };
}
Invoke adapt(decltype(moxiGetDiff4x4_8u16s_C1)* f) {
  return
      [f](const Arguments& a) { return f(a.cur, a.curStep, a.ref[0].data, a.ref[0].step, a.block16[0], a.step16[0]); };
}
Invoke adapt(decltype(moxiGetDiff16x16B_8u16s_C1)* f) {
  return [f](const Arguments& a) {
    return f(a.cur, a.curStep, a.ref[0].data, a.ref[0].step, a.ref[0].selector, a.ref[1].data, a.ref[1].step,
             a.ref[1].selector, a.block16[0], a.step16[0], a.rounding);
  };
}
Invoke adapt(decltype(moxiGetDiff8x8B_8u16s_C2P2)* f) {
  return [f](const Arguments& a) {
    return f(a.cur, a.curStep, a.ref[0].data, a.ref[0].step, a.ref[0].selector, a.ref[1].data, a.ref[1].step,
             a.ref[1].selector, a.block16[0], a.step16[0], a.block16[1], a.step16[1], a.rounding);
  };
}
Invoke adapt(decltype(moxiCopy16x16HP_8u_C1R)* f) {
  return [f](const Arguments& a) {
    return f(a.ref[0].data, a.ref[0].step, a.dst, a.dstStep, a.ref[0].selector, static_cast<Mox32s>(a.rounding));
  };
}
Invoke adapt(decltype(moxiAdd8x8HP_16s8u_C1RS)* f) {
  return [f](const Arguments& a) {
    return f(a.block16[0], a.step16[0], a.ref[0].data, a.ref[0].step, a.dst, a.dstStep, a.ref[0].selector,
             static_cast<Mox32s>(a.rounding));
  };
}

class Motion : public PerGeneration {
 protected:
  /// Calls visit(symbol, form) for each function.
  template <class Visit>
  static void each(Visit visit) {
    using enum Work;
    using enum Layout;
    constexpr auto kAcc = Selector::kAcc;
    // clang-format off
    visit(MOX_FN(moxiMC16x16_8u_C1), Form{16, 16, kAdd});
    visit(MOX_FN(moxiMC16x8_8u_C1), Form{16, 8, kAdd});
    visit(MOX_FN(moxiMC8x16_8u_C1), Form{8, 16, kAdd});
    visit(MOX_FN(moxiMC8x8_8u_C1), Form{8, 8, kAdd});
    visit(MOX_FN(moxiMC8x4_8u_C1), Form{8, 4, kAdd});
    visit(MOX_FN(moxiMC4x8_8u_C1), Form{4, 8, kAdd});
    visit(MOX_FN(moxiMC4x4_8u_C1), Form{4, 4, kAdd});
    visit(MOX_FN(moxiMC4x2_8u_C1), Form{4, 2, kAdd});
    visit(MOX_FN(moxiMC2x4_8u_C1), Form{2, 4, kAdd});
    visit(MOX_FN(moxiMC2x2_8u_C1), Form{2, 2, kAdd});
    visit(MOX_FN(moxiMC16x8UV_8u_C1), Form{16, 8, kAdd, 1, kInterleaved});
    visit(MOX_FN(moxiMC16x4_8u_C1), Form{16, 4, kAdd, 1, kInterleaved});
    visit(MOX_FN(moxiMC16x16B_8u_C1), Form{16, 16, kAdd, 2});
    visit(MOX_FN(moxiMC16x8B_8u_C1), Form{16, 8, kAdd, 2});
    visit(MOX_FN(moxiMC8x16B_8u_C1), Form{8, 16, kAdd, 2});
    visit(MOX_FN(moxiMC8x8B_8u_C1), Form{8, 8, kAdd, 2});
    visit(MOX_FN(moxiMC8x4B_8u_C1), Form{8, 4, kAdd, 2});
    visit(MOX_FN(moxiMC4x8B_8u_C1), Form{4, 8, kAdd, 2});
    visit(MOX_FN(moxiMC4x4B_8u_C1), Form{4, 4, kAdd, 2});
    visit(MOX_FN(moxiMC4x2B_8u_C1), Form{4, 2, kAdd, 2});
    visit(MOX_FN(moxiMC2x4B_8u_C1), Form{2, 4, kAdd, 2});
    visit(MOX_FN(moxiMC2x2B_8u_C1), Form{2, 2, kAdd, 2});
    visit(MOX_FN(moxiMC16x8BUV_8u_C1), Form{16, 8, kAdd, 2, kInterleaved});
    visit(MOX_FN(moxiMC16x4B_8u_C1), Form{16, 4, kAdd, 2, kInterleaved});
    visit(MOX_FN(moxiMC8x8_16s8u_P2C2R), Form{16, 8, kAdd, 1, kSplit});
    visit(MOX_FN(moxiMC8x4_16s8u_P2C2R), Form{16, 4, kAdd, 1, kSplit});
    visit(MOX_FN(moxiMC8x8B_16s8u_P2C2R), Form{16, 8, kAdd, 2, kSplit});
    visit(MOX_FN(moxiMC8x4B_16s8u_P2C2R), Form{16, 4, kAdd, 2, kSplit});
    visit(MOX_FN(moxiGetDiff16x16_8u16s_C1), Form{16, 16, kDifference});
    visit(MOX_FN(moxiGetDiff16x8_8u16s_C1), Form{16, 8, kDifference});
    visit(MOX_FN(moxiGetDiff8x16_8u16s_C1), Form{8, 16, kDifference});
    visit(MOX_FN(moxiGetDiff8x8_8u16s_C1), Form{8, 8, kDifference});
    visit(MOX_FN(moxiGetDiff8x4_8u16s_C1), Form{8, 4, kDifference});
    visit(MOX_FN(moxiGetDiff4x4_8u16s_C1), Form{4, 4, kDifference, 1, kPlanar, Selector::kMcType, false});
    visit(MOX_FN(moxiGetDiff16x16B_8u16s_C1), Form{16, 16, kDifference, 2});
    visit(MOX_FN(moxiGetDiff16x8B_8u16s_C1), Form{16, 8, kDifference, 2});
    visit(MOX_FN(moxiGetDiff8x16B_8u16s_C1), Form{8, 16, kDifference, 2});
    visit(MOX_FN(moxiGetDiff8x8B_8u16s_C1), Form{8, 8, kDifference, 2});
    visit(MOX_FN(moxiGetDiff8x4B_8u16s_C1), Form{8, 4, kDifference, 2});
    visit(MOX_FN(moxiGetDiff8x8_8u16s_C2P2), Form{16, 8, kDifference, 1, kSplit});
    visit(MOX_FN(moxiGetDiff8x4_8u16s_C2P2), Form{16, 4, kDifference, 1, kSplit});
    visit(MOX_FN(moxiGetDiff8x8B_8u16s_C2P2), Form{16, 8, kDifference, 2, kSplit});
    visit(MOX_FN(moxiGetDiff8x4B_8u16s_C2P2), Form{16, 4, kDifference, 2, kSplit});
    visit(MOX_FN(moxiCopy16x16HP_8u_C1R), Form{16, 16, kCopy, 1, kPlanar, kAcc});
    visit(MOX_FN(moxiCopy16x8HP_8u_C1R), Form{16, 8, kCopy, 1, kPlanar, kAcc});
    visit(MOX_FN(moxiCopy8x8HP_8u_C1R), Form{8, 8, kCopy, 1, kPlanar, kAcc});
    visit(MOX_FN(moxiCopy8x4HP_8u_C1R), Form{8, 4, kCopy, 1, kPlanar, kAcc});
    visit(MOX_FN(moxiInterpolateAverage16x16_8u_C1IR), Form{16, 16, kAverage, 1, kPlanar, kAcc});
    visit(MOX_FN(moxiInterpolateAverage16x8_8u_C1IR), Form{16, 8, kAverage, 1, kPlanar, kAcc});
    visit(MOX_FN(moxiInterpolateAverage8x8_8u_C1IR), Form{8, 8, kAverage, 1, kPlanar, kAcc});
    visit(MOX_FN(moxiInterpolateAverage8x4_8u_C1IR), Form{8, 4, kAverage, 1, kPlanar, kAcc});
    visit(MOX_FN(moxiAdd8x8HP_16s8u_C1RS), Form{8, 8, kAddWrapping, 1, kPlanar, kAcc});
    // clang-format on
  }
};

/// Blocks of one call of a function, and what it must leave in them.
class Scene {
 public:
  /// positions: of each reference, 2 * half x + half y.
  Scene(const Form& form, const int* positions, int rc, bool withPredictor, Random& random)
      : form_(form),
        rc_(rc),
        random_(random),
        cur_(form.width, form.height, random),
        dst_(form.width, form.height, random) {
    const int step16 = random_step(2 * form.width16(), random);
    const bool oneStep = form.adds();  // residuals of two channels share one
    for (int i = 0; i < form.references; ++i) {
      halfX_[i] = positions[i] >> 1, halfY_[i] = positions[i] & 1;
      ref_.emplace_back(form.width + halfX_[i] * form.channels(), form.height + halfY_[i], random);
      ref_[i].fill(pattern(), random, 0, 255);
    }
    for (int i = 0; i < form.blocks16(); ++i) {
      block16_.emplace_back(form.width16(), form.height, oneStep ? step16 : random_step(2 * form.width16(), random),
                            random_placement(random));
      fill_residual(block16_[i]);
    }
    if (withPredictor) predictor_.emplace(form.width, form.height, random);
    cur_.fill(pattern(), random, 0, 255);
    dst_.fill(pattern(), random, 0, 255);
  }

  Arguments arguments() const {
    Arguments a = {};
    for (int i = 0; i < form_.references; ++i) a.ref[i] = {ref_[i].data(), ref_[i].step(), selector(i)};
    for (int i = 0; i < form_.blocks16(); ++i) {
      a.block16[i] = block16_[i].data(), a.step16[i] = block16_[i].step();
    }
    a.cur = cur_.data(), a.curStep = cur_.step(), a.dst = dst_.data(), a.dstStep = dst_.step();
    if (predictor_) a.predictor = predictor_->data(), a.predictorStep = predictor_->step();
    a.rounding = random_.bits() << 1 | static_cast<Mox32u>(rc_);
    return a;
  }

  /// Runs the function and compares all that it may have written, and what it must not write, with the oracle.
  void check(const Invoke& invoke) {
    const Block<Mox8u> dst = dst_.twin();
    std::vector<Block<Mox16s>> block16;
    for (const auto& block : block16_) block16.push_back(block.twin());
    std::optional<Block<Mox16s>> predictor;
    if (predictor_) predictor = predictor_->twin();
    for (int y = 0; y < form_.height; ++y) {
      for (int x = 0; x < form_.width; ++x) {
        const int p = prediction(x, y);
        if (predictor) predictor->set(x, y, p);
        work_out(x, y, p, dst, block16[x % form_.blocks16()]);
      }
    }
    ASSERT_EQ(invoke(arguments()), moxStsOk);
    EXPECT_TRUE(dst_ == dst) << "8-bit destination, step " << dst.step();
    for (std::size_t i = 0; i < block16.size(); ++i) {
      EXPECT_TRUE(block16_[i] == block16[i]) << "16-bit block " << i << ", step " << block16[i].step();
    }
    if (predictor) {
      EXPECT_TRUE(*predictor_ == *predictor) << "predictor, step " << predictor->step();
    }
  }

 private:
  Pattern pattern() const { return random_.chance(0.5) ? Pattern::kRandom : kPatterns[random_.bits() % 7]; }
  void fill_residual(const Block<Mox16s>& block) const {
    const int limits[][2] = {{-300, 300}, {-32768, 32767}, {32400, 32767}, {-32768, -32500}};
    const auto& limit = limits[random_.bits() % 4];
    block.fill(pattern(), random_, limit[0], limit[1]);
  }
  /// The position's bits among others that must not count.
  int selector(int i) const {
    const int acc = halfX_[i] | halfY_[i] << 1, mcType = halfX_[i] << 3 | halfY_[i] << 2;
    const auto noise = static_cast<int>(random_.bits());
    return form_.selector == Selector::kAcc ? acc | (noise & ~3) : mcType | (noise & ~12);
  }
  int prediction(int x, int y) const {
    const int channels = form_.channels();
    int p[2];
    for (int i = 0; i < form_.references; ++i) {
      const auto sample = [&](int column, int row) { return ref_[i].get(column * channels + x % channels, row); };
      p[i] = oracle::half_pel(sample, x / channels, y, halfX_[i], halfY_[i], rc_);
    }
    return form_.references == 2 ? oracle::mean(p[0], p[1]) : p[0];
  }

  /// What becomes of the sample at (x, y) with the prediction p.
  void work_out(int x, int y, int p, const Block<Mox8u>& dst, const Block<Mox16s>& block16) const {
    const int column = x / form_.blocks16();
    switch (form_.work) {
      case Work::kAdd: return dst.set(x, y, oracle::sample_of(p + block16.get(column, y)));
      case Work::kAddWrapping:
        return dst.set(x, y, oracle::sample_of(oracle::signed_16_bits(p + block16.get(column, y))));
      case Work::kDifference: return block16.set(column, y, cur_.get(x, y) - p);
      case Work::kCopy: return dst.set(x, y, p);
      case Work::kAverage: return dst.set(x, y, oracle::mean(dst.get(x, y), p));
    }
  }

  const Form& form_;
  int rc_;
  Random& random_;
  int halfX_[2] = {}, halfY_[2] = {};
  std::vector<Block<Mox8u>> ref_;
  std::vector<Block<Mox16s>> block16_;
  std::optional<Block<Mox16s>> predictor_;
  Block<Mox8u> cur_, dst_;
};

TEST_P(Motion, EqualsOracle) {
  Random random;
  each([&](auto symbol, const Form& form) {
    const Invoke invoke = adapt(lib(symbol));
    const int combinations = !form.halfPel ? 1 : form.references == 2 ? 32 : 8, rounds = form.references == 2 ? 8 : 24;
    for (int index = 0; index < combinations && !HasFailure(); ++index) {
      for (int round = 0; round < rounds && !HasFailure(); ++round) {
        const int positions[] = {index >> 1 & 3, index >> 3};
        Scene scene(form, positions, index & 1, form.has_predictor() && round % 2, random);
        scene.check(invoke);
      }
      EXPECT_FALSE(HasFailure()) << symbol.name << ", rounding | position << 1 | backward position << 3: " << index;
    }
  });
}

TEST_P(Motion, NullPointers) {
  each([&](auto symbol, const Form& form) {
    SCOPED_TRACE(symbol.name);
    expect_null_pointers(lib(symbol), 64, 17 * 64, form.has_predictor() ? 6 : -1);
  });
}

struct PredictionCase {
  int mcType;
  Mox32u roundControl;
  int samples[2][2];  ///< rows of the reference, repeated in both directions
  int prediction;
};
constexpr PredictionCase kPredictionCases[] = {
    {0, 0, {{7, 9}, {11, 13}}, 7},
    {0, 1, {{7, 9}, {11, 13}}, 7},
    {1, 0, {{7, 9}, {11, 13}}, 7},
    {2, 0, {{7, 9}, {11, 13}}, 7},
    {16, 0, {{7, 9}, {11, 13}}, 7},
    {3, 0, {{7, 9}, {11, 13}}, 7},
    {4, 0, {{0, 9}, {1, 9}}, 1},
    {4, 1, {{0, 9}, {1, 9}}, 0},
    {4, 2, {{0, 9}, {1, 9}}, 1},
    {4, 3, {{0, 9}, {1, 9}}, 0},
    {8, 0, {{0, 1}, {9, 9}}, 1},
    {8, 1, {{0, 1}, {9, 9}}, 0},
    {-5, 0, {{0, 1}, {9, 9}}, 1},
    {12, 0, {{0, 0}, {0, 1}}, 0},
    {12, 1, {{0, 0}, {0, 1}}, 0},
    {12, 0, {{0, 0}, {1, 1}}, 1},
    {12, 1, {{0, 0}, {1, 1}}, 0},
    {12, 0, {{1, 1}, {1, 0}}, 1},
    {12, 1, {{1, 1}, {1, 0}}, 1},
    {12, 0, {{0, 255}, {255, 0}}, 128},
    {12, 1, {{0, 255}, {255, 0}}, 127},
    {12, 0, {{255, 255}, {255, 255}}, 255},
    {12, 1, {{255, 255}, {255, 255}}, 255},
    {4, 1, {{255, 0}, {255, 0}}, 255},
};

/// A reference for any position, with two rows of two samples repeated.
Block<Mox8u> repeated(const int (&samples)[2][2]) {
  Block<Mox8u> block(9, 9, 9, Placement::at_end());
  for (int i = 0; i < 81; ++i) block.set(i % 9, i / 9, samples[i / 9 % 2][i % 9 % 2]);
  return block;
}

TEST_P(Motion, PredictionsByHand) {
  const Block<Mox16s> zero(8, 8, 16, Placement::at_end()), diff = zero.twin(), predictor = zero.twin();
  zero.fill(0);
  const Block<Mox8u> dst(8, 8, 8, Placement::at_end()), cur = dst.twin();
  for (const PredictionCase& c : kPredictionCases) {
    SCOPED_TRACE(testing::Message() << "mcType " << c.mcType << " rounding " << c.roundControl << " of "
                                    << c.samples[0][0] << ' ' << c.samples[0][1] << ' ' << c.samples[1][0] << ' '
                                    << c.samples[1][1]);
    const Block<Mox8u> ref = repeated(c.samples);
    EXPECT_EQ(lib(MOX_FN(moxiMC8x8_8u_C1))(ref.data(), 9, zero.data(), 16, dst.data(), 8, c.mcType, c.roundControl),
              moxStsOk);
    EXPECT_EQ(dst.get(0, 0), c.prediction);
    EXPECT_EQ(dst.get(6, 6), c.prediction);
    cur.set(0, 0, 200);
    EXPECT_EQ(lib(MOX_FN(moxiGetDiff8x8_8u16s_C1))(cur.data(), 8, ref.data(), 9, diff.data(), 16, predictor.data(), 16,
                                                   c.mcType, c.roundControl),
              moxStsOk);
    EXPECT_EQ(diff.get(0, 0), 200 - c.prediction);
    EXPECT_EQ(predictor.get(0, 0), c.prediction);
    const int acc = (c.mcType >> 3 & 1) | (c.mcType >> 1 & 2);
    EXPECT_EQ(lib(MOX_FN(moxiCopy8x8HP_8u_C1R))(ref.data(), 9, dst.data(), 8, acc, static_cast<int>(c.roundControl)),
              moxStsOk);
    EXPECT_EQ(dst.get(0, 0), c.prediction);
  }
}

TEST_P(Motion, ResidualsSaturateOrWrap) {
  const struct {
    int prediction, residual, sum, wrapped;
  } kCases[] = {{1, 32767, 255, 0},   {0, 32767, 255, 255}, {255, 32512, 255, 255},
                {255, 32513, 255, 0}, {255, -32768, 0, 0},  {255, -255, 0, 0},
                {255, -254, 1, 1},    {200, 55, 255, 255},  {200, -1, 199, 199}};
  const Block<Mox8u> dst(8, 8, 8, Placement::at_end());
  const Block<Mox16s> residual(8, 8, 16, Placement::at_end());
  for (const auto& c : kCases) {
    const Block<Mox8u> ref = repeated({{c.prediction, c.prediction}, {c.prediction, c.prediction}});
    residual.fill(c.residual);
    EXPECT_EQ(lib(MOX_FN(moxiMC8x8_8u_C1))(ref.data(), 9, residual.data(), 16, dst.data(), 8, 12, 0), moxStsOk);
    EXPECT_EQ(dst.get(7, 7), c.sum) << c.prediction << " + " << c.residual;
    EXPECT_EQ(lib(MOX_FN(moxiAdd8x8HP_16s8u_C1RS))(residual.data(), 16, ref.data(), 9, dst.data(), 8, 3, 0), moxStsOk);
    EXPECT_EQ(dst.get(7, 7), c.wrapped) << c.prediction << " + " << c.residual;
  }
}

TEST_P(Motion, MeanOfTwoReferencesRoundsUp) {
  const Block<Mox8u> zeros = repeated({{0, 0}, {0, 0}}), ones = repeated({{1, 1}, {1, 1}}), dst = zeros.twin();
  const Block<Mox16s> block(8, 8, 16, Placement::at_end());
  for (Mox32u roundControl : {0, 1}) {
    block.fill(0);
    EXPECT_EQ(lib(MOX_FN(moxiMC8x8B_8u_C1))(zeros.data(), 9, 0, ones.data(), 9, 0, block.data(), 16, dst.data(), 9,
                                            roundControl),
              moxStsOk);
    EXPECT_EQ(dst.get(0, 0), 1);
    EXPECT_EQ(lib(MOX_FN(moxiGetDiff8x8B_8u16s_C1))(zeros.data(), 9, zeros.data(), 9, 0, ones.data(), 9, 0,
                                                    block.data(), 16, roundControl),
              moxStsOk);
    EXPECT_EQ(block.get(0, 0), -1);
  }
}

TEST_P(Motion, ReferencesInPlace) {
  Random random;
  const auto f = lib(MOX_FN(moxiCopy16x16HP_8u_C1R));
  const auto mc = lib(MOX_FN(moxiMC4x4_8u_C1));
  const Block<Mox16s> zero(4, 4, 8, Placement::at_end());
  zero.fill(0);
  for (int acc = 0; acc < 4; ++acc) {
    const Block<Mox8u> block(17, 17, 20, Placement::at_end()), apart(16, 16, 16, Placement::at_end());
    block.fill(Pattern::kRandom, random, 0, 255);
    const Block<Mox8u> small = block.twin();
    f(block.data(), 20, apart.data(), 16, acc, 0);
    f(block.data(), 20, block.data(), 20, acc, 0);
    mc(small.data(), 20, zero.data(), 8, small.data(), 20, (acc & 1) << 3 | (acc & 2) << 1, 0);
    for (int i = 0; i < 256; ++i) ASSERT_EQ(block.get(i % 16, i / 16), apart.get(i % 16, i / 16)) << "acc " << acc;
    for (int i = 0; i < 16; ++i) ASSERT_EQ(small.get(i % 4, i / 4), apart.get(i % 4, i / 4)) << "acc " << acc;
  }
}

MOX_INSTANTIATE_GENERATIONS(Motion);

}  // namespace
}  // namespace mox::test
