/// A second thread that follows the first one through the same steps.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace moxdec {

/// Work on places, 0 to N - 1 and round again, that the leading thread fills and hands over one by one: at once, or in
/// a thread of its own. Whoever has to wait sleeps.
class Follower {
 public:
  using Work = std::function<void(std::size_t place)>;
  explicit Follower(Work work);
  /// What is not done yet is left out.
  ~Follower();

  /// From now on the work is done in a thread of its own. Without it there is one place.
  void start(std::size_t places);
  /// Hands one more place over. Returns the next one to fill, once it is free.
  std::size_t advance();
  /// Until the work is done on all places handed over. Returns what it threw, if it did; it was then not done on the
  /// places behind that one.
  std::exception_ptr wait();

 private:
  void run();
  void work_on(std::size_t place);

  const Work work_;
  std::size_t places_ = 1;
  std::exception_ptr error_;
  std::mutex mutex_;  // of all below
  std::condition_variable handed_over_, done_enough_;
  std::size_t filled_ = 0;  // so many from the start on
  std::size_t done_ = 0;
  std::size_t awaited_ = 0;  // the leading thread sleeps until so many are done
  bool stops_ = false;
  std::thread thread_;
};

}  // namespace moxdec
