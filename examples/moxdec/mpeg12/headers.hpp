/// Headers of sequences and pictures.
#pragma once

#include <array>

#include "moxdec/codec.hpp"
#include "moxdec/frame.hpp"
#include "moxdec/word_reader.hpp"

namespace moxdec::mpeg12 {

/// Start codes; 1 to 175 are slices.
enum StartCode {
  kPictureStart = 0x00,
  kFirstSlice = 0x01,
  kLastSlice = 0xAF,
  kUserData = 0xB2,
  kSequenceHeader = 0xB3,
  kSequenceError = 0xB4,
  kExtension = 0xB5,
  kSequenceEnd = 0xB7,
  kGroupStart = 0xB8,
  kFirstSystem = 0xB9,
};

/// The first four bits of an extension.
enum ExtensionId {
  kSequenceExtension = 1,
  kQuantMatrixExtension = 3,
  kSequenceScalableExtension = 5,
  kPictureCodingExtension = 8,
};

struct Sequence {
  int width = 0;
  int height = 0;
  bool mpeg2 = false;
  bool progressive = true;
  Chroma chroma = Chroma::k420;
  FrameRate rate;

  int mb_width() const { return (width + 15) / 16; }
  /// Of frames: even if pictures may be fields.
  int mb_height() const { return progressive ? (height + 15) / 16 : (height + 31) / 32 * 2; }
  /// Whether pictures of the other sequence have the same form, so that they can be references.
  bool same_pictures(const Sequence& other) const {
    return width == other.width && height == other.height && mpeg2 == other.mpeg2 && progressive == other.progressive &&
           chroma == other.chroma;
  }
};

/// Weights of the quantiser in raster order.
struct Weights {
  using Matrix = std::array<Mox16s, 64>;
  std::array<std::array<Matrix, 2>, 2> of;  // [chroma][not intra]
};

enum class PictureType { kI = 1, kP = 2, kB = 3 };
enum class Structure { kTopField = 1, kBottomField = 2, kFrame = 3 };

/// A picture header with its coding extension, without which a picture is MPEG-1.
struct PictureHeader {
  PictureType type = PictureType::kI;
  std::array<std::array<int, 2>, 2> f_code{};  // [forward, backward][horizontal, vertical]
  std::array<bool, 2> full_pel{};
  int intra_dc_precision = 0;
  Structure structure = Structure::kFrame;
  bool top_field_first = false;
  bool frame_pred_frame_dct = true;
  bool concealment_vectors = false;
  bool nonlinear_scale = false;
  bool intra_vlc_format = false;
  bool alternate_scan = false;
  bool has_extension = false;

  bool is_frame() const { return structure == Structure::kFrame; }
  /// 0 top, 1 bottom, of a field picture.
  int parity() const { return structure == Structure::kBottomField; }
};

/// These read behind the start code and, of extensions, behind the identification. They throw DecodeError.
void read_sequence_header(WordReader& bits, Sequence& sequence, Weights& weights);
void read_sequence_extension(WordReader& bits, Sequence& sequence);
void read_quant_matrix_extension(WordReader& bits, Weights& weights);
void read_picture_header(WordReader& bits, PictureHeader& picture);
void read_picture_coding_extension(WordReader& bits, PictureHeader& picture);
/// The information that may stand at the end of a picture or slice header, and its end.
void skip_extra_information(WordReader& bits);

}  // namespace moxdec::mpeg12
