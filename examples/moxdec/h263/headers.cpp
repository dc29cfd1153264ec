#include "moxdec/h263/headers.hpp"

namespace moxdec::h263 {
namespace {

constexpr const char* kBroken = "a broken picture type";

/// Sizes of pictures, 1 to 5; 6 in an extended header is one of the picture's own, 7 tells that there is such a header.
constexpr struct { int width, height; } kSizes[] = {{128, 96}, {176, 144}, {352, 288}, {704, 576}, {1408, 1152}};
constexpr int kOwnSize = 6, kExtendedHeader = 7;

void set_size(Options& options, int format) {
  require(format >= 1 && format <= 5, "a picture format is none");
  options.width = kSizes[format - 1].width;
  options.height = kSizes[format - 1].height;
}

void refuse_continuous_presence(ByteReader& bits) {
  require(!bits.flag(), "continuous presence (annex C) is not supported");
}
void refuse_arithmetic_coding(ByteReader& bits) {
  require(!bits.flag(), "arithmetic coding (annex E) is not supported");
}

/// The rest of a plain picture type. It tells everything: the options begin anew.
void read_type(ByteReader& bits, int format, Options& options, PictureHeader& picture) {
  options = {};
  set_size(options, format);
  picture.intra = !bits.flag();
  options.vector_code = bits.flag() ? VectorCode::kExtended : VectorCode::kPlain;
  refuse_arithmetic_coding(bits);
  options.advanced_prediction = bits.flag();
  require(!bits.flag(), "PB frames (annex G) are not supported");
  picture.quantiser = read_quantiser(bits);
  refuse_continuous_presence(bits);
}

/// The part of an extended type that may be left out. Gives the picture format.
int read_options(ByteReader& bits, Options& options) {
  options = {};
  const int format = bits.number(3);
  options.custom_clock = bits.flag();
  options.vector_code = bits.flag() ? VectorCode::kReversible : VectorCode::kPlain;
  refuse_arithmetic_coding(bits);
  options.advanced_prediction = bits.flag();
  options.advanced_intra = bits.flag();
  options.deblocking = bits.flag();
  options.slices = bits.flag();
  require(!bits.flag(), "selection of reference pictures (annex N) is not supported");
  require(!bits.flag(), "independent segments (annex R) are not supported");
  options.alternative_inter = bits.flag();
  options.modified_quantiser = bits.flag();
  require(bits.number(4) == 8, kBroken);
  if (format != kOwnSize) set_size(options, format);
  return format;
}

void read_mandatory_type(ByteReader& bits, PictureHeader& picture) {
  const int type = bits.number(3);
  require(type != 2, "improved PB frames (annex M) are not supported");
  require(type < 3 || type > 5, "B pictures and layers (annex O) are not supported");
  require(type <= 1, kBroken);
  picture.intra = type == 0;
  require(!bits.flag(), "resampling of reference pictures (annex P) is not supported");
  require(!bits.flag(), "updates of reduced resolution (annex Q) are not supported");
  picture.rounding = bits.flag();
  require(bits.number(3) == 1, kBroken);
}

void read_own_size(ByteReader& bits, Options& options) {
  constexpr int kExtendedShape = 15;
  const int shape = bits.number(4);
  options.width = 4 * (bits.number(9) + 1);
  bits.marker();
  options.height = 4 * bits.number(9);
  require(options.height > 0 && options.height <= 1152, "a picture has no size, or is too high");
  if (shape == kExtendedShape) bits.skip(16);
}

void read_own_clock(ByteReader& bits, Options& options) {
  const std::uint32_t factor = bits.flag() ? 1001 : 1000, divisor = bits.bits(7);
  require(divisor != 0, "a picture clock is none");
  options.rate = {1800000, divisor * factor};
}

/// The rest of a picture type that tells of the options.
void read_extended_type(ByteReader& bits, Options& options, PictureHeader& picture) {
  const int full = bits.number(3);
  require(full <= 1, kBroken);
  require(full == 1 || options.width > 0, "options that no header before has told");
  const int format = full ? read_options(bits, options) : 0;
  read_mandatory_type(bits, picture);
  refuse_continuous_presence(bits);
  if (format == kOwnSize) read_own_size(bits, options);
  if (full && options.custom_clock) read_own_clock(bits, options);
  if (options.custom_clock) bits.skip(2);  // temporal reference
  // How far vectors may reach beyond the picture: 1 or 01.
  if (full && options.vector_code == VectorCode::kReversible && !bits.flag()) bits.marker();
  if (full && options.slices) {
    options.rectangular_slices = bits.flag();
    bits.skip(1);  // any order: taken without being told
  }
  picture.quantiser = read_quantiser(bits);
}

}  // namespace

PictureHeader read_picture_header(ByteReader& bits, Options& options) {
  PictureHeader picture;
  bits.skip(kPictureStartBits);
  bits.skip(8);  // temporal reference
  require(bits.number(2) == 2, kBroken);
  bits.skip(3);  // split screen, document camera, freeze picture release
  const int format = bits.number(3);
  if (format == kExtendedHeader) {
    read_extended_type(bits, options, picture);
  } else {
    read_type(bits, format, options, picture);
  }
  picture.options = options;
  while (bits.flag()) bits.skip(8);  // spare information
  return picture;
}

int read_quantiser(ByteReader& bits) {
  const int quantiser = bits.number(5);
  require(quantiser != 0, "a quantiser is 0");
  return quantiser;
}

}  // namespace moxdec::h263
