#include "moxvc/dv_conversion.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "h264/transform_inputs.hpp"
#include "support/call.hpp"
#include "support/library.hpp"

namespace mox::test {
namespace {

using Function = decltype(moxiYCrCb411ToYCbCr422_5MBDV_16s8u_P3C2R);

enum class Format { k411, k420, k422, kTall };

struct Form {
  Symbol<Function> symbol;
  Format format;
  int n;  ///< samples across a block
  bool edge = false;
};
const Form kForms[] = {
    {MOX_FN(moxiYCrCb411ToYCbCr422_5MBDV_16s8u_P3C2R), Format::k411, 8},
    {MOX_FN(moxiYCrCb411ToYCbCr422_ZoomOut2_5MBDV_16s8u_P3C2R), Format::k411, 4},
    {MOX_FN(moxiYCrCb411ToYCbCr422_ZoomOut4_5MBDV_16s8u_P3C2R), Format::k411, 2},
    {MOX_FN(moxiYCrCb411ToYCbCr422_ZoomOut8_5MBDV_16s8u_P3C2R), Format::k411, 1},
    {MOX_FN(moxiYCrCb411ToYCbCr422_EdgeDV_16s8u_P3C2R), Format::k411, 8, true},
    {MOX_FN(moxiYCrCb411ToYCbCr422_ZoomOut2_EdgeDV_16s8u_P3C2R), Format::k411, 4, true},
    {MOX_FN(moxiYCrCb411ToYCbCr422_ZoomOut4_EdgeDV_16s8u_P3C2R), Format::k411, 2, true},
    {MOX_FN(moxiYCrCb411ToYCbCr422_ZoomOut8_EdgeDV_16s8u_P3C2R), Format::k411, 1, true},
    {MOX_FN(moxiYCrCb420ToYCbCr422_5MBDV_16s8u_P3C2R), Format::k420, 8},
    {MOX_FN(moxiYCrCb420ToYCbCr422_ZoomOut2_5MBDV_16s8u_P3C2R), Format::k420, 4},
    {MOX_FN(moxiYCrCb420ToYCbCr422_ZoomOut4_5MBDV_16s8u_P3C2R), Format::k420, 2},
    {MOX_FN(moxiYCrCb420ToYCbCr422_ZoomOut8_5MBDV_16s8u_P3C2R), Format::k420, 1},
    {MOX_FN(moxiYCrCb422ToYCbCr422_5MBDV_16s8u_P3C2R), Format::k422, 8},
    {MOX_FN(moxiYCrCb422ToYCbCr422_ZoomOut2_5MBDV_16s8u_P3C2R), Format::k422, 4},
    {MOX_FN(moxiYCrCb422ToYCbCr422_ZoomOut4_5MBDV_16s8u_P3C2R), Format::k422, 2},
    {MOX_FN(moxiYCrCb422ToYCbCr422_ZoomOut8_5MBDV_16s8u_P3C2R), Format::k422, 1},
    {MOX_FN(moxiYCrCb422ToYCbCr422_5MBDV100_16s8u_P3C2R), Format::kTall, 8},
    {MOX_FN(moxiYCrCb422ToYCbCr422_ZoomOut2_5MBDV100_16s8u_P3C2R), Format::kTall, 4},
    {MOX_FN(moxiYCrCb422ToYCbCr422_ZoomOut4_5MBDV100_16s8u_P3C2R), Format::kTall, 2},
    {MOX_FN(moxiYCrCb422ToYCbCr422_ZoomOut8_5MBDV100_16s8u_P3C2R), Format::kTall, 1},
};

/// A macroblock as three planes of samples, from which packed rows follow by repeating chroma.
struct Planes {
  int width, height;
  Format format;
  bool edge;
  int n;
  std::function<int(int plane, int block, int i)> value;  ///< planes are Y, Cr, Cb

  Planes(const Form& form, bool last, std::function<int(int, int, int)> source)
      : format(form.format), edge(form.edge && last), n(form.n), value(std::move(source)) {
    width = format == Format::k411 && !edge ? 4 * n : 2 * n;
    height = format == Format::k420 || format == Format::kTall || edge ? 2 * n : n;
  }
  static int limited_sample(int v, int n) {
    if (n == 1) v = static_cast<int>(std::floor((v + 4) / 8.0));
    return std::clamp(v + 128, 0, 255);
  }
  int luma(int x, int y) const {
    const int block = y / n * (width / n) + x / n;
    return limited_sample(value(0, format == Format::k422 ? 2 * block : block, y % n * n + x % n), n);
  }
  /// A sample of a chroma plane of its own size.
  int chroma_sample(int plane, int x, int y) const {
    const int block = y / n;
    if (edge) return limited_sample(value(plane, 0, y % n * n + x + (block ? n / 2 : 0)), n);
    return limited_sample(value(plane, block, y % n * n + x), n);
  }
  int chroma(int plane, int x, int y) const {
    switch (format) {
      case Format::k411: return chroma_sample(plane, x / 4, y);
      case Format::k422:
      case Format::kTall: return chroma_sample(plane, x / 2, y);
      case Format::k420: break;
    }
    // Field by field in whole pictures: line 1 of the second field, line 3, has that field's first chroma line.
    if (n < 8) return chroma_sample(plane, x / 2, y / 2);
    const int field = y % 2, line = y / 2;
    return chroma_sample(plane, x / 2, 2 * (line / 2) + field);
  }
  int packed(int i, int y) const {
    const int x = i / 2;
    return i % 2 == 0 ? luma(x, y) : chroma(x % 2 ? 1 : 2, x, y);
  }
};

using DvConversion = PerGeneration;

TEST_P(DvConversion, EachSample) {
  Random random;
  for (int round = 0; round < 30; ++round) {
    for (const Form& form : kForms) {
      const int blocks = form.format == Format::kTall ? 8 : 6, used = form.n * form.n;
      // Only the values that count are there: planes of macroblocks with one block each, or all in one array.
      const int luma_blocks = form.format == Format::k422 ? 3 : 4, gap = random(0, 1) * 40;
      const int step = (round % 4 == 3 ? -1 : 1) * (64 * blocks + gap);
      const auto make = [&](int count) {
        return std::make_unique<Guarded<Mox16s>>(4 * std::abs(step) + 64 * (count - 1) + used,
                                                 any_placement<Mox16s>(random));
      };
      const std::unique_ptr<Guarded<Mox16s>> planes[] = {make(luma_blocks), make(blocks == 8 ? 2 : 1),
                                                         make(blocks == 8 ? 2 : 1)};
      const Mox16s* first[3];
      for (int p = 0; p < 3; ++p) {
        const int limit = std::array{140, 300, 32767}[random(0, 2)] * (form.n == 1 ? 8 : 1);
        fill(std::span(planes[p]->begin(), planes[p]->size()), kPatterns[random(0, 6)], random,
             std::max(-limit - 1, -32768), std::min(limit, 32767));
        first[p] = planes[p]->data() + (step < 0 ? -4 * step : 0);
      }
      std::vector<std::unique_ptr<Plane<Mox8u>>> got, want;
      Mox8u* destinations[5];
      const int dst_step = random(0, 2) == 0 ? -100 : 64 + random(0, 1) * random(1, 9);
      for (int m = 0; m < 5; ++m) {
        const Planes macroblock(form, m == 4,
                                [&](int p, int block, int i) { return first[p][m * step + 64 * block + i]; });
        const auto placement = any_placement<Mox8u>(random);
        got.push_back(std::make_unique<Plane<Mox8u>>(2 * macroblock.width, macroblock.height, dst_step, placement));
        want.push_back(std::make_unique<Plane<Mox8u>>(2 * macroblock.width, macroblock.height, dst_step));
        destinations[m] = got[m]->at(0, 0);
        for (int y = 0; y < macroblock.height; ++y) {
          for (int i = 0; i < 2 * macroblock.width; ++i) {
            (*want[m])(i, y) = static_cast<Mox8u>(macroblock.packed(i, y));
          }
        }
      }
      ASSERT_EQ(lib(form.symbol)(first[0], first[1], first[2], 2 * step, destinations, dst_step), moxStsOk);
      for (int m = 0; m < 5; ++m) ASSERT_EQ(got[m]->copy(), want[m]->copy()) << form.symbol.name << " macroblock " << m;
    }
  }
}

/// By hand: macroblocks of one value each, and the first chroma samples that differ.
TEST_P(DvConversion, ByHand) {
  std::vector<Mox16s> blocks(5 * 6 * 64, -28);
  blocks[256] = 12, blocks[256 + 8] = 60, blocks[256 + 4] = 72, blocks[320] = 200;  // Cr, its second row and half; Cb
  std::copy_n(&blocks[0], 384, &blocks[4 * 384]);
  std::vector<Mox8u> memory(5 * 1024);
  Mox8u* const to[] = {&memory[0], &memory[1024], &memory[2048], &memory[3072], &memory[4096]};
  const auto call = [&](auto symbol, int row) {
    EXPECT_EQ(lib(symbol)(&blocks[0], &blocks[256], &blocks[320], 768, to, 64), moxStsOk);
    return std::vector<int>(to[4] + 64 * row, to[4] + 64 * row + 10);
  };
  using Row = std::vector<int>;
  const Row first{100, 255, 100, 140, 100, 255, 100, 140, 100, 100},
      pair{100, 255, 100, 140, 100, 100, 100, 100, 100, 100};
  EXPECT_EQ(call(MOX_FN(moxiYCrCb411ToYCbCr422_5MBDV_16s8u_P3C2R), 0), first);
  EXPECT_EQ(call(MOX_FN(moxiYCrCb411ToYCbCr422_EdgeDV_16s8u_P3C2R), 0), first);
  EXPECT_EQ(call(MOX_FN(moxiYCrCb411ToYCbCr422_EdgeDV_16s8u_P3C2R), 8)[3], 200);
  EXPECT_EQ(call(MOX_FN(moxiYCrCb420ToYCbCr422_5MBDV_16s8u_P3C2R), 0), pair);
  EXPECT_EQ(call(MOX_FN(moxiYCrCb420ToYCbCr422_5MBDV_16s8u_P3C2R), 2), pair);
  EXPECT_EQ(call(MOX_FN(moxiYCrCb420ToYCbCr422_5MBDV_16s8u_P3C2R), 3)[3], 188);
  EXPECT_EQ(call(MOX_FN(moxiYCrCb422ToYCbCr422_5MBDV_16s8u_P3C2R), 0), pair);
  // (-28 + 4) >> 3 is -3, (200 + 4) >> 3 is 25, (12 + 4) >> 3 is 2.
  EXPECT_EQ(call(MOX_FN(moxiYCrCb411ToYCbCr422_ZoomOut8_5MBDV_16s8u_P3C2R), 0),
            (Row{125, 153, 125, 130, 125, 153, 125, 130, 100, 100}));
}

TEST_P(DvConversion, Arguments) {
  const Guarded<Mox16s> source(5 * 8 * 64);
  std::vector<Mox8u> memory(5 * 1024);
  struct Pointers {
    Mox8u* to[5];
  };
  Pointers good;
  for (int m = 0; m < 5; ++m) good.to[m] = &memory[1024 * m];
  for (const Form& form : kForms) {
    using C = Call<const Mox16s*, const Mox16s*, const Mox16s*, Mox32s, Mox8u* const*, Mox32s>;
    std::vector<C::Fault> faults{{moxStsNullPointer, set<0>(nullptr)},
                                 {moxStsNullPointer, set<1>(nullptr)},
                                 {moxStsNullPointer, set<2>(nullptr)},
                                 {moxStsNullPointer, set<4>(nullptr)}};
    Pointers spoiled[5];
    for (int m = 0; m < 5; ++m) {
      spoiled[m] = good;
      spoiled[m].to[m] = nullptr;
      Mox8u* const* const to = spoiled[m].to;
      faults.push_back({moxStsNullPointer, [to](auto& arguments, auto&) {
                          if (std::get<4>(arguments)) std::get<4>(arguments) = to;
                        }});
    }
    Mox8u* const* const to = good.to;
    C(lib(form.symbol), std::tuple{source.data(), source.data() + 256, source.data() + 384, 1024, to, 64})
        .keeps(memory.data(), memory.size())
        .expect_order(faults);
  }
}

MOX_INSTANTIATE_GENERATIONS(DvConversion);

}  // namespace
}  // namespace mox::test
