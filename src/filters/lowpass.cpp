#include "filters/lowpass.hpp"

#include <omp.h>

#include "filters/lowpass_px.hpp"
#include "filters/lowpass_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "frame/memory.hpp"
#include "moxcore.h"

namespace mox {
namespace {

struct Regions {
  const Mox8u* source;
  std::ptrdiff_t sourceStep;
  Mox8u* destination;
  std::ptrdiff_t destinationStep;
  MoxiSize size;
};

MoxStatus ownmoxiFilterLowpass3x3(const Regions& r) {
  for (std::ptrdiff_t y = 0; y < r.size.height; ++y) {
    active::lowpass_3x3_row(r.source + y * r.sourceStep, r.sourceStep, r.destination + y * r.destinationStep,
                            r.size.width);
  }
  return moxStsOk;
}

MoxStatus ownmoxiFilterLowpass5x5(const Regions& r) {
  const int threads = ownGetNumThreads();
  const std::ptrdiff_t perThread = r.size.width + std::ptrdiff_t{4}, all = perThread * threads;
  Mox16u* const columns = all > INT32_MAX ? nullptr : moxsMalloc_16u(static_cast<Mox32s>(all));
  if (any_null(columns)) return moxStsNoMemory;
#pragma omp parallel for num_threads(threads)
  for (Mox32s y = 0; y < r.size.height; ++y) {
    active::lowpass_5x5_row(r.source + y * r.sourceStep, r.sourceStep, r.destination + y * r.destinationStep,
                            r.size.width, columns + omp_get_thread_num() * perThread);
  }
  moxsFree(columns);
  return moxStsOk;
}

}  // namespace

MoxStatus moxiFilterLowpass_8u_C1R(const Mox8u* source, Mox32s sourceStep, Mox8u* destination, Mox32s destinationStep,
                                   MoxiSize size, Mox32s mask) {
  if (any_null(source, destination)) return moxStsNullPointer;
  if (size.width < 1 || size.height < 1) return moxStsBadSize;
  if (sourceStep < 1 || destinationStep < 1) return moxStsBadStep;
  const Regions regions{source, sourceStep, destination, destinationStep, size};
  if (mask == kLowpass3x3) return ownmoxiFilterLowpass3x3(regions);
  return mask == kLowpass5x5 ? ownmoxiFilterLowpass5x5(regions) : moxStsBadMask;
}

}  // namespace mox
