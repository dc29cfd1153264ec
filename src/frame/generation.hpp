/// The processor generation that this build targets, chosen when the build is configured.
///
/// Kernels live in two namespaces: `px` holds the portable ones, `vec` the vector ones. A name that `vec` does not
/// define is found in `px`, so a family without vector kernels needs no entry here. Exported functions call
/// `active::name`.
#pragma once

namespace mox::px {}
namespace mox::vec {
using namespace px;
}

namespace mox {
#if defined(MOXVC_GENERATION_px)
namespace active = px;
inline constexpr char kGenerationCode[2] = {'p', 'x'};
inline constexpr char kLibraryName[] = "libmoxvcpx.so.6.1";
#elif defined(MOXVC_GENERATION_e9)
namespace active = vec;
inline constexpr char kGenerationCode[2] = {'e', '9'};
inline constexpr char kLibraryName[] = "libmoxvce9.so.6.1";
#elif defined(MOXVC_GENERATION_v3)
namespace active = vec;
inline constexpr char kGenerationCode[2] = {'v', '3'};
inline constexpr char kLibraryName[] = "libmoxvcv3.so.6.1";
#else
#error "no kernel generation chosen: define MOXVC_GENERATION_px, _e9 or _v3"
#endif
}  // namespace mox
