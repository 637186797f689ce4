/* Hash tables: separate chaining over a prime number of buckets, with functions of the caller for hashing, storing, comparing and
 * releasing keys; and tables whose keys are short arrays of integers.
 *
 *  - A key is a word, by convention an integer or a pointer. Every entry keeps its full hash: chains compare hashes before keys, and a
 *    table that grows never hashes a key again.
 *  - Entries and tables take their memory with FailFatal: exhaustion ends the process through nomem (memory.h). Only growing may fail, and
 *    then the table stays as it is and tries again at the next insertion.
 *  - Threads: a table has no lock; its owner serialises access. */
#ifndef VELORIM_HASH_TABLE_H
#define VELORIM_HASH_TABLE_H

#include <velorim/base.h>

VLM_BEGIN_DECLS

typedef struct HashTable HashTable;
typedef struct HashEntry HashEntry;
typedef struct IntegerArrayHashTable IntegerArrayHashTable;

/** What stands for a key during one operation; key and hash in the places that they have in an entry. */
typedef struct HashKeyRecord {
  int64_t key;
  int64_t unused;
  uint64_t hash;
} HashKeyRecord;

struct HashEntry {
  int64_t key;
  int64_t value; /**< the caller's; 0 in a new entry */
  uint64_t hash;
  HashEntry* next;
};

typedef uint64_t (*HashTableHash)(HashKeyRecord* record, int64_t key);
typedef void (*HashTableSet)(HashEntry* entry, HashKeyRecord* record);
/** Not 0 if the keys are the same. Called with (entry, record) in look-ups and (record, entry) in removals: read the first words. */
typedef int32_t (*HashTableEqual)(const void* a, const void* b);
typedef HashEntry* (*HashTableInit)(HashEntry* entry);
typedef void (*HashTableFree)(HashEntry* entry);
typedef uint64_t (*HashTableEntryBytes)(HashEntry* entry);

struct HashTable {
  HashEntry** buckets;                 /**< heads of the chains, bucket hash mod size */
  HashTableHash hash;                  /**< NULL: the key is its own hash */
  HashTableSet set;                    /**< stores the key in a new entry; NULL: the raw key */
  HashTableEqual equal;                /**< NULL: equal hashes are enough */
  HashTableInit init;                  /**< called on a new entry before set; may be NULL */
  HashTableFree free;                  /**< called before an entry is released; may be NULL */
  void (*tableFree)(HashTable* table); /**< called before the table is released; NULL at creation */
  int64_t initialSize;
  int64_t size; /**< buckets, always the prime of index */
  int64_t initialIndex;
  int64_t index;
  int64_t count;  /**< entries */
  uint32_t flags; /**< 14 at creation: 4 allows growth, 8 shrinking */
};

/** A table grows when count exceeds this times size, and shrinks, not below its initial size, when count falls below the second. */
extern double HashTableGrowLoadFactor;
extern double HashTableShrinkLoadFactor;

/** A new empty table: 7 buckets for hints to 3, else a prime near the power of two above the hint. 100 -> 127 buckets */
HashTable* New_HashTable(mint sizeHint, HashTableHash hash, HashTableSet set, HashTableEqual equal,
                         HashTableInit init, HashTableFree free) VLM_NOEXCEPT;
/** Releases all entries, and the table itself if release is not 0; else it goes back to its initial size. NULL is ignored. */
void FreeOrEmpty_HashTable(HashTable* table, int32_t release) VLM_NOEXCEPT;

/** The value of the first entry of the key in its chain, the newest at first, 0 if there is none. Without a hash function equal is not called. */
int64_t HashTable_GetValue(HashTable* table, int64_t key) VLM_NOEXCEPT;
/** The first entry of the key in its chain, or NULL. */
HashEntry* HashTable_GetUsingFunction(HashTable* table, int64_t key) VLM_NOEXCEPT;
/** A new entry, whether or not there is one of the key: it hides older ones, until the table changes its size, which turns the order
 *  within a chain round. The second form stores its value too. */
HashEntry* HashTable_Add(HashTable* table, int64_t key) VLM_NOEXCEPT;
HashEntry* HashTable_AddValue(HashTable* table, int64_t key, int64_t value) VLM_NOEXCEPT;
/** The entry of the key, made if there is none; *added, if added is not NULL, is then 1, else 0. */
HashEntry* HashTable_GetOrAdd(HashTable* table, int64_t key, int32_t* added) VLM_NOEXCEPT;
/** Removes the first entry of the key.       returns 1; 0 if there is none. */
int32_t HashTable_RemoveElem(HashTable* table, int64_t key) VLM_NOEXCEPT;
/** The same by a record, or an entry, with key and hash filled. */
int32_t HashTable_RemoveCommon(HashTable* table, const void* record) VLM_NOEXCEPT;
/** Calls function for the entries, buckets from 0 up and chains from the newest, until it gives not 0. It may free the entry it is given.
 *  returns 1 if a call gave not 0, else 0. */
int32_t HashTable_OrOverAllEntries(HashTable* table, int32_t (*function)(HashEntry* entry, void* argument),
                                   void* argument) VLM_NOEXCEPT;
/** 8 size + 32 count + 104 bytes, and entryBytes of each entry unless that is NULL. 0 for a NULL table. */
uint64_t HashTable_ByteCount(HashTable* table, HashTableEntryBytes entryBytes) VLM_NOEXCEPT;
/** An init function that does nothing. */
HashEntry* HashEntry_NewGeneral(HashEntry* entry) VLM_NOEXCEPT;

/* ---- The functions of a table whose keys are strings (const char * as a word); entries hold copies ---- */
uint64_t StringHash(HashKeyRecord* record, int64_t key) VLM_NOEXCEPT;
void SetHashString(HashEntry* entry, HashKeyRecord* record) VLM_NOEXCEPT;
int32_t EqualHashString(const void* a, const void* b) VLM_NOEXCEPT;
void FreeString(HashEntry* entry) VLM_NOEXCEPT;

/* ---- Tables whose keys are arrays of mint, all of one length ---- */
struct IntegerArrayHashTable {
  HashTable* table;
  int64_t elements; /**< length of the keys */
  uint32_t
      mode; /**< 1: the table copies each key; 2: arrays even at length 1; 4, set by the table: one integer by value */
};

/** A new table for keys of that many integers; mode takes the bits 1 and 2. free as in New_HashTable; NULL frees the copies, if any. Without
 *  mode 1 the keys must outlive the table. */
IntegerArrayHashTable* New_IntegerArrayHashTable(mint elements, mint sizeHint, uint32_t mode,
                                                 HashTableFree free) VLM_NOEXCEPT;
void Delete_IntegerArrayHashTable(IntegerArrayHashTable* table) VLM_NOEXCEPT;
/** As the HashTable_ operations; key points to the integers. */
HashEntry* IntegerArrayHashTable_GetOrAdd(IntegerArrayHashTable* table, const mint* key,
                                          int32_t* added) VLM_NOEXCEPT;
HashEntry* IntegerArrayHashTable_Add(IntegerArrayHashTable* table, const mint* key) VLM_NOEXCEPT;
HashEntry* IntegerArrayHashTable_Get(IntegerArrayHashTable* table, const mint* key) VLM_NOEXCEPT;
/** Removes the first entry with the key of an entry of the table.       returns 1; 0 if there is none. */
int32_t IntegerArrayHashTable_Remove(IntegerArrayHashTable* table, HashEntry* entry) VLM_NOEXCEPT;
mint IntegerArrayHashTable_Length(IntegerArrayHashTable* table) VLM_NOEXCEPT;
/** HashTable_ByteCount and 32; 0 for NULL. */
uint64_t IntegerArrayHashTable_ByteCount(IntegerArrayHashTable* table,
                                         HashTableEntryBytes entryBytes) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
