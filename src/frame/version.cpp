#include "moxvc/version.h"

#include "frame/generation.hpp"

namespace mox {
namespace {
constexpr MoxLibraryVersion kVersion = {
    6, 1, 137, 799, {kGenerationCode[0], kGenerationCode[1], 0, 0}, kLibraryName, "6.1 build 137.56", "Mar 17 2010"};
}  // namespace
}  // namespace mox

const MoxLibraryVersion* moxvcGetLibVersion(void) { return &mox::kVersion; }
