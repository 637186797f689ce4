// Faults to catch: a piece that does not start on a point of the range, a gap or an overlap, a last piece
// that misses the end, a kind cut by another's rule, sums that wrap for ranges as long as all of mint.
#include "Arithmetic/Parallel/piece_plan.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <random>
#include <vector>

namespace vlm::parallel {

bool operator==(const range& a, const range& b) { return a.start == b.start && a.end == b.end; }
void PrintTo(const range& piece, std::ostream* out) { *out << piece.start << "-" << piece.end; }

namespace {

constexpr mint no_schedule = -1;
constexpr mint least = std::numeric_limits<mint>::min();
constexpr mint most = std::numeric_limits<mint>::max();

std::vector<range> pieces(mint start, mint end, mint step, mint workers, mint kind, mint chunk) {
  const ParallelThreadsSchedule schedule{kind, chunk_on_step(chunk, step), 0};
  piece_plan plan(start, end, step, kind == no_schedule ? nullptr : &schedule, workers);
  std::vector<range> result;
  while (!plan.done() && result.size() < 100000) result.push_back(plan.next());
  return result;
}

TEST(PiecePlan, WrittenOutCases) {
  struct {
    mint start, end, step, workers, kind, chunk;
    std::vector<range> expected;
  } const cases[] = {
      // Shares of what remains: 10/4, 8/3, 6/2, 3/1.
      {0, 10, 1, 4, no_schedule, 1, {{0, 2}, {2, 4}, {4, 7}, {7, 10}}},
      // 20/3 = 6 is a multiple of 3; 14/2 = 7 becomes 9; the rest.
      {0, 20, 3, 3, no_schedule, 1, {{0, 6}, {6, 15}, {15, 20}}},
      // Fewer points than workers: one each until none is left.
      {5, 8, 1, 8, no_schedule, 1, {{5, 6}, {6, 7}, {7, 8}}},
      // Kind 1, chunk below the share and above it.
      {0, 10, 1, 4, 1, 1, {{0, 2}, {2, 4}, {4, 7}, {7, 10}}},
      {0, 10, 1, 4, 1, 4, {{0, 4}, {4, 8}, {8, 10}}},
      // Kind 1 with chunk 10 on step 3 is chunk 9, above the shares of 100/16, 91/15, ...
      {0,
       100,
       3,
       16,
       1,
       10,
       {{0, 9},
        {9, 18},
        {18, 27},
        {27, 36},
        {36, 45},
        {45, 54},
        {54, 63},
        {63, 72},
        {72, 81},
        {81, 90},
        {90, 99},
        {99, 100}}},
      // Kind 2, 10/3 = 3 pieces: 10/3, 7/2, 4/1.
      {0, 10, 1, 4, 2, 3, {{0, 3}, {3, 6}, {6, 10}}},
      // Kind 2 with a chunk above the whole: one piece.
      {0, 10, 1, 4, 2, 100, {{0, 10}}},
      // Kind 3, 5 pieces whatever the workers: 12/5, 10/4, 8/3, 6/2, 3/1.
      {0, 12, 1, 2, 3, 5, {{0, 2}, {2, 4}, {4, 6}, {6, 9}, {9, 12}}},
      // Kind 4: quarters of what remains, at least 2: 20/4, 15/4, 12/4, 9/4, then 2s.
      {0, 20, 1, 4, 4, 2, {{0, 5}, {5, 8}, {8, 11}, {11, 13}, {13, 15}, {15, 17}, {17, 19}, {19, 20}}},
      // Kind 4 on step 4: 30/2 = 15 becomes 16, 14/2 = 7 becomes 8, 6/2 = 3 becomes 4, then the chunk of one
      // step.
      {0, 30, 4, 2, 4, 1, {{0, 16}, {16, 24}, {24, 28}, {28, 30}}},
      // Any other kind.
      {-3, 9, 2, 4, 0, 1, {{-3, 9}}},
      {-3, 9, 2, 4, 5, 2, {{-3, 9}}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(pieces(c.start, c.end, c.step, c.workers, c.kind, c.chunk), c.expected) << "kind " << c.kind;
  }
}

TEST(PiecePlan, ChunkBecomesAMultipleOfStep) {
  EXPECT_EQ(chunk_on_step(10, 3), 9);
  EXPECT_EQ(chunk_on_step(9, 3), 9);
  EXPECT_EQ(chunk_on_step(2, 3), 3);
  EXPECT_EQ(chunk_on_step(most, 2), most - 1);
  EXPECT_EQ(chunk_on_step(1, most), most);
}

// Pieces follow each other from start to end, each starting on a point of the range and none empty.
void expect_cover(mint start, mint end, mint step, const std::vector<range>& cut) {
  ASSERT_FALSE(cut.empty());
  mint cursor = start;
  for (const range& piece : cut) {
    ASSERT_EQ(piece.start, cursor);
    ASSERT_GT(piece.end, piece.start);
    const __int128 offset = static_cast<__int128>(piece.start) - start;
    ASSERT_EQ(static_cast<int64_t>(offset % step), 0);
    cursor = piece.end;
  }
  ASSERT_EQ(cursor, end);
}

TEST(PiecePlan, CoversRangesAtTheLimitsOfMint) {
  for (const mint kind : {no_schedule, mint{1}, mint{2}, mint{3}, mint{4}, mint{9}}) {
    for (const mint step : {mint{1}, mint{3}, mint{1} << 40, most - 1, most}) {
      // Pieces of kind 2 have the size of the chunk, those of kind 3 its number: keep both few.
      const mint chunk = kind == 2 ? most / 50 : 50;
      if (kind == 3 && step > 3) continue;
      for (const auto& [start, end] : {range{least, most}, range{least, least + 1}, range{most - 1, most},
                                       range{0, most}, range{least, 0}, range{most - 100, most}}) {
        SCOPED_TRACE(testing::Message()
                     << "kind " << kind << " step " << step << " from " << start << " to " << end);
        expect_cover(start, end, step, pieces(start, end, step, 7, kind, chunk));
      }
    }
  }
}

TEST(PiecePlan, CoversRandomRanges) {
  constexpr uint32_t seed = 20251122;
  std::mt19937_64 random(seed);
  const auto draw = [&](mint low, mint high) {
    return std::uniform_int_distribution<mint>(low, high)(random);
  };
  for (int i = 0; i < 20000; ++i) {
    const mint start = draw(-1000, 1000);
    const mint end = start + draw(1, 3000);
    const mint step = draw(1, 40);
    const mint workers = draw(1, 17);
    const mint kind = draw(-1, 6);
    const mint chunk = draw(1, 500);
    SCOPED_TRACE(testing::Message() << "seed " << seed << " case " << i << " kind " << kind);
    const std::vector<range> cut = pieces(start, end, step, workers, kind, chunk);
    expect_cover(start, end, step, cut);
    if (HasFatalFailure()) return;
    const mint most_pieces = kind == no_schedule || kind == 1 ? workers
                             : kind == 3                      ? chunk_on_step(chunk, step)
                                                              : end - start;
    EXPECT_LE(static_cast<mint>(cut.size()), most_pieces);
  }
}

}  // namespace
}  // namespace vlm::parallel
