/// State records in memory that the caller holds.
#pragma once

#include <cstdint>

#include "frame/access.hpp"
#include "moxvc/types.h"

namespace mox {

inline constexpr int kRecordAlignment = 16;

/// The record in a caller's memory of any alignment: it begins at the next multiple of 16.
template <class State>
State* record_in(State* memory) {
  const auto past = reinterpret_cast<std::uintptr_t>(memory) % kRecordAlignment;
  return step_bytes(memory, static_cast<std::ptrdiff_t>((kRecordAlignment - past) % kRecordAlignment));
}

/// Bytes that hold a record at any alignment of their first one.
template <class State>
inline constexpr Mox32s kRecordSize = static_cast<Mox32s>(sizeof(State)) + kRecordAlignment;

}  // namespace mox
