#include "filters/lowpass.hpp"

/// The way of the test to the filter, which the library does not export.
extern "C" __attribute__((visibility("default"))) MoxStatus lowpass(const Mox8u* source, Mox32s sourceStep,
                                                                    Mox8u* destination, Mox32s destinationStep,
                                                                    MoxiSize size, Mox32s mask) {
  return mox::moxiFilterLowpass_8u_C1R(source, sourceStep, destination, destinationStep, size, mask);
}
