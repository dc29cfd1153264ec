#include "moxdec/word_reader.hpp"

#include <cstring>

namespace moxdec {

void Payload::assign(Bytes payload) {
  const std::size_t words = (payload.size() + 3) / 4;
  words_.assign(words + WordReader::kPaddingWords, 0);
  std::memcpy(words_.data(), payload.data(), payload.size());
  for (std::size_t i = 0; i < words; ++i) words_[i] = __builtin_bswap32(words_[i]);
  bits_ = 8 * payload.size();
}

}  // namespace moxdec
