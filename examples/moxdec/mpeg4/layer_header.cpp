#include <bit>

#include "common/h264_scaling_tables.hpp"
#include "common/mpeg4_tables.hpp"
#include "moxdec/mpeg4/headers.hpp"

namespace moxdec::mpeg4 {
namespace {

/// More than any level allows.
constexpr int kMostMacroblocks = 1 << 16;

/// Up to 64 weights in zigzag order; a 0 ends them, and the last one stands for the rest.
void read_weights(ByteReader& bits, Layer::Weights& weights) {
  int latest = 0;
  bool ended = false;
  for (const int raster : example::kZigzag8x8) {
    const int weight = ended ? 0 : bits.number(8);
    ended = weight == 0;
    if (!ended) latest = weight;
    require(latest != 0, "a weight of the quantiser is 0");
    weights[raster] = static_cast<Mox8u>(latest);
  }
}

int read_flags(ByteReader& bits, int count) { return std::popcount(bits.bits(count)); }

/// What follows in headers of pictures by these flags: 8 bits each, and 4 for the last one of the second set.
void read_complexity_header(ByteReader& bits, Layer& layer) {
  const int method = bits.number(2);
  require(method <= 1, "an estimation method is none");
  int any = 0, moving = 0, bidirectional = 0;
  if (!bits.flag()) any += 8 * read_flags(bits, 6);
  if (!bits.flag()) {
    any += 8 * bits.number(1);
    moving += 8 * read_flags(bits, 2);
    any += 8 * bits.number(1);
  }
  bits.marker();
  if (!bits.flag()) {
    any += 8 * read_flags(bits, 3);
    any += 4 * bits.number(1);
  }
  if (!bits.flag()) {
    moving += 8 * read_flags(bits, 2);
    bidirectional += 8 * bits.number(1);
    moving += 8 * read_flags(bits, 3);
  }
  bits.marker();
  if (method == 1 && !bits.flag()) {
    any += 8 * bits.number(1);
    moving += 8 * bits.number(1);
  }
  layer.complexity_bits = {any, any + moving, any + moving + bidirectional, any + moving};
}

/// Buffer sizes and rates are of no use here.
void read_control_parameters(ByteReader& bits) {
  require(bits.number(2) == 1, "a chroma format other than 4:2:0 is not supported");
  bits.skip(1);  // low delay: the order follows from the types
  if (bits.flag()) bits.skip(79);
}

void read_time(ByteReader& bits, Layer& layer) {
  layer.time_resolution = bits.number(16);
  require(layer.time_resolution > 0, "a second has no ticks");
  bits.marker();
  if (bits.flag()) layer.fixed_time_step = bits.number(layer.time_bits());
}

void read_size(ByteReader& bits, Layer& layer) {
  bits.marker();
  layer.width = bits.number(13);
  bits.marker();
  layer.height = bits.number(13);
  bits.marker();
  require(layer.width > 0 && layer.height > 0, "a picture has no size");
  require(layer.macroblocks() <= kMostMacroblocks, "pictures are too large");
}

void read_sprite(ByteReader& bits, Layer& layer, int version) {
  const int use = bits.number(version == 1 ? 1 : 2);
  if (use == 0) return;
  require(use == 2, "static sprites are not supported");
  layer.global_motion = true;
  layer.warping_points = bits.number(6);
  layer.warping_accuracy = bits.number(2);
  require(layer.warping_points <= 3, "more warping points than global motion has");
  require(!bits.flag(), "a change of brightness with global motion is not supported");
}

void read_quantisation(ByteReader& bits, Layer& layer) {
  require(!bits.flag(), "samples of other than 8 bits are not supported");
  if (!bits.flag()) return;
  auto& weights = layer.weights.emplace();
  weights = {example::kMpeg4IntraWeights, example::kMpeg4InterWeights};
  for (auto& matrix : weights) {
    if (bits.flag()) read_weights(bits, matrix);
  }
}

/// The tools of later versions, and what remains.
void read_tools(ByteReader& bits, Layer& layer, int version) {
  if (version != 1) layer.quarter_sample = bits.flag();
  if (!bits.flag()) read_complexity_header(bits, layer);
  layer.resync_markers = !bits.flag();
  layer.partitioned = bits.flag();
  if (layer.partitioned) layer.reversible_codes = bits.flag();
  require(!layer.partitioned || !(layer.interlaced || layer.global_motion),
          "partitions of interlaced or globally warped pictures are not supported");
  if (version != 1) {
    require(!bits.flag(), "selection of new references is not supported");
    require(!bits.flag(), "reduced resolution is not supported");
  }
  require(!bits.flag(), "scalable streams are not supported");
}

}  // namespace

Layer read_layer_header(ByteReader& bits, int version) {
  Layer layer;
  bits.skip(9);  // random access, type of the object
  if (bits.flag()) {
    version = bits.number(4);
    bits.skip(3);  // priority
  }
  constexpr int kOwnAspectRatio = 15;
  if (bits.number(4) == kOwnAspectRatio) bits.skip(16);
  if (bits.flag()) read_control_parameters(bits);
  require(bits.number(2) == 0, "shapes other than rectangular are not supported");
  bits.marker();
  read_time(bits, layer);
  read_size(bits, layer);
  layer.interlaced = bits.flag();
  require(bits.flag(), "overlapped motion compensation is not supported");
  read_sprite(bits, layer, version);
  read_quantisation(bits, layer);
  read_tools(bits, layer, version);
  return layer;
}

int read_object_header(ByteReader& bits) {
  int version = 1;
  if (bits.flag()) {
    version = bits.number(4);
    bits.skip(3);  // priority
  }
  require(bits.number(4) == 1, "a visual object other than video is not supported");
  return version;
}

}  // namespace moxdec::mpeg4
