/// One picture: its packets, and their macroblocks from bits to samples.
#pragma once

#include "moxdec/mpeg4/macroblock.hpp"
#include "moxdec/mpeg4/packet_texture.hpp"
#include "moxdec/mpeg4/texture.hpp"

namespace moxdec::mpeg4 {

/// What a layer's pictures need besides their references.
struct Workshop {
  Quantisers quantisers;
  IntraPredictor intra;
  GlobalMotion warp;
};

class PictureDecoder {
 public:
  PictureDecoder(const Picture& picture, Workshop& workshop, ByteReader bits);

  /// All packets behind the picture's header. Throws DecodeError.
  void decode();
  /// Whether macroblocks of partitioned packets are shown without their texture, which is damaged.
  bool damaged() const { return damaged_; }

 private:
  struct PacketHeader {
    int address = 0;  // of the first macroblock
    int quantiser = 0;
  };

  /// The macroblocks of a packet, up to the next one or to the end of the picture.
  void decode_packet(int quantiser);
  void decode_macroblock();
  /// Ends a macroblock whose header is known: prediction, and its blocks from the stream.
  void rebuild(const Macroblock& mb);
  void begin_macroblock(int address);
  bool at_packet_end() const;
  PacketHeader read_packet_header();
  void skip_to(int address);
  int marker_length() const;

  // Partitions: partitioned_packet.cpp.
  void decode_partitioned_packet();
  bool at_partition_end() const;
  ByteReader packet_end() const;
  bool read_second_parts(std::vector<PartitionedMacroblock>& macroblocks);
  void rebuild(const PartitionedMacroblock& macroblock, const MacroblockLevels* levels);

  const Picture& picture_;
  Workshop& workshop_;
  ByteReader bits_;
  MacroblockReader reader_;
  Texture texture_;
  Place place_;
  int next_ = 0;  // address of the first macroblock that is not decoded yet
  bool damaged_ = false;
};

}  // namespace moxdec::mpeg4
