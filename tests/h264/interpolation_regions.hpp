/// Tests that the plain, Top and Bottom forms of luma and of chroma interpolation share. A family says what differs.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include "moxvc.h"
#include "oracle/interpolation.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {

enum class Form { kPlain, kTop, kBottom };
inline constexpr Form kForms[] = {Form::kPlain, Form::kTop, Form::kBottom};

/// What a call gets, for both sample types. Steps in samples.
template <class T>
struct Region {
  const T* src;
  int srcStep;
  T* dst;
  int dstStep;
  int dx, dy;
  MoxiSize size;
  int depth;
};

template <class Family>
MoxStatus run(const Library& lib, Form form, const Region<Mox8u>& r, int out) {
  if (form == Form::kPlain) return lib[Family::kPlain_8u](r.src, r.srcStep, r.dst, r.dstStep, r.dx, r.dy, r.size);
  return lib[form == Form::kTop ? Family::kTop_8u : Family::kBottom_8u](r.src, r.srcStep, r.dst, r.dstStep, r.dx, r.dy,
                                                                        out, r.size);
}
template <class Family>
MoxStatus run(const Library& lib, Form form, const Region<Mox16u>& r, int out) {
  const MoxiInterpRegion_16u record = {r.src, r.srcStep,    r.dst,         r.dstStep, r.dx,
                                       r.dy,  r.size.width, r.size.height, r.depth};
  if (form == Form::kPlain) return lib[Family::kPlain_16u](&record);
  return lib[form == Form::kTop ? Family::kTop_16u : Family::kBottom_16u](&record, out);
}

/// Samples of 0..max: noise, only 0 and max (every clip strikes), or all max.
enum class Content { kNoise, kExtremes, kFlat };
template <class T>
void fill_samples(std::span<T> samples, Content content, int max, Random& random) {
  for (T& sample : samples)
    sample = static_cast<T>(content == Content::kNoise                        ? random(0, max)
                            : content == Content::kFlat || random.chance(0.5) ? max
                                                                              : 0);
}

/// A case of one form. The picture starts `out` rows below the block's first row (Top), or ends so many rows above its
/// last (Bottom).
struct RegionCase {
  Form form;
  MoxiSize size;
  int dx, dy, depth, out;
  Content content;
  bool atEnd;     ///< the source ends at an unreadable page, else it starts at one
  int extra = 3;  ///< samples between rows
  bool upsideDown = false;

  std::string name() const {
    std::string text = "form, width, height, dx, dy, out:";
    for (int n : {static_cast<int>(form), size.width, size.height, dx, dy, out})
      text.append(" ").append(std::to_string(n));
    return text;
  }
};

/// Runs a case on memory that holds just the samples that the form reads, and compares everything it wrote.
template <class Family, class T>
void check(const Library& lib, const RegionCase& c, Random& random) {
  const int max = (1 << c.depth) - 1, width = sizeof(T) == 1 ? Family::written(c.size.width) : c.size.width;
  const int rows = c.form == Form::kPlain ? c.size.height : std::min(c.size.height, 16);
  const bool always = sizeof(T) == 2 && c.form == Form::kPlain && Family::kAlwaysReads_16u;
  const int left = c.dx ? Family::kBefore : 0, right = c.dx || always ? Family::kAfter : 0;
  const int first = c.form == Form::kTop ? c.out : -1000,
            last = c.form == Form::kBottom ? c.size.height - c.out - 1 : 1000;
  const int low = std::clamp(c.dy ? -Family::kBefore : 0, first, last);
  const int high = std::clamp(rows - 1 + (c.dy || always ? Family::kAfter : 0), first, last);

  const int sign = c.upsideDown ? -1 : 1, columns = left + width + right;
  const Plane<T> source(columns, high - low + 1, sign * (std::max(columns, 8) + c.extra),
                        c.atEnd ? Placement::at_end() : Placement::at_start());
  fill_samples(source.memory(), c.content, max, random);
  const Plane<T> result(width, c.size.height, sign * (std::max(width, 8) + c.extra));
  const Plane<T> expected(width, c.size.height, result.step());
  oracle::Picture<T> picture = {source.at(left, -low), source.step()};
  picture.firstY = first, picture.lastY = last;
  for (int y = 0; y < rows; ++y) {
    for (int x = 0; x < width; ++x) expected(x, y) = static_cast<T>(Family::sample(picture, x, y, c.dx, c.dy, max));
  }
  ASSERT_EQ(run<Family>(lib, c.form,
                        Region<T>{source.at(left, -low), source.step(), result.at(0, 0), result.step(), c.dx, c.dy,
                                  c.size, c.depth},
                        c.out),
            moxStsOk)
      << c.name();
  ASSERT_EQ(result.copy(), expected.copy()) << c.name() << " depth " << c.depth;
}

/// All fractions of all sizes in all forms.
template <class Family, class T>
void check_all(const Library& lib, std::span<const MoxiSize> sizes) {
  Random random;
  int count = 0;
  for (MoxiSize size : sizes) {
    for (int fraction = 0; fraction < Family::kFractions * Family::kFractions; ++fraction) {
      RegionCase c = {Form::kPlain, size, fraction % Family::kFractions, fraction / Family::kFractions, 8, 0,
                      {},           false};
      for (Form form : kForms) {
        const int h = std::min(size.height, 16);
        for (int out : {0, -1, -2, -3, -9, 1, h / 2, h - 1, h, h + 1, h + 4, h + 5, 300}) {
          if (form == Form::kPlain && out > 1) break;
          if (form == Form::kTop && out < 0 && sizeof(T) == 1 && !Family::kNegativeTop_8u) continue;
          c.form = form, c.out = out;
          c.depth = sizeof(T) == 1 ? 8 : 8 + count % 9;
          c.content = Content(count / 2 % 3), c.atEnd = count % 2;
          c.extra = count % 5 == 0 ? 0 : count % 31, c.upsideDown = sizeof(T) == 1 && count % 3 == 0;
          check<Family, T>(lib, c, random);
          if (testing::Test::HasFatalFailure()) return;
          ++count;
        }
      }
    }
  }
}

/// Pointers, then fractions, then the size; in 16-bit forms the steps come before the fractions.
template <class Family>
void check_arguments(const Library& lib) {
  using Record = MoxiInterpRegion_16u;
  const Guarded<Mox8u> source(8192), result(4096);
  Mox8u *const src = source.data() + 2048, *const dst = result.data();
  const MoxiSize good = {4, 4}, badWidth = {Family::kBadWidth_8u, 4}, badHeight = {4, Family::kBadHeight_8u};
  Call{lib[Family::kPlain_8u], std::tuple{src, 64, dst, 64, 0, 0, good}}.keeps(dst, 4096).expect_order(
      {{moxStsNullPointer, set<0>(nullptr)},
       {moxStsNullPointer, set<2>(nullptr)},
       {moxStsBadArg, set<4>(Family::kFractions)},
       {moxStsBadArg, set<5>(-1)},
       {moxStsBadSize, set<6>(badWidth)},
       {moxStsBadSize, set<6>(badHeight)}});
  for (auto form : {Family::kTop_8u, Family::kBottom_8u}) {
    Call{lib[form], std::tuple{src, 64, dst, 64, 0, 0, 1, good}}.keeps(dst, 4096).expect_order(
        {{moxStsNullPointer, set<0>(nullptr)},
         {moxStsNullPointer, set<2>(nullptr)},
         {moxStsBadArg, set<4>(-1)},
         {moxStsBadArg, set<5>(Family::kFractions)},
         {moxStsBadSize, set<7>(badWidth)},
         {moxStsBadSize, set<7>(badHeight)}});
  }
  const Guarded<Mox16u> source16(8192), result16(4096);
  Mox16u* const dst16 = result16.data();
  const Record record = {source16.data() + 2048, 64, dst16, 64, 0, 0, 4, 4, 8};
  const auto expect_order = [&](auto call) {
    call.keeps(dst16, 8192)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set_field<0>(&Record::pSrc, nullptr)},
                       {moxStsNullPointer, set_field<0>(&Record::pDst, nullptr)},
                       {moxStsBadStep, set_field<0>(&Record::srcStep, Family::kSmallestStep_16u - 1)},
                       {moxStsBadStep, set_field<0>(&Record::dstStep, Family::kSmallestStep_16u - 1)},
                       {moxStsBadArg, set_field<0>(&Record::dx, Family::kFractions)},
                       {moxStsBadArg, set_field<0>(&Record::dy, -1)},
                       {moxStsBadSize, set_field<0>(&Record::height, 6)},
                       {moxStsBadSize, set_field<0>(&Record::width, 12)}});
  };
  expect_order(Call{lib[Family::kPlain_16u], std::tuple{&record}});
  expect_order(Call{lib[Family::kTop_16u], std::tuple{&record, 1}});
  expect_order(Call{lib[Family::kBottom_16u], std::tuple{&record, 1}});
}

/// Which sizes pass, of all small ones and of extreme ones.
template <class Family>
void check_sizes(const Library& lib) {
  const Guarded<Mox16u> source(4096 * 4), result(4096);
  const auto* source_8u = reinterpret_cast<const Mox8u*>(source.data() + 2048);
  auto* result_8u = reinterpret_cast<Mox8u*>(result.data());
  for (int height : {-2147483647 - 1, -8, -1, 1, 2, 3, 4, 6, 8, 10, 12, 16, 20, 32}) {
    for (int width : {-2147483647 - 1, -4, -1, 0, 1, 2, 3, 4, 5, 6, 8, 10, 12, 14, 16, 18, 20, 24, 28, 32, 64}) {
      for (Form form : kForms) {
        const auto pass_8u =
            run<Family>(lib, form, Region<Mox8u>{source_8u, 64, result_8u, 64, 1, 1, {width, height}, 8}, 0);
        const auto pass_16u = run<Family>(
            lib, form, Region<Mox16u>{source.data() + 2048, 64, result.data(), 64, 1, 1, {width, height}, 8}, 0);
        EXPECT_EQ(pass_8u == moxStsOk, Family::passes_8u(width, height)) << width << "x" << height;
        EXPECT_EQ(pass_16u == moxStsOk, Family::passes_16u(width, height)) << width << "x" << height;
      }
    }
  }
}

}  // namespace mox::test
