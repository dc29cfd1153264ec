#include "support/generations.hpp"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <map>

namespace mox::test {

const Library* Library::open(std::string_view generation, std::string* why) {
  static std::map<std::string, Library, std::less<>> loaded;
  if (const auto found = loaded.find(generation); found != loaded.end()) return &found->second;
  const auto refuse = [&](const std::string& reason) -> const Library* {
    if (why) *why = reason;
    return nullptr;
  };
  if (generation == "v3" && !__builtin_cpu_supports("avx2")) return refuse("this processor has no AVX2: v3 is skipped");
  const std::string path = std::string(MOXVC_LIB_DIR "/libmoxvc").append(generation).append(".so.6.1");
  if (access(path.c_str(), R_OK) != 0) return refuse("generation not built: " + std::string(generation));
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) {
    std::fprintf(stderr, "cannot load %s\n", dlerror());
    std::abort();
  }
  return &loaded.emplace(std::string(generation), Library(handle, path)).first->second;
}

const Library& Library::portable() {
  const Library* library = open("px");
  if (!library) {
    std::fprintf(stderr, "the tests need the px generation\n");
    std::abort();
  }
  return *library;
}

void* Library::address(const char* name) const {
  void* symbol = dlsym(handle_, name);
  if (!symbol) {
    std::fprintf(stderr, "%s does not export %s\n", path_.c_str(), name);
    std::abort();
  }
  return symbol;
}

}  // namespace mox::test
