#include "moxvc/dv_conversion.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "h264/transform_inputs.hpp"
#include "support/library.hpp"

namespace mox::test {
namespace {

using Function = decltype(moxiYCrCb411ToYCbCr422_5MBDV_16s8u_P3C2R);

enum class Format { k411, k420, k422, kTall };

struct Form {
  std::string name;
  Format format;
  int n;  ///< samples across a block
  bool edge;
};
std::vector<Form> all_forms() {
  const Form kinds[] = {{"411 5MBDV", Format::k411, 8, false},
                        {"411 EdgeDV", Format::k411, 8, true},
                        {"420 5MBDV", Format::k420, 8, false},
                        {"422 5MBDV", Format::k422, 8, false},
                        {"422 5MBDV100", Format::kTall, 8, false}};
  std::vector<Form> forms;
  for (const Form& kind : kinds) {
    for (const int zoom : {1, 2, 4, 8}) {
      if (zoom > 1 && kind.format == Format::kTall) continue;
      const std::string factor = zoom == 1 ? "" : "ZoomOut" + std::to_string(zoom) + "_";
      forms.push_back(
          {"moxiYCrCb" + kind.name.substr(0, 3) + "ToYCbCr422_" + factor + kind.name.substr(4) + "_16s8u_P3C2R",
           kind.format, 8 / zoom, kind.edge});
    }
  }
  return forms;
}

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
    for (const Form& form : all_forms()) {
      const int blocks = form.format == Format::kTall ? 8 : 6, used = form.n * form.n;
      // Only the values that count are there: planes of macroblocks with one block each, or all in one array.
      const int luma_blocks = form.format == Format::k422 ? 3 : 4, chroma_blocks = blocks == 8 ? 2 : 1;
      const int step = (round % 4 == 3 ? -1 : 1) * (64 * blocks + random(0, 1) * 40);
      std::unique_ptr<Guarded<Mox16s>> planes[3];
      const Mox16s* first[3];
      for (int p = 0; p < 3; ++p) {
        const int count = 4 * std::abs(step) + 64 * ((p ? chroma_blocks : luma_blocks) - 1) + used;
        planes[p] = std::make_unique<Guarded<Mox16s>>(count, any_placement<Mox16s>(random));
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
        for (int i = 0; i < 2 * macroblock.width * macroblock.height; ++i) {
          const int column = i % (2 * macroblock.width), row = i / (2 * macroblock.width);
          (*want[m])(column, row) = static_cast<Mox8u>(macroblock.packed(column, row));
        }
      }
      ASSERT_EQ(
          lib(Symbol<Function>{form.name.c_str()})(first[0], first[1], first[2], 2 * step, destinations, dst_step),
          moxStsOk);
      for (int m = 0; m < 5; ++m) ASSERT_EQ(got[m]->copy(), want[m]->copy()) << form.name << " macroblock " << m;
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

/// Each pointer null in turn: the same status, and nothing written.
TEST_P(DvConversion, Arguments) {
  const std::vector<Mox16s> source(5 * 8 * 64, 50);
  const std::vector<Mox8u> untouched(5 * 1024, 85);
  std::vector<Mox8u> memory = untouched;
  for (const Form& form : all_forms()) {
    for (int null = 0; null < 10; ++null) {
      const auto unless = [=](int i, auto* pointer) { return i == null ? nullptr : pointer; };
      Mox8u* to[5];
      for (int m = 0; m < 5; ++m) to[m] = unless(4 + m, &memory[1024 * m]);
      EXPECT_EQ(lib(Symbol<Function>{form.name.c_str()})(unless(0, &source[0]), unless(1, &source[256]),
                                                         unless(2, &source[384]), 1024, unless(3, to), 64),
                null < 9 ? moxStsNullPointer : moxStsOk);
      EXPECT_EQ(memory == untouched, null < 9) << form.name << " pointer " << null;
    }
    memory = untouched;
  }
}

MOX_INSTANTIATE_GENERATIONS(DvConversion);

}  // namespace
}  // namespace mox::test
