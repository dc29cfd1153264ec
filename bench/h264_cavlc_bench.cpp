#include <array>
#include <bit>
#include <cmath>

#include "common/h264_vlc_tables.hpp"
#include "oracle/cavlc.hpp"
#include "support/bench.hpp"

namespace mox::bench {
namespace {

/// A bitstream of `kElements` elements that is read over and over: longer than a branch predictor remembers, and with
/// its tables still within the first-level cache.
constexpr int kElements = 256;
class Stream {
 public:
  explicit Stream(const std::string& bits) {
    for (std::size_t i = 0; i < bits.size(); i += 32) {
      std::string digits = bits.substr(i, 32);
      digits.resize(32, '0');
      words_.push_back(static_cast<Mox32u>(test::value_of(digits)));
    }
    words_.push_back(0);  // a reader may touch the word behind the last bit
    rewind();
  }
  /// To be called before each element.
  void next() {
    if (element_ == kElements) rewind();
    ++element_;
  }
  const Mox32u* word;
  Mox32s offset;

 private:
  void rewind() { word = words_.data(), offset = 31, element_ = 0; }
  std::vector<Mox32u> words_;
  int element_ = 0;
};

/// Kept until the program ends, since rows are copied.
Stream* stream(const std::string& bits) { return new Stream(bits); }

std::mt19937 g_engine;
bool chance(double probability) { return std::bernoulli_distribution(probability)(g_engine); }

/// The number of zeros in front of a one, which comes with this probability at each place.
int geometric(double probability) { return std::geometric_distribution<int>(probability)(g_engine); }

/// Residual blocks as pictures give them: `density` is the probability of a coefficient at the lowest frequency; it
/// falls with the frequency, and so does the size of the levels.
Stream* blocks(int coefficients, int nC, double density) {
  std::string bits;
  for (int i = 0; i < kElements; ++i) {
    std::vector<int> block(static_cast<std::size_t>(coefficients));
    for (int k = 0; k < coefficients; ++k) {
      const double frequency = static_cast<double>(k) / coefficients;
      if (!chance(density * std::exp(-2 * frequency))) continue;
      const int magnitude = 1 + geometric(0.5 + 0.45 * frequency);
      block[static_cast<std::size_t>(k)] = chance(0.5) ? magnitude : -magnitude;
    }
    bits += test::oracle::encode(block, nC);
  }
  return stream(bits);
}

/// Exp-Golomb codes of small numbers: of vectors, differences of quantisers and the like.
Stream* numbers() {
  std::string bits;
  for (int i = 0; i < kElements; ++i) {
    const unsigned code = static_cast<unsigned>(geometric(0.25)) + 1;
    const int length = static_cast<int>(std::bit_width(code));
    bits += std::string(static_cast<std::size_t>(length - 1), '0') + test::bits_of(code, length);
  }
  return stream(bits);
}

using Table = const MoxVlcTable*;

/// Decoding tables of descriptions, from entry `first` on, the last one repeated to the end. The portable generation
/// builds them for all.
template <std::size_t N, class Descriptions>
std::array<Table, N> tables(const Descriptions& descriptions, std::size_t first) {
  std::array<Table, N> built{};
  for (std::size_t i = first; i < N; ++i) {
    MoxVlcTable* table = nullptr;
    const auto& description = descriptions[std::min(i - first, descriptions.size() - 1)];
    if (Library::portable()[MOX_FN(moxiHuffmanTableInitAlloc_32s)](description.data(), &table) != moxStsOk)
      std::abort();
    built[i] = table;
  }
  return built;
}
const auto kCoeffToken = tables<5>(example::kCoeffTokenSpecs, 0);
const auto kTotalZeros = tables<16>(example::kTotalZerosSpecs, 1);
const auto kTotalZeros2x2 = tables<4>(example::kTotalZeros2x2Specs, 1);
const auto kTotalZeros2x4 = tables<8>(example::kTotalZeros2x4Specs, 1);
const auto kRunBefore = tables<16>(example::kRunBeforeSpecs, 1);

constexpr Mox32s kZigzag[16] = {0, 1, 4, 8, 5, 2, 3, 6, 9, 12, 13, 10, 7, 11, 14, 15};

template <class Element>
using DecodeBlock = MoxStatus(const Mox32u**, Mox32s*, Mox16s*, Element**, Mox32s, Mox16s, const Table*, const Table*,
                              const Table*, const Mox32s*);
template <class Element>
Row block(Symbol<DecodeBlock<Element>> symbol, const char* variant, int nC, int coefficients, double density) {
  return loop(symbol, variant,
              [=, in = blocks(coefficients, nC, density), out = buffer<Element>(16, 0, 0)](auto* function) {
                in->next();
                Mox16s count;
                Element* to = out;
                return function(&in->word, &in->offset, &count, &to, nC, static_cast<Mox16s>(coefficients),
                                kCoeffToken.data(), kTotalZeros.data(), kRunBefore.data(), kZigzag);
              });
}

template <class Element>
using DecodeChromaDc = MoxStatus(const Mox32u**, Mox32s*, Mox16s*, Element**, Table, const Table*, const Table*);
template <class Element>
Row chroma_dc(Symbol<DecodeChromaDc<Element>> symbol, const char* variant, int coefficients, double density) {
  const bool is_420 = coefficients == 4;
  const Table token = kCoeffToken[is_420 ? 3 : 4];
  const Table* zeros = is_420 ? kTotalZeros2x2.data() : kTotalZeros2x4.data();
  return loop(
      symbol, variant,
      [=, in = blocks(coefficients, is_420 ? -1 : -2, density), out = buffer<Element>(8, 0, 0)](auto* function) {
        in->next();
        Mox16s count;
        Element* to = out;
        return function(&in->word, &in->offset, &count, &to, token, zeros, kRunBefore.data());
      });
}

template <class Element>
Row exp_golomb(Symbol<MoxStatus(const Mox32u**, Mox32s*, Element*, Mox32s)> symbol, const char* variant,
               Mox32s isSigned) {
  return loop(symbol, variant, [=, in = numbers(), out = buffer<Element>(1, 0, 0)](auto* function) {
    in->next();
    return function(&in->word, &in->offset, out, isSigned);
  });
}

const Row kRows[] = {
    block(MOX_FN(moxiDecodeCAVLCCoeffs_H264_1u16s), "nC 0, about 1 coefficient", 0, 16, 0.15),
    block(MOX_FN(moxiDecodeCAVLCCoeffs_H264_1u16s), "nC 2, about 3", 2, 16, 0.4),
    block(MOX_FN(moxiDecodeCAVLCCoeffs_H264_1u16s), "nC 4, about 5, AC", 4, 15, 0.75),
    block(MOX_FN(moxiDecodeCAVLCCoeffs_H264_1u16s), "nC 8, about 7", 8, 16, 1),
    block(MOX_FN(moxiDecodeCAVLCCoeffs_H264_1u32s), "nC 2, about 3", 2, 16, 0.4),
    chroma_dc(MOX_FN(moxiDecodeCAVLCChromaDcCoeffs_H264_1u16s), "sparse", 4, 0.3),
    chroma_dc(MOX_FN(moxiDecodeCAVLCChromaDcCoeffs_H264_1u16s), "dense", 4, 1),
    chroma_dc(MOX_FN(moxiDecodeCAVLCChromaDcCoeffs_H264_1u32s), "sparse", 4, 0.3),
    chroma_dc(MOX_FN(moxiDecodeCAVLCChroma422DcCoeffs_H264_1u16s), "sparse", 8, 0.3),
    chroma_dc(MOX_FN(moxiDecodeCAVLCChroma422DcCoeffs_H264_1u32s), "sparse", 8, 0.3),
    exp_golomb(MOX_FN(moxiDecodeExpGolombOne_H264_1u16s), "unsigned", 0),
    exp_golomb(MOX_FN(moxiDecodeExpGolombOne_H264_1u32s), "signed", 1),
};
const Family kCavlc("h264_cavlc", kRows);

}  // namespace
}  // namespace mox::bench
