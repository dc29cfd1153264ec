#include "moxdec/follower.hpp"

#include <utility>

namespace moxdec {

Follower::Follower(Work work) : work_(std::move(work)) {}

Follower::~Follower() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    stops_ = true;
  }
  handed_over_.notify_one();
  thread_.join();
}

void Follower::start(std::size_t places) {
  places_ = places;
  thread_ = std::thread([this] { run(); });
}

std::size_t Follower::advance() {
  if (!thread_.joinable()) {
    work_on(0);
    return 0;
  }
  std::unique_lock lock(mutex_);
  ++filled_;
  handed_over_.notify_one();
  if (filled_ - done_ == places_) {
    // For half of them, so that the threads do not wake each other for every single one.
    awaited_ = done_ + (places_ + 1) / 2;
    done_enough_.wait(lock, [&] { return done_ >= awaited_; });
  }
  return filled_ % places_;
}

std::exception_ptr Follower::wait() {
  std::unique_lock lock(mutex_);
  awaited_ = filled_;
  done_enough_.wait(lock, [&] { return done_ == awaited_; });
  return std::exchange(error_, nullptr);
}

void Follower::work_on(std::size_t place) {
  if (error_) return;
  try {
    work_(place);
  } catch (...) {
    error_ = std::current_exception();
  }
}

void Follower::run() {
  std::unique_lock lock(mutex_);
  for (;;) {
    handed_over_.wait(lock, [&] { return stops_ || done_ < filled_; });
    if (stops_) return;
    const std::size_t place = done_ % places_;
    lock.unlock();
    work_on(place);
    lock.lock();
    if (++done_ == awaited_) done_enough_.notify_one();
  }
}

}  // namespace moxdec
