/// The order of argument tests as data: a good call, and its faults in the order in which they are tested.
///
///   Call{lib(MOX_FN(moxiScanFwd_16s_C1)), std::tuple{src, dst, 64, 0}}.keeps(dst, 128).expect_order({
///       {moxStsNullPointer, set<0>(nullptr)}, {moxStsNullPointer, set<1>(nullptr)}, {moxStsOutOfRange, set<2>(0)}});
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

#include "moxvc.h"

namespace mox::test {

/// A fault: argument I becomes value.
template <std::size_t I, class Value>
auto set(Value value) {
  return [value](auto& arguments, auto&) { std::get<I>(arguments) = value; };
}

/// A fault in a record that argument I points to: its member becomes value.
template <std::size_t I, class Record, class Member, class Value>
auto set_field(Member Record::*member, Value value) {
  return [=](auto& arguments, auto& keep) {
    auto spoiled = std::make_shared<Record>(*std::get<I>(arguments));
    spoiled.get()->*member = value;
    std::get<I>(arguments) = spoiled.get();
    keep.push_back(std::move(spoiled));
  };
}

template <class... Parameters>
class Call {
 public:
  using Arguments = std::tuple<Parameters...>;
  using Keep = std::vector<std::shared_ptr<void>>;
  struct Fault {
    MoxStatus status;
    std::function<void(Arguments&, Keep&)> spoil;
  };

  template <class... Given>
  Call(MoxStatus (*function)(Parameters...), std::tuple<Given...> good) : function_(function), good_(std::move(good)) {}

  /// Memory that a failing call must leave as it was.
  Call& keeps(const void* memory, std::size_t bytes) {
    kept_.push_back({static_cast<const char*>(memory), bytes});
    return *this;
  }

  /// Each fault gives its status alone, and together with all faults that are tested after it; nothing kept is written.
  /// Then the good call gives `good_status`.
  void expect_order(const std::vector<Fault>& faults, MoxStatus good_status = moxStsOk) {
    for (std::size_t first = 0; first < faults.size(); ++first) {
      for (std::size_t last : {first + 1, faults.size()}) {
        Keep keep;
        Arguments arguments = good_;
        for (std::size_t i = last; i-- > first;) faults[i].spoil(arguments, keep);
        const auto before = snapshot();
        EXPECT_EQ(std::apply(function_, arguments), faults[first].status)
            << "fault " << first << (last == first + 1 ? " alone" : " with all later ones");
        EXPECT_TRUE(before == snapshot()) << "fault " << first << ": a failing call has written";
      }
    }
    EXPECT_EQ(std::apply(function_, good_), good_status) << "good call";
  }

 private:
  std::vector<std::vector<char>> snapshot() const {
    std::vector<std::vector<char>> copies;
    for (auto [memory, bytes] : kept_) copies.emplace_back(memory, memory + bytes);
    return copies;
  }

  MoxStatus (*function_)(Parameters...);
  Arguments good_;
  std::vector<std::pair<const char*, std::size_t>> kept_;
};
template <class... Parameters, class... Given>
Call(MoxStatus (*)(Parameters...), std::tuple<Given...>) -> Call<Parameters...>;

}  // namespace mox::test
