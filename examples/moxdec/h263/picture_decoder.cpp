#include "moxdec/h263/picture_decoder.hpp"

#include <algorithm>

#include "moxdec/h263/deblock.hpp"
#include "moxdec/h263/inter_prediction.hpp"

namespace moxdec::h263 {
namespace {

/// A start code, or the zeros in front of one: no macroblock begins with so many.
constexpr int kZerosOfStartCode = 16;

bool at_start_code(const ByteReader& bits) { return bits.peek(kZerosOfStartCode) == 0; }

void skip_start_code(ByteReader& bits) {
  while (bits.peek(kSegmentStartBits) == 0) bits.skip(1);
  bits.skip(kSegmentStartBits);
}

/// Bits of a value by the smallest of some sizes that is not below the picture's.
struct FieldWidth {
  int size, bits;
};
constexpr FieldWidth kAddressWidths[] = {{48, 6}, {99, 7}, {396, 9}, {1584, 11}, {6336, 13}, {1 << 16, 14}};
constexpr FieldWidth kSliceWidths[] = {{8, 3}, {11, 4}, {22, 5}, {44, 6}, {1 << 16, 7}};
template <class Widths>
int field_width(const Widths& widths, int size) {
  return std::ranges::find_if(widths, [size](const FieldWidth& width) { return size <= width.size; })->bits;
}

class SegmentDecoder {
 public:
  SegmentDecoder(const Picture& picture, MacroblockDecoder& macroblocks, ByteReader& bits)
      : header_(picture.header), options_(header_.options), macroblocks_(macroblocks), bits_(bits) {}

  void decode_groups();
  void decode_slices();

 private:
  struct Slice {
    int address;  // of its first macroblock
    int width;    // in macroblocks; 0 if it goes on from row to row
  };

  void begin_group(int number);
  Slice begin_slice(bool first);

  const PictureHeader& header_;
  const Options& options_;
  MacroblockDecoder& macroblocks_;
  ByteReader& bits_;
};

/// Groups are full rows. A group without a header belongs to the one before it.
void SegmentDecoder::decode_groups() {
  macroblocks_.begin_segment(header_.quantiser);
  for (int y = 0; y < options_.mb_height(); ++y) {
    if (y > 0 && y % options_.group_rows() == 0 && at_start_code(bits_)) begin_group(y / options_.group_rows());
    for (int x = 0; x < options_.mb_width(); ++x) macroblocks_.decode(x, y);
  }
}

void SegmentDecoder::begin_group(int number) {
  skip_start_code(bits_);
  require(bits_.number(5) == number, "a group of blocks is missing");
  bits_.skip(2);  // a number that tells changes of the picture header
  macroblocks_.begin_segment(read_quantiser(bits_));
}

/// Slices may come in any order.
void SegmentDecoder::decode_slices() {
  for (int left = options_.macroblocks(); left > 0;) {
    const Slice slice = begin_slice(left == options_.macroblocks());
    const int columns = options_.mb_width(), width = slice.width > 0 ? slice.width : columns;
    require(slice.address % columns + slice.width <= columns, "a slice is wider than the picture");
    int x = slice.address % columns, y = slice.address / columns;
    const int first = slice.width > 0 ? x : 0;
    do {
      require(y < options_.mb_height(), "more macroblocks than the picture has");
      macroblocks_.decode(x, y);
      --left;
      if (++x == first + width) x = first, ++y;
    } while (left > 0 && !at_start_code(bits_));
  }
}

/// The first one has no start code, no second marker, and takes the picture's quantiser.
SegmentDecoder::Slice SegmentDecoder::begin_slice(bool first) {
  Slice slice{0, 0};
  if (!first) skip_start_code(bits_);
  bits_.marker();
  const int address_bits = field_width(kAddressWidths, options_.macroblocks());
  slice.address = bits_.number(address_bits);
  if (!first && address_bits > 11) bits_.marker();
  const int quantiser = first ? header_.quantiser : read_quantiser(bits_);
  if (options_.rectangular_slices) slice.width = bits_.number(field_width(kSliceWidths, options_.mb_width())) + 1;
  bits_.marker();
  if (!first) bits_.skip(2);  // a number that tells changes of the picture header
  macroblocks_.begin_segment(quantiser);
  return slice;
}

}  // namespace

void PictureDecoder::decode(Picture& picture, ByteReader& bits) {
  const Options& options = picture.header.options;
  picture.macroblocks.assign(static_cast<std::size_t>(options.macroblocks()), {});
  picture.residuals.clear();
  if (options.advanced_intra) intra_predictor_.begin(picture);
  MacroblockDecoder macroblocks(picture, intra_predictor_, bits);
  SegmentDecoder segments(picture, macroblocks, bits);
  options.slices ? segments.decode_slices() : segments.decode_groups();
  if (!picture.header.intra) predict_picture(picture);
  if (options.deblocking) deblock_picture(picture);
}

}  // namespace moxdec::h263
