// Tables whose keys are short arrays of mint.
#include <algorithm>
#include <cstring>
#include <utility>

#include "Hash/hash_rules.h"
#include "velorim/hash_table.h"
#include "velorim/memory.h"

namespace {

constexpr uint32_t copies_keys = 1, always_arrays = 2, single_key = 4;

/// Length of the keys of the table at work: the functions of a table are not told which table it is. Each thread has its own, so
/// that different tables may be used on different threads.
thread_local int64_t key_length = 0;

class key_length_scope {
 public:
  explicit key_length_scope(const IntegerArrayHashTable* table)
      : outer_(std::exchange(key_length, table->elements)) {}
  ~key_length_scope() { key_length = outer_; }
  key_length_scope(const key_length_scope&) = delete;
  key_length_scope& operator=(const key_length_scope&) = delete;

 private:
  int64_t outer_;
};

uint64_t key_bytes() { return static_cast<uint64_t>(key_length) * sizeof(mint); }

int64_t key_word(const void* record) { return static_cast<const HashKeyRecord*>(record)->key; }
const mint* key_array(const void* record) { return reinterpret_cast<const mint*>(key_word(record)); }

uint64_t hash_integer(HashKeyRecord*, int64_t key) { return vlm::hash::bounded(&key, sizeof key); }
uint64_t hash_array(HashKeyRecord* record, int64_t) {
  return vlm::hash::bounded(key_array(record), key_bytes());
}

int32_t same_integer(const void* a, const void* b) { return key_word(a) == key_word(b); }
int32_t same_array(const void* a, const void* b) {
  return std::equal(key_array(a), key_array(a) + key_length, key_array(b));
}

void copy_array(HashEntry* entry, HashKeyRecord* record) {
  void* const copy = zalloc(key_bytes(), 0, FailFatal);
  if (copy != nullptr) std::memcpy(copy, key_array(record), key_bytes());
  entry->key = reinterpret_cast<int64_t>(copy);
}

void free_array(HashEntry* entry) { zfree(reinterpret_cast<void*>(entry->key)); }

/// What the general table takes as the key.
int64_t raw_key(const IntegerArrayHashTable* table, const mint* key) {
  return (table->mode & single_key) != 0 ? *key : reinterpret_cast<int64_t>(key);
}

}  // namespace

IntegerArrayHashTable* New_IntegerArrayHashTable(mint elements, mint sizeHint, uint32_t mode,
                                                 HashTableFree free) VLM_NOEXCEPT {
  mode &= copies_keys | always_arrays;
  if (elements == 1 && (mode & always_arrays) == 0) mode |= single_key;
  auto* const table =
      static_cast<IntegerArrayHashTable*>(zalloc(sizeof(IntegerArrayHashTable), 0, FailFatal));
  const bool copies = (mode & single_key) == 0 && (mode & copies_keys) != 0;
  HashTable* const general =
      (mode & single_key) != 0
          ? New_HashTable(sizeHint, hash_integer, nullptr, same_integer, nullptr, free)
          : New_HashTable(sizeHint, hash_array, copies ? copy_array : nullptr, same_array, nullptr,
                          free == nullptr && copies ? free_array : free);
  *table = {general, elements, mode};
  return table;
}

void Delete_IntegerArrayHashTable(IntegerArrayHashTable* table) VLM_NOEXCEPT {
  if (table == nullptr) return;
  const key_length_scope scope(table);
  FreeOrEmpty_HashTable(table->table, 1);
  zfree(table);
}

HashEntry* IntegerArrayHashTable_GetOrAdd(IntegerArrayHashTable* table, const mint* key,
                                          int32_t* added) VLM_NOEXCEPT {
  const key_length_scope scope(table);
  return HashTable_GetOrAdd(table->table, raw_key(table, key), added);
}

HashEntry* IntegerArrayHashTable_Add(IntegerArrayHashTable* table, const mint* key) VLM_NOEXCEPT {
  const key_length_scope scope(table);
  return HashTable_Add(table->table, raw_key(table, key));
}

HashEntry* IntegerArrayHashTable_Get(IntegerArrayHashTable* table, const mint* key) VLM_NOEXCEPT {
  const key_length_scope scope(table);
  return HashTable_GetUsingFunction(table->table, raw_key(table, key));
}

int32_t IntegerArrayHashTable_Remove(IntegerArrayHashTable* table, HashEntry* entry) VLM_NOEXCEPT {
  const key_length_scope scope(table);
  return HashTable_RemoveCommon(table->table, entry);
}

mint IntegerArrayHashTable_Length(IntegerArrayHashTable* table) VLM_NOEXCEPT { return table->table->count; }

uint64_t IntegerArrayHashTable_ByteCount(IntegerArrayHashTable* table,
                                         HashTableEntryBytes entryBytes) VLM_NOEXCEPT {
  return table == nullptr ? 0 : HashTable_ByteCount(table->table, entryBytes) + 32;
}
