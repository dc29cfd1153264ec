/// The maker of constant tables: entry I is what the callable gives for I.
#pragma once

#include <array>
#include <cstddef>
#include <utility>

namespace mox {

template <std::size_t N, class Entry>
constexpr auto make_table(Entry entry) {
  return [&]<std::size_t... I>(std::index_sequence<I...>) { return std::array{entry.template operator()<I>()...}; }
  (std::make_index_sequence<N>{});
}

}  // namespace mox
