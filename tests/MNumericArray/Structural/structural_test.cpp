// Faults it is meant to catch: an offset, stride or count that is wrong in one dimension, at size 0 or 1, for one width or one kind of
// target; runs merged that do not follow each other; arithmetic at the ends of mint; statuses; blocks leaked when storage fails.
#include "velorim/structural.h"

#include <functional>
#include <limits>

#include "support/index_coded.h"
#include "velorim/parallel.h"
#include "velorim/status.h"

namespace {

using namespace vlm_test;
using indices = std::vector<mint>;
constexpr mint least = std::numeric_limits<mint>::min(), greatest = std::numeric_limits<mint>::max();

class Structural : public ArrayTest {
 protected:
  void SetUp() override {
    ArrayTest::SetUp();
    threads_ = setParallelThreadNumber(2);
  }
  void TearDown() override {
    restoreParallelThreadNumber(threads_);
    ArrayTest::TearDown();
  }

 private:
  mint threads_ = 1;
};

/// The positions of a sequence by counting, or false; for the ordinary range of arguments.
bool positions_of(mint d, uint32_t flags, mint start, mint end, mint step, indices& positions) {
  mint s = start > 0 ? (flags & 1 && start > d ? d : start) : d + start + 1;
  const mint e = end >= 0 ? (flags & 2 && end > d ? d : end) : d + end + 1;
  if (step == least) step = e < s ? -1 : 1;
  if (step == 0) return false;
  const bool fits = step > 0 ? s >= 1 && e >= s - 1 && e <= d : e >= 1 && e <= s + 1 && s <= d;
  if (!fits) return false;
  positions.clear();
  for (; step > 0 ? s <= e : s >= e; s += step) positions.push_back(s);
  return true;
}

TEST_F(Structural, SequencesAgreeWithCounting) {
  for (mint d = 0; d <= 5; ++d) {
    for (mint start = -7; start <= 7; ++start) {
      for (mint end = -7; end <= 7; ++end) {
        for (const mint step : {least, mint{-3}, mint{-1}, mint{0}, mint{1}, mint{2}, mint{9}}) {
          for (uint32_t flags = 0; flags < 4; ++flags) {
            indices positions;
            mint s = start, e = end, by = step, count = -99;
            const bool valid = positions_of(d, flags, start, end, step, positions);
            ASSERT_EQ(NormalizeSeqSpec(d, flags, &s, &e, &by, &count), valid)
                << d << ": " << start << ' ' << end << ' ' << step << ' ' << flags;
            if (!valid) {
              ASSERT_EQ(count, -99);
              continue;
            }
            ASSERT_EQ(count, static_cast<mint>(positions.size()));
            if (count > 0) {
              ASSERT_EQ(s, positions.front());
              ASSERT_EQ(s + (count - 1) * by, positions.back());
            }
          }
        }
      }
    }
  }
  mint s = greatest, e = least, step = 1, count = 0;
  EXPECT_EQ(NormalizeSeqSpec(3, 0, &s, &e, &step, &count), 0);
  s = 1, e = greatest, step = greatest;
  EXPECT_EQ(NormalizeSeqSpec(greatest, 0, &s, &e, &step, &count), 1);
  EXPECT_EQ(count, 1);
}

struct sequences {
  indices starts, ends, steps;
  std::vector<uint32_t> flags;
  std::vector<indices> positions;  ///< one-based, of each dimension

  static sequences random(random_cases& random, const indices& dims, mint n) {
    sequences s;
    for (mint i = 0; i < n;) {
      const mint d = dims[static_cast<size_t>(i)];
      const mint steps[] = {1, 1, 2, -1, -2, least};
      const mint start = random.in(-d - 1, d + 1), end = random.in(-d - 1, d + 1),
                 step = steps[random.in(0, 5)];
      const auto flags = static_cast<uint32_t>(random.in(0, 3));
      indices positions;
      if (!positions_of(d, flags, start, end, step, positions)) continue;
      s.starts.push_back(start);
      s.ends.push_back(end);
      s.steps.push_back(step);
      s.flags.push_back(flags);
      s.positions.push_back(positions);
      ++i;
    }
    return s;
  }
};

/// Indices (from 0) of each dimension that are kept: the positions, or the others.
coded kept(const coded& source, const sequences& s, bool take) {
  std::vector<indices> keep;
  indices dims = source.dims;
  for (size_t i = 0; i < s.positions.size(); ++i) {
    indices list;
    if (take) {
      for (const mint position : s.positions[i]) list.push_back(position - 1);
    } else {
      for (mint k = 0; k < dims[i]; ++k) {
        if (std::find(s.positions[i].begin(), s.positions[i].end(), k + 1) == s.positions[i].end())
          list.push_back(k);
      }
    }
    dims[i] = static_cast<mint>(list.size());
    keep.push_back(list);
  }
  return make_coded(dims, [&](const indices& index) {
    indices from = index;
    for (size_t i = 0; i < keep.size(); ++i) from[i] = keep[i][static_cast<size_t>(index[i])];
    return source.at(from);
  });
}

TEST_F(Structural, TakeAndDropAgreeWithElementwiseModels) {
  random_cases random;
  SCOPED_TRACE(testing::Message() << "seed " << random.seed());
  for (int n = 0; n < 1500; ++n) {
    const int32_t type = random.type();
    const coded source = coded::numbered(random.shape(1));
    const sequences s =
        sequences::random(random, source.dims, random.in(1, static_cast<mint>(source.dims.size())));
    const array_ptr from = make_array(type, source);
    for (const bool take : {true, false}) {
      MNumericArray* made = from.get();  // only replaced
      const auto operation = take ? MNumericArray_take : MTensor_drop;
      ASSERT_EQ(operation(&made, from.get(), static_cast<mint>(s.starts.size()), s.starts.data(),
                          s.ends.data(), s.steps.data(), s.flags.data()),
                0);
      ASSERT_NE(made, from.get());
      expect_coded(made, type, kept(source, s, take));
      MNumericArray_delete(made);
    }
  }
}

TEST_F(Structural, TakeAndDropStatuses) {
  const array_ptr matrix = make_array(MNumericArrayTypeInteger16, coded::numbered({3, 4}));
  const mint one[] = {1, 1, 1}, four[] = {4, 4, 4}, zero[] = {0, 0, 0};
  MNumericArray* made = nullptr;
  EXPECT_EQ(MNumericArray_take(&made, matrix.get(), 3, one, one, one, nullptr), LibraryRankError);
  EXPECT_EQ(MNumericArray_take(&made, matrix.get(), 1, one, four, one, nullptr), LibraryNumericalError);
  EXPECT_EQ(MNumericArray_drop(&made, matrix.get(), 1, one, one, zero, nullptr), LibraryNumericalError);
  EXPECT_EQ(MNumericArray_take(&made, nullptr, 1, one, one, one, nullptr), ArrayStatusNullArgument);
  EXPECT_EQ(made, nullptr);
  const int64_t numbers[] = {0, 2, 0, -3};
  ASSERT_EQ(Runtime_MNumericArray_TakeDrop(&made, matrix.get(), 2, numbers, 1), 0);
  expect_coded(made, MNumericArrayTypeInteger16, {{2, 3}, {1, 2, 3, 5, 6, 7}});
  MNumericArray_delete(std::exchange(made, nullptr));
  const mint entries[] = {3, 1, -1};
  const mint length = 3;
  const array_ptr list(MTensor_newCopyFromDataArray(MTensorTypeInteger, 1, &length, entries));
  const int64_t tensor[] = {1, reinterpret_cast<int64_t>(list.get())};
  ASSERT_EQ(Runtime_MNumericArray_TakeDrop(&made, matrix.get(), 1, tensor, 1), 0);
  expect_coded(made, MNumericArrayTypeInteger16, {{3, 4}, {8, 9, 10, 11, 4, 5, 6, 7, 0, 1, 2, 3}});
  MNumericArray_delete(std::exchange(made, nullptr));
  const int64_t clamped[] = {-1, 9}, matrix_as_list[] = {1, reinterpret_cast<int64_t>(matrix.get())};
  EXPECT_EQ(Runtime_MNumericArray_TakeDrop(&made, matrix.get(), 1, clamped, 1), LibraryNumericalError);
  EXPECT_EQ(Runtime_MNumericArray_TakeDrop(&made, matrix.get(), 1, matrix_as_list, 1), LibraryNumericalError);
}

TEST_F(Structural, RotateReverseAndFlattenAgreeWithElementwiseModels) {
  random_cases random;
  SCOPED_TRACE(testing::Message() << "seed " << random.seed());
  for (int round = 0; round < 500; ++round) {
    const int32_t type = random.type();
    const coded source =
        coded::numbered(round % 50 == 0 ? indices{40, random.in(1, 300), random.in(1, 3)} : random.shape(1));
    const mint rank = static_cast<mint>(source.dims.size()), n = random.in(0, rank);
    indices shifts;
    for (mint i = 0; i < n; ++i) shifts.push_back(random.in(0, 9) == 0 ? least : random.in(-9, 9));
    const coded rotated = make_coded(source.dims, [&](indices index) {
      for (size_t i = 0; i < shifts.size(); ++i) {
        const __int128 moved = static_cast<__int128>(index[i]) + shifts[i];
        index[i] = static_cast<mint>((moved % source.dims[i] + source.dims[i]) % source.dims[i]);
      }
      return source.at(index);
    });
    expect_for_every_target(type, source, rotated, [&](MNumericArray** target, MNumericArray* from) {
      return MNumericArray_rotate(target, from, n, shifts.data());
    });
    const coded reversed = make_coded(source.dims, [&](indices index) {
      index[0] = source.dims[0] - 1 - index[0];
      return source.at(index);
    });
    expect_for_every_target(type, source, reversed, MNumericArray_reverse);
    const mint level = random.in(0, rank + 1), merged = std::min(level, rank - 1);
    coded flat = source;
    flat.dims.erase(flat.dims.begin(), flat.dims.begin() + merged);
    for (mint i = 0; i < merged; ++i) flat.dims[0] *= source.dims[static_cast<size_t>(i)];
    expect_for_every_target(type, source, flat, [&](MNumericArray** target, MNumericArray* from) {
      return MNumericArray_flatten(target, from, level);
    });
  }
  MNumericArray* made = nullptr;
  const array_ptr scalar = make_array(7, coded::numbered({}));
  const mint shift[] = {1};
  EXPECT_EQ(MNumericArray_reverse(&made, scalar.get()), LibraryRankError);
  EXPECT_EQ(MNumericArray_rotate(&made, scalar.get(), 1, shift), LibraryDimensionError);
  EXPECT_EQ(MNumericArray_flatten(&made, scalar.get(), -1), ArrayStatusBadLevel);
}

TEST_F(Structural, JoinAgreesWithAnElementwiseModel) {
  random_cases random;
  SCOPED_TRACE(testing::Message() << "seed " << random.seed());
  for (int round = 0; round < 300; ++round) {
    const int32_t type = random.type();
    const indices shape = random.shape(1);
    const auto at = static_cast<size_t>(random.in(0, static_cast<mint>(shape.size()) - 1));
    std::vector<coded> parts;
    std::vector<array_ptr> owners;
    std::vector<MNumericArray*> arrays;
    coded expected{shape, {}};
    expected.dims[at] = 0;
    for (mint k = random.in(1, 4); k > 0; --k) {
      indices dims = shape;
      dims[at] = random.in(0, 4);
      expected.dims[at] += dims[at];
      parts.push_back(coded::numbered(dims, 1000 * k));
      owners.push_back(make_array(type, parts.back()));
      arrays.push_back(owners.back().get());
    }
    expected = make_coded(expected.dims, [&](indices index) {
      size_t part = 0;
      while (index[at] >= parts[part].dims[at]) index[at] -= parts[part++].dims[at];
      return parts[part].at(index);
    });
    const auto count = static_cast<mint>(arrays.size());
    if (at == 0) {
      MNumericArray* made = nullptr;
      ASSERT_EQ(MNumericArray_join(&made, arrays.data(), count), 0);
      expect_coded(made, type, expected);
      MNumericArray_delete(made);
    }
    const array_ptr target = make_array(MNumericArrayTypeReal16, coded::numbered({5}));
    ASSERT_EQ(MTensor_joinDimension(target.get(), count, arrays.data(), static_cast<mint>(at) + 1), 0);
    expect_coded(target.get(), type, expected);
    ASSERT_EQ(MTensor_joinDimension(arrays.back(), count, arrays.data(), static_cast<mint>(at) + 1), 0);
    expect_coded(arrays.back(), type, expected);
  }
  const array_ptr a = make_array(7, coded::numbered({2, 3})), b = make_array(7, coded::numbered({4, 2})),
                  c = make_array(8, coded::numbered({2, 3})), scalar = make_array(7, coded::numbered({}));
  MNumericArray* made = nullptr;
  const auto join = [&](std::vector<MNumericArray*> arrays) {
    return MNumericArray_join(&made, arrays.data(), static_cast<mint>(arrays.size()));
  };
  EXPECT_EQ(join({a.get(), b.get()}), LibraryDimensionError);
  EXPECT_EQ(join({a.get(), scalar.get()}), LibraryDimensionError);
  EXPECT_EQ(join({a.get(), c.get(), b.get()}), LibraryNumericalError);
  EXPECT_EQ(join({scalar.get()}), LibraryRankError);
  EXPECT_EQ(made, nullptr);
  EXPECT_EQ(join({}), 0);
  EXPECT_EQ(dims_of(made), indices{0});
  MNumericArray_delete(made);
  MNumericArray* const arrays[] = {a.get()};
  EXPECT_EQ(MTensor_joinDimension(b.get(), 1, arrays, 3), LibraryRankError);
}

TEST_F(Structural, PartitionAgreesWithAnElementwiseModel) {
  random_cases random;
  SCOPED_TRACE(testing::Message() << "seed " << random.seed());
  int refused = 0;
  for (int round = 0; round < 1500; ++round) {
    const int32_t type = random.type();
    const coded source = coded::numbered(random.shape(1, 1));
    const mint n = random.in(0, std::min<mint>(3, static_cast<mint>(source.dims.size())));
    indices sizes, offsets, windows, dims;
    bool covered = true;
    for (mint i = 0; i < n; ++i) {
      const mint d = source.dims[static_cast<size_t>(i)];
      sizes.push_back(random.in(0, d + 1));
      offsets.push_back(random.in(1, 3));
      mint count = 0;
      std::vector<bool> seen(static_cast<size_t>(d));
      for (mint first = 0; first + sizes.back() <= d; first += offsets.back(), ++count) {
        for (mint j = 0; j < sizes.back(); ++j) seen[static_cast<size_t>(first + j)] = true;
      }
      windows.push_back(count);
      covered = covered && (i + 1 == n || std::find(seen.begin(), seen.end(), false) == seen.end());
    }
    dims = windows;
    dims.insert(dims.end(), sizes.begin(), sizes.end());
    dims.insert(dims.end(), source.dims.begin() + n, source.dims.end());
    const coded expected = make_coded(dims, [&](const indices& index) {
      indices from(index.begin() + n, index.end());
      for (size_t i = 0; i < sizes.size(); ++i) from[i] += index[i] * offsets[i];
      return source.at(from);
    });
    const array_ptr size_array(MTensor_newCopyFromDataArray(MTensorTypeInteger, 1, &n, sizes.data())),
        offset_array(MTensor_newCopyFromDataArray(MTensorTypeInteger, 1, &n, offsets.data()));
    const auto partition = [&](MNumericArray** target, MNumericArray* from) {
      return MNumericArray_partition(target, from, size_array.get(), offset_array.get());
    };
    if (!covered && product_of(dims) != 0) {
      const array_ptr from = make_array(type, source);
      MNumericArray* made = nullptr;
      ASSERT_EQ(partition(&made, from.get()), LibraryNumericalError);
      ++refused;
      continue;
    }
    expect_for_every_target(type, source, expected, partition);
  }
  EXPECT_GT(refused, 0);
  const auto status = [](int32_t type, indices dims, indices sizes, indices offsets, int32_t index_type = 7) {
    const array_ptr source = make_array(type, coded::numbered(dims));
    const mint n = static_cast<mint>(sizes.size()), m = static_cast<mint>(offsets.size());
    const array_ptr s(MNumericArray_newCopyFromDataArrayCommon(index_type, 1, &n, sizes.data(), FailFatal)),
        o(MNumericArray_newCopyFromDataArrayCommon(7, 1, &m, offsets.data(), FailFatal));
    MNumericArray* made = nullptr;
    const int32_t result = MNumericArray_partition(&made, source.get(), s.get(), o.get());
    MNumericArray_delete(made);
    return result;
  };
  EXPECT_EQ(status(9, {3}, {1}, {1}, 8), LibraryTypeError);
  EXPECT_EQ(status(9, {3}, {1, 1}, {1, 1}), LibraryRankError);
  EXPECT_EQ(status(9, {3}, {1}, {1, 1}), LibraryRankError);
  EXPECT_EQ(status(9, {3}, {-1}, {1}), LibraryDimensionError);
  EXPECT_EQ(status(9, {3}, {1}, {0}), LibraryDimensionError);
  EXPECT_EQ(status(9, {0}, {1}, {1}), LibraryDimensionError);
  EXPECT_EQ(status(9, {3}, {greatest}, {greatest}), 0);
}

TEST_F(Structural, PadAgreesWithAnElementwiseModel) {
  random_cases random;
  SCOPED_TRACE(testing::Message() << "seed " << random.seed());
  for (int round = 0; round < 1000; ++round) {
    const int32_t type = random.type();
    const coded source = coded::numbered(random.shape(0));
    const size_t rank = source.dims.size();
    indices padding_dims, sizes, margins, dims;
    const bool single = random.in(0, 2) == 0;
    for (size_t i = 0; i < rank; ++i) {
      if (!single) padding_dims.push_back(random.in(1, 4));
      dims.push_back(random.in(1, 8));
      sizes.push_back(random.in(0, 1) ? dims[i] : -dims[i]);
      margins.push_back(random.in(-9, 9));
    }
    const coded padding = coded::numbered(padding_dims, 5000);
    const coded expected = make_coded(dims, [&](const indices& index) {
      indices in_source, in_padding;
      bool covered = true;
      for (size_t i = 0; i < rank; ++i) {
        const mint n = dims[i], m = margins[i], length = source.dims[i];
        const mint first = sizes[i] > 0 ? n - m - length : m;
        const mint last = sizes[i] > 0 ? std::min(n, n - m) : std::min(n, m + length);
        covered = covered && index[i] >= first && index[i] < last;
        in_source.push_back(index[i] - first);
        const mint period = single ? 1 : padding_dims[i], k = sizes[i] > 0 ? n - m : m;
        in_padding.push_back(((index[i] - k) % period + period) % period);
      }
      return covered ? source.at(in_source) : padding.at(single ? indices{} : in_padding);
    });
    const array_ptr pattern = make_array(type, padding);
    expect_for_every_target(type, source, expected, [&](MNumericArray** target, MNumericArray* from) {
      return MTensor_pad(target, from, pattern.get(), sizes.data(), margins.data());
    });
  }
  const auto status = [](indices padding, int32_t type, mint size, mint margin) {
    const array_ptr source = make_array(10, coded::numbered({2})),
                    pattern = make_array(type, coded::numbered(padding));
    MNumericArray* made = nullptr;
    const int32_t result = MTensor_pad(&made, source.get(), pattern.get(), &size, &margin);
    MNumericArray_delete(made);
    return result;
  };
  EXPECT_EQ(status({1}, 10, 0, 0), LibraryDimensionError);
  EXPECT_EQ(status({0}, 10, 3, 0), LibraryDimensionError);
  EXPECT_EQ(status({1, 1}, 10, 3, 0), LibraryRankError);
  EXPECT_EQ(status({1}, 9, 3, 0), LibraryTypeError);
  EXPECT_EQ(status({1}, 10, least, 0), ArrayStatusNoMemory);
  EXPECT_EQ(status({3}, 10, 5, least), 0);
  EXPECT_EQ(status({3}, 10, -5, greatest), 0);
}

TEST_F(Structural, FailingStorageLeavesSourceAndPointerAlone) {
  const coded content =
      coded::numbered({2, 3, 2, 1, 2, 3, 2, 2, 2, 2});  // deep: also the walks' own storage is on the heap
  const array_ptr source = make_array(MNumericArrayTypeReal32, content);
  const indices ones(10, 1), twos(10, 2), minus(10, -1);
  const mint n = 10;
  const array_ptr one(MTensor_newCopyFromDataArray(MTensorTypeInteger, 1, &n, ones.data()));
  MNumericArray* const arrays[] = {source.get(), source.get()};
  using operation = std::function<int32_t(MNumericArray**)>;
  const std::vector<operation> operations = {
      [&](MNumericArray** t) {
        return MNumericArray_take(t, source.get(), 10, ones.data(), minus.data(), ones.data(), nullptr);
      },
      [&](MNumericArray** t) {
        return MNumericArray_drop(t, source.get(), 2, ones.data(), ones.data(), ones.data(), nullptr);
      },
      [&](MNumericArray** t) { return MNumericArray_flatten(t, source.get(), 3); },
      [&](MNumericArray** t) { return MNumericArray_join(t, arrays, 2); },
      [&](MNumericArray** t) { return MNumericArray_partition(t, source.get(), one.get(), one.get()); },
      [&](MNumericArray** t) { return MNumericArray_reverse(t, source.get()); },
      [&](MNumericArray** t) { return MNumericArray_rotate(t, source.get(), 10, ones.data()); },
      [&](MNumericArray** t) {
        return MTensor_pad(t, source.get(), source.get(), twos.data(), ones.data());
      }};
  for (size_t i = 0; i < operations.size(); ++i) {
    SCOPED_TRACE(testing::Message() << "operation " << i);
    MNumericArray* made = nullptr;
    const auto attempt = [&] { return operations[i](&made) == 0; };
    EXPECT_GT(fail_at_every_allocation(attempt,
                                       [&] {
                                         EXPECT_EQ(made, nullptr);
                                         expect_coded(source.get(), MNumericArrayTypeReal32, content);
                                       }),
              1);
    MNumericArray_delete(made);
  }
}

TEST_F(Structural, PositionsWalkRowMajor) {
  const indices dims = {2, 3, 2};
  indices position(3);
  InitializePosition(3, position.data());
  for (mint flat = 0; flat < 12; ++flat) {
    EXPECT_EQ(FlatIndex(3, dims.data(), position.data()), flat);
    for (const mint by : {-3, 0, 2, 5, 100}) {
      indices jumped = position;
      const mint to = flat + by;
      const bool inside = to >= 0 && to < 12;
      EXPECT_EQ(IncrementPositionBy(3, dims.data(), jumped.data(), by), inside);
      EXPECT_EQ(FlatIndex(3, dims.data(), jumped.data()), ((to % 12) + 12) % 12);
    }
    EXPECT_EQ(IncrementPosition(3, dims.data(), position.data()), flat < 11);
  }
  EXPECT_EQ(position, indices(3, 1));
  const indices hollow = {2, 0};
  EXPECT_EQ(IncrementPosition(2, hollow.data(), position.data()), 0);
  EXPECT_EQ(IncrementPosition(0, nullptr, nullptr), 0);
  EXPECT_EQ(IncrementPositionBy(0, nullptr, nullptr, 0), 0);
}

}  // namespace
