// The general hash table: chains of entries that keep their full hash, in buckets whose number is a prime.
#include <algorithm>
#include <bit>
#include <utility>

#include "Hash/prime_table.h"
#include "velorim/hash_table.h"
#include "velorim/memory.h"

namespace {

using namespace vlm;

constexpr uint32_t grows = 4, shrinks = 8, flags_at_creation = 14;
constexpr int64_t smallest_index = 2, largest_index = 63;

int64_t index_of_hint(mint hint) {
  const uint64_t magnitude = hint < 0 ? 0 - static_cast<uint64_t>(hint) : static_cast<uint64_t>(hint);
  int64_t index = std::bit_width(magnitude);
  if (index >= largest_index) return largest_index;
  if (hint > 0 && hash::primes[static_cast<size_t>(index)] < magnitude) ++index;
  return index < 3 ? smallest_index : index;
}

HashEntry** new_buckets(int64_t size, int32_t fail_mode) {
  return static_cast<HashEntry**>(kCalloc(static_cast<uint64_t>(size), sizeof(HashEntry*), 0, fail_mode));
}

HashEntry*& bucket_of(const HashTable* table, uint64_t hash) {
  return table->buckets[hash::divisors[static_cast<size_t>(table->index)].remainder(hash)];
}

HashKeyRecord record_of(const HashTable* table, int64_t key) {
  HashKeyRecord record = {key, 0, static_cast<uint64_t>(key)};
  if (table->hash != nullptr) record.hash = table->hash(&record, key);
  return record;
}

HashEntry* find(const HashTable* table, const HashKeyRecord& record) {
  HashEntry* entry = bucket_of(table, record.hash);
  while (entry != nullptr &&
         (entry->hash != record.hash || (table->equal != nullptr && table->equal(entry, &record) == 0))) {
    entry = entry->next;
  }
  return entry;
}

/// Moves every entry to a table of another size; none if the buckets cannot be had or the size stays.
void rebuild(HashTable* table, int64_t index) {
  const auto size = static_cast<int64_t>(hash::primes[static_cast<size_t>(index)]);
  if (size == table->size) return;
  HashEntry** const buckets = new_buckets(size, FailNull);
  if (buckets == nullptr) return;
  HashEntry** const old = std::exchange(table->buckets, buckets);
  const int64_t old_size = std::exchange(table->size, size);
  table->index = index;
  for (int64_t b = 0; b < old_size; ++b) {
    for (HashEntry* entry = old[b]; entry != nullptr;) {
      HashEntry* const next = entry->next;
      HashEntry*& head = bucket_of(table, entry->hash);
      entry->next = head;
      head = entry;
      entry = next;
    }
  }
  zfree(old);
}

HashEntry* insert(HashTable* table, HashKeyRecord& record) {
  auto* const entry = static_cast<HashEntry*>(zalloc(sizeof(HashEntry), 0, FailFatal));
  *entry = {0, 0, record.hash, nullptr};
  if (table->init != nullptr) table->init(entry);
  if (table->set != nullptr) {
    table->set(entry, &record);
  } else {
    entry->key = record.key;
  }
  HashEntry*& head = bucket_of(table, record.hash);
  entry->next = head;
  head = entry;
  ++table->count;
  if ((table->flags & grows) != 0 && table->index < largest_index &&
      HashTableGrowLoadFactor * static_cast<double>(table->size) < static_cast<double>(table->count)) {
    rebuild(table, std::max(table->index + 1, smallest_index));
  }
  return entry;
}

void release(HashTable* table, HashEntry* entry) {
  if (table->free != nullptr) table->free(entry);
  zfree(entry);
}

void release_entries(HashTable* table) {
  for (int64_t b = 0; b < table->size && table->count > 0; ++b) {
    for (HashEntry* entry = std::exchange(table->buckets[b], nullptr); entry != nullptr;) {
      HashEntry* const next = entry->next;
      release(table, entry);
      --table->count;
      entry = next;
    }
  }
}

}  // namespace

HashTable* New_HashTable(mint sizeHint, HashTableHash hash, HashTableSet set, HashTableEqual equal,
                         HashTableInit init, HashTableFree free) VLM_NOEXCEPT {
  const int64_t index = index_of_hint(sizeHint);
  const auto size = static_cast<int64_t>(hash::primes[static_cast<size_t>(index)]);
  auto* const table = static_cast<HashTable*>(zalloc(sizeof(HashTable), 0, FailFatal));
  *table = {new_buckets(size, FailFatal),
            hash,
            set,
            equal,
            init,
            free,
            nullptr,
            size,
            size,
            index,
            index,
            0,
            flags_at_creation};
  return table;
}

void FreeOrEmpty_HashTable(HashTable* table, int32_t release_table) VLM_NOEXCEPT {
  if (table == nullptr || (release_table == 0 && table->count == 0)) return;
  release_entries(table);
  if (release_table != 0) {
    zfree(table->buckets);
    if (table->tableFree != nullptr) table->tableFree(table);
    zfree(table);
  } else if (table->size > table->initialSize) {
    HashEntry** const fresh = new_buckets(table->initialSize, FailNull);
    if (fresh == nullptr) return;
    zfree(std::exchange(table->buckets, fresh));
    table->size = table->initialSize;
    table->index = table->initialIndex;
  }
}

int64_t HashTable_GetValue(HashTable* table, int64_t key) VLM_NOEXCEPT {
  if (table->hash == nullptr) {
    const HashEntry* entry = bucket_of(table, static_cast<uint64_t>(key));
    while (entry != nullptr && entry->hash != static_cast<uint64_t>(key)) entry = entry->next;
    return entry == nullptr ? 0 : entry->value;
  }
  const HashEntry* const entry = find(table, record_of(table, key));
  return entry == nullptr ? 0 : entry->value;
}

HashEntry* HashTable_GetUsingFunction(HashTable* table, int64_t key) VLM_NOEXCEPT {
  return find(table, record_of(table, key));
}

HashEntry* HashTable_Add(HashTable* table, int64_t key) VLM_NOEXCEPT {
  HashKeyRecord record = record_of(table, key);
  return insert(table, record);
}

HashEntry* HashTable_AddValue(HashTable* table, int64_t key, int64_t value) VLM_NOEXCEPT {
  HashEntry* const entry = HashTable_Add(table, key);
  entry->value = value;
  return entry;
}

HashEntry* HashTable_GetOrAdd(HashTable* table, int64_t key, int32_t* added) VLM_NOEXCEPT {
  HashKeyRecord record = record_of(table, key);
  HashEntry* const found = find(table, record);
  if (added != nullptr) *added = found == nullptr;
  return found != nullptr ? found : insert(table, record);
}

int32_t HashTable_RemoveCommon(HashTable* table, const void* record) VLM_NOEXCEPT {
  const auto* const key = static_cast<const HashKeyRecord*>(record);
  for (HashEntry** link = &bucket_of(table, key->hash); *link != nullptr; link = &(*link)->next) {
    HashEntry* const entry = *link;
    if (entry->hash != key->hash || (table->equal != nullptr && table->equal(record, entry) == 0)) continue;
    *link = entry->next;
    --table->count;
    release(table, entry);
    if ((table->flags & shrinks) != 0 && table->size > table->initialSize &&
        HashTableShrinkLoadFactor * static_cast<double>(table->size) > static_cast<double>(table->count)) {
      rebuild(table, table->index < 4 ? smallest_index : table->index - 1);
    }
    return 1;
  }
  return 0;
}

int32_t HashTable_RemoveElem(HashTable* table, int64_t key) VLM_NOEXCEPT {
  const HashKeyRecord record = record_of(table, key);
  return HashTable_RemoveCommon(table, &record);
}

int32_t HashTable_OrOverAllEntries(HashTable* table, int32_t (*function)(HashEntry* entry, void* argument),
                                   void* argument) VLM_NOEXCEPT {
  for (int64_t b = 0; b < table->size; ++b) {
    for (HashEntry* entry = table->buckets[b]; entry != nullptr;) {
      HashEntry* const next = entry->next;
      if (function(entry, argument) != 0) return 1;
      entry = next;
    }
  }
  return 0;
}

uint64_t HashTable_ByteCount(HashTable* table, HashTableEntryBytes entryBytes) VLM_NOEXCEPT {
  if (table == nullptr) return 0;
  uint64_t bytes =
      8 * static_cast<uint64_t>(table->size) + sizeof(HashEntry) * static_cast<uint64_t>(table->count) + 104;
  if (entryBytes == nullptr) return bytes;
  for (int64_t b = 0; b < table->size; ++b) {
    for (HashEntry* entry = table->buckets[b]; entry != nullptr; entry = entry->next)
      bytes += entryBytes(entry);
  }
  return bytes;
}

HashEntry* HashEntry_NewGeneral(HashEntry* entry) VLM_NOEXCEPT { return entry; }
