// Hash tables beside std::unordered_map, and the speed of the default hash.
#include <random>
#include <unordered_map>

#include "rows.h"
#include "velorim/velorim.h"

namespace {

constexpr size_t keys_count = 1'000'000;

std::vector<int64_t> random_keys() {
  std::mt19937_64 engine(5);
  std::vector<int64_t> keys(keys_count);
  for (int64_t& key : keys) key = static_cast<int64_t>(engine());
  return keys;
}

uint64_t hashed(HashKeyRecord*, int64_t key) { return metro_64_hash(&key, sizeof key); }
int32_t same(const void* a, const void* b) {
  return *static_cast<const int64_t*>(a) == *static_cast<const int64_t*>(b);
}

struct metro {
  size_t operator()(int64_t key) const { return metro_64_hash(&key, sizeof key); }
};

/// A million new keys, then a million look-ups, in another order.
template <class Map> int64_t fill_and_find_map(const std::vector<int64_t>& keys) {
  Map map;
  for (const int64_t key : keys) map[key] = key;
  int64_t sum = 0;
  for (size_t i = 0; i < keys.size(); ++i) sum += map.find(keys[i * 7 % keys.size()])->second;
  return sum;
}

int64_t fill_and_find_table(const std::vector<int64_t>& keys, HashTableHash hash, HashTableEqual equal) {
  HashTable* const table = New_HashTable(0, hash, nullptr, equal, nullptr, nullptr);
  for (const int64_t key : keys) HashTable_GetOrAdd(table, key, nullptr)->value = key;
  int64_t sum = 0;
  for (size_t i = 0; i < keys.size(); ++i) sum += HashTable_GetValue(table, keys[i * 7 % keys.size()]);
  FreeOrEmpty_HashTable(table, 1);
  return sum;
}

std::vector<peers::row> rows() {
  static const std::vector<int64_t> keys = random_keys();
  static int64_t ours, theirs;
  const auto equal_sums = [] { return ours == theirs; };
  static const std::vector<char> data(1 << 20, 'x');
  static uint64_t digest;
  return {{"GetOrAdd of a million keys, a million look-ups", "unordered_map",
           [] { ours = fill_and_find_table(keys, nullptr, nullptr); },
           [] { theirs = fill_and_find_map<std::unordered_map<int64_t, int64_t>>(keys); }, equal_sums,
           peers::bar_kind::time_at_most, 0.8},
          {"the same with metro_64_hash and a comparison", "unordered_map",
           [] { ours = fill_and_find_table(keys, hashed, same); },
           [] { theirs = fill_and_find_map<std::unordered_map<int64_t, int64_t, metro>>(keys); }, equal_sums,
           peers::bar_kind::time_at_most, 0.8},
          {"metro_64_hash of 1 MB in cache",
           "",
           [] { digest = metro_64_hash(data.data(), data.size()); },
           {},
           [] { return digest != 0; },
           peers::bar_kind::peerless,
           8,
           static_cast<double>(data.size()),
           "GB/s"}};
}

const peers::registered_group group("hash", rows);

}  // namespace
