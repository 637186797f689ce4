// Faults it is meant to catch: sizes off the prime table; growth or shrinking one entry early or late, or below the initial size; entries
// lost in a rebuild or a failed one; duplicates in the wrong order; keys compared by hash alone; copies of keys leaked.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

#include "Hash/prime_table.h"
#include "Memory/failure_injection.h"
#include "Runtime/hooks.h"
#include "support/allocation_balance.h"
#include "velorim/hash_table.h"
#include "velorim/memory.h"

namespace {

using vlm::test::AllocationBalance;

HashTable* plain_table(mint hint) { return New_HashTable(hint, nullptr, nullptr, nullptr, nullptr, nullptr); }

TEST(HashTable, SizesFollowTheHint) {
  const std::vector<std::pair<mint, int64_t>> cases = {{0, 7},   {1, 7},       {3, 7},     {4, 11},
                                                       {7, 11},  {8, 17},      {100, 127}, {130, 257},
                                                       {-5, 11}, {1000, 1031}, {127, 127}, {128, 257}};
  for (const auto& [hint, size] : cases) {
    const AllocationBalance balance;
    HashTable* const table = plain_table(hint);
    EXPECT_EQ(table->size, size) << hint;
    EXPECT_EQ(HashTable_ByteCount(table, nullptr), static_cast<uint64_t>(8 * size + 104));
    FreeOrEmpty_HashTable(table, 1);
  }
}

TEST(HashTable, RemaindersAreThoseOfADivision) {
  std::mt19937_64 random(1);
  for (size_t i = 0; i < vlm::hash::primes.size(); ++i) {
    const uint64_t d = vlm::hash::primes[i];
    for (int k = 0; k < 200; ++k) {
      const uint64_t n = k == 0   ? 0
                         : k == 1 ? ~uint64_t{0}
                         : k == 2 ? d
                         : k == 3 ? d - 1
                         : k == 4 ? 2 * d - 1
                                  : random() >> (k % 64);
      ASSERT_EQ(vlm::hash::divisors[i].remainder(n), n % d) << n << " mod " << d;
    }
  }
}

TEST(HashTable, GrowsWithTheEntryThatPassesTheLoadAndShrinksToItsStart) {
  const AllocationBalance balance;
  HashTable* const table = plain_table(0);
  for (int64_t key = 1; key <= 5; ++key) HashTable_Add(table, key);
  EXPECT_EQ(table->size, 7);
  HashTable_Add(table, 6);
  EXPECT_EQ(table->size, 11);
  for (int64_t key = 7; key <= 1000; ++key) HashTable_AddValue(table, key, -key);
  EXPECT_EQ(table->size, 2053);
  for (int64_t key = 7; key <= 1000; ++key) EXPECT_EQ(HashTable_GetValue(table, key), -key);
  for (int64_t key = 1; key <= 1000; ++key) EXPECT_EQ(HashTable_RemoveElem(table, key), 1);
  EXPECT_EQ(table->size, 7);
  EXPECT_EQ(table->count, 0);
  EXPECT_EQ(HashTable_RemoveElem(table, 1), 0);
  for (int64_t key = 1; key <= 20; ++key) HashTable_Add(table, key);
  FreeOrEmpty_HashTable(table, 0);
  EXPECT_EQ(table->size, 7);
  EXPECT_EQ(HashTable_GetUsingFunction(table, 3), nullptr);
  FreeOrEmpty_HashTable(table, 1);
}

TEST(HashTable, AFailedGrowthChangesNothingAndIsTriedAgain) {
  const AllocationBalance balance;
  HashTable* const table = plain_table(0);
  for (int64_t key = 1; key <= 5; ++key) HashTable_Add(table, key);
  vlm::memory::fail_allocation_after(0);
  HashTable_Add(table, 6);
  EXPECT_FALSE(vlm::memory::allocation_failure_pending());
  EXPECT_EQ(table->size, 7);
  for (int64_t key = 1; key <= 6; ++key) EXPECT_NE(HashTable_GetUsingFunction(table, key), nullptr);
  MCsetlimit(1);
  HashTable_Add(table, 7);
  MCsetlimit(0);
  EXPECT_EQ(table->size, 7);
  HashTable_Add(table, 8);
  EXPECT_EQ(table->size, 11);
  FreeOrEmpty_HashTable(table, 1);
}

TEST(HashTable, BehavesAsAListOfValuesForEachKey) {
  const AllocationBalance balance;
  const uint64_t seed = std::random_device{}();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937_64 random(seed);
  // Three hashes for all keys: chains must tell keys apart.
  const auto hash = [](HashKeyRecord*, int64_t key) -> uint64_t { return static_cast<uint64_t>(key) % 3; };
  const auto equal = [](const void* a, const void* b) -> int32_t {
    return *static_cast<const int64_t*>(a) == *static_cast<const int64_t*>(b);
  };
  for (const bool colliding : {false, true}) {
    HashTable* const table =
        colliding ? New_HashTable(0, hash, nullptr, equal, nullptr, nullptr) : plain_table(0);
    // A table of changing size turns chains round: there each key has one entry.
    if (colliding) table->flags = 0;
    std::map<int64_t, std::vector<int64_t>> model;
    int64_t count = 0;
    for (int step = 0; step < 5000; ++step) {
      const int64_t key = static_cast<int64_t>(random() % 200);
      std::vector<int64_t>& values = model[key];
      // Long phases of growth and of decline in turn.
      switch ((random() % 4 + (step / 500 % 2 == 0 ? 0 : 2)) % 5) {
        case 0:
          if (!colliding && !values.empty()) break;
          HashTable_AddValue(table, key, step);
          values.push_back(step);
          ++count;
          break;
        case 1: {
          int32_t added = -1;
          HashEntry* const entry = HashTable_GetOrAdd(table, key, step % 2 ? &added : nullptr);
          if (step % 2) {
            EXPECT_EQ(added, values.empty());
          }
          if (values.empty()) {
            entry->value = step;
            values.push_back(step);
            ++count;
          }
          EXPECT_EQ(entry->value, values.back());
          break;
        }
        default:
          EXPECT_EQ(HashTable_RemoveElem(table, key), !values.empty());
          if (!values.empty()) {
            values.pop_back();
            --count;
          }
      }
      EXPECT_EQ(HashTable_GetValue(table, key), values.empty() ? 0 : values.back());
      ASSERT_EQ(table->count, count);
    }
    FreeOrEmpty_HashTable(table, 1);
  }
}

TEST(HashTable, WalksOverEntriesEvenIfTheyGo) {
  const AllocationBalance balance;
  HashTable* const table = plain_table(0);
  for (int64_t key : {3, 10, 4}) HashTable_Add(table, key);  // 3 and 10 share a bucket of 7
  std::vector<int64_t> keys;
  const auto note = [](HashEntry* entry, void* list) -> int32_t {
    static_cast<std::vector<int64_t>*>(list)->push_back(entry->key);
    return entry->key == 3;
  };
  EXPECT_EQ(HashTable_OrOverAllEntries(table, note, &keys), 1);
  EXPECT_EQ(keys, (std::vector<int64_t>{10, 3}));
  const auto remove = [](HashEntry* entry, void* owner) -> int32_t {
    HashTable_RemoveCommon(static_cast<HashTable*>(owner), entry);
    return 0;
  };
  EXPECT_EQ(HashTable_OrOverAllEntries(table, remove, table), 0);
  EXPECT_EQ(table->count, 0);
  FreeOrEmpty_HashTable(table, 1);
}

TEST(HashTable, KeepsCopiesOfStrings) {
  const AllocationBalance balance;
  HashTable* const table =
      New_HashTable(0, StringHash, SetHashString, EqualHashString, HashEntry_NewGeneral, FreeString);
  char key[] = "sine";
  const auto word = [](const char* s) { return reinterpret_cast<int64_t>(s); };
  HashTable_AddValue(table, word(key), 1);
  key[0] = 'f';
  HashTable_AddValue(table, word(key), 2);
  EXPECT_EQ(HashTable_GetValue(table, word("sine")), 1);
  EXPECT_EQ(HashTable_GetValue(table, word("fine")), 2);
  EXPECT_EQ(HashTable_GetValue(table, word("")), 0);
  EXPECT_EQ(HashTable_RemoveElem(table, word("sine")), 1);
  FreeOrEmpty_HashTable(table, 1);
}

TEST(IntegerArrayHashTable, FindsByContentInEveryMode) {
  const AllocationBalance balance;
  for (const mint elements : {1, 3}) {
    for (const uint32_t mode : {0u, 1u, 2u, 3u}) {
      IntegerArrayHashTable* const table = New_IntegerArrayHashTable(elements, 0, mode, nullptr);
      std::vector<std::vector<mint>> keys;
      for (mint i = 0; i < 50; ++i) keys.push_back({i, 2 * i, 3});
      for (mint i = 0; i < 50; ++i) {
        std::vector<mint>& key = keys[static_cast<size_t>(i)];
        int32_t added = 0;
        IntegerArrayHashTable_GetOrAdd(table, key.data(), &added)->value = i;
        EXPECT_EQ(added, 1);
        if (mode & 1) {
          const mint kept = key[0];
          key[0] = -1;  // the table has its own
          EXPECT_EQ(IntegerArrayHashTable_Get(table, key.data()), nullptr);
          key[0] = kept;
        }
      }
      EXPECT_EQ(IntegerArrayHashTable_Length(table), 50);
      for (mint i = 0; i < 50; ++i) {
        const mint copy[] = {i, 2 * i, 3};
        HashEntry* const entry = IntegerArrayHashTable_Get(table, copy);
        ASSERT_NE(entry, nullptr);
        EXPECT_EQ(entry->value, i);
        if (i % 2) {
          EXPECT_EQ(IntegerArrayHashTable_Remove(table, entry), 1);
        }
      }
      EXPECT_EQ(IntegerArrayHashTable_Length(table), 25);
      EXPECT_EQ(IntegerArrayHashTable_ByteCount(table, nullptr),
                HashTable_ByteCount(table->table, nullptr) + 32);
      Delete_IntegerArrayHashTable(table);
    }
  }
  Delete_IntegerArrayHashTable(nullptr);
  EXPECT_EQ(IntegerArrayHashTable_ByteCount(nullptr, nullptr), 0u);
}

}  // namespace
