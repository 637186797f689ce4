// The functions of a table whose keys are strings.
#include <cstring>

#include "Hash/hash_rules.h"
#include "velorim/hash_table.h"
#include "velorim/memory.h"

namespace {

/// The string of a key record or an entry: both have the key in their first word.
const char* string_of(const void* record) {
  return reinterpret_cast<const char*>(static_cast<const HashKeyRecord*>(record)->key);
}

}  // namespace

uint64_t StringHash(HashKeyRecord* record, int64_t) VLM_NOEXCEPT {
  const char* const string = string_of(record);
  return vlm::hash::bounded(string, std::strlen(string));
}

void SetHashString(HashEntry* entry, HashKeyRecord* record) VLM_NOEXCEPT {
  const char* const string = string_of(record);
  const uint64_t bytes = std::strlen(string) + 1;
  void* const copy = zalloc(bytes, 0, FailFatal);
  std::memcpy(copy, string, bytes);
  entry->key = reinterpret_cast<int64_t>(copy);
}

int32_t EqualHashString(const void* a, const void* b) VLM_NOEXCEPT {
  return std::strcmp(string_of(a), string_of(b)) == 0;
}

void FreeString(HashEntry* entry) VLM_NOEXCEPT { zfree(reinterpret_cast<void*>(entry->key)); }
