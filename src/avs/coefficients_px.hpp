/// Portable kernel of AVS coefficient decoding. Three families of blocks share it as data.
#pragma once

#include <algorithm>
#include <bit>

#include "avs/run_level_tables.hpp"
#include "frame/arithmetic.hpp"
#include "frame/word_window.hpp"

namespace mox::px {

/// What a symbol is read by, from the symbol on whose magnitude chose it.
struct AvsTableState {
  const AvsVlcTable* table;
  Mox32s threshold;  ///< a larger magnitude chooses the next table
  Mox32s order;      ///< of the code number
};

inline constexpr Mox32s kAvsNoThreshold = 65535;

struct AvsFamily {
  Mox32s escapeOrder;
  Mox32s maxRunIndex;  ///< last entry of maxRun in use
  const Mox32s* maxRun;
  int states;
  AvsTableState state[7];

  /// The first table whose threshold a magnitude does not exceed, or the last one.
  constexpr const AvsTableState* state_for(long long magnitude) const {
    const AvsTableState* at = state;
    while (at != state + states - 1 && magnitude > at->threshold) ++at;
    return at;
  }
  constexpr Mox32s max_run(Mox32s threshold) const { return maxRun[std::min(threshold, maxRunIndex)]; }
  constexpr bool is_whole() const {
    return std::all_of(state, state + states,
                       [&](const AvsTableState& s) { return px::is_whole(*s.table, max_run(s.threshold)); });
  }
};

inline constexpr AvsFamily kAvsLumaIntra = {.escapeOrder = 1,
                                            .maxRunIndex = 11,
                                            .maxRun = VLC_IntraMaxRun,
                                            .states = 7,
                                            .state = {{&VLC0_Intra, 0, 2},
                                                      {&VLC1_Intra, 1, 2},
                                                      {&VLC2_Intra, 2, 2},
                                                      {&VLC3_Intra, 4, 2},
                                                      {&VLC4_Intra, 7, 2},
                                                      {&VLC5_Intra, 10, 2},
                                                      {&VLC6_Intra, kAvsNoThreshold, 2}}};
inline constexpr AvsFamily kAvsLumaInter = {.escapeOrder = 0,
                                            .maxRunIndex = 10,
                                            .maxRun = VLC_InterMaxRun,
                                            .states = 7,
                                            .state = {{&VLC0_Inter, 0, 3},
                                                      {&VLC1_Inter, 1, 2},
                                                      {&VLC2_Inter, 2, 2},
                                                      {&VLC3_Inter, 3, 2},
                                                      {&VLC4_Inter, 6, 2},
                                                      {&VLC5_Inter, 9, 2},
                                                      {&VLC6_Inter, kAvsNoThreshold, 2}}};
inline constexpr AvsFamily kAvsChroma = {.escapeOrder = 0,
                                         .maxRunIndex = 5,
                                         .maxRun = VLC_ChromaMaxRun,
                                         .states = 5,
                                         .state = {{&VLC0_Chroma, 0, 2},
                                                   {&VLC1_Chroma, 1, 0},
                                                   {&VLC2_Chroma, 2, 1},
                                                   {&VLC3_Chroma, 4, 1},
                                                   {&VLC4_Chroma, kAvsNoThreshold, 0}}};
static_assert(kAvsLumaIntra.is_whole() && kAvsLumaInter.is_whole() && kAvsChroma.is_whole());
static_assert(kAvsLumaIntra.state_for(6)->table == &VLC4_Intra && kAvsLumaInter.state_for(10)->table == &VLC6_Inter);

/// A code with more than 32 zeros in front of its first one is none.
inline constexpr long long kAvsNoCode = -1;

/// Reads a code that the next 32 bits do not hold.
MOX_READER_INLINE inline long long read_long_exp_golomb(WordWindow& in, Mox32s order) {
  const Mox32s zeros = std::countl_zero(in.peek(32));
  in.skip(zeros);
  in.fill();
  if (in.peek(1) == 0) return kAvsNoCode;
  const Mox32s length = zeros + order + 1, low = length / 2;  // 36 at most
  const long long high = in.get(length - low);
  return (high << low | in.get(low)) - (1ll << order);
}

/// Reads an Exp-Golomb code of an order.
MOX_READER_INLINE inline long long read_avs_exp_golomb(WordWindow& in, Mox32s order) {
  in.fill();
  const Mox32u ahead = in.peek(32);
  const Mox32s zeros = std::countl_zero(ahead), length = 2 * zeros + order + 1;
  if (length > 32) [[unlikely]]
    return read_long_exp_golomb(in, order);
  in.skip(length);
  return static_cast<long long>(ahead >> (32 - length)) - (1ll << order);
}

/// Levels of a block in the order of reading, each with the number of positions that the symbols before it fill.
struct AvsSymbols {
  Mox16s level[64];
  Mox8u filled[64];
  int count = 0;
  int end = 0;  ///< positions that all symbols fill
};

/// Reads symbols up to one that does not fit into 64 positions.
MOX_READER_INLINE inline void read_avs_symbols(const AvsFamily& family, WordWindow& in, AvsSymbols& symbols) {
  const AvsTableState* state = family.state;
  for (;;) {
    const long long code = read_avs_exp_golomb(in, state->order);
    if (code < 0) return;
    long long run, level;
    if (code < kAvsCodes) {
      run = state->table->rows[code].run;
      level = state->table->rows[code].level;
      if (symbols.end + run > 63) return;
    } else {
      const long long beyond = read_avs_exp_golomb(in, family.escapeOrder);
      run = (code - kAvsCodes) >> 1;
      if (beyond < 0 || symbols.end + run > 63) return;
      const Mox32s base = run <= family.max_run(state->threshold) ? state->table->refAbsLevel[run] : 1;
      level = code % 2 ? -(base + beyond) : base + beyond;
    }
    symbols.level[symbols.count] = wrap_to<Mox16s>(level);
    symbols.filled[symbols.count++] = static_cast<Mox8u>(symbols.end);
    symbols.end += static_cast<int>(run) + 1;
    const long long magnitude = level < 0 ? -level : level;
    if (magnitude > state->threshold) state = family.state_for(magnitude);
  }
}

/// Decodes a block. The symbols come from the highest frequency down, so that the place of each is known at the end.
template <const AvsFamily& kFamily>
MoxStatus decode_avs_block(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox32s* pNumCoeff, Mox16s* pDstCoeffs,
                           Mox32u scanType) {
  WordWindow in({*ppBitStream, *pBitOffset});
  AvsSymbols symbols;
  read_avs_symbols(kFamily, in, symbols);
  in.cursor().store(ppBitStream, pBitOffset);
  *pNumCoeff = scanType == 0 ? symbols.end : 63;
  std::fill_n(pDstCoeffs, 64, Mox16s{0});
  const ScanTable& scan = *AVSScan[scanType & 1];
  for (int i = 0; i < symbols.count; ++i)
    pDstCoeffs[scan[static_cast<std::size_t>(symbols.end - 1 - symbols.filled[i])]] = symbols.level[i];
  return moxStsOk;
}

}  // namespace mox::px
