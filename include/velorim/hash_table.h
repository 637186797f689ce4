/* Chained hash tables with prime bucket counts. */
#ifndef VELORIM_HASH_TABLE_H
#define VELORIM_HASH_TABLE_H

#include <velorim/base.h>

VLM_BEGIN_DECLS

typedef struct HashTable HashTable;
typedef struct HashEntry HashEntry;
typedef struct IntegerArrayHashTable IntegerArrayHashTable;
typedef struct HashKeyRecord {
  int64_t key; /* first word, as in an entry */
  int64_t unused;
  uint64_t hash; /* third word, as in an entry */
} HashKeyRecord;
struct HashEntry {
  int64_t key;
  int64_t value;
  uint64_t hash;
  HashEntry* next;
};
typedef uint64_t (*HashTableHash)(HashKeyRecord* record, int64_t key);
typedef void (*HashTableSet)(HashEntry* entry, HashKeyRecord* record);
typedef int32_t (*HashTableEqual)(const void* a, const void* b);
typedef HashEntry* (*HashTableInit)(HashEntry* entry);
typedef void (*HashTableFree)(HashEntry* entry);
typedef uint64_t (*HashTableEntryBytes)(HashEntry* entry);
struct HashTable {
  HashEntry** buckets;
  HashTableHash hash;
  HashTableSet set;
  HashTableEqual equal;
  HashTableInit init;
  HashTableFree free;
  void (*tableFree)(HashTable* table);
  int64_t initialSize;
  int64_t size;
  int64_t initialIndex;
  int64_t index;
  int64_t count;
  uint32_t flags; /* 14 at creation: value 4 growth, value 8 shrinking */
};
struct IntegerArrayHashTable {
  HashTable* table;
  int64_t elements;
  uint32_t mode;
};

extern double HashTableGrowLoadFactor;
extern double HashTableShrinkLoadFactor;
extern int64_t HashArrayLengthThreshold;
extern int64_t HashByteLengthThreshold;

HashTable* New_HashTable(mint sizeHint, HashTableHash hash, HashTableSet set, HashTableEqual equal,
                         HashTableInit init, HashTableFree free) VLM_NOEXCEPT;
void FreeOrEmpty_HashTable(HashTable* table, int32_t release) VLM_NOEXCEPT;
int64_t HashTable_GetValue(HashTable* table, int64_t key) VLM_NOEXCEPT;
HashEntry* HashTable_GetUsingFunction(HashTable* table, int64_t key) VLM_NOEXCEPT;
HashEntry* HashTable_Add(HashTable* table, int64_t key) VLM_NOEXCEPT;
HashEntry* HashTable_AddValue(HashTable* table, int64_t key, int64_t value) VLM_NOEXCEPT;
HashEntry* HashTable_GetOrAdd(HashTable* table, int64_t key, int32_t* added) VLM_NOEXCEPT;
int32_t HashTable_RemoveElem(HashTable* table, int64_t key) VLM_NOEXCEPT;
int32_t HashTable_RemoveCommon(HashTable* table,
                               const void* record) VLM_NOEXCEPT; /* a HashKeyRecord or a HashEntry */
int32_t HashTable_OrOverAllEntries(HashTable* table, int32_t (*function)(HashEntry* entry, void* argument),
                                   void* argument) VLM_NOEXCEPT;
uint64_t HashTable_ByteCount(HashTable* table, HashTableEntryBytes entryBytes) VLM_NOEXCEPT;
HashEntry* HashEntry_NewGeneral(HashEntry* entry) VLM_NOEXCEPT;
uint64_t StringHash(HashKeyRecord* record, int64_t key) VLM_NOEXCEPT;
void SetHashString(HashEntry* entry, HashKeyRecord* record) VLM_NOEXCEPT;
int32_t EqualHashString(const void* a, const void* b) VLM_NOEXCEPT;
void FreeString(HashEntry* entry) VLM_NOEXCEPT;
IntegerArrayHashTable* New_IntegerArrayHashTable(mint elements, mint sizeHint, uint32_t mode,
                                                 HashTableFree free) VLM_NOEXCEPT;
void Delete_IntegerArrayHashTable(IntegerArrayHashTable* table) VLM_NOEXCEPT;
HashEntry* IntegerArrayHashTable_GetOrAdd(IntegerArrayHashTable* table, const mint* key,
                                          int32_t* added) VLM_NOEXCEPT;
HashEntry* IntegerArrayHashTable_Add(IntegerArrayHashTable* table, const mint* key) VLM_NOEXCEPT;
HashEntry* IntegerArrayHashTable_Get(IntegerArrayHashTable* table, const mint* key) VLM_NOEXCEPT;
int32_t IntegerArrayHashTable_Remove(IntegerArrayHashTable* table, HashEntry* entry) VLM_NOEXCEPT;
mint IntegerArrayHashTable_Length(IntegerArrayHashTable* table) VLM_NOEXCEPT;
uint64_t IntegerArrayHashTable_ByteCount(IntegerArrayHashTable* table,
                                         HashTableEntryBytes entryBytes) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
