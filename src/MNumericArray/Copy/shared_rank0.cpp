// Rank-0 arrays: new ones, and each thread's table of shared ones under a thread-local key.
#include <cstring>

#include "Includes/element_types.h"
#include "MNumericArray/Allocate/array_record.h"
#include "Runtime/hooks.h"
#include "Runtime/os_thread.h"
#include "velorim/array_services.h"
#include "velorim/memory.h"
#include "velorim/thread.h"

namespace vlm {
namespace {

constexpr int32_t type_count = 13;
constexpr mint slot_count = 3;

/// One block: a pointer to each row, then the rows.
struct shared_table {
  MNumericArray** rows[type_count];
  MNumericArray* cells[type_count][slot_count];
};

KThreadLocalStorage* shared_rank0_key = nullptr;

shared_table* make_table() {
  auto* const table = static_cast<shared_table*>(zalloc(sizeof(shared_table), 0, FailFatal));
  for (int32_t t = 0; t < type_count; ++t) {
    table->rows[t] = table->cells[t];
    for (MNumericArray*& cell : table->cells[t]) cell = MNumericArray_loadNewRank0(nullptr, t + 1);
  }
  return table;
}

void end_table_of_thread() {
  if (shared_rank0_key == nullptr) return;
  auto* const table = static_cast<shared_table*>(KThreadLocalStorageGet(shared_rank0_key));
  if (table == nullptr) return;
  KThreadLocalStorageSet(shared_rank0_key, nullptr);
  for (auto& row : table->cells) {
    for (MNumericArray* const array : row) MNumericArray_delete(array);
  }
  zfree(table);
}

void load_element(MNumericArray* array, const void* source) {
  if (source != nullptr) {
    std::memcpy(array->data, source, element_bytes(static_cast<int32_t>(array->elementType)));
  }
}

}  // namespace

// A second initialisation keeps the key, and with it what the threads hold under it.
void shared_rank0_key_create() {
  if (shared_rank0_key == nullptr) shared_rank0_key = New_KThreadLocalStorage();
  // Registered after the allocator's hook, so that it runs before the thread's heap ends.
  if (thread_stop_hook_position(end_table_of_thread) == 0) add_thread_stop_hook(end_table_of_thread);
}

void shared_rank0_key_delete() {
  if (shared_rank0_key == nullptr) return;
  Delete_KThreadLocalStorage(shared_rank0_key);
  shared_rank0_key = nullptr;
}

}  // namespace vlm

MNumericArray* MNumericArray_loadNewRank0(const void* source, int32_t type) VLM_NOEXCEPT {
  MNumericArray* const array = MNumericArray_newAllocatedCommon(type, 0, nullptr, FailFatal);
  if (array != nullptr) vlm::load_element(array, source);
  return array;
}

MNumericArray** MNumericArray_loadSharedRank0(const void* source, int32_t type, mint slot) VLM_NOEXCEPT {
  using namespace vlm;
  if (type < 1 || type > type_count || slot < 0 || slot >= slot_count || shared_rank0_key == nullptr)
    return nullptr;
  auto* table = static_cast<shared_table*>(KThreadLocalStorageGet(shared_rank0_key));
  if (table == nullptr) {
    table = make_table();
    KThreadLocalStorageSet(shared_rank0_key, table);
  }
  MNumericArray** const cell = table->rows[type - 1] + slot;
  load_element(*cell, source);
  return cell;
}

namespace {
int32_t element_type_of(int32_t tensorType) {
  return tensorType < 0 || tensorType > 4 ? 0 : MTensorToMNumericArrayType[tensorType];
}
}  // namespace

MTensor* MTensor_loadNewRank0(const void* source, int32_t tensorType) VLM_NOEXCEPT {
  return MNumericArray_loadNewRank0(source, element_type_of(tensorType));
}

MTensor** MTensor_loadSharedRank0(const void* source, int32_t tensorType, mint slot) VLM_NOEXCEPT {
  return MNumericArray_loadSharedRank0(source, element_type_of(tensorType), slot);
}
