/// Units of a byte stream.
#pragma once

#include <cstdint>
#include <vector>

#include "moxenc/bit_writer.hpp"

namespace moxenc {

/// Unit headers: nal_ref_idc and nal_unit_type.
enum class Unit : std::uint8_t { kSlice = 0x61, kIdrSlice = 0x65, kSps = 0x67, kPps = 0x68 };

/// Appends a start code, the header and the payload, which must be finished; bytes that prevent false start codes are
/// put in between.
void append_unit(std::vector<std::uint8_t>& stream, Unit unit, const BitWriter& payload);

}  // namespace moxenc
