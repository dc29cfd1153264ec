#include "moxdec/mpeg12/headers.hpp"

#include "common/h264_scaling_tables.hpp"
#include "common/mpeg12_tables.hpp"

namespace moxdec::mpeg12 {
namespace {

/// More than any level allows.
constexpr int kMostMacroblocks = 1 << 16;

/// Weights are sent in zigzag order whatever the scan of the coefficients is.
void read_matrix(WordReader& bits, Weights::Matrix& matrix) {
  for (const int raster : example::kZigzag8x8) {
    const int weight = bits.number(8);
    require(weight != 0, "a weight of the quantiser is 0");
    matrix[raster] = static_cast<Mox16s>(weight);
  }
}

}  // namespace

void read_sequence_header(WordReader& bits, Sequence& sequence, Weights& weights) {
  sequence = {};
  sequence.width = bits.number(12);
  sequence.height = bits.number(12);
  bits.skip(4);  // shape of a sample
  const int rate = bits.number(4);
  if (rate < static_cast<int>(example::kFrameRates.size())) {
    sequence.rate = {example::kFrameRates[rate].numerator, example::kFrameRates[rate].denominator};
  }
  bits.skip(18);  // bit rate
  bits.marker();
  bits.skip(11);  // buffer size, constrained parameters
  for (int not_intra = 0; not_intra < 2; ++not_intra) {
    Weights::Matrix& matrix = weights.of[0][not_intra];
    if (bits.flag()) {
      read_matrix(bits, matrix);
    } else if (not_intra) {
      matrix.fill(example::kDefaultNonIntraWeight);
    } else {
      matrix = example::kDefaultIntraWeights;
    }
  }
  weights.of[1] = weights.of[0];
  require(sequence.width > 0 && sequence.height > 0, "a picture has no size");
}

void read_sequence_extension(WordReader& bits, Sequence& sequence) {
  sequence.mpeg2 = true;
  bits.skip(8);  // profile and level
  sequence.progressive = bits.flag();
  const int chroma_format = bits.number(2);
  require(chroma_format == 1 || chroma_format == 2, "a chroma format other than 4:2:0 and 4:2:2 is not supported");
  sequence.chroma = chroma_format == 1 ? Chroma::k420 : Chroma::k422;
  sequence.width |= bits.number(2) << 12;
  sequence.height |= bits.number(2) << 12;
  bits.skip(12);  // bit rate
  bits.marker();
  bits.skip(9);  // buffer size, low delay
  sequence.rate.numerator *= bits.bits(2) + 1;
  sequence.rate.denominator *= bits.bits(5) + 1;
  require(sequence.mb_width() * sequence.mb_height() <= kMostMacroblocks, "pictures are too large");
}

void read_quant_matrix_extension(WordReader& bits, Weights& weights) {
  for (int chroma = 0; chroma < 2; ++chroma) {
    for (int not_intra = 0; not_intra < 2; ++not_intra) {
      if (!bits.flag()) continue;
      read_matrix(bits, weights.of[chroma][not_intra]);
      if (!chroma) weights.of[1][not_intra] = weights.of[0][not_intra];
    }
  }
}

void read_picture_header(WordReader& bits, PictureHeader& picture) {
  picture = {};
  bits.skip(10);  // temporal reference: the order follows from the types
  const int type = bits.number(3);
  require(type != 4, "D pictures are not supported");
  require(type >= 1 && type <= 3, "a picture type is none");
  picture.type = static_cast<PictureType>(type);
  bits.skip(16);  // buffer delay
  for (int s = 0; s + 1 < type; ++s) {
    picture.full_pel[s] = bits.flag();
    picture.f_code[s].fill(bits.number(3));
  }
  skip_extra_information(bits);
}

void read_picture_coding_extension(WordReader& bits, PictureHeader& picture) {
  picture.has_extension = true;
  picture.full_pel = {};
  for (auto& codes : picture.f_code) {
    for (int& code : codes) code = bits.number(4);
  }
  picture.intra_dc_precision = bits.number(2);
  const int structure = bits.number(2);
  require(structure != 0, "a picture structure is none");
  picture.structure = static_cast<Structure>(structure);
  picture.top_field_first = bits.flag();
  picture.frame_pred_frame_dct = bits.flag();
  picture.concealment_vectors = bits.flag();
  picture.nonlinear_scale = bits.flag();
  picture.intra_vlc_format = bits.flag();
  picture.alternate_scan = bits.flag();
}

void skip_extra_information(WordReader& bits) {
  while (bits.flag()) bits.skip(8);
}

}  // namespace moxdec::mpeg12
