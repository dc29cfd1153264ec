/// A macroblock of any reconstruction function with all that belongs to it, and its comparison with the oracle's.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <functional>
#include <memory>
#include <type_traits>
#include <vector>

#include "moxvc/h264_reconstruct_high.h"
#include "oracle/reconstruct.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"

namespace mox::test {

/// The arguments. Functions without records take those of U, or luma, for what both planes share.
struct Macroblock {
  MoxiReconstructHighRec u = {}, v = {};
  MoxiReconstructHighRec *planes[2] = {&u, &v}, **records = planes;
  Mox32u modes[16] = {}, mode = 0, edge = 0, lower_edge = 0, *types = modes;
  Mox32s scale_u = 0, scale_v = 0;

  const MoxiReconstructHighRec& plane(int i) const { return i ? v : u; }
  Mox32s bypass() const { return static_cast<Mox32s>(u.bypass); }
};

enum Kind { kInter, kIntra, k16x16, kChromaInter, kChroma, kChromaHalves };
/// Flat and scaled functions are those of 8-bit 4:2:0, high and wide ones take records; wide ones are 32s16u.
enum Family { kFlat, kScaled, kHigh, kWide };

/// A function under test. `blocks` of n x n samples of a plane are what it goes through.
struct Form {
  Kind kind;
  int n, blocks;
  Family family;
  const char* name;
  std::function<MoxStatus(const Macroblock&)> run;

  bool chroma() const { return kind >= kChromaInter; }
  bool intra() const { return kind != kInter && kind != kChromaInter; }
  bool records() const { return family >= kHigh; }
  bool flat_half() const { return kind == kIntra && blocks == 8 && family == kFlat; }
  int width() const { return chroma() ? 8 : 16; }
  int height() const { return blocks * n * n / width(); }
  /// The bits of a plane: bit 0 the DC block if there is such a thing, the blocks from first_bit() on.
  unsigned pattern(const Macroblock& m, int plane) const {
    if (records() || !chroma()) return m.plane(plane).cbp;
    return (m.u.cbp >> (17 + plane) & 1) | (m.u.cbp >> (18 + 4 * plane) & 30);
  }
  int first_bit() const { return chroma() || (n == 4 && blocks == 16) ? 1 : 0; }
  /// Coefficients that the pattern of a plane announces.
  int coefficients(unsigned pattern) const {
    const int dc = chroma() ? blocks : kind == k16x16 ? 16 : 0;
    return n * n * std::popcount(pattern >> first_bit() & ((1u << blocks) - 1)) + (pattern & 1 ? dc : 0);
  }
};

/// Planes end where the allowed neighbours end, a stream ends with its last coefficient.
template <class Coeff>
class Scene {
  using Pixel = std::conditional_t<sizeof(Coeff) == 2, Mox8u, Mox16u>;

 public:
  Scene(const Form& form, Random& random, Mox32u cbp_u, Mox32u cbp_v, Mox32u edge)
      : form_(form), one_stream_(!form.records() || random.chance(0.5)) {
    const int right = form.intra() && !form.chroma() && !(edge & 32) ? form.n : 0;
    x_ = form.intra() && (edge & 17) != 17, y_ = form.intra() && ((edge & 20) != 20 || right);
    const int width = x_ + form.width() + right, height = y_ + form.height();
    m.edge = edge, m.u.cbp = cbp_u, m.v.cbp = cbp_v;
    // The left neighbours of the lower half are there if the plane has a column for them.
    m.lower_edge = (edge & 17) == 17 ? random.bits() | 1 : random.bits();
    const int count[2] = {form.coefficients(form.pattern(m, 0)),
                          form.chroma() ? form.coefficients(form.pattern(m, 1)) : 0};
    const int steps[] = {width, width + 3, 3 * width, -width, -width - 5};
    const int last_step = form.records() || form.flat_half() ? 2 : 4, step = steps[random(0, last_step)];
    for (int i = 0; i < 2; ++i) {
      const int own_step = form.records() ? steps[random(0, 2)] : step;
      const Placement where = random.chance(0.5) ? Placement::at_end() : Placement::at_start();
      planes_[i] = std::make_unique<Plane<Pixel>>(width, height, own_step, where);
      expected_[i] = std::make_unique<Plane<Pixel>>(width, height, own_step);
      streams_[i] = std::make_unique<Guarded<Coeff>>(one_stream_ ? count[0] + count[1] : count[i]);
      tables_[i] = std::make_unique<Guarded<Mox16s>>(form.n * form.n);
      next_[i] = streams_[i]->data();
      MoxiReconstructHighRec& plane = *m.planes[i];
      plane.ppSrcDstCoeff = &next_[one_stream_ ? 0 : i], plane.pSrcDstPlane = planes_[i]->at(x_, y_);
      plane.srcDstStep = own_step, plane.pQuantTable = tables_[i]->data(), plane.bitDepth = 8;
    }
  }

  void fill_in(Random& random) {
    const int depth = form_.family == kWide ? random(8, 14) : 8;
    const int top_qp = (form_.chroma() ? 39 : 51) + 6 * (depth - 8);
    for (int i = 0; i < 2; ++i) {
      fill(planes_[i]->memory(), kPatterns[random(0, 6)], random, 0, (1 << depth) - 1);
      const int amplitudes[] = {20, 300, 2063, 32767, std::numeric_limits<Coeff>::max()};
      const int amplitude = amplitudes[random(0, 4)];
      fill(stream(i), random.chance(0.5) ? Pattern::kSparse : kPatterns[random(0, 6)], random, -amplitude - 1,
           amplitude);
      const bool legal = random.chance(0.7);
      random.fill(table(i), legal ? 10 : -32768, legal ? 29 * 255 : 32767);
      (i ? m.scale_v : m.scale_u) = legal ? random(10, 29 * 255) : static_cast<Mox32s>(random.bits());
      MoxiReconstructHighRec& plane = *m.planes[i];
      plane.qp = random.chance(0.2) ? 0 : random.chance(0.1) ? top_qp : random(0, top_qp);
      const Mox32u bypasses[] = {0, 1, 0x100, 0xFFFFFFFF, 0x7F00, 0xFFFFFF00};
      plane.bypass = bypasses[random(0, 5)];
      plane.bitDepth = static_cast<Mox32u>(i ? random(0, 40) : depth);  // that of V does not count
    }
    if (!form_.records()) m.v.bypass = m.u.bypass;
    if (form_.family == kFlat) m.v.qp = m.u.qp;
    for (Mox32u& mode : m.modes) mode = static_cast<Mox32u>(random(0, 8));
    m.mode = static_cast<Mox32u>(random(0, 3));
  }

  /// For expect_same(): nothing may change.
  void keep() {
    for (int i = 0; i < 2; ++i) {
      expected_[i]->assign(*planes_[i]);
      after_[i] = {{streams_[i]->begin(), streams_[i]->end()}, 0};
    }
  }
  /// The oracle's status, with its samples and its stream kept for expect_same().
  MoxStatus reconstruct() { return reconstruct(form_.blocks); }
  /// The first blocks of an Intra 4x4 or 8x8 macroblock alone.
  MoxStatus reconstruct(int blocks) {
    keep();
    const oracle::Quantiser q[2] = {quantiser(0, m.scale_u), quantiser(1, m.scale_v)};
    const oracle::Picture<Pixel> at[2] = {picture(0), picture(1)};
    const auto of_edges = [](Mox32u e) { return oracle::Available{!(e & 4), !(e & 1), !(e & 16), false}; };
    const oracle::Available a = of_edges(m.edge);
    const int mode = static_cast<int>(m.mode), luma_mode = form_.chroma() ? oracle::to_luma_order(mode) : mode;
    const unsigned patterns[2] = {form_.pattern(m, 0), form_.pattern(m, 1)}, coded = patterns[0] >> form_.first_bit();
    if (form_.kind == kIntra) {
      const bool substituted =
          oracle::luma_intra(at[0], form_.n, blocks, m.modes, coded, m.edge, q[0], after_[0], form_.flat_half());
      return substituted ? moxStsEdgeSubstituted : moxStsOk;
    }
    if (form_.kind == kChromaHalves && mode % 2) return moxStsEdgeUnavailable;
    if (form_.intra() && !oracle::possible(luma_mode, a)) return moxStsEdgeUnavailable;
    if (form_.kind == kInter) {
      oracle::luma_inter(at[0], form_.n, coded, q[0], after_[0]);
    } else if (form_.kind == k16x16) {
      oracle::luma_16x16(at[0], mode, patterns[0], a, q[0], after_[0]);
    } else {
      oracle::Stream* const streams[2] = {&after_[0], &after_[one_stream_ ? 0 : 1]};
      const oracle::Available lower = form_.kind == kChromaHalves ? of_edges(m.lower_edge) : a;
      oracle::chroma(at, form_.height(), form_.intra() ? mode : -1, patterns, a, lower, q, streams);
    }
    return moxStsOk;
  }
  void expect_same() const {
    for (int i = 0; i < 2; ++i) {
      ASSERT_EQ(planes_[i]->copy(), expected_[i]->copy()) << "plane " << i;
      ASSERT_EQ(used(i), static_cast<std::ptrdiff_t>(after_[i].used)) << "stream " << i;
      // What a block of 8 x 8 coefficients holds afterwards is open.
      if (form_.n == 4 || lossless(i)) {
        ASSERT_EQ(oracle::Values(streams_[i]->begin(), streams_[i]->end()), after_[i].coeffs) << "stream " << i;
      }
    }
  }
  /// Samples outside the macroblock are what they were when the oracle started.
  void expect_outside_untouched() const {
    const auto was = picture(0);
    for (int i = 0; i < form_.width() * form_.height(); ++i) {
      const int x = i % form_.width(), y = i / form_.width();
      was(x, y) = (*planes_[0])(x_ + x, y_ + y);
    }
    ASSERT_EQ(planes_[0]->copy(), expected_[0]->copy());
  }
  void fill_samples(Pixel value) const {
    for (auto& plane : planes_) std::fill(plane->memory().begin(), plane->memory().end(), value);
  }
  /// The samples of the macroblock in a plane.
  std::vector<int> samples(int plane) const {
    std::vector<int> values;
    for (int i = 0; i < form_.width() * form_.height(); ++i) {
      values.push_back((*planes_[plane])(x_ + i % form_.width(), y_ + i / form_.width()));
    }
    return values;
  }
  std::span<Coeff> stream(int i = 0) const { return {streams_[i]->begin(), streams_[i]->size()}; }
  std::span<Mox16s> table(int i) const { return {tables_[i]->begin(), tables_[i]->size()}; }
  std::ptrdiff_t used(int stream = 0) const { return next_[stream] - streams_[stream]->data(); }

  Macroblock m;

 private:
  bool lossless(int i) const {
    const MoxiReconstructHighRec& plane = m.plane(i);
    return form_.family != kFlat && plane.qp == 0 && (form_.records() ? plane.bypass : plane.bypass & 0xFF) != 0;
  }
  oracle::Quantiser quantiser(int i, Mox32s scale_of_422_dc) const {
    const oracle::Rule rule = form_.family == kWide ? oracle::Rule::kWrap32 : oracle::Rule::kSat16;
    return {m.plane(i).qp,
            form_.family == kFlat ? nullptr : tables_[i]->data(),
            lossless(i),
            rule,
            static_cast<int>(m.u.bitDepth),
            scale_of_422_dc};
  }
  oracle::Picture<Pixel> picture(int i) const {
    return [this, i](int x, int y) -> Pixel& { return (*expected_[i])(x_ + x, y_ + y); };
  }

  const Form& form_;
  bool one_stream_;
  int x_ = 0, y_ = 0;
  std::unique_ptr<Plane<Pixel>> planes_[2], expected_[2];
  std::unique_ptr<Guarded<Coeff>> streams_[2];
  std::unique_ptr<Guarded<Mox16s>> tables_[2];
  Coeff* next_[2];
  oracle::Stream after_[2];
};

/// Patterns of all kinds: none, many, few, a single block, all.
inline Mox32u any_pattern(Random& random) {
  const Mox32u patterns[] = {0,       random.bits(),      random.bits() & random.bits() & random.bits(), 1, 0xFFFFFFFF,
                             0x1FFFE, 1u << random(0, 26)};
  return patterns[random(0, 6)];
}

/// Random macroblocks of a form against the oracle's.
template <class Coeff>
void expect_like_oracle(const Form& form, Random& random) {
  for (int n = 0; n < 300; ++n) {
    Scene<Coeff> scene(form, random, any_pattern(random), any_pattern(random),
                       random.chance(0.3) ? random.bits() & ~53u : random.bits());
    scene.fill_in(random);
    const MoxStatus expected = scene.reconstruct();
    const MoxiReconstructHighRec& u = scene.m.u;
    SCOPED_TRACE(testing::Message() << form.name << " " << n << ": cbp " << u.cbp << " " << scene.m.v.cbp << " edge "
                                    << scene.m.edge << " mode " << scene.m.mode << " qp " << u.qp << " bypass "
                                    << u.bypass << " depth " << u.bitDepth);
    ASSERT_EQ(form.run(scene.m), expected);
    scene.expect_same();
    if (testing::Test::HasFatalFailure()) return;
  }
}

}  // namespace mox::test
