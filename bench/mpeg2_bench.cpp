#include <cmath>

#include "common/h264_scaling_tables.hpp"
#include "oracle/mpeg12_block.hpp"
#include "support/bench.hpp"

namespace mox::bench {
namespace {

using test::oracle::Block;
using test::oracle::Coding;

std::mt19937 g_engine;
bool chance(double probability) { return std::bernoulli_distribution(probability)(g_engine); }

template <class Function, class Description>
auto* built(Symbol<Function> builder, const Description& description) {
  Mox32s* table = nullptr;
  if (Library::portable()[builder](description.data(), &table) != moxStsOk) std::abort();
  return table;
}
const auto* const kSizes = built(MOX_FN(moxiHuffmanTableInitAlloc_32s), example::kDcSizeLumaSpec);
const auto* const kZero = built(MOX_FN(moxiHuffmanRunLevelTableInitAlloc_32s), example::kDctCoefZeroSpec);
const auto* const kEncodeZero = built(MOX_FN(moxiCreateRLEncodeTable), example::kDctCoefZeroSpec);
Mox16s* const kWeights = buffer<Mox16s>(64, 16, 40);

Coding coding(bool intra) {
  Coding c{intra,
           true,
           test::oracle::code_book(example::kDcSizeLumaCodes),
           test::oracle::code_book(example::kDctCoefZeroCodes),
           {},
           8,
           0,
           {}};
  std::copy(example::kZigzag8x8.begin(), example::kZigzag8x8.end(), c.scan.begin());
  return c;
}
const Coding kCoding[2] = {coding(false), coding(true)};

/// Blocks that are read or written over and over: more than a branch predictor remembers, with `coefficients` of each
/// on the average besides the DC of an intra block. Levels fall with the frequency, as pictures have them.
class Stream {
 public:
  Stream(bool intra, double coefficients) {
    std::string bits;
    Mox32s last = 0;
    while (blocks_.size() < kBlocks) {
      blocks_.push_back(random_block(intra, coefficients));
      const Block& block = blocks_.back();
      bits += test::oracle::encode(kCoding[intra], block, last, 64) + "10";
      last = intra ? block[0] : 0;
      counts_.push_back(static_cast<Mox32s>(64 - std::count(block.begin(), block.end(), 0)) - intra);
    }
    for (std::size_t at = 0; at < bits.size(); at += 32) {
      std::string digits = bits.substr(at, 32);
      digits.resize(32, '0');
      words_.push_back(static_cast<Mox32u>(test::value_of(digits)));
    }
    words_.push_back(0);  // a reader may touch the word behind the last bit
    rewind();
  }
  /// To be called before each block is read or written.
  void next() {
    if (++index_ == kBlocks) rewind();
  }
  const Mox16s* block() const { return blocks_[index_].data(); }
  Mox32s count() const { return counts_[index_]; }

  const Mox32u* word;
  Mox32s offset;
  Mox16s pred;

 private:
  static constexpr std::size_t kBlocks = 512;
  static Block random_block(bool intra, double coefficients) {
    Block block{};
    if (intra) block[0] = static_cast<Mox16s>(std::normal_distribution<>(500, 40)(g_engine));
    for (int i = intra; i < 64; ++i) {
      const double low = std::exp(-1.7 * (i - intra) / coefficients);  // 2.4, 5.4, 8.3 and 19.8 for 2, 5, 8 and 20
      if (!chance(std::min(0.95, 2 * low))) continue;
      const int magnitude = 1 + std::geometric_distribution<>(0.8 - 0.5 * low)(g_engine);
      block[kCoding[0].scan[i]] = static_cast<Mox16s>(chance(0.5) ? magnitude : -magnitude);
    }
    if (!intra && std::count(block.begin(), block.end(), 0) == 64) block[0] = 1;
    return block;
  }
  void rewind() { word = words_.data(), offset = 31, index_ = 0, pred = 0; }

  std::vector<Block> blocks_;
  std::vector<Mox32s> counts_;
  std::vector<Mox32u> words_;
  std::size_t index_ = 0;
};
/// Kept until the program ends, since rows are copied.
Stream* stream(bool intra, double coefficients) { return new Stream(intra, coefficients); }

std::string variant(double coefficients) { return "about " + std::to_string(static_cast<int>(coefficients)); }

template <class Function, class... Shift>
Row read_intra(Symbol<Function> symbol, double coefficients, Shift... shift) {
  return loop(symbol, variant(coefficients), [=, in = stream(true, coefficients)](Function* function) {
    alignas(16) static Mox16s block[64];
    Mox32s last;
    const MoxStatus status = function(&in->word, &in->offset, kSizes, kZero, kCoding[1].scan.data(), 8, kWeights,
                                      &in->pred, shift..., block, &last);
    in->next();
    return status;
  });
}
template <class Function>
Row read(Symbol<Function> symbol, double coefficients) {
  return loop(symbol, variant(coefficients), [=, in = stream(false, coefficients)](Function* function) {
    alignas(16) static Mox16s block[64];
    Mox32s last;
    const MoxStatus status =
        function(&in->word, &in->offset, kZero, kZero, kCoding[0].scan.data(), 8, kWeights, block, &last);
    in->next();
    return status;
  });
}

Mox32u g_words[128];
constexpr auto kDcCodes = [] {
  std::array<Mox32u, 24> table{};
  const example::VlcCodes codes(example::kDcSizeLumaCodes);
  for (int i = 0; i < 12; ++i) {
    table[2 * i] = codes[i].bits;
    table[2 * i + 1] = static_cast<Mox32u>(codes[i].length);
  }
  return table;
}();
Row write_intra(double coefficients) {
  return loop(MOX_FN(moxiPutIntraBlock), variant(coefficients),
              [=, in = stream(true, coefficients)](decltype(moxiPutIntraBlock)* function) {
                Mox32u* word = g_words;
                Mox32s offset = 32, pred = 480;
                in->next();
                return function(&word, &offset, in->block(), &pred, kDcCodes.data(), kEncodeZero,
                                kCoding[1].scan.data(), 2, 2, in->count());
              });
}
Row write(double coefficients) {
  return loop(MOX_FN(moxiPutNonIntraBlock), variant(coefficients),
              [=, in = stream(false, coefficients)](decltype(moxiPutNonIntraBlock)* function) {
                Mox32u* word = g_words;
                Mox32s offset = 32;
                in->next();
                return function(&word, &offset, in->block(), kEncodeZero, kCoding[0].scan.data(), 2, 2, in->count());
              });
}

const Row kBlockRows[] = {
    read_intra(MOX_FN(moxiReconstructDCTBlockIntra_MPEG1_32s), 8),
    read_intra(MOX_FN(moxiReconstructDCTBlockIntra_MPEG2_32s), 2, 0),
    read_intra(MOX_FN(moxiReconstructDCTBlockIntra_MPEG2_32s), 8, 0),
    read_intra(MOX_FN(moxiReconstructDCTBlockIntra_MPEG2_32s), 20, 0),
    read(MOX_FN(moxiReconstructDCTBlock_MPEG1_32s), 5),
    read(MOX_FN(moxiReconstructDCTBlock_MPEG2_32s), 2),
    read(MOX_FN(moxiReconstructDCTBlock_MPEG2_32s), 5),
    read(MOX_FN(moxiReconstructDCTBlock_MPEG2_32s), 20),
    write_intra(8),
    write_intra(20),
    write(5),
    write(20),
};
const Family kBlocks("mpeg12_block", kBlockRows);

const Fresh<Mox16s> kDct(64, -300, 300);
const Fresh<Mox16s> kLevels(64, -4, 4);
Mox32s g_count;
const float* const kReciprocals = [] {
  auto* values = buffer<float>(64, 16, 40);
  for (int i = 0; i < 64; ++i) values[i] = 1 / values[i];
  return values;
}();
const auto* const kUnsignedWeights = buffer<Mox16u>(64, 16, 40);

template <class Function, class... Arguments>
Row quantizer(Symbol<Function> symbol, const char* name, const Fresh<Mox16s>& block, Arguments... arguments) {
  return loop(symbol, name, [=](Function* function) {
    block.restore();
    return function(block.data(), arguments...);
  });
}

const Row kQuantizationRows[] = {
    restoring("copy of the block alone", [] { kDct.restore(); }),
    quantizer(MOX_FN(moxiQuantIntra_MPEG2_16s_C1I), "", kDct, 8, nullptr, &g_count),
    quantizer(MOX_FN(moxiQuant_MPEG2_16s_C1I), "matrix", kDct, 8, kReciprocals, &g_count),
    quantizer(MOX_FN(moxiQuant_MPEG2_16s_C1I), "flat", kDct, 8, nullptr, &g_count),
    quantizer(MOX_FN(moxiQuantInvIntra_MPEG2_16s_C1I), "", kLevels, 8, kUnsignedWeights),
    quantizer(MOX_FN(moxiQuantInv_MPEG2_16s_C1I), "matrix", kLevels, 8, kUnsignedWeights),
    quantizer(MOX_FN(moxiQuantInv_MPEG2_16s_C1I), "flat", kLevels, 8, nullptr),
    call(MOX_FN(moxiCountZeros8x8_16s_C1), "", kLevels.data(), &g_count),
};
const Family kQuantization("mpeg2_quantization", kQuantizationRows);

}  // namespace
}  // namespace mox::bench
