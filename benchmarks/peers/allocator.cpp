// zalloc and zfree beside the system's malloc and mimalloc: batches on one thread, and blocks that one thread makes and another
// frees.
#include <atomic>
#include <cstdlib>
#include <memory>
#include <random>
#include <thread>

#include "rows.h"
#include "velorim/velorim.h"

namespace {

/// Every side is called through pointers.
struct own_allocator {
  void* (*zalloc_function)(uint64_t, int32_t, int32_t);
  void (*give)(void*);
  void* take(size_t size) const { return zalloc_function(size, 0, FailFatal); }
};
struct allocator {
  void* (*take)(size_t);
  void (*give)(void*);
};
const own_allocator own = {zalloc, zfree};
const allocator system_allocator = {std::malloc, std::free};

using sizes = std::vector<uint32_t>;

sizes mixed(size_t count, uint32_t low, uint32_t high) {
  std::mt19937 engine(7);
  std::uniform_int_distribution<uint32_t> distribution(low, high);
  sizes result(count);
  for (uint32_t& size : result) size = distribution(engine);
  return result;
}

/// Takes a block of each size, writes into it, then gives all back; `repeats` times.
template <class Allocator> void batches(const Allocator& a, const sizes& all, int repeats) {
  static std::vector<void*> blocks;
  blocks.resize(all.size());
  for (int k = 0; k < repeats; ++k) {
    for (size_t i = 0; i < all.size(); ++i) {
      blocks[i] = a.take(all[i]);
      *static_cast<char*>(blocks[i]) = 1;
    }
    for (void* const block : blocks) a.give(block);
  }
}

/// One thread takes, another gives; a ring of batches between them, so that the blocks count and not the ring.
template <class Allocator> void hand_over(const Allocator& a, const sizes& all, int repeats) {
  constexpr size_t slots = 64, batch = 50;
  struct slot {
    std::atomic<bool> full;
    void* blocks[batch];
  };
  static slot ring[slots];
  const size_t batches = all.size() * static_cast<size_t>(repeats) / batch;
  std::thread consumer([&] {
    for (size_t i = 0; i < batches; ++i) {
      slot& s = ring[i % slots];
      while (!s.full.load(std::memory_order_acquire)) std::this_thread::yield();
      for (void* const block : s.blocks) a.give(block);
      s.full.store(false, std::memory_order_release);
    }
  });
  size_t taken = 0;
  for (size_t i = 0; i < batches; ++i) {
    slot& s = ring[i % slots];
    while (s.full.load(std::memory_order_acquire)) std::this_thread::yield();
    for (void*& block : s.blocks) {
      block = a.take(all[taken++ % all.size()]);
      *static_cast<char*>(block) = 1;
    }
    s.full.store(true, std::memory_order_release);
  }
  consumer.join();
}

std::vector<peers::row> rows() {
  struct work {
    void (*ours)(const own_allocator&, const sizes&, int);
    void (*peers)(const allocator&, const sizes&, int);
  };
  constexpr work one_thread = {batches<own_allocator>, batches<allocator>};
  constexpr work two_threads = {hand_over<own_allocator>, hand_over<allocator>};
  std::vector<peers::row> all;
  static const allocator mimalloc = {
      reinterpret_cast<void* (*)(size_t)>(peers::symbol_of("libmimalloc.so.2", "mi_malloc")),
      reinterpret_cast<void (*)(void*)>(peers::symbol_of("libmimalloc.so.2", "mi_free"))};
  const auto add = [&](const std::string& name, work w, const sizes& s, int repeats, const char* peer_name,
                       const allocator& peer, double bar) {
    if (peer.take == nullptr) return;
    all.push_back({name,
                   peer_name,
                   [=] { w.ours(own, s, repeats); },
                   [=] { w.peers(peer, s, repeats); },
                   {},
                   peers::bar_kind::time_at_most,
                   bar,
                   static_cast<double>(s.size()) * repeats,
                   "G blocks/s"});
  };
  for (const uint32_t size : {16u, 64u, 256u, 1024u}) {
    const std::string name = "zalloc + zfree, " + std::to_string(size) + " bytes, batches of 1000";
    add(name, one_thread, sizes(1000, size), 200, "mimalloc", mimalloc, 1.2);
    add(name, one_thread, sizes(1000, size), 200, "malloc", system_allocator, 0.5);
  }
  add("zalloc + zfree, 16 to 1024 bytes, batches of 1000", one_thread, mixed(1000, 16, 1024), 200, "mimalloc",
      mimalloc, 1.2);
  add("zalloc + zfree, 16 to 1024 bytes, batches of 1000", one_thread, mixed(1000, 16, 1024), 200, "malloc",
      system_allocator, 0.5);
  add("zalloc + zfree, 1 to 64 KiB, batches of 1000", one_thread, mixed(1000, 1025, 65536), 20, "malloc",
      system_allocator, 0.5);
  add("zalloc + zfree, 16 bytes to 64 KiB, batches of 1000", one_thread, mixed(1000, 16, 65536), 20, "malloc",
      system_allocator, 0.5);
  add("taken on one thread, freed on another, 8 to 1024 bytes", two_threads, mixed(1000, 8, 1024), 300,
      "mimalloc", mimalloc, 1.5);
  return all;
}

const peers::registered_group group("allocator", rows);

}  // namespace
