/// MPEG-4 texture as text, one character for each bit: slow readers, forwards and backwards, and a slow writer, over
/// plain lists of codes.
#pragma once

#include "mpeg4/coefficient_tables.hpp"
#include "mpeg4/reversible_tables.hpp"
#include "oracle/h263_coefficients.hpp"

namespace mox::test::oracle {

/// Codes with their signs; [reversible][intra].
inline const CodeBook kTextureBooks[2][2] = {{code_book(kTcoefRows), code_book(kIntraTcoefRows)},
                                             {code_book(kReversibleInterRows), code_book(kReversibleIntraRows)}};

struct Texture {
  bool intra, reversible, noDc;
  int scan;

  const CodeBook& book() const { return kTextureBooks[reversible][intra]; }
  int start() const { return intra && noDc ? 0 : -1; }
  /// `others` is what selectors without a scan of their own stand for: -1 none, 0 zigzag.
  int position(int index, int others) const {
    const int known = scan == 0 || scan == 1 || (scan == 2 && intra) || scan == -1 ? scan : others;
    return known == 0   ? ownvc_Zigzag[index]
           : known == 1 ? ownvc_AltScanV[index]
           : known == 2 ? ownvc_AltScanH[index]
                        : index;
  }
  /// The code of an event, empty if there is none.
  std::string code(const Event& event) const {
    for (const auto& [text, meaning] : book()) {
      if (meaning == event) return text;
    }
    return "";
  }
  /// The greatest level of a last flag and a run, or the greatest run of a last flag and a level; -1: none.
  int greatest(int what, const Event& event) const {
    int most = -1;
    for (const auto& [text, e] : book()) {
      if (e[0] == event[0] && e[3 - what] == event[3 - what]) most = std::max(most, e[what]);
    }
    return most;
  }
  std::string fields(const Event& e) const {
    const std::string head = bits_of(e[0], 1) + bits_of(e[1], 6) + "1";
    if (!reversible) return "000001111" + head + bits_of(e[2], 12) + "1";
    return "00001" + head + bits_of(std::abs(e[2]), 11) + "10000" + (e[2] < 0 ? "1" : "0");
  }
};

struct ReadTexture {
  bool good = false;
  Block block{};
  int consumed = 0, last = -1;
  int tried = 0;  ///< bits of all codes that were looked at, of an illegal one the first
};

/// The event of the code that `text` begins with, level 0 if there is none, and its length.
inline Event event_at(const Texture& t, const std::string& text, int& length) {
  for (length = 3; length <= 16; ++length) {
    const auto found = t.book().find(text.substr(0, length));
    if (found != t.book().end()) return found->second;
  }
  length = 0;
  if (text.compare(0, t.reversible ? 5 : 9, t.reversible ? "00001" : "000001111") == 0) {
    length = 30;
    const int at = t.reversible ? 5 : 9;
    Event event = {text[at] == '1', static_cast<int>(value_of(text.substr(at + 1, 6))), 0};
    const int level = static_cast<int>(value_of(text.substr(at + 8, t.reversible ? 11 : 12)));
    event[2] = t.reversible ? (text[29] == '1' ? -level : level) : level >= 2048 ? level - 4096 : level;
    const bool good = event[2] != -2048 && text.substr(0, 30) == t.fields(event);
    return good ? event : Event{};
  }
  if (t.reversible || text.compare(0, 7, "0000011") != 0) return {};
  const int prefix = text[7] == '0' ? 8 : 9;
  const Event event = text.compare(prefix, 7, "0000011") == 0 ? Event{} : event_at(t, text.substr(prefix), length);
  length += prefix;
  if (event[2] == 0) return {};
  if (prefix == 9) return {event[0], event[1] + t.greatest(1, event) + 1, event[2]};
  const int more = t.greatest(2, {event[0], event[1], 1});
  return {event[0], event[1], event[2] + (event[2] < 0 ? -more : more)};
}

/// Reads into `block`. The text must be longer than any block.
inline ReadTexture decode(const Texture& t, const std::string& text, const Block& block) {
  ReadTexture out{false, block, 0, t.start(), 0};
  for (int i = out.last + 1; i < 64; ++i) out.block[i] = 0;
  while (!out.good) {
    int length;
    const Event event = event_at(t, text.substr(out.consumed, 40), length);
    out.consumed += length;
    out.tried = out.consumed + (event[2] == 0);
    if (event[2] == 0) break;
    out.last += event[1] + 1;
    if (out.last > 63) break;
    out.block[t.position(out.last, -1)] = static_cast<Mox16s>(event[2]);
    out.good = event[0] == 1;
  }
  return out;
}

/// Reads the block in front of the end of the text, which must begin with more bits than any block has.
inline ReadTexture decode_backwards(const Texture& t, const std::string& text, const Block& block) {
  ReadTexture out{false, block, 0, 63, 0};
  for (int i = t.start() + 1; i < 64; ++i) out.block[i] = 0;
  const Block clear = out.block;
  std::vector<Event> events;
  for (;;) {
    const std::string rest = text.substr(0, text.size() - out.consumed);
    Event event{};
    int length = 0;
    for (int n = 4; n <= 16 && length == 0; ++n) {
      const auto found = t.book().find(rest.substr(rest.size() - n));
      if (found != t.book().end()) event = found->second, length = n;
    }
    if (length == 0 && value_of(rest.substr(rest.size() - 6)) >> 1 == 16) {
      const std::string escape = rest.substr(rest.size() - 30);
      if (escape.starts_with("00001")) event = event_at(t, escape, length);
      length = 30;
    }
    out.tried = out.consumed + std::max(length, 1);
    if (event[2] != 0 && event[0] == 1 && !events.empty()) break;
    if (event[2] == 0 || event[0] != events.empty() || out.last - event[1] - 1 < t.start()) return out;
    out.block[out.last] = static_cast<Mox16s>(event[2]);
    out.last -= event[1] + 1;
    out.consumed += length;
    events.push_back(event);
  }
  out.good = true;
  out.block = clear;
  out.last = t.start();
  for (auto event = events.rbegin(); event != events.rend(); ++event) {
    out.last += (*event)[1] + 1;
    out.block[out.last] = static_cast<Mox16s>((*event)[2]);
  }
  return out;
}

/// The shortest form of an event.
inline std::string encode(const Texture& t, const Event& event) {
  const auto [last, run, level] = event;
  std::string text = t.code(event);
  if (text.empty() && !t.reversible) {
    const int more = t.greatest(2, {last, run, 1});
    text = more < 0 ? "" : t.code({last, run, level < 0 ? level + more : level - more});
    if (!text.empty()) return "00000110" + text;
    const int longest = t.greatest(1, {last, 0, level});
    text = longest < 0 ? "" : t.code({last, run - longest - 1, level});
    if (!text.empty()) return "000001110" + text;
  }
  return text.empty() ? t.fields(event) : text;
}

/// The text of the first `count` levels other than 0, all if there are fewer.
inline std::string encode(const Texture& t, const Block& block, int count) {
  std::string text;
  int run = 0;
  for (int i = t.start() + 1; i < 64 && count > 0; ++i, ++run) {
    const int level = block[t.position(i, 0)];
    if (level == 0) continue;
    text += encode(t, Event{count == 1, run, level});
    run = -1;
    --count;
  }
  return text;
}

}  // namespace mox::test::oracle
