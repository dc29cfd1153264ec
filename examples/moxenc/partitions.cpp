#include "moxenc/partitions.hpp"

#include "moxenc/motion.hpp"
#include "moxenc/search.hpp"

namespace moxenc {
namespace {

constexpr int kNoLimit = 1 << 30;

/// One way to split a macroblock.
struct Choice {
  Split split;
  std::array<Vector, 4> vectors;  ///< of the quarters
  int cost;
};

class PartitionSearch {
 public:
  PartitionSearch(const Site& site, const moxdec::Frame& reference)
      : site_(site), motion_(site.state.motion), reference_(reference), limits_(limits_at(site)) {}

  /// One partition first. Quarters are looked at by whole samples, and further only if that promises something; halves
  /// begin at the vectors of the quarters.
  Choice run() {
    constexpr int kPromisingBits = 12, kQuarterBits = 12;
    const Choice coarse = search_whole_samples(Split::kNone, {});
    const Choice whole = refine_from(coarse);
    const Choice coarse_quarters = search_whole_samples(Split::kQuarters, whole.vectors[0]);
    if (coarse_quarters.cost >= coarse.cost + kPromisingBits * site_.lambda.sad) return whole;
    const Choice quarters = refine_from(coarse_quarters);
    Choice best = quarters.cost < whole.cost ? quarters : whole;
    if (quarters.cost >= whole.cost + kQuarterBits * site_.lambda.satd) return best;
    for (const Split split : {Split::kRows, Split::kColumns}) {
      const Choice halves = search_halves(split, quarters, whole.vectors[0], best.cost);
      if (halves.cost < best.cost) best = halves;
    }
    return best;
  }

 private:
  /// Finds a match for one partition after the other, as their prediction wants it. Ends early at the limit.
  template <class Find>
  Choice each_part(Split split, int lambda, int limit, Find find) {
    constexpr int kTypeBits[4] = {1, 3, 3, 9};
    Choice choice{split, {}, lambda * kTypeBits[static_cast<int>(split)]};
    for (int i = 0; i < part_count(split) && choice.cost < limit; ++i) {
      const Part part = part_of(site_.x, site_.y, split, i);
      const Match match = find(target_of(part, split), part);
      choice.cost += match.cost;
      motion_.fill(part.x, part.y, part.width, part.height, {match.vector, 0});
      for (int y = 0; y < part.height; ++y) {
        for (int x = 0; x < part.width; ++x) {
          choice.vectors[first_quarter({part.x + x, part.y + y, 1, 1})] = match.vector;
        }
      }
    }
    return choice;
  }

  Choice search_whole_samples(Split split, Vector known) {
    return each_part(split, site_.lambda.sad, kNoLimit, [&](const Target& target, const Part& part) {
      const Vector starts[] = {target.predicted, motion_.at(part.x - 1, part.y).vector,
                               motion_.at(part.x, part.y - 1).vector,
                               motion_.at(part.x + part.width, part.y - 1).vector, known};
      return search_whole(target, starts);
    });
  }

  Choice refine_from(const Choice& coarse) {
    return each_part(coarse.split, site_.lambda.satd, kNoLimit, [&](const Target& target, const Part& part) {
      const Vector starts[] = {coarse.vectors[first_quarter(part)], target.predicted};
      return refine(target, starts, Precision::kHalf);
    });
  }

  Choice search_halves(Split split, const Choice& quarters, Vector whole, int limit) {
    return each_part(split, site_.lambda.satd, limit, [&](const Target& target, const Part& part) {
      const std::size_t first = first_quarter(part), second = split == Split::kRows ? first + 1 : first + 2;
      const Vector starts[] = {quarters.vectors[first], quarters.vectors[second], whole, target.predicted};
      return refine(target, starts, Precision::kQuarter);
    });
  }

  Target target_of(const Part& part, Split split) const {
    const int x = 8 * part.x, y = 8 * part.y;
    return {site_.source.at[0] + std::ptrdiff_t{y % 16} * site_.source.step[0] + x % 16,
            site_.source.step[0],
            sample_at(reference_, 0, x, y),
            reference_.step(0),
            shape_of(part.width, part.height),
            predict_vector(motion_, part, split),
            limits_,
            site_.lambda};
  }

  const Site& site_;
  Grid<Motion>& motion_;
  const moxdec::Frame& reference_;
  Limits limits_;
};

}  // namespace

int choose_partitions(Macroblock& mb, const Site& site, const moxdec::Frame& reference) {
  const Choice best = PartitionSearch(site, reference).run();
  mb.split = best.split, mb.vectors = best.vectors;
  return best.cost;
}

}  // namespace moxenc
