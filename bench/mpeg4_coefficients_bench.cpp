#include <cmath>

#include "oracle/mpeg4_coefficients.hpp"
#include "support/bench.hpp"

namespace mox::bench {
namespace {

using test::oracle::Block;
using test::oracle::Texture;

std::mt19937 g_engine;
bool chance(double probability) { return std::bernoulli_distribution(probability)(g_engine); }

/// Blocks that are read or written over and over: more than a branch predictor remembers, about `coefficients` in each.
/// Levels fall with the frequency, as pictures have them.
class Stream {
 public:
  static constexpr std::size_t kBlocks = 256;
  Stream(const Texture& texture, int coefficients, bool backward) : backward_(backward) {
    std::string bits = backward ? texture.code({1, 0, 1}) : "";
    for (Block& block : blocks_) {
      block = random_block(coefficients);
      bits += test::oracle::encode(texture, block, 64 - static_cast<int>(std::count(block.begin(), block.end(), 0)));
    }
    end_ = static_cast<Mox32s>(bits.size()) + 16;
    bits.insert(0, 16, '0');
    for (std::size_t at = 0; at < bits.size(); at += 8) {
      std::string digits = bits.substr(at, 8);
      digits.resize(8, '0');
      bytes_.push_back(static_cast<Mox8u>(test::value_of(digits)));
    }
    bytes_.insert(bytes_.end(), 2, 0);
    rewind();
  }
  /// To be called behind each block that is read or written.
  void next() {
    if (++index_ == kBlocks) rewind();
  }
  const Mox16s* block() const { return blocks_[index_].data(); }
  Mox32s count() const {
    return static_cast<Mox32s>(64 - std::count(blocks_[index_].begin(), blocks_[index_].end(), 0));
  }

  const Mox8u* byte;
  Mox32s offset;

 private:
  static Block random_block(int coefficients) {
    Block block{};
    for (int i = 0; i < 64; ++i) {
      const double low = std::exp(-1.7 * i / coefficients);
      if (!chance(std::min(0.95, 2 * low))) continue;
      const int magnitude = 1 + std::geometric_distribution<>(0.8 - 0.5 * low)(g_engine);
      block[ownvc_Zigzag[i]] = static_cast<Mox16s>(chance(0.5) ? magnitude : -magnitude);
    }
    if (block == Block{}) block[0] = 1;
    return block;
  }
  void rewind() {
    byte = bytes_.data() + (backward_ ? end_ / 8 : 2);
    offset = backward_ ? end_ % 8 : 0;
    index_ = 0;
  }

  bool backward_;
  Mox32s end_;
  std::array<Block, kBlocks> blocks_;
  std::vector<Mox8u> bytes_;
  std::size_t index_ = 0;
};

template <class Function, class... Rest>
Row read(Symbol<Function> symbol, const char* name, const Texture& texture, int coefficients, bool backward,
         Rest... rest) {
  // The stream is kept until the program ends, since rows are copied.
  return loop(symbol, name + std::to_string(coefficients),
              [=, in = new Stream(texture, coefficients, backward)](Function* function) {
                alignas(16) static Mox16s block[64];
                Mox32s last;
                const MoxStatus status = function(&in->byte, &in->offset, block, &last, rest...);
                in->next();
                return status;
              });
}
template <class Function, class... Rest>
Row write(Symbol<Function> symbol, const char* name, const Texture& texture, int coefficients, Rest... rest) {
  return loop(symbol, name + std::to_string(coefficients),
              [=, in = new Stream(texture, coefficients, false)](Function* function) {
                static Mox8u bytes[256];
                Mox8u* byte = bytes;
                Mox32s offset = 0;
                const MoxStatus status = function(in->block(), &byte, &offset, in->count(), rest...);
                in->next();
                return status;
              });
}

/// A record of the portable generation, which all generations read alike.
const MoxiQuantInvState* record(const Mox8u* matrix) {
  auto* const memory = reinterpret_cast<MoxiQuantInvState*>(buffer<Mox8u>(156, 0, 0));
  if (Library::portable()[MOX_FN(moxiQuantInvInterInit_MPEG4)](matrix, memory, 8) != moxStsOk) std::abort();
  return memory;
}
const MoxiQuantInvState* const kFlat = record(nullptr);
const MoxiQuantInvState* const kWeighted = record(buffer<Mox8u>(64, 16, 40));

constexpr Texture kInter{false, false, false, 0}, kIntra{true, false, false, 0};
constexpr Texture kReversibleInterCodes{false, true, false, 0}, kReversibleIntraCodes{true, true, false, 0};

Mox16s g_dc;
const Mox8u g_dcBytes[] = {0x02, 0xAA, 0xFF, 0xFF, 0xFF};
Row read_dc(Mox32s type) {
  return loop(MOX_FN(moxiDecodeDCIntra_MPEG4_1u16s), type ? "chroma" : "luma",
              [=](decltype(moxiDecodeDCIntra_MPEG4_1u16s)* function) {
                const Mox8u* byte = g_dcBytes;
                Mox32s offset = 3;
                return function(&byte, &offset, &g_dc, type);
              });
}
Row write_dc() {
  return loop(MOX_FN(moxiEncodeDCIntra_MPEG4_16s1u), "", [=](decltype(moxiEncodeDCIntra_MPEG4_16s1u)* function) {
    static Mox8u bytes[4];
    Mox8u* byte = bytes;
    Mox32s offset = 3;
    return function(-77, &byte, &offset, 0);
  });
}

const Row kRows[] = {
    read(MOX_FN(moxiDecodeCoeffsIntra_MPEG4_1u16s), "about ", kIntra, 5, false, 0, 0, 0),
    read(MOX_FN(moxiDecodeCoeffsIntra_MPEG4_1u16s), "about ", kIntra, 20, false, 0, 0, 0),
    read(MOX_FN(moxiDecodeCoeffsInter_MPEG4_1u16s), "about ", kInter, 2, false, 0, 0),
    read(MOX_FN(moxiDecodeCoeffsInter_MPEG4_1u16s), "about ", kInter, 8, false, 0, 0),
    read(MOX_FN(moxiDecodeCoeffsInter_MPEG4_1u16s), "reversible, about ", kReversibleInterCodes, 8, false, 1, 0),
    read(MOX_FN(moxiDecodeCoeffsIntraRVLCBack_MPEG4_1u16s), "about ", kReversibleIntraCodes, 8, true, 0),
    read(MOX_FN(moxiDecodeCoeffsInterRVLCBack_MPEG4_1u16s), "about ", kReversibleInterCodes, 8, true),
    read(MOX_FN(moxiReconstructCoeffsInter_MPEG4_1u16s), "flat, about ", kInter, 8, false, 0, 0, kFlat, 8),
    read(MOX_FN(moxiReconstructCoeffsInter_MPEG4_1u16s), "matrix, about ", kInter, 8, false, 0, 0, kWeighted, 8),
    read_dc(0),
    read_dc(1),
    write(MOX_FN(moxiEncodeCoeffsIntra_MPEG4_16s1u), "about ", kIntra, 8, 0, 0, 0),
    write(MOX_FN(moxiEncodeCoeffsInter_MPEG4_16s1u), "about ", kInter, 8, 0, 0),
    write(MOX_FN(moxiEncodeCoeffsInter_MPEG4_16s1u), "reversible, about ", kReversibleInterCodes, 8, 1, 0),
    write_dc(),
};
const Family kFamily("mpeg4_coefficients", kRows);

}  // namespace
}  // namespace mox::bench
