// Every pair of types, every method, every element of interest, against the exact model, and by every road. Faults it is meant to
// catch: a range edge off by one neighbour; a limit that the source type cannot hold; NaN and infinity; a tail that takes another
// way than its registers; a refused element that spoils its neighbours; a pair or a method that goes to the wrong rule.
#include <gtest/gtest.h>

#include <algorithm>

#include "samples.h"
#include "support/array_fixture.h"
#include "velorim/velorim.h"

namespace {

using namespace conversion_model;
using vlm_test::array_ptr;

constexpr char untouched = 0x5a;

double default_tolerance(int32_t method) { return method <= 2 || method >= 9 ? 0.0 : 1.0; }

template <class Body> void for_all_pairs(Body&& body) {
  for (int32_t s = 1; s <= 13; ++s) {
    for (int32_t t = 1; t <= 13; ++t) {
      SCOPED_TRACE(testing::Message() << format_of(s).name << " to " << format_of(t).name);
      body(s, t);
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

size_t element_size(int32_t type) {
  return static_cast<size_t>(format_of(type).bytes) * static_cast<size_t>(parts_of(format_of(type)));
}

bool is_untouched(const char* first, size_t bytes) {
  return std::all_of(first, first + bytes, [](char c) { return c == untouched; });
}

/// What one conversion of one element left, against the model.
void expect_element(int32_t t, const element_result& expected, int32_t status, const char* target) {
  ASSERT_EQ(status, expected.refused ? ArrayStatusNotRepresentable : ArrayStatusOk);
  if (expected.stored) {
    ASSERT_TRUE(holds_element(t, target, expected));
  } else {
    ASSERT_TRUE(is_untouched(target, element_size(t)));
  }
  ASSERT_TRUE(is_untouched(target + element_size(t), 16));
}

std::string shown(int32_t type, const char* element) {
  const format& f = format_of(type);
  std::string text;
  for (int p = 0; p < parts_of(f); ++p) {
    char part[80];
    mpfr_snprintf(part, sizeof part, " %.20Rg", decode(f, element + p * f.bytes).get());
    text += part;
  }
  return text;
}

class ConversionGrid : public vlm_test::ArrayTest {};

TEST_F(ConversionGrid, EveryElementAlone) {
  int64_t accepted = 0, refused = 0;
  for_all_pairs([&](int32_t s, int32_t t) {
    const samples& from = samples_of(s);
    ASSERT_GT(from.count(), 10u);
    for (int32_t method = 1; method <= 10; ++method) {
      for (size_t i = 0; i < from.count(); ++i) {
        SCOPED_TRACE(testing::Message() << MNumericArrayConvertMethodString(method) << shown(s, from.at(i)));
        const element_result expected = convert(s, t, method, default_tolerance(method), from.at(i));
        alignas(16) char target[48];
        std::fill(std::begin(target), std::end(target), untouched);
        const int32_t status = MNumericArrayData_convert(target, t, from.at(i), s, 1, method);
        ASSERT_NO_FATAL_FAILURE(expect_element(t, expected, status, target));
        ++(expected.refused ? refused : accepted);
      }
    }
  });
  EXPECT_GT(accepted, 100000);
  EXPECT_GT(refused, 50000);
}

TEST_F(ConversionGrid, OtherTolerances) {
  for_all_pairs([&](int32_t s, int32_t t) {
    if (is_integer(format_of(s))) return;
    const samples& from = samples_of(s);
    for (const double tolerance : {-1.0, 0.0, 0.5, 3.0, 10.25, 11.0, 23.5, 24.0, 52.0, 53.0, 54.0}) {
      for (int32_t method = 1; method <= 8; ++method) {
        MNumericArrayConvertData record;
        MNumericArrayConvertData_init(&record, method);
        record.tolerance = tolerance;
        // Each call converts one element at an offset into the middle of three.
        for (size_t i = static_cast<size_t>(method); i < from.count(); i += 23) {
          SCOPED_TRACE(testing::Message() << method << " tolerance " << tolerance << shown(s, from.at(i)));
          const mint one = 1;
          const array_ptr source(MNumericArray_newAllocatedCommon(s, 1, &one, FailFatal));
          std::memcpy(source->data, from.at(i), from.bytes);
          const mint three = 3;
          array_ptr target(MNumericArray_newAllocatedCommon(t, 1, &three, FailFatal));
          char* const data = static_cast<char*>(target->data);
          std::fill(data, data + 3 * element_size(t), untouched);
          record.targetOffset = 1;
          const int32_t status = MNumericArray_fillFromMTensor(target.get(), source.get(), &record);
          const element_result expected = convert(s, t, method, tolerance, from.at(i));
          ASSERT_EQ(status, expected.refused ? ArrayStatusNotRepresentable : ArrayStatusOk);
          if (expected.stored) {
            ASSERT_TRUE(holds_element(t, data + element_size(t), expected));
          } else {
            ASSERT_TRUE(is_untouched(data + element_size(t), element_size(t)));
          }
          ASSERT_TRUE(is_untouched(data, element_size(t)) &&
                      is_untouched(data + 2 * element_size(t), element_size(t)));
        }
      }
    }
  });
}

/// A long run of accepted elements, the results of each alone, and an element that is refused, if there is one.
struct long_run {
  std::vector<char> source, target;
  const char* refused = nullptr;
  bool refused_is_stored = false;
};

long_run make_run(int32_t s, int32_t t, int32_t method, size_t length) {
  const samples& from = samples_of(s);
  long_run run;
  std::vector<char> results;
  std::vector<const char*> accepted;
  for (size_t i = 0; i < from.count(); ++i) {
    alignas(16) char one[16];
    if (MNumericArrayData_convert(one, t, from.at(i), s, 1, method) == ArrayStatusOk) {
      accepted.push_back(from.at(i));
      results.insert(results.end(), one, one + element_size(t));
    } else if (run.refused == nullptr || i % 5 == 0) {
      run.refused = from.at(i);
      run.refused_is_stored = convert(s, t, method, default_tolerance(method), from.at(i)).stored;
    }
  }
  for (size_t i = 0; i < length && !accepted.empty(); ++i) {
    const size_t k = i * 31 % accepted.size();
    run.source.insert(run.source.end(), accepted[k], accepted[k] + from.bytes);
    run.target.insert(run.target.end(), &results[k * element_size(t)],
                      &results[k * element_size(t)] + element_size(t));
  }
  return run;
}

/// Lays elements out at a step, the first at an offset from the end that is walked away from.
std::vector<char> spread(const std::vector<char>& elements, size_t bytes, mint step) {
  const mint count = static_cast<mint>(elements.size() / bytes), size = std::abs(step);
  std::vector<char> laid(static_cast<size_t>((count * size + 1) * static_cast<mint>(bytes)), untouched);
  for (mint i = 0; i < count; ++i) {
    const mint at = step > 0 ? i * size : (count - 1 - i) * size;
    std::memcpy(&laid[static_cast<size_t>(at) * bytes], &elements[static_cast<size_t>(i) * bytes], bytes);
  }
  return laid;
}

TEST_F(ConversionGrid, RunsStepsAndRefusedElements) {
  constexpr size_t length = 1101;
  const mint count = static_cast<mint>(length);
  int refused_runs = 0;
  for_all_pairs([&](int32_t s, int32_t t) {
    const size_t from = element_size(s), to = element_size(t);
    for (int32_t method = 1; method <= 10; ++method) {
      const long_run run = make_run(s, t, method, length);
      if (run.source.empty()) continue;
      SCOPED_TRACE(testing::Message() << MNumericArrayConvertMethodString(method));

      for (const auto& [source_step, target_step] :
           {std::pair<mint, mint>{1, 1}, {3, 1}, {-2, 1}, {1, 2}, {2, -3}, {1, 0}}) {
        SCOPED_TRACE(testing::Message() << "steps " << source_step << " " << target_step);
        const std::vector<char> source = spread(run.source, from, source_step);
        std::vector<char> target(length * 3 * to + to, untouched);
        MNumericArrayConvertData record;
        MNumericArrayConvertData_init(&record, method);
        record.sourceStride = source_step;
        record.targetStride = target_step;
        record.sourceOffset = source_step < 0 ? (count - 1) * -source_step : 0;
        record.targetOffset = target_step < 0 ? (count - 1) * -target_step : 0;
        // Arrays around the bare memory carry the record in.
        MNumericArray source_array{}, target_array{};
        MNumericArray_initialize(&source_array);
        MNumericArray_initialize(&target_array);
        source_array.elementType = static_cast<uint32_t>(s);
        source_array.flattenedLength = count;
        source_array.data = const_cast<char*>(source.data());
        target_array.elementType = static_cast<uint32_t>(t);
        target_array.flattenedLength = target_step == 0 ? count : 3 * count;
        target_array.data = target.data();
        MNumericArray* into = &target_array;
        const mint room =
            target_step == 0 ? 0 : (target_array.flattenedLength - record.targetOffset) / target_step;
        const mint steps = (count - record.sourceOffset) / source_step;
        const int32_t status = MNumericArray_convert_common(&into, &source_array, t, &record);
        if (room < steps) {
          ASSERT_EQ(status, ArrayStatusNotRepresentable);
          ASSERT_TRUE(is_untouched(target.data(), target.size()));
          continue;
        }
        ASSERT_EQ(status, ArrayStatusOk);
        if (target_step != 0) {
          std::vector<char> expected = spread(run.target, to, target_step);
          expected.resize(target.size(), untouched);
          ASSERT_EQ(target, expected);
        }
      }

      if (run.refused == nullptr) continue;
      ++refused_runs;
      for (const size_t at : {size_t{0}, size_t{1}, size_t{511}, size_t{512}, size_t{700}, length - 1}) {
        SCOPED_TRACE(testing::Message() << "refused at " << at << shown(s, run.refused));
        std::vector<char> source = run.source, target(length * to, untouched);
        std::memcpy(&source[at * from], run.refused, from);
        if (at + 5 < length) std::memcpy(&source[(at + 5) * from], run.refused, from);
        ASSERT_EQ(MNumericArrayData_convert(target.data(), t, source.data(), s, count, method),
                  ArrayStatusNotRepresentable);
        ASSERT_TRUE(
            std::equal(target.begin(), target.begin() + static_cast<mint>(at * to), run.target.begin()));
        const size_t behind = at + run.refused_is_stored;
        ASSERT_TRUE(is_untouched(&target[at * to] + run.refused_is_stored * to, (length - behind) * to));
        if (run.refused_is_stored) {
          ASSERT_FALSE(is_untouched(&target[at * to], to));
        }
      }
    }
  });
  EXPECT_GT(refused_runs, 500);
}

TEST_F(ConversionGrid, SerialAndParallelAgree) {
  const mint before = setParallelThreadNumber(4);
  for_all_pairs([&](int32_t s, int32_t t) {
    const mint threshold = 131072 / static_cast<mint>(element_size(t));
    for (const int32_t method : {2, 4, 7}) {
      const long_run run = make_run(s, t, method, static_cast<size_t>(threshold) + 3);
      if (run.source.empty()) continue;
      for (const mint count : {threshold - 1, threshold, threshold + 3}) {
        std::vector<char> target(run.target.size(), untouched);
        ASSERT_EQ(MNumericArrayData_convert(target.data(), t, run.source.data(), s, count, method), 0);
        const mint bytes = count * static_cast<mint>(element_size(t));
        ASSERT_TRUE(std::equal(target.begin(), target.begin() + bytes, run.target.begin()));
        ASSERT_TRUE(is_untouched(target.data() + bytes, target.size() - static_cast<size_t>(bytes)));
      }
      if (run.refused == nullptr) continue;
      std::vector<char> source = run.source, target(run.target.size(), untouched);
      for (const mint at : {mint{0}, threshold / 2, threshold}) {
        std::memcpy(&source[static_cast<size_t>(at) * element_size(s)], run.refused, element_size(s));
        ASSERT_EQ(MNumericArrayData_convert(target.data(), t, source.data(), s, threshold + 3, method),
                  ArrayStatusNotRepresentable);
      }
    }
    // A pass that only asks: all on one element.
    const long_run run = make_run(s, t, 4, static_cast<size_t>(threshold));
    if (run.source.empty()) return;
    alignas(16) char one[48];
    std::fill(std::begin(one), std::end(one), untouched);
    const double tolerance = 54.0;
    std::vector<char> source = run.source;
    const int32_t status =
        MNumericArray_coerceDataArray(one, t, 1, 0, source.data(), s, 0, 1, threshold, tolerance);
    bool all = true;
    for (size_t i = 0; i < samples_of(s).count() && i < static_cast<size_t>(threshold); ++i) {
      all = all && !convert(s, t, 3, tolerance, &source[i * element_size(s)]).refused;
    }
    ASSERT_EQ(status == 0, all);
    ASSERT_TRUE(is_untouched(one, element_size(t)) && is_untouched(one + 2 * element_size(t), 16));
    if (status == 0) {
      ASSERT_TRUE(holds_element(t, one + element_size(t),
                                convert(s, t, 3, tolerance, &source[source.size() - element_size(s)])));
    }
  });
  restoreParallelThreadNumber(before);
}

/// The element entries of compiled code, as calls of one shape.
struct entry {
  int32_t source, target;
  int32_t (*call)(char* result, const MNumericArrayConvertData* record, const char* value);
};
template <class V> V read(const char* value) {
  V v;
  std::memcpy(&v, value, sizeof v);
  return v;
}
template <int32_t Target, class Result, auto Convert> constexpr entry from_mint() {
  return {7, Target, [](char* r, const MNumericArrayConvertData* d, const char* v) {
            return Convert(reinterpret_cast<Result*>(r), read<mint>(v), d);
          }};
}
template <int32_t Target, class Result, auto Convert> constexpr entry from_mreal() {
  return {10, Target, [](char* r, const MNumericArrayConvertData* d, const char* v) {
            return Convert(reinterpret_cast<Result*>(r), d, read<mreal>(v));
          }};
}
template <int32_t Target, class Result, auto Convert> constexpr entry from_mcomplex() {
  return {12, Target, [](char* r, const MNumericArrayConvertData* d, const char* v) {
            const mcomplex z = read<mcomplex>(v);
            return Convert(reinterpret_cast<Result*>(r), d, z.re, z.im);
          }};
}
template <int32_t Target> constexpr entry to_integer() {
  return {10, Target, [](char* r, const MNumericArrayConvertData* d, const char* v) {
            const size_t bytes = element_size(Target);
            int64_t wide = 0;
            int32_t status;
            if constexpr (Target % 2 == 1) {
              status = convert_mreal_to_signed_integer(&wide, Target, d, read<mreal>(v));
            } else {
              uint64_t unsigned_wide = 0;
              status = convert_mreal_to_unsigned_integer(&unsigned_wide, Target, d, read<mreal>(v));
              wide = static_cast<int64_t>(unsigned_wide);
            }
            if (status == 0) std::memcpy(r, &wide, bytes);
            // The rest of the 64 bits are copies of the sign, or 0.
            const int64_t rest = bytes == 8 ? 0 : wide >> (8 * bytes);
            EXPECT_EQ(rest, bytes < 8 && Target % 2 == 1 && wide < 0 ? -1 : 0);
            return status;
          }};
}

TEST_F(ConversionGrid, ElementEntries) {
  const entry entries[] = {to_integer<1>(),
                           to_integer<2>(),
                           to_integer<3>(),
                           to_integer<4>(),
                           to_integer<5>(),
                           to_integer<6>(),
                           to_integer<7>(),
                           to_integer<8>(),
                           from_mint<13, uint16_t, convert_mint_to_real16>(),
                           from_mint<9, float, convert_mint_to_real32>(),
                           from_mint<10, mreal, convert_mint_to_real64>(),
                           from_mint<11, float, convert_mint_to_complexreal32>(),
                           from_mint<12, mcomplex, convert_mint_to_complexreal64>(),
                           from_mreal<13, uint16_t, convert_mreal_to_real16>(),
                           from_mreal<9, float, convert_mreal_to_real32>(),
                           from_mreal<10, mreal, convert_mreal_to_real64>(),
                           from_mreal<11, float, convert_mreal_to_complexreal32>(),
                           from_mreal<12, mcomplex, convert_mreal_to_complexreal64>(),
                           from_mcomplex<13, uint16_t, convert_mcomplex_to_real16>(),
                           from_mcomplex<9, float, convert_mcomplex_to_real32>(),
                           from_mcomplex<10, mreal, convert_mcomplex_to_real64>(),
                           from_mcomplex<11, float, convert_mcomplex_to_complexreal32>(),
                           from_mcomplex<12, mcomplex, convert_mcomplex_to_complexreal64>()};
  for (const entry& e : entries) {
    const samples& from = samples_of(e.source);
    MNumericArrayConvertData record;
    for (int32_t method = 1; method <= 10; ++method) {
      MNumericArrayConvertData_init(&record, method);
      record.sourceOffset = record.targetOffset = 1000;  // looked at by nobody
      for (size_t i = 0; i < from.count(); ++i) {
        SCOPED_TRACE(testing::Message()
                     << e.source << " to " << e.target << " " << MNumericArrayConvertMethodString(method)
                     << shown(e.source, from.at(i)));
        alignas(16) char target[48];
        std::fill(std::begin(target), std::end(target), untouched);
        const int32_t status = e.call(target, &record, from.at(i));
        ASSERT_NO_FATAL_FAILURE(expect_element(
            e.target, convert(e.source, e.target, method, record.tolerance, from.at(i)), status, target));
      }
    }
    alignas(16) char target[16];
    for (const int32_t method : {-1, 0, 2, 8, 10, 11}) {
      MNumericArrayConvertData_init(&record, 1);
      record.method = method;
      EXPECT_EQ(e.call(target, &record, from.at(0)), ArrayStatusBadMethod);
    }
  }
  MNumericArrayConvertData record;
  MNumericArrayConvertData_init(&record, 1);
  int64_t wide = 7;
  EXPECT_EQ(convert_mreal_to_signed_integer(&wide, 2, &record, 1.0), ArrayStatusBadType);
  EXPECT_EQ(convert_mreal_to_signed_integer(&wide, 9, &record, 1.0), ArrayStatusBadType);
  EXPECT_EQ(convert_mreal_to_signed_integer(nullptr, 7, &record, 1.0), ArrayStatusNullArgument);
  EXPECT_EQ(convert_mreal_to_signed_integer(&wide, 7, nullptr, 1.0), ArrayStatusNullArgument);
  uint64_t unsigned_wide = 7;
  EXPECT_EQ(convert_mreal_to_unsigned_integer(&unsigned_wide, 3, &record, 1.0), ArrayStatusBadType);
  EXPECT_EQ(wide, 7);
}

}  // namespace
