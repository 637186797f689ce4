// Choice of the run, shape of the loop, serial or on the team.
#include "MNumericArray/Convert/element_core.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <utility>

#include "Arithmetic/Parallel/team.h"
#include "Includes/element_types.h"
#include "MNumericArray/Convert/pair_table.h"
#include "MNumericArray/Copy/element_copy.h"
#include "velorim/status.h"

namespace vlm::conversion {
namespace {

/// The rows by source type code less 1.
constexpr auto run_table = []<int32_t... I>(std::integer_sequence<int32_t, I...>) {
  return std::array<const run_row*, element_type_count>{&runs_from<element_t<I + 1>>::row...};
}
(std::make_integer_sequence<int32_t, element_type_count>{});

element_run* choose_run(int32_t source_type, int32_t target_type, const MNumericArrayConvertData& record) {
  const run_row& row = *run_table[static_cast<size_t>(source_type - 1)];
  return row[static_cast<size_t>(target_type - 1)](record);
}

/// One side of a conversion.
template <class Byte> struct elements {
  Byte* first;
  mint stride;
  mint bytes;

  Byte* at(mint i) const { return first + i * stride * bytes; }
};

struct work {
  element_run* run;
  elements<char> target;
  elements<const char> source;
  const MNumericArrayConvertData* record;
};

/// Room for a block of any type.
struct alignas(64) element_block {
  char data[block_length * 16];
};

/// Steps other than 1: a block is gathered, converted side by side and scattered. Of a target with step 0 only the last element that
/// is written is seen.
bool convert_stepped(const work& w, mint first, mint count, bool writes) {
  element_block gathered, converted;
  for (mint done = 0; done < count; done += block_length) {
    const mint length = std::min(block_length, count - done);
    const char* source = w.source.at(first + done);
    if (w.source.stride != 1) {
      copy_strided(gathered.data, 1, source, w.source.stride, length, w.source.bytes);
      source = gathered.data;
    }
    const bool direct = w.target.stride == 1;
    char* const target = direct ? w.target.at(first + done) : converted.data;
    const auto [accepted, written] = w.run(*w.record, target, source, length);
    if (w.target.stride == 0) {
      if (writes && written > 0) {
        copy_run(w.target.first, converted.data + (written - 1) * w.target.bytes, 1, w.target.bytes);
      }
    } else if (!direct) {
      copy_strided(w.target.at(first + done), w.target.stride, converted.data, 1, written, w.target.bytes);
    }
    if (accepted < length) return false;
  }
  return true;
}

/// Whether all of the elements from first on are accepted.
bool convert_span(const work& w, mint first, mint count, bool writes) {
  if (w.source.stride == 1 && w.target.stride == 1) {
    return w.run(*w.record, w.target.at(first), w.source.at(first), count).accepted == count;
  }
  return convert_stepped(w, first, count, writes);
}

/// The chunks share a status. One that begins after a failure is known is skipped.
int32_t convert_on_team(const work& w, mint count, mint chunk) {
  std::atomic<int32_t> status{ArrayStatusOk};
  parallel::for_chunks(count, chunk, [&](mint first, mint length) {
    if (status.load(std::memory_order_relaxed) != ArrayStatusOk) return;
    // Where all results land on one element, the last chunk alone writes it.
    const bool writes = w.target.stride != 0 || first + length == count;
    if (convert_span(w, first, length, writes)) return;
#pragma omp critical(mna_convert_error)
    if (status.load(std::memory_order_relaxed) == ArrayStatusOk) {
      status.store(ArrayStatusNotRepresentable, std::memory_order_relaxed);
    }
  });
  return status.load(std::memory_order_relaxed);
}

int32_t refusal_of_arguments(const void* target, int32_t target_type, const void* source, int32_t source_type,
                             const MNumericArrayConvertData& record) {
  if (!is_element_type(source_type) || !is_element_type(target_type)) return ArrayStatusBadType;
  if (target == nullptr || source == nullptr) return ArrayStatusNullArgument;
  return source_type != target_type && !is_base_method(record.method) ? ArrayStatusBadMethod : ArrayStatusOk;
}

}  // namespace

int32_t convert_elements(void* target, int32_t target_type, const void* source, int32_t source_type,
                         mint count, const MNumericArrayConvertData& record) {
  if (count < 1) return ArrayStatusOk;
  if (const int32_t status = refusal_of_arguments(target, target_type, source, source_type, record))
    return status;

  const auto target_bytes = static_cast<mint>(element_bytes(target_type));
  const auto source_bytes = static_cast<mint>(element_bytes(source_type));
  char* const to = static_cast<char*>(target) + record.targetOffset * target_bytes;
  const char* const from = static_cast<const char*>(source) + record.sourceOffset * source_bytes;

  element_run* const run = choose_run(source_type, target_type, record);
  if (run == nullptr) {
    copy_strided(to, record.targetStride, from, record.sourceStride, count, target_bytes);
    return ArrayStatusOk;
  }
  const work w{
      run, {to, record.targetStride, target_bytes}, {from, record.sourceStride, source_bytes}, &record};
  const parallel::length_pair lengths = parallel::byte_lengths(target_bytes);
  if (parallel::use_team(count, lengths.threshold)) return convert_on_team(w, count, lengths.chunk);
  return convert_span(w, 0, count, true) ? ArrayStatusOk : ArrayStatusNotRepresentable;
}

int32_t convert_element(void* target, int32_t target_type, const void* source, int32_t source_type,
                        const MNumericArrayConvertData& record) {
  if (const int32_t status = refusal_of_arguments(target, target_type, source, source_type, record))
    return status;
  if (element_run* const run = choose_run(source_type, target_type, record)) {
    return run(record, target, source, 1).accepted == 1 ? ArrayStatusOk : ArrayStatusNotRepresentable;
  }
  copy_run(target, source, 1, static_cast<mint>(element_bytes(target_type)));
  return ArrayStatusOk;
}

MNumericArrayConvertData record_of(int32_t method) {
  MNumericArrayConvertData record{};
  MNumericArrayConvertData_init(&record, method);
  return record;
}

}  // namespace vlm::conversion

MNumericArrayConvertData* MNumericArrayConvertData_init(MNumericArrayConvertData* record,
                                                        int32_t method) VLM_NOEXCEPT {
  if (record == nullptr) return nullptr;
  const bool clips = method >= 2 && method <= 10 && method % 2 == 0;
  record->sourceOffset = 0;
  record->sourceStride = 1;
  record->targetOffset = 0;
  record->targetStride = 1;
  record->method = clips ? method - 1 : method;
  const bool exact =
      record->method == MNumericArrayConvertCheck || record->method == MNumericArrayConvertCast;
  record->tolerance = exact ? 0.0 : 1.0;
  record->reserved = 0;
  record->clip = static_cast<uint8_t>((record->clip & ~0x07u) | (clips ? 1u : 0u));
  return record;
}
