// The memory check: a table of record addresses, each marked once its array was deleted. A marked record stays allocated, so that its
// address cannot come back and a second deletion is seen.
#include "MNumericArray/MemoryCheck/memory_check.h"

#include <mutex>

#include "Runtime/hooks.h"
#include "velorim/hash_table.h"
#include "velorim/memory.h"

int32_t trackTensorMemory = 0;

namespace {

using report_function = void (*)(const char* message);

// Recursive, since `report` runs under it and may make arrays of its own.
std::recursive_mutex check_lock;
HashTable* tracked = nullptr;
report_function report_to = nullptr;

constexpr int64_t live = 0, freed = 1;  // the values of entries

void report(const char* message) {
  if (report_to != nullptr) report_to(message);
}

int64_t key_of(const MNumericArray* array) { return reinterpret_cast<int64_t>(array); }
MNumericArray* array_of(const HashEntry* entry) { return reinterpret_cast<MNumericArray*>(entry->key); }

int32_t report_if_live(HashEntry* entry, void*) {
  if (entry->value == live && (array_of(entry)->flags & ArrayFlagInExpr) == 0) report("MTensor not freed");
  return 0;
}

/// Ends the arrays whose deletion was put off, and the table.
void clear_table() {
  if (tracked == nullptr) return;
  const auto end_if_freed = [](HashEntry* entry, void*) -> int32_t {
    if (entry->value == freed) {
      MNumericArray_freeMemory(array_of(entry));
      zfree(array_of(entry));
    }
    return 0;
  };
  HashTable_OrOverAllEntries(tracked, end_if_freed, nullptr);
  FreeOrEmpty_HashTable(tracked, 1);
  tracked = nullptr;
}

}  // namespace

namespace vlm {

void memory_check_forget() {
  const std::lock_guard guard(check_lock);
  trackTensorMemory = 0;
  tracked = nullptr;
}

bool memory_check_is_on() { return trackTensorMemory != 0 && tracked != nullptr; }

}  // namespace vlm

void initializeTensorMemoryCheck(void (*function)(const char* message)) VLM_NOEXCEPT {
  const std::lock_guard guard(check_lock);
  clear_table();
  tracked = New_HashTable(31, nullptr, nullptr, nullptr, nullptr, nullptr);
  report_to = function;
  trackTensorMemory = 1;
}

void TensorMemory_addNew(MNumericArray* array) VLM_NOEXCEPT {
  const std::lock_guard guard(check_lock);
  if (tracked == nullptr) return;
  if (HashTable_GetUsingFunction(tracked, key_of(array)) != nullptr) report("MTensor already created");
  HashTable_AddValue(tracked, key_of(array), live);
}

void TensorMemory_free(MNumericArray* array) VLM_NOEXCEPT {
  const std::lock_guard guard(check_lock);
  if (tracked == nullptr) return;
  HashEntry* const entry = HashTable_GetUsingFunction(tracked, key_of(array));
  if (entry == nullptr) {
    report("MTensor cannot be found");
  } else if (entry->value == freed) {
    report("MTensor has already been freed");
  } else {
    entry->value = freed;
  }
}

void runTensorMemoryCheck(int32_t clear) VLM_NOEXCEPT {
  const std::lock_guard guard(check_lock);
  trackTensorMemory = 0;
  if (tracked == nullptr) return;
  HashTable_OrOverAllEntries(tracked, report_if_live, nullptr);
  if (clear != 0) clear_table();
}
