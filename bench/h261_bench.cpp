#include <cmath>

#include "oracle/h261.hpp"
#include "support/bench.hpp"

namespace mox::bench {
namespace {

using test::oracle::Block;
using test::oracle::H261Coding;

std::mt19937 g_engine;
bool chance(double probability) { return std::bernoulli_distribution(probability)(g_engine); }

/// Blocks that are read or written over and over: more than a branch predictor remembers, about `coefficients` in each
/// besides the DC of an intra block. Levels fall with the frequency, as pictures have them.
class Stream {
 public:
  Stream(bool intra, int coefficients) : coding_{intra, true, 0} {
    std::string bits;
    for (Block& block : blocks_) {
      block = random_block(coefficients);
      bits += test::oracle::h261_encode(coding_, block, 64);
    }
    for (std::size_t at = 0; at < bits.size(); at += 8) {
      std::string digits = bits.substr(at, 8);
      digits.resize(8, '0');
      bytes_.push_back(static_cast<Mox8u>(test::value_of(digits)));
    }
    bytes_.insert(bytes_.end(), 4, 0);
    rewind();
  }
  /// To be called before each block is read or written.
  void next() {
    if (++index_ == blocks_.size()) rewind();
  }
  const Mox16s* block() const { return blocks_[index_].data(); }
  Mox32s count() const {
    return static_cast<Mox32s>(64 - std::count(blocks_[index_].begin(), blocks_[index_].end(), 0));
  }

  const Mox8u* byte;
  Mox32s offset;

 private:
  Block random_block(int coefficients) const {
    Block block{};
    if (coding_.intra) block[0] = static_cast<Mox16s>(std::uniform_int_distribution<>(20, 230)(g_engine));
    for (int i = coding_.intra; i < 64; ++i) {
      const double low = std::exp(-1.7 * (i - coding_.intra) / coefficients);
      if (!chance(std::min(0.95, 2 * low))) continue;
      const int magnitude = 1 + std::geometric_distribution<>(0.8 - 0.5 * low)(g_engine);
      block[coding_.position(i)] = static_cast<Mox16s>(chance(0.5) ? magnitude : -magnitude);
    }
    if (block == Block{}) block[0] = 1;
    return block;
  }
  void rewind() { byte = bytes_.data(), offset = 0, index_ = 0; }

  H261Coding coding_;
  std::array<Block, 512> blocks_;
  std::vector<Mox8u> bytes_;
  std::size_t index_ = 0;
};

template <class Function>
Row read(Symbol<Function> symbol, bool intra, int coefficients, Mox32s parameter) {
  // The stream is kept until the program ends, since rows are copied.
  return loop(symbol, "about " + std::to_string(coefficients),
              [=, in = new Stream(intra, coefficients)](Function* function) {
                alignas(16) static Mox16s block[64];
                Mox32s last;
                const MoxStatus status = function(&in->byte, &in->offset, block, &last, parameter);
                in->next();
                return status;
              });
}
template <class Function>
Row write(Symbol<Function> symbol, bool intra, int coefficients) {
  return loop(symbol, "about " + std::to_string(coefficients),
              [=, in = new Stream(intra, coefficients)](Function* function) {
                static Mox8u bytes[162];
                Mox8u* byte = bytes;
                Mox32s offset = 0;
                in->next();
                return function(in->block(), &byte, &offset, in->count(), 0);
              });
}

const Row kRows[] = {
    read(MOX_FN(moxiDecodeCoeffsIntra_H261_1u16s), true, 8, 0),
    read(MOX_FN(moxiDecodeCoeffsInter_H261_1u16s), false, 5, 0),
    read(MOX_FN(moxiReconstructCoeffsIntra_H261_1u16s), true, 2, 8),
    read(MOX_FN(moxiReconstructCoeffsIntra_H261_1u16s), true, 20, 8),
    read(MOX_FN(moxiReconstructCoeffsInter_H261_1u16s), false, 2, 8),
    read(MOX_FN(moxiReconstructCoeffsInter_H261_1u16s), false, 20, 8),
    write(MOX_FN(moxiEncodeCoeffsIntra_H261_16s1u), true, 8),
    write(MOX_FN(moxiEncodeCoeffsInter_H261_16s1u), false, 5),
    write(MOX_FN(moxiEncodeCoeffsInter_H261_16s1u), false, 20),
    call(MOX_FN(moxiFilter8x8_H261_8u_C1R), "", picture<Mox8u>(0, 255), kPictureStep, buffer<Mox8u>(8 * 16, 0, 0), 16),
};
const Family kH261("h261", kRows);

}  // namespace
}  // namespace mox::bench
