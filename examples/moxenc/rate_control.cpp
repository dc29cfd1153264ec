#include "moxenc/rate_control.hpp"

#include <algorithm>
#include <cmath>

namespace moxenc {
namespace {

constexpr int kLowest = 6, kHighest = 51;

double step_of(int qp) { return std::exp2(qp / 6.0); }

}  // namespace

RateControl::RateControl(double bits_per_second, double pictures_per_second, int keyint)
    : bits_per_picture_(bits_per_second / pictures_per_second),
      window_(std::max(1, static_cast<int>(std::lround(std::min(pictures_per_second, 1e6))))),
      keyint_(keyint) {}

int RateControl::choose_qp(int since_key) const {
  constexpr int kFirst = 32, kMostChange = 3;
  constexpr double kPartOfIntra = 0.25;  // a P picture's complexity as long as none is known
  constexpr double kLeast = 0.2;         // part of the wanted bits that is spent even if it makes more debt
  if (is_blind()) return kFirst;
  // I pictures among those at since_key to since_key + window_ - 1.
  const int keys = (since_key + window_ - 1) / keyint_ - (since_key + keyint_ - 1) / keyint_ + 1;
  const double p_complexity = complexity_[1] > 0 ? complexity_[1] : kPartOfIntra * complexity_[0];
  const double expected = keys * complexity_[0] + (window_ - keys) * p_complexity;
  const double wanted = window_ * bits_per_picture_;
  const double step = expected / std::max(wanted - debt_, kLeast * wanted);
  const int qp = static_cast<int>(std::lround(6 * std::log2(std::max(step, 1e-3))));
  const int lowest = last_qp_ < 0 ? kLowest : std::max(kLowest, last_qp_ - kMostChange);
  const int highest = last_qp_ < 0 ? kHighest : std::min(kHighest, last_qp_ + kMostChange);
  return std::clamp(qp, lowest, highest);
}

void RateControl::learn(int since_key, int qp, std::size_t bits) {
  const double sample = static_cast<double>(bits) * step_of(qp);
  double& complexity = complexity_[since_key == 0 ? 0 : 1];
  complexity = complexity == 0 ? sample : (3 * complexity + sample) / 4;
}

void RateControl::account(int qp, std::size_t bits) {
  debt_ += static_cast<double>(bits) - bits_per_picture_;
  last_qp_ = qp;
}

}  // namespace moxenc
