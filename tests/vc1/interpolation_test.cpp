#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>
#include <vector>

#include "moxvc.h"
#include "oracle/vc1_interpolation.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using QpParams = MoxiVC1InterpolationParams;
using BlockParams = MoxiVC1ICInterpolationParams;

/// A size that is asked for, and the one that is written.
struct Size {
  MoxiSize asked, written;
};

/// A filter with its QP form and its block form.
struct Form {
  Symbol<MoxStatus(const QpParams*)> qp;
  Symbol<MoxStatus(const BlockParams*)> block;
  int channels, before, after;  ///< samples that a fraction reads on both sides
  std::array<int, 32> sizes;    ///< eight of asked width and height, written width and height; four for block forms

  Size size(int i) const { return {{sizes[4 * i], sizes[4 * i + 1]}, {sizes[4 * i + 2], sizes[4 * i + 3]}}; }
  bool bicubic() const { return before > 0; }
  int expected(const oracle::VC1Picture& picture, std::int64_t x, std::int64_t y, int dx, int dy, int rc) const {
    return (bicubic() ? oracle::vc1_bicubic : oracle::vc1_bilinear)(picture, x, y, dx, dy, rc);
  }
};
constexpr std::array kBicubicSizes = {8,  8,  8, 8, 16, 8,  16, 8, 16, 16, 16, 16, 4,  4, 8,  8,
                                      15, 15, 8, 8, 8,  16, 16, 8, 32, 8,  16, 16, -1, 8, 16, 16};
constexpr std::array kBilinearSizes = {16, 16, 16, 16, 8, 8,  8, 8, 8, 4, 8, 4, 4,  4,  4, 4,
                                       16, 8,  16, 16, 8, 16, 8, 4, 4, 8, 4, 4, 17, 16, 4, 4};
constexpr std::array kPairSizes = {8, 8,  8, 8, 8, 4, 8, 4, 4,  4, 4, 4, 2,  2,  4, 4,
                                   8, 16, 8, 4, 4, 8, 4, 4, 16, 8, 4, 4, 16, 16, 4, 4};
const Form kForms[] = {{MOX_FN(moxiInterpolateQPBicubic_VC1_8u_C1R), MOX_FN(moxiInterpolateICBicubicBlock_VC1_8u_C1R),
                        1, 1, 2, kBicubicSizes},
                       {MOX_FN(moxiInterpolateQPBilinear_VC1_8u_C1R), MOX_FN(moxiInterpolateICBilinearBlock_VC1_8u_C1R),
                        1, 0, 1, kBilinearSizes},
                       {MOX_FN(moxiInterpolateQPBilinear_VC1_8u_C2R), MOX_FN(moxiInterpolateICBilinearBlock_VC1_8u_C2R),
                        2, 0, 1, kPairSizes}};

/// A record with its planes alone.
template <class Record>
Record record(const Mox8u* from, Mox32s fromStep, const Plane<Mox8u>& to) {
  Record a = {};
  a.pSrc = from, a.srcStep = fromStep, a.pDst = to.at(0, 0), a.dstStep = to.step();
  return a;
}

class VC1Interpolation : public PerGeneration {
 protected:
  /// Calls a block form and compares the block with the oracle; beside it only the padding is compared.
  void check_block(const Form& form, BlockParams a, const Size& size) const {
    const int width = size.written.width * form.channels, step = width + 3;
    const Plane<Mox8u> to(width, size.written.height, step), expected(width, size.written.height, step);
    a.pDst = to.at(0, 0), a.dstStep = step, a.blockSize = size.asked;
    ASSERT_EQ(lib(form.block)(&a), moxStsOk);
    expected.assign(to);
    for (int i = 0; i < form.channels; ++i) {
      const oracle::VC1Picture picture = oracle::VC1PaddedPicture(a, form.channels, i);
      const std::int64_t left = a.blockPos.x / form.channels, top = a.blockPos.y;
      for (int j = 0; j < size.asked.width * size.asked.height; ++j) {
        const int x = j % size.asked.width, y = j / size.asked.width;
        expected(x * form.channels + i, y) =
            static_cast<Mox8u>(form.expected(picture, left + x, top + y, a.dx, a.dy, a.roundControl));
      }
    }
    ASSERT_EQ(to.copy(), expected.copy())
        << form.block.name << " block " << a.blockSize.width << "x" << a.blockSize.height << " at " << a.blockPos.x
        << ", " << a.blockPos.y << " of " << a.frameSize.width << "x" << a.frameSize.height << ", position " << a.dx
        << a.dy << ", interlaced " << a.isInterlacedRef << ", field " << a.isFieldPicture << ", bottom "
        << a.isBottomField << ", tables " << (a.pLUTTop != nullptr) << (a.pLUTBottom != nullptr);
  }
};

/// Every size, position and rounding, on planes of exactly the samples that may be read. Of bilinear positions and
/// their rounding only the lowest bits count.
TEST_P(VC1Interpolation, EqualsOracle) {
  Random random;
  for (const Form& form : kForms) {
    for (int n = 0; n < 8; ++n) {
      const Size size = form.size(n);
      for (int i = 0; i < 32 * 9; ++i) {
        const int dx = i & 3, dy = i >> 2 & 3, rc = i >> 4 & 1, c = form.channels, reach = form.before + form.after;
        const int left = dx ? form.before : 0, top = dy ? form.before : 0;
        const int width = c * size.written.width, height = size.written.height, toStep = width + random(0, 9);
        const int columns = width + (dx ? c * reach : 0), rows = height + (dy ? reach : 0);
        const int step = (random.chance(0.5) ? 1 : -1) * (columns + random(0, 40));
        const Plane<Mox8u> from(columns, rows, step, {random.chance(0.5) ? Placement::kEnd : Placement::kStart});
        const Plane<Mox8u> to(width, height, toStep, Placement::aligned(i % 16)), expected(width, height, toStep);
        fill(from.memory(), kPatterns[i / 32 % std::size(kPatterns)], random);
        for (int j = 0; j < width * height; ++j) {
          const int x = j % width, y = j / width;
          const auto picture = [&](auto column, auto row) {
            return int{from(static_cast<int>(column) * c + x % c, static_cast<int>(row))};
          };
          expected(x, y) = static_cast<Mox8u>(form.expected(picture, x / c + left, y + top, dx, dy, rc));
        }
        const int more = form.bicubic() ? 0 : 4 * random(-9, 9);
        const QpParams a = {
            from.at(left * c, top), step, to.at(0, 0), toStep, dx + more, dy - more, size.asked, rc + more};
        ASSERT_EQ(lib(form.qp)(&a), moxStsOk);
        ASSERT_EQ(to.copy(), expected.copy()) << form.qp.name << " " << size.asked.width << "x" << size.asked.height
                                              << ", position " << dx << dy << ", rounding " << rc << ", round " << i;
      }
    }
  }
}

/// By hand. The samples of a row, or with `down` of a column, come again every four; the first stands at -1.
TEST_P(VC1Interpolation, LiteralSamples) {
  struct Case {
    const char* what;
    int form, dx, dy;
    bool down;
    Mox8u samples[4];
    Mox8u expected[2];  ///< by rounding control
  };
  constexpr Case kCases[] = {
      {"half, alternating columns: 2040 / 16", 0, 2, 0, false, {255, 0, 255, 0}, {128, 127}},
      {"half, alternating rows: 2040 / 16", 0, 0, 2, true, {255, 0, 255, 0}, {127, 128}},
      {"quarter, 53 * 32 / 64 = 26.5", 0, 1, 0, false, {0, 32, 0, 0}, {27, 26}},
      {"quarter down, the same", 0, 0, 1, true, {0, 32, 0, 0}, {26, 27}},
      {"three quarters, (18 * 16 + 53 * 8 - 4 * 2) / 64 = 11", 0, 3, 0, false, {0, 16, 8, 2}, {11, 11}},
      {"below 0", 0, 2, 0, false, {255, 0, 0, 255}, {0, 0}},
      {"above 255", 0, 0, 2, true, {0, 255, 255, 0}, {255, 255}},
      {"both quarters: t = 53 * 255 / 32 = 422, 64 t / 128", 0, 1, 1, true, {0, 255, 0, 0}, {211, 211}},
      {"both halves: t = (9 * 11 - 1 + R) / 2 = 49, 16 t / 128 = 6.1", 0, 2, 2, true, {0, 11, 0, 0}, {6, 6}},
      {"whole sample", 1, 0, 0, false, {0, 77, 255, 0}, {77, 77}},
      {"(3 * 1 + 7) / 4 = 2.5", 1, 1, 0, false, {0, 1, 7, 0}, {3, 2}},
      {"(1 + 3 * 3) / 4 = 2.5, in pairs", 2, 0, 3, true, {0, 1, 3, 0}, {3, 2}},
      {"half of 255, in pairs", 2, 2, 2, true, {0, 0, 255, 9}, {128, 127}},
  };
  for (const Case& c : kCases) {
    for (int rc : {0, 1}) {
      const int channels = kForms[c.form].channels;
      const Plane<Mox8u> from(11 * channels, 11, 11 * channels), to(8 * channels, 8, 8 * channels);
      for (int i = 0; i < 11 * 11 * channels; ++i) {
        from(i % (11 * channels), i / (11 * channels)) =
            c.samples[(c.down ? i / (11 * channels) : i / channels % 11) % 4];
      }
      const QpParams a = {from.at(channels, 1), from.step(), to.at(0, 0), to.step(), c.dx, c.dy, {8, 8}, rc};
      EXPECT_EQ(lib(kForms[c.form].qp)(&a), moxStsOk);
      EXPECT_EQ(to(0, 0), c.expected[rc]) << c.what;
      EXPECT_EQ(to(c.down ? 0 : 4 * channels, c.down ? 4 : 0), c.expected[rc]) << c.what;
    }
  }
}

/// Blocks on, around and far from every edge of frames and fields of any size, with all tables; the planes end where
/// the frame does.
TEST_P(VC1Interpolation, BlocksEqualPaddedPlane) {
  constexpr int kFar = std::numeric_limits<int>::max();
  Random random;
  Guarded<Mox8u> top(256), bottom(256, Placement::at_start());
  random.fill(std::span(top.data(), 256)), random.fill(std::span(bottom.data(), 256));
  for (const Form& form : kForms) {
    for (int i = 0; i < 4000; ++i) {
      const Size size = form.size(random(0, 3));
      BlockParams a = {};
      a.frameSize = {random(1, 40), random(2, 24) * 2 - static_cast<int>(random.chance(0.1))};
      a.isInterlacedRef = random(0, 1) * 5, a.isFieldPicture = random(0, 1) * 5, a.isBottomField = random(0, 1);
      a.dx = random(0, 3), a.dy = random(0, 3), a.roundControl = random(0, 1);
      // A kernel larger than its block goes through the window only.
      const int tables = random(0, 3);
      if (tables & 1 || size.asked.width < size.written.width) a.pLUTTop = top.data();
      if (tables & 2) a.pLUTBottom = bottom.data();
      const int rows = a.isFieldPicture ? a.frameSize.height / 2 : a.frameSize.height;
      // Often where the surroundings of the block just lie in the plane, or just do not.
      const auto place = [&](int length, int block) {
        const int places[] = {random(-25, length + 6), random(0, 1), length - block - random(1, 2)};
        return places[random(0, 2)];
      };
      a.blockPos = {form.channels * place(a.frameSize.width, size.asked.width), place(rows, size.asked.height)};
      if (random.chance(0.03)) a.blockPos.x = random.chance(0.5) ? kFar - 1 : -kFar - 1;
      if (random.chance(0.03)) a.blockPos.y = random.chance(0.5) ? kFar : -kFar - 1;
      // A frame whose record names the bottom field starts at its second line.
      const int width = a.frameSize.width * form.channels;
      const int lines = a.frameSize.height + (a.isFieldPicture ? 0 : a.isBottomField);
      a.srcStep = (random.chance(0.5) ? 1 : -1) * (width + random(0, 30));
      const Plane<Mox8u> plane(width, lines, a.srcStep, {i % 2 ? Placement::kEnd : Placement::kStart});
      random.fill(plane.memory());
      a.pSrc = plane.at(0, a.isBottomField);
      check_block(form, a, size);
      if (HasFatalFailure()) return;
    }
  }
}

/// In an interlaced reference, rows 1, 0, 1 stand above row 0, and H - 2, H - 1 below the last one. The bottom padding
/// of a progressive frame goes through the table of the window's second row.
TEST_P(VC1Interpolation, LiteralPadding) {
  const Plane<Mox8u> plane(8, 16, 8), to(8, 8, 8);
  Mox8u tables[2][256];
  for (int i = 0; i < 256; ++i) tables[0][i] = static_cast<Mox8u>(i + 100), tables[1][i] = static_cast<Mox8u>(i + 200);
  for (int y = 0; y < 16; ++y) std::fill_n(plane.at(0, y), 8, static_cast<Mox8u>(y));
  struct Case {
    int interlaced, field, bottom, y;
    std::vector<int> column;  ///< of the block
  };
  const Case kCases[] = {
      {1, 0, 0, -3, {201, 100, 201, 100, 201, 102, 203, 104}}, {1, 0, 0, 13, {213, 114, 215, 114, 215, 114, 215, 114}},
      {1, 1, 1, -2, {100, 100, 201, 203, 205, 207, 209, 211}}, {1, 1, 0, 5, {110, 112, 114, 215, 215, 215, 215, 215}},
      {0, 0, 0, -1, {100, 100, 201, 102, 203, 104, 205, 106}}, {0, 0, 0, 13, {213, 114, 215, 215, 215, 215, 215, 215}},
      {0, 0, 0, 14, {114, 215, 115, 115, 115, 115, 115, 115}}, {0, 1, 1, 6, {213, 215, 215, 215, 215, 215, 215, 215}},
  };
  for (const Case& c : kCases) {
    auto a = record<BlockParams>(plane.at(0, c.bottom), 8, to);
    a.pLUTTop = tables[0], a.pLUTBottom = tables[1], a.frameSize = {8, 16}, a.blockSize = {8, 8}, a.blockPos = {1, c.y};
    a.isInterlacedRef = c.interlaced, a.isFieldPicture = c.field, a.isBottomField = c.bottom;
    EXPECT_EQ(lib(kForms[0].block)(&a), moxStsOk);
    std::vector<int> column;
    for (int y = 0; y < 8; ++y) column.push_back(to(3, y));
    EXPECT_EQ(column, c.column) << c.interlaced << c.field << c.bottom << ", row " << c.y;
  }
}

/// A block whose surroundings lie in the plane is interpolated there: what the kernel does beside the block shows it.
TEST_P(VC1Interpolation, BlocksInPlace) {
  Random random;
  for (const Form& form : kForms) {
    const int c = form.channels, side = form.bicubic() ? 4 : 2;
    const Plane<Mox8u> plane(c * 40, 48, c * 40), to(c * 8, 8, c * 8), expected(c * 8, 8, c * 8);
    random.fill(plane.memory());
    for (int i = 0; i < 8; ++i) {
      const int field = i & 1, x = c * (i & 2 ? 1 : 20 - side - 2), y = i & 4 ? 1 : (24 >> field) - side - 2;
      auto qp = record<QpParams>(plane.at(x, field + (y << field)), plane.step() << field, expected);
      auto block = record<BlockParams>(plane.at(0, field), plane.step(), to);
      qp.dx = block.dx = 3, qp.dy = block.dy = 1, qp.roiSize = block.blockSize = {side, side};
      block.frameSize = {20, 24}, block.blockPos = {x, y}, block.isFieldPicture = block.isBottomField = field;
      EXPECT_EQ(lib(form.block)(&block), moxStsOk);
      EXPECT_EQ(lib(form.qp)(&qp), moxStsOk);
      EXPECT_EQ(to.copy(), expected.copy()) << form.block.name << " at " << x << ", " << y << ", field " << field;
    }
  }
}

TEST_P(VC1Interpolation, Arguments) {
  const Plane<Mox8u> from(64, 32, 64), to(32, 16, 32);
  auto qp = record<QpParams>(from.at(8, 8), 64, to);
  auto block = record<BlockParams>(from.at(0, 0), 64, to);
  qp.roiSize = block.blockSize = {8, 8}, block.frameSize = {32, 32};
  const auto expect = [&]<class Record>(Symbol<MoxStatus(const Record*)> symbol, const Record& good) {
    Call(lib(symbol), std::tuple{&good})
        .keeps(to.at(0, 0), to.memory().size())
        .expect_order({{moxStsNullPointer, set_field<0>(&Record::pSrc, nullptr)},
                       {moxStsNullPointer, set_field<0>(&Record::pDst, nullptr)}});
  };
  for (const Form& form : kForms) {
    expect(form.qp, qp), expect(form.block, block);
    if (!form.bicubic()) {
      EXPECT_EQ(lib(form.qp)(nullptr), moxStsNullPointer);
    }
    EXPECT_EQ(lib(form.block)(nullptr), moxStsNullPointer);
  }
}

MOX_INSTANTIATE_GENERATIONS(VC1Interpolation);

}  // namespace
}  // namespace mox::test
