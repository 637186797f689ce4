// Faults it is meant to catch: a size served by the wrong form of block; a chunk that is lost, kept twice or released while the
// spare is missing; headers not counted; pages that stay registered or are registered in part; remote frees lost, counted twice or
// taken back in the wrong class; a failed request to the system that leaves a header or a mapping behind.
#include <gtest/gtest.h>

#include <cstring>
#include <thread>
#include <vector>

#include "Memory/heaps.h"
#include "Runtime/hooks.h"
#include "support/allocation_balance.h"
#include "velorim/memory.h"
#include "velorim/thread.h"

namespace {

using namespace vlm::memory;
using vlm::test::AllocationBalance;

class BlockEngine : public testing::Test {
 protected:
  BlockEngine() {
    vlm::memory_hook(1);
    MemoryInUse();
  }
  ~BlockEngine() override {
    fail_system_memory_after(-1);
    EXPECT_TRUE(heapIsValid(*heap_of_thread()));
  }
  static size_class& class_of(uint64_t block_bytes) {
    return heap_of_thread()->classes[size_class_of(block_bytes)];
  }
};

/// Runs a function on a thread of the library, whose heap starts empty and must be valid at the end.
template <class Function> void on_fresh_thread(Function function) {
  KThread* const thread = KThreadCreate(
      [](void* f) {
        MemoryInUse();
        (*static_cast<Function*>(f))();
        EXPECT_TRUE(heapIsValid(*heap_of_thread()));
      },
      &function, 2);
  ASSERT_NE(thread, nullptr);
  KThreadWaitForExit(thread);
  Delete_KThread(thread);
}

TEST_F(BlockEngine, FormsOfBlocksByTheirSize) {
  const AllocationBalance balance;
  struct form {
    uint64_t size;
    int32_t aligned;
    bool registered;
    uint64_t usable;
  };
  for (const form f :
       {form{1, 0, true, 8}, form{1023, 0, true, 1024}, form{1024, 1, true, 1024}, form{1025, 0, false, 1080},
        form{1025, 1, false, 1072}, form{65528, 0, false, 65528}, form{65529, 0, false, 65536},
        form{65536, 1, false, 65536}, form{100000, 0, false, 100000}}) {
    void* const block = zalloc(f.size, f.aligned, FailFatal);
    EXPECT_EQ(pages.find(block) != nullptr, f.registered) << f.size;
    EXPECT_EQ(usable_bytes(block), f.usable) << f.size;
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % (f.aligned ? 16 : 8), 0u) << f.size;
    zfree(block);
  }
}

TEST_F(BlockEngine, AClassKeepsOneEmptyChunkAndCountsItsHeaders) {
  on_fresh_thread([] {
    for (const uint64_t size : {uint64_t{8}, uint64_t{1024}, uint64_t{1080}, uint64_t{65528}}) {
      const uint64_t consumed = size > 1024 ? size + 8 : size;
      size_class& c = class_of(consumed);
      const int64_t start = MemoryInUse();
      std::vector<void*> blocks;
      for (uint64_t i = 0; i < 3 * c.blocks_per_chunk; ++i) blocks.push_back(zalloc(size, 0, FailFatal));
      EXPECT_EQ(c.chunks, 3u);
      EXPECT_EQ(c.available, nullptr);
      EXPECT_EQ(MemoryInUse() - start, static_cast<int64_t>(blocks.size() * consumed + 3 * 64));
      for (void* const block : blocks) zfree(block);
      EXPECT_EQ(c.chunks, 0u);
      EXPECT_NE(c.spare, nullptr);
      EXPECT_EQ(MemoryInUse() - start, 64);
      zfree(zalloc(size, 0, FailFatal));
      EXPECT_EQ(MemoryInUse() - start, 64);
    }
    EXPECT_TRUE(heapIsValid(*heap_of_thread()));
  });
}

TEST_F(BlockEngine, ClassNumbersFollowTheMemoryOfAChunk) {
  EXPECT_EQ(heap_of_thread()->headers().blocks_per_chunk, 1023u);
  EXPECT_EQ(class_of(1088).blocks_per_chunk, 60u);
  EXPECT_EQ(class_of(65536).blocks_per_chunk, 4u);
  EXPECT_EQ(class_of(65536).chunk_bytes, 262144u);
  EXPECT_EQ(class_of(1088).chunk_pages, 0u);
}

TEST_F(BlockEngine, ARefusedRequestToTheSystemLeavesNothingBehind) {
  for (const uint64_t size :
       {uint64_t{8}, uint64_t{1024}, uint64_t{2000}, uint64_t{60000}, uint64_t{1 << 20}}) {
    // Chunk of headers, chunk of blocks and perhaps levels of the page map; fresh heaps, so that all are needed.
    for (int64_t n = 0;; ++n) {
      bool failed = false;
      on_fresh_thread([&] {
        const int64_t before = MemoryInUse();
        fail_system_memory_after(n);
        void* const block = zalloc(size, 0, FailReport);
        failed = block == nullptr;
        fail_system_memory_after(-1);
        if (failed) {
          EXPECT_EQ(MemoryInUse(), before) << size << ", request " << n;
        }
        zfree(block);
      });
      if (!failed) {
        EXPECT_GT(n, 0);
        break;
      }
    }
  }
}

TEST_F(BlockEngine, RemoteFreesOfEveryClassComeBack) {
  on_fresh_thread([] {
    std::vector<void*> blocks;
    for (int i = 1; i < size_class_count; ++i) {
      for (int k = 0; k < 3; ++k) {
        const uint64_t bytes = class_block_bytes[i];
        blocks.push_back(zalloc(bytes > headerless_bytes ? bytes - class_header_bytes : bytes, 0, FailFatal));
      }
    }
    for (int k = 0; k < 3; ++k) blocks.push_back(zalloc(70000, k & 1, FailFatal));
    const int64_t held = vlm::test::bytes_of_blocks();
    std::thread([&] {
      for (void* const block : blocks) zfree(block);
    }).join();
    EXPECT_EQ(vlm::test::bytes_of_blocks(), held) << "nothing changes before the owner's next operation";
    EXPECT_TRUE(heapIsValid(*heap_of_thread())) << "with blocks waiting";
    for (int i = 1; i < size_class_count; ++i) {
      const uint64_t bytes = class_block_bytes[i];
      zfree(zalloc(bytes > headerless_bytes ? bytes - class_header_bytes : bytes, 0, FailFatal));
      EXPECT_EQ(heap_of_thread()->classes[i].waiting_blocks, 0u);
    }
    zfree(zalloc(70000, 0, FailFatal));
    EXPECT_EQ(vlm::test::bytes_of_blocks(), 0);
  });
}

TEST_F(BlockEngine, TheCheckOfAHeapSeesFaults) {
  on_fresh_thread([] {
    ThreadHeap& heap = *heap_of_thread();
    void* const block = zalloc(2000, 0, FailFatal);
    void* const waiting = zalloc(2000, 0, FailFatal);
    zfree(zalloc(100000, 0, FailFatal));
    std::thread([=] { zfree(waiting); }).join();
    size_class& c = class_of(2048);
    const auto sees = [&heap](auto& number, uint64_t wrong) {
      const uint64_t right = number;
      number = wrong;
      const bool seen = !heapIsValid(heap);
      number = right;
      return seen && heapIsValid(heap);
    };
    EXPECT_TRUE(sees(c.available->used, 1));
    EXPECT_TRUE(sees(c.chunks, 2));
    EXPECT_TRUE(sees(c.waiting_blocks, 0));
    EXPECT_TRUE(sees(heap.kept_bytes, heap.kept_bytes + 8));
    zfree(block);
  });
}

TEST_F(BlockEngine, AFreedChunkLeavesThePageMap) {
  on_fresh_thread([] {
    size_class& c = class_of(512);
    std::vector<void*> blocks;
    for (uint64_t i = 0; i < 2 * c.blocks_per_chunk; ++i) blocks.push_back(zalloc(512, 0, FailFatal));
    for (void* const block : blocks) zfree(block);
    int registered = 0;
    for (void* const block : blocks) registered += pages.find(block) != nullptr;
    EXPECT_EQ(registered, static_cast<int>(c.blocks_per_chunk)) << "the spare's pages alone";
  });
}

TEST_F(BlockEngine, AHeapKeepsSomeFreedLargeBlocksForTheSameSize) {
  on_fresh_thread([] {
    const ThreadHeap& heap = *static_cast<ThreadHeap*>(current_heap());
    const int64_t start = MemoryInUse();
    void* const block = zalloc(100000, 0, FailFatal);
    zfree(block);
    EXPECT_EQ(MemoryInUse(), start);
    void* const other = zalloc(100008, 0, FailFatal);
    EXPECT_NE(other, block) << "another size would show in the accounts";
    void* const again = zalloc(100000, 0, FailFatal);
    EXPECT_EQ(again, block);
    std::memset(again, 1, 100000);
    zfree(again);
    zfree(other);
    for (uint64_t size = 200000; size < 200000 + 20 * 8; size += 8) zfree(zalloc(size, 0, FailFatal));
    EXPECT_LE(heap.kept_bytes, 8u * 200200) << "the latest few";
    zfree(zalloc(most_kept_bytes / 2, 0, FailFatal));
    EXPECT_LE(heap.kept_bytes, 8u * 200200) << "no single block takes most of the room";
    CompactifyMemory();
    EXPECT_EQ(heap.kept_bytes, 0u);
    EXPECT_EQ(MemoryInUse(), start);
    EXPECT_TRUE(heapIsValid(*heap_of_thread()));
  });
}

}  // namespace
