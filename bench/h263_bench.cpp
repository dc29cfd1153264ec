#include <array>
#include <cmath>

#include "common/h264_scaling_tables.hpp"
#include "support/bench.hpp"

namespace mox::bench {
namespace {

std::mt19937 g_engine;
bool chance(double probability) { return std::bernoulli_distribution(probability)(g_engine); }

using Block = std::array<Mox16s, 64>;

/// Levels fall with the frequency, as pictures have them; about `coefficients` of them besides an intra DC.
Block random_block(bool intra, double coefficients) {
  Block block{};
  for (int i = intra; i < 64; ++i) {
    const double low = std::exp(-1.7 * (i - intra) / coefficients);
    if (!chance(std::min(0.95, 2 * low))) continue;
    const int magnitude = 1 + std::geometric_distribution<>(0.8 - 0.5 * low)(g_engine);
    block[example::kZigzag8x8[i]] = static_cast<Mox16s>(chance(0.5) ? magnitude : -magnitude);
  }
  if (std::count(block.begin() + intra, block.end(), 0) == 64 - intra) block[intra] = 1;
  block[0] = intra ? Mox16s{100} : block[0];
  return block;
}

/// Blocks that are read or written over and over: more than a branch predictor remembers. Intra ones have a DC.
class Stream {
 public:
  Stream(bool intra, double coefficients) : bytes_(kBlocks * 400) {
    Mox8u* end = bytes_.data();
    Mox32s offset = 0;
    for (std::size_t i = 0; i < kBlocks; ++i) {
      blocks_.push_back(random_block(intra, coefficients));
      const Block& block = blocks_.back();
      counts_.push_back(static_cast<Mox32s>(64 - intra - std::count(block.begin() + intra, block.end(), 0)));
      const Library& px = Library::portable();
      if (intra) px[MOX_FN(moxiEncodeDCIntra_H263_16s1u)](block[0], &end, &offset);
      const MoxStatus status =
          intra ? px[MOX_FN(moxiEncodeCoeffsIntra_H263_16s1u)](block.data(), &end, &offset, counts_.back(), 0, 0, 0)
                : px[MOX_FN(moxiEncodeCoeffsInter_H263_16s1u)](block.data(), &end, &offset, counts_.back(), 0, 0);
      if (status != moxStsOk) std::abort();
    }
    rewind();
  }
  /// To be called behind each block that was read or written.
  void next() {
    if (++index_ == kBlocks) rewind();
  }
  const Mox16s* block() const { return blocks_[index_].data(); }
  Mox32s count() const { return counts_[index_]; }

  const Mox8u* byte;
  Mox32s bit;

 private:
  static constexpr std::size_t kBlocks = 512;
  void rewind() { byte = bytes_.data(), bit = 0, index_ = 0; }

  std::vector<Block> blocks_;
  std::vector<Mox32s> counts_;
  std::vector<Mox8u> bytes_;
  std::size_t index_ = 0;
};
/// Kept until the program ends, since rows are copied.
Stream* stream(bool intra, double coefficients) { return new Stream(intra, coefficients); }

std::string variant(double coefficients) { return "about " + std::to_string(static_cast<int>(coefficients)); }

/// `arguments` are those behind the index.
template <class Function, class... Arguments>
Row read(Symbol<Function> symbol, bool intra, double coefficients, Arguments... arguments) {
  return loop(symbol, variant(coefficients), [=, in = stream(intra, coefficients)](Function* function) {
    alignas(16) static Mox16s block[64];
    Mox32s last;
    const MoxStatus status = function(&in->byte, &in->bit, block, &last, arguments...);
    in->next();
    return status;
  });
}
/// `arguments` are those behind the count. Advanced intra coding has the blocks of inter coding.
template <class Function, class... Arguments>
Row write(Symbol<Function> symbol, double coefficients, Arguments... arguments) {
  return loop(symbol, variant(coefficients), [=, in = stream(false, coefficients)](Function* function) {
    static Mox8u bytes[400];
    Mox8u* byte = bytes;
    Mox32s bit = 3;
    const MoxStatus status = function(in->block(), &byte, &bit, in->count(), arguments...);
    in->next();
    return status;
  });
}

const Row kCoefficientRows[] = {
    read(MOX_FN(moxiDecodeCoeffsInter_H263_1u16s), false, 2, 0, 0),
    read(MOX_FN(moxiDecodeCoeffsInter_H263_1u16s), false, 5, 0, 0),
    read(MOX_FN(moxiDecodeCoeffsInter_H263_1u16s), false, 20, 0, 0),
    read(MOX_FN(moxiReconstructCoeffsInter_H263_1u16s), false, 2, 8, 0),
    read(MOX_FN(moxiReconstructCoeffsInter_H263_1u16s), false, 5, 8, 0),
    read(MOX_FN(moxiReconstructCoeffsInter_H263_1u16s), false, 20, 8, 0),
    read(MOX_FN(moxiReconstructCoeffsIntra_H263_1u16s), true, 8, 1, 8, 0, 0, 0),
    write(MOX_FN(moxiEncodeCoeffsInter_H263_16s1u), 2, 0, 0),
    write(MOX_FN(moxiEncodeCoeffsInter_H263_16s1u), 5, 0, 0),
    write(MOX_FN(moxiEncodeCoeffsInter_H263_16s1u), 20, 0, 0),
    write(MOX_FN(moxiEncodeCoeffsIntra_H263_16s1u), 8, 1, 0, 0),
};
const Family kCoefficients("h263_coefficients", kCoefficientRows);

const Fresh<Mox16s> kDct(64, -300, 300), kLevels(64, -4, 4);
Mox32s g_count;

template <class Function, class... Arguments>
Row quantizer(Symbol<Function> symbol, const char* name, const Fresh<Mox16s>& block, Arguments... arguments) {
  return loop(symbol, name, [=](Function* function) {
    block.restore();
    return function(block.data(), arguments...);
  });
}

const Row kQuantizationRows[] = {
    restoring("copy of the block alone", [] { kDct.restore(); }),
    quantizer(MOX_FN(moxiQuantIntra_H263_16s_C1I), "", kDct, 8, &g_count, 0, 0),
    quantizer(MOX_FN(moxiQuantIntra_H263_16s_C1I), "advanced", kDct, 8, &g_count, 1, 0),
    quantizer(MOX_FN(moxiQuantInter_H263_16s_C1I), "", kDct, 8, &g_count, 0),
    quantizer(MOX_FN(moxiQuantInvIntra_H263_16s_C1I), "", kLevels, 63, 8, 0, 0),
    quantizer(MOX_FN(moxiQuantInvIntra_H263_16s_C1I), "advanced", kLevels, 63, 8, 1, 0),
    quantizer(MOX_FN(moxiQuantInvInter_H263_16s_C1I), "", kLevels, 63, 8, 0),
    quantizer(MOX_FN(moxiQuantInvInter_H263_16s_C1I), "one group", kLevels, 7, 8, 0),
};
const Family kQuantization("h263_quantization", kQuantizationRows);

}  // namespace
}  // namespace mox::bench
