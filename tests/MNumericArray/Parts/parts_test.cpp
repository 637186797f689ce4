// Faults it is meant to catch: an index, stride or step that is wrong for one kind, rank or width; values broadcast along the wrong
// dimension; writes before a check failed; targets that are sources; index 0 and extreme indices let through to memory.
#include "velorim/parts.h"

#include <limits>
#include <memory>
#include <string>

#include "MNumericArray/Parts/list_part.h"
#include "support/index_coded.h"
#include "velorim/parallel.h"
#include "velorim/status.h"

namespace {

using namespace vlm_test;
using indices = std::vector<mint>;
constexpr mint least = std::numeric_limits<mint>::min(), greatest = std::numeric_limits<mint>::max();

class Parts : public ArrayTest {};

/// Specifications as compiled code passes them, built one by one.
class compiled_parts {
 public:
  compiled_parts& index(mint i) {
    entries_.push_back(std::make_unique<mint>(i));
    return add(PartKindIndex, entries_.back().get(), true, {i});
  }
  compiled_parts& list(const indices& positions) { return tensor(PartKindList, positions, positions); }
  compiled_parts& all(mint d) {
    indices positions;
    for (mint i = 1; i <= d; ++i) positions.push_back(i);
    return add(PartKindAll, nullptr, false, positions);
  }
  /// `selected` is what the span means.
  compiled_parts& span(const indices& span, const indices& selected) {
    return tensor(PartKindSpan, span, selected);
  }

  mint n() const { return static_cast<mint>(kinds_.size()); }
  const uint32_t* kinds() const { return kinds_.data(); }
  void* const* values() const { return values_.data(); }
  bool loses(size_t level) const { return lost_[level]; }
  /// Selected positions, one-based or negative as given.
  const indices& selected(size_t level) const { return selected_[level]; }

 private:
  compiled_parts& add(uint32_t kind, void* value, bool lost, const indices& selected) {
    kinds_.push_back(kind);
    values_.push_back(value);
    lost_.push_back(lost);
    selected_.push_back(selected);
    return *this;
  }
  compiled_parts& tensor(uint32_t kind, const indices& content, const indices& selected) {
    const mint length = static_cast<mint>(content.size());
    owners_.emplace_back(MTensor_newCopyFromDataArray(MTensorTypeInteger, 1, &length, content.data()));
    cells_.push_back(std::make_unique<MTensor*>(owners_.back().get()));
    return add(kind, cells_.back().get(), false, selected);
  }

  std::vector<uint32_t> kinds_;
  std::vector<void*> values_;
  std::vector<bool> lost_;
  std::vector<indices> selected_;
  std::vector<std::unique_ptr<mint>> entries_;
  std::vector<std::unique_ptr<MTensor*>> cells_;
  std::vector<array_ptr> owners_;
};

/// Random specifications for the first n dimensions; none of them empty unless asked for.
void add_random(compiled_parts& parts, random_cases& random, const indices& dims, mint n, bool repeats) {
  for (mint level = 0; level < n; ++level) {
    const mint d = dims[static_cast<size_t>(level)];
    const auto position = [&] {
      const mint p = random.in(1, d);
      return random.in(0, 1) ? p : p - d - 1;
    };
    switch (random.in(0, 3)) {
      case 0:
        parts.index(position());
        break;
      case 1: {
        indices list;
        for (mint k = repeats ? random.in(0, 5) : 1; k > 0; --k) list.push_back(position());
        parts.list(list);
        break;
      }
      case 2:
        parts.all(d);
        break;
      default: {
        mint start = random.in(1, d), end = random.in(1, d);
        const mint step = start <= end ? random.in(1, 3) : -random.in(1, 3);
        indices selected;
        for (mint p = start; step > 0 ? p <= end : p >= end; p += step) selected.push_back(p);
        const mint form = random.in(0, 2);
        if (form == 0 && start == 1 && step == 1) {
          parts.span({end}, selected);
        } else if (form == 1 && step == 1) {
          parts.span({start, end - d - 1}, selected);
        } else {
          parts.span({start, end, step, 0}, selected);
        }
      }
    }
  }
}

/// The index in the array of an index of the selection.
indices walked(const compiled_parts& parts, const indices& dims, const indices& selection) {
  indices from;
  size_t at = 0;
  for (size_t level = 0; level < dims.size(); ++level) {
    if (level >= static_cast<size_t>(parts.n())) {
      from.push_back(selection[at++]);
      continue;
    }
    const indices& selected = parts.selected(level);
    const mint p = parts.loses(level) ? selected[0] : selected[static_cast<size_t>(selection[at++])];
    from.push_back(p > 0 ? p - 1 : p + dims[level]);
  }
  return from;
}

indices selection_dims(const compiled_parts& parts, const indices& dims) {
  indices result;
  for (size_t level = 0; level < dims.size(); ++level) {
    if (level >= static_cast<size_t>(parts.n())) {
      result.push_back(dims[level]);
    } else if (!parts.loses(level)) {
      result.push_back(static_cast<mint>(parts.selected(level).size()));
    }
  }
  return result;
}

TEST_F(Parts, SelectionAgreesWithAnElementwiseModel) {
  random_cases random;
  SCOPED_TRACE(testing::Message() << "seed " << random.seed());
  for (int round = 0; round < 2000; ++round) {
    const int32_t type = random.type();
    const coded source = coded::numbered(random.shape(0, 1));
    compiled_parts parts;
    add_random(parts, random, source.dims, random.in(0, static_cast<mint>(source.dims.size())), true);
    const indices dims = selection_dims(parts, source.dims);
    const coded expected =
        make_coded(dims, [&](const indices& index) { return source.at(walked(parts, source.dims, index)); });
    const mint rank = static_cast<mint>(dims.size());
    expect_for_every_target(type, source, expected, [&](MNumericArray** target, MNumericArray* from) {
      return CompiledCollectedPart(target, from, rank, parts.n(), parts.kinds(), parts.values());
    });
    const array_ptr from = make_array(type, source);
    MNumericArray* made = nullptr;
    EXPECT_EQ(CompiledCollectedPart(&made, from.get(), rank + 1, parts.n(), parts.kinds(), parts.values()),
              LibraryNumericalError);
    EXPECT_EQ(made, nullptr);
  }
}

TEST_F(Parts, AssignmentAgreesWithAnElementwiseModel) {
  random_cases random;
  SCOPED_TRACE(testing::Message() << "seed " << random.seed());
  for (int round = 0; round < 2000; ++round) {
    const int32_t type = random.type();
    const coded content = coded::numbered(random.shape(0, 1));
    compiled_parts parts;
    add_random(parts, random, content.dims, random.in(0, static_cast<mint>(content.dims.size())), false);
    const indices dims = selection_dims(parts, content.dims);
    // The value has the selection's shape, or only its part behind some of the specified levels; equal neighbours of the dimension left out
    // would match it, so those are not left out.
    const size_t behind = content.dims.size() - static_cast<size_t>(parts.n());
    const size_t specified = dims.size() - behind;
    size_t left_out = static_cast<size_t>(random.in(0, static_cast<mint>(specified)));
    indices value_dims(dims.begin() + static_cast<mint>(left_out), dims.end());
    for (size_t i = 0; i < left_out && !value_dims.empty(); ++i) {
      if (specified == left_out || dims[i] == value_dims[0]) {
        if (specified == left_out && behind == 0) break;  // a scalar matches nothing
        left_out = 0;
        value_dims = dims;
      }
    }
    const coded value = coded::numbered(value_dims, 7000);
    coded expected = content;
    make_coded(dims, [&](const indices& index) {
      const indices in_value(index.begin() + static_cast<mint>(left_out), index.end());
      expected.codes[static_cast<size_t>(content.flat(walked(parts, content.dims, index)))] =
          value.at(in_value);
      return mint{0};
    });
    const array_ptr target = make_array(type, content), source = make_array(type, value);
    ASSERT_EQ(
        CompiledCollectedSetPart(source.get(), target.get(), 0, parts.n(), parts.kinds(), parts.values()), 0)
        << testing::PrintToString(content.dims) << ' ' << testing::PrintToString(value_dims);
    expect_coded(target.get(), type, expected);
    expect_coded(source.get(), type, value);
  }
}

TEST_F(Parts, ValuesAreRepeatedWhereTheyHaveNoMatchingDimension) {
  const auto assigned = [](const coded& value, const compiled_parts& parts) {
    const array_ptr target = make_array(9, coded::numbered({3, 4})), source = make_array(9, value);
    EXPECT_EQ(MNumericArray_setParts(target.get(), source.get(), 0, parts.n(), parts.kinds(), parts.values()),
              0);
    mint code[12];
    const coded candidates = coded::numbered({40});
    for (int i = 0; i < 12; ++i) {
      code[i] = -1;
      for (const mint c : candidates.codes) {
        if (static_cast<uint8_t*>(target->data)[4 * i] == byte_of_code(c, 0) &&
            static_cast<uint8_t*>(target->data)[4 * i + 1] == byte_of_code(c, 1))
          code[i] = c;
      }
    }
    return indices(code, code + 12);
  };
  EXPECT_EQ(assigned({{4}, {20, 21, 22, 23}}, compiled_parts().all(3)),
            (indices{20, 21, 22, 23, 20, 21, 22, 23, 20, 21, 22, 23}));
  EXPECT_EQ(assigned({{3}, {20, 21, 22}}, compiled_parts().all(3).index(2)),
            (indices{0, 20, 2, 3, 4, 21, 6, 7, 8, 22, 10, 11}));
  EXPECT_EQ(assigned({{}, {30}}, compiled_parts().list({3, 1}).index(-1)),
            (indices{0, 1, 2, 30, 4, 5, 6, 7, 8, 9, 10, 30}));
}

TEST_F(Parts, ATargetMayBeTheValue) {
  const array_ptr array = make_array(12, coded::numbered({5}));
  const compiled_parts reversed = std::move(compiled_parts().span({5, 1, -1}, {}));
  ASSERT_EQ(CompiledCollectedSetPart(array.get(), array.get(), 1, 1, reversed.kinds(), reversed.values()), 0);
  expect_coded(array.get(), 12, {{5}, {4, 3, 2, 1, 0}});
}

struct Report {
  PartCheckError error{};
  std::vector<std::string> tags;
};
Report last_report;
void note(const char* tag, PartCheckError* error) {
  last_report.tags.emplace_back(tag);
  last_report.error = *error;
}

TEST_F(Parts, ChecksSayWhatIsWrong) {
  const indices dims = {3, 4};
  mint rank = 0;
  const auto check = [&](std::vector<PartSpec> specs) {
    last_report = {};
    PartCheckError error{0, 0, note};
    return part_check_tensor_dims_impl(2, dims.data(), static_cast<mint>(specs.size()), specs.data(), &rank,
                                       &error);
  };
  std::vector<std::unique_ptr<indices>> storage;
  const auto spec = [&](uint32_t kind, const indices& entries) {
    storage.push_back(std::make_unique<indices>(entries));
    return PartSpec{kind, static_cast<mint>(entries.size()), storage.back()->data(), 0, 0};
  };
  const PartSpec all = {PartKindAll, 0, nullptr, 0, 0};
  EXPECT_EQ(check({spec(PartKindIndex, {-1}), all}), 1);
  EXPECT_EQ(rank, 1);
  EXPECT_EQ(storage.back()->front(), 3);
  for (const mint bad : {mint{4}, mint{-4}, least, greatest}) {
    EXPECT_EQ(check({spec(PartKindIndex, {bad})}), 0) << bad;
    EXPECT_EQ(last_report.tags, std::vector<std::string>{"partw"});
    EXPECT_EQ(last_report.error.first, bad);
  }
  EXPECT_EQ(check({all, spec(PartKindList, {})}), 1);
  EXPECT_EQ(rank, -1);
  EXPECT_EQ(check({all, all, spec(PartKindIndex, {1})}), 0);
  EXPECT_EQ(last_report.tags, std::vector<std::string>{"partd"});
  EXPECT_EQ(check({all, all, all}), 1);
  EXPECT_EQ(rank, -2);
  EXPECT_EQ(check({spec(PartKindSpan, {3, 1, 1, 0})}), 0);
  EXPECT_EQ(last_report.tags, std::vector<std::string>{"take"});
  EXPECT_EQ(last_report.error.second, 1);
  EXPECT_EQ(check({spec(PartKindSpan, {2, 1, 1, 0})}), 1);
  EXPECT_EQ(rank, -1);
  EXPECT_EQ(check({all, spec(PartKindIndex, {0})}), 1);
  EXPECT_EQ(rank, -1);
  EXPECT_EQ(check({spec(PartKindIndex, {0})}), 1);
  EXPECT_EQ(rank, -2);
  EXPECT_EQ(check({PartSpec{9, 1, nullptr, 0, 0}}), 0);
  const mint hollow[] = {0};
  PartSpec one = all;
  EXPECT_EQ(part_check_tensor_dims_impl(1, hollow, 1, &one, &rank, nullptr), 0);

  const array_ptr target = make_array(7, coded::numbered({3, 4})),
                  scalar = make_array(7, coded::numbered({})), real = make_array(10, coded::numbered({}));
  const auto set_check = [&](const array_ptr& value, std::vector<PartSpec> specs) {
    return setpart_check_tensor_impl(target.get(), value.get(), static_cast<mint>(specs.size()), specs.data(),
                                     nullptr);
  };
  EXPECT_EQ(set_check(scalar, {all, all}), 1);
  EXPECT_EQ(set_check(scalar, {all}), 2);
  EXPECT_EQ(set_check(real, {all, all}), 2);
  EXPECT_EQ(set_check(scalar, {all, spec(PartKindIndex, {0})}), 2);
  EXPECT_EQ(set_check(scalar, {all, spec(PartKindIndex, {-6})}), 0);
  EXPECT_EQ(set_check(scalar, {all, all, all}), 0);
}

TEST_F(Parts, MalformedPartsAreRefused) {
  const array_ptr source = make_array(7, coded::numbered({3, 4}));
  const coded untouched = coded::numbered({3, 4});
  const auto select = [&](const compiled_parts& parts, mint rank) {
    MNumericArray* made = nullptr;
    const int32_t status =
        CompiledCollectedPart(&made, source.get(), rank, parts.n(), parts.kinds(), parts.values());
    MNumericArray_delete(made);
    return status;
  };
  EXPECT_EQ(select(compiled_parts().index(0), 1), LibraryNumericalError);
  EXPECT_EQ(select(compiled_parts().index(1).index(0), 0), LibraryNumericalError);
  EXPECT_EQ(select(compiled_parts().index(1).list({0}), 1), LibraryNumericalError);
  EXPECT_EQ(select(compiled_parts().span({1, 2, 3, 0, 0}, {}), 2), LibraryNumericalError);
  EXPECT_EQ(select(compiled_parts().span({}, {}), 2), LibraryNumericalError);
  EXPECT_EQ(select(compiled_parts().list({}).index(1), 1), 0) << "empty";
  EXPECT_EQ(select(compiled_parts().list({}), -1), LibraryNumericalError);
  EXPECT_EQ(select(compiled_parts().all(3).all(4).all(1), 3), LibraryNumericalError);
  const uint32_t kind = 7, list = PartKindList;
  MTensor* real = nullptr;
  void* value = &real;
  MNumericArray* made = nullptr;
  EXPECT_EQ(CompiledCollectedPart(&made, source.get(), 1, 1, &kind, &value), LibraryNumericalError);
  EXPECT_EQ(CompiledCollectedPart(&made, source.get(), 1, 1, &list, &value), LibraryNumericalError);
  EXPECT_EQ(CompiledCollectedPart(&made, nullptr, 1, 1, &kind, &value), ArrayStatusNullArgument);
  const array_ptr scalar = make_array(7, coded::numbered({}));
  const compiled_parts head = std::move(compiled_parts().index(0).index(1));
  EXPECT_EQ(MNumericArray_setParts(source.get(), scalar.get(), 0, 2, head.kinds(), head.values()), 1);
  expect_coded(source.get(), 7, untouched);
  MNumericArray* result = source.get();
  EXPECT_EQ(MNumericArray_getParts(nullptr, &result, source.get(), 0, 2, head.kinds(), head.values()), 1);
  EXPECT_EQ(result, source.get());
}

TEST_F(Parts, FailingStorageIsReported) {
  const coded content = coded::numbered({2, 1, 2, 1, 2, 1, 2, 1, 2, 1});
  const array_ptr source = make_array(4, content);
  compiled_parts parts;
  for (int i = 0; i < 5; ++i) parts.list({2, 1}).all(1);
  MNumericArray* made = nullptr;
  EXPECT_GT(fail_at_every_allocation(
                [&] {
                  return CompiledCollectedPart(&made, source.get(), 10, 10, parts.kinds(), parts.values()) ==
                         0;
                },
                [&] { MNumericArray_delete(std::exchange(made, nullptr)); }),
            3);
  EXPECT_GT(fail_at_every_allocation(
                [&] {
                  return CompiledCollectedSetPart(made, source.get(), 10, 10, parts.kinds(),
                                                  parts.values()) == 0;
                },
                [&] { expect_coded(source.get(), 4, content); }),
            1);
  expect_coded(source.get(), 4, content);  // the reversal twice
  const mint count = 2, rows[] = {2, 2};
  const array_ptr list(MTensor_newCopyFromDataArray(MTensorTypeInteger, 1, &count, rows));
  MNumericArray_delete(std::exchange(made, nullptr));
  EXPECT_GT(
      fail_at_every_allocation([&] { return MNumericArray_listPart(&made, source.get(), list.get()) == 0; },
                               [&] { EXPECT_EQ(made, nullptr); }),
      1);
  MNumericArray_delete(made);
}

TEST_F(Parts, ListsOfRowsOnOneThreadAndTwo) {
  random_cases random;
  SCOPED_TRACE(testing::Message() << "seed " << random.seed());
  for (const mint threads : {1, 2}) {
    const mint before = setParallelThreadNumber(threads);
    for (int round = 0; round < 60; ++round) {
      const int32_t type = random.type();
      const mint rows = random.in(1, 9), row = random.in(0, 2);
      const coded source = coded::numbered({rows, row});
      indices list(static_cast<size_t>(round % 10 == 0 ? 140000 : random.in(0, 20)));
      for (mint& position : list) position = random.in(1, rows);
      const mint count = static_cast<mint>(list.size());
      const array_ptr positions(MTensor_newCopyFromDataArray(MTensorTypeInteger, 1, &count, list.data()));
      const coded expected = make_coded({count, row}, [&](const indices& index) {
        return source.at({list[static_cast<size_t>(index[0])] - 1, index[1]});
      });
      expect_for_every_target(type, source, expected, [&](MNumericArray** target, MNumericArray* from) {
        return MNumericArray_listPart(target, from, positions.get());
      });
      if (count == 0) continue;
      static_cast<mint*>(positions->data)[count - 1] = round % 2 ? 0 : rows + 1;
      const array_ptr from = make_array(type, source);
      MNumericArray* made = nullptr;
      EXPECT_EQ(MTensor_listPart(&made, from.get(), positions.get()), LibraryDimensionError);
      EXPECT_EQ(made, nullptr);
    }
    restoreParallelThreadNumber(before);
  }
}

TEST_F(Parts, ElementsOfCompiledCode) {
  const coded content = coded::numbered({2, 3, 2});
  const coded block = make_coded({2}, [&](const indices& index) { return content.at({1, 1, index[0]}); });
  expect_for_every_target(3, content, block, [](MNumericArray** target, MNumericArray* from) {
    return CompiledGetTensorElement(target, from, 2, 4);
  });
  const array_ptr source = make_array(3, content);
  MNumericArray* made = nullptr;
  EXPECT_EQ(CompiledGetTensorElement(&made, source.get(), 4, 0), LibraryRankError);
  EXPECT_EQ(CompiledGetTensorElement(&made, source.get(), 2, 6), LibraryDimensionError);
  EXPECT_GT(fail_at_every_allocation([&] { return CompiledGetTensorElement(&made, source.get(), 0, 0) == 0; },
                                     [] {}),
            1);
  MNumericArray_delete(made);
}

}  // namespace
