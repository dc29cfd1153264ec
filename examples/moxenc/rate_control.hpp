/// Quantisers for a wanted bitrate.
#pragma once

#include <cstddef>

namespace moxenc {

/// The size of a picture is taken as its complexity divided by the step of its quantiser. Complexities of I and of P
/// pictures are learnt from those coded. A picture gets the step with which the pictures of the next second, if they
/// are as complex, bring the total to what is wanted by then.
class RateControl {
 public:
  RateControl(double bits_per_second, double pictures_per_second, int keyint);

  /// Whether nothing is known yet: the first picture is to be coded once with choose_qp and learn to know more.
  bool is_blind() const { return complexity_[0] == 0; }
  /// QP of the picture that comes `since_key` pictures behind an I picture, which itself is 0.
  int choose_qp(int since_key) const;
  /// What a picture took.
  void learn(int since_key, int qp, std::size_t bits);
  /// The picture goes into the stream.
  void account(int qp, std::size_t bits);

 private:
  double bits_per_picture_;
  int window_, keyint_;
  double complexity_[2] = {0, 0};  ///< of I and of P pictures; 0 if none was seen
  double debt_ = 0;                ///< bits spent beyond those wanted so far
  int last_qp_ = -1;
};

}  // namespace moxenc
