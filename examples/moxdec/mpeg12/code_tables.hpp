/// The library's tables for all codes of the streams.
#pragma once

#include <array>
#include <memory>

#include "moxdec/mpeg12/headers.hpp"
#include "moxdec/word_reader.hpp"

namespace moxdec::mpeg12 {

/// A table of single values, or of runs and levels.
class CodeTable {
 public:
  using Build = MoxStatus (*)(const MoxVlcSpec*, MoxVlcTable**);
  /// Throws DecodeError if the library refuses.
  explicit CodeTable(const MoxVlcSpec* spec, Build build = moxiHuffmanTableInitAlloc_32s);
  const MoxVlcTable* get() const { return table_.get(); }
  /// The value of the next code; `message` says what is wrong if there is none.
  int read(WordReader& bits, const char* message) const {
    Mox32s value = 0;
    require(moxiDecodeHuffmanOne_1u32s(bits.word(), bits.offset(), &value, table_.get()) == moxStsOk, message);
    bits.expect_inside();
    return value;
  }

 private:
  struct Free {
    void operator()(MoxVlcTable* table) const { moxiHuffmanTableFree_32s(table); }
  };
  std::unique_ptr<MoxVlcTable, Free> table_;
};

struct CodeTables {
  CodeTables();
  const CodeTable& macroblock_type(PictureType type) const { return types[static_cast<int>(type) - 1]; }

  CodeTable address_increment, coded_block_pattern, motion_code, dmvector;
  std::array<CodeTable, 3> types;               // of I, P and B pictures
  std::array<CodeTable, 2> dc_size;             // luma, chroma
  std::array<CodeTable, 2> coefficients;        // zero, one
  std::array<std::array<Mox32s, 64>, 2> scans;  // zigzag, alternate: raster positions
};

}  // namespace moxdec::mpeg12
