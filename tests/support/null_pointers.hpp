/// Argument tests of functions that test their pointers first, made from the function's type.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/call.hpp"

namespace mox::test {

/// Calls with a null pointer for each argument that is one, alone and with all later ones: moxStsNullPointer, and no
/// memory written. Then a good call. All other arguments are `number`, such as a step, or 8 x 8; the pointer with the
/// index `mayBeNull` is left out. Each pointer gets `bytes` bytes of its own. `later` are the faults tested after the
/// pointers.
template <class... Parameters>
void expect_null_pointers(MoxStatus (*function)(Parameters...), int number, std::size_t bytes, int mayBeNull = -1,
                          const std::vector<typename Call<Parameters...>::Fault>& later = {}) {
  using C = Call<Parameters...>;
  std::array<std::vector<char>, sizeof...(Parameters)> memory;
  typename C::Arguments good;
  std::vector<typename C::Fault> faults;
  const auto prepare = [&]<std::size_t I>(std::integral_constant<std::size_t, I>) {
    using Parameter = std::tuple_element_t<I, typename C::Arguments>;
    if constexpr (std::is_pointer_v<Parameter>) {
      memory[I].assign(bytes, 85);
      std::get<I>(good) = reinterpret_cast<Parameter>(memory[I].data());
      if (static_cast<int>(I) != mayBeNull) faults.push_back({moxStsNullPointer, set<I>(nullptr)});
    } else if constexpr (std::is_same_v<Parameter, MoxiSize>) {
      std::get<I>(good) = {8, 8};
    } else {
      std::get<I>(good) = static_cast<Parameter>(number);
    }
  };
  [&]<std::size_t... I>(std::index_sequence<I...>) { (prepare(std::integral_constant<std::size_t, I>()), ...); }
  (std::index_sequence_for<Parameters...>());
  faults.insert(faults.end(), later.begin(), later.end());
  Call call(function, good);
  for (const auto& block : memory) call.keeps(block.data(), block.size());
  call.expect_order(faults);
}

}  // namespace mox::test
