// A map from names to codes with exact keys: the entries sorted in one block of zalloc, searched by halving.
#pragma once

#include <algorithm>
#include <cstdint>
#include <new>
#include <ranges>
#include <string_view>

#include "velorim/memory.h"

namespace vlm {

struct named_code {
  std::string_view name;
  int32_t code;
};

class name_map {
 public:
  /// Makes the map of the entries that `belongs` accepts, instead of any that was there. Exhaustion ends the process.
  template <std::ranges::range Entries, class Predicate>
  void build(const Entries& entries, Predicate belongs) {
    free();
    const auto count = static_cast<size_t>(std::ranges::count_if(entries, belongs));
    entries_ = static_cast<named_code*>(zalloc(count * sizeof(named_code), 0, FailFatal));
    for (const auto& entry : entries) {
      if (belongs(entry)) new (entries_ + count_++) named_code{entry.name, entry.code};
    }
    std::sort(entries_, entries_ + count_, [](const auto& a, const auto& b) { return a.name < b.name; });
  }
  void free() {
    zfree(entries_);
    forget();
  }
  /// Drops the map without freeing it: its block may have gone with the allocator.
  void forget() {
    entries_ = nullptr;
    count_ = 0;
  }
  /// The code of a name; 0 for any other name, for null, and without a map.
  int32_t find(const char* name) const {
    if (name == nullptr) return 0;
    const std::string_view key = name;
    const named_code* end = entries_ + count_;
    const named_code* found =
        std::lower_bound(static_cast<const named_code*>(entries_), end, key,
                         [](const auto& entry, std::string_view k) { return entry.name < k; });
    return found != end && found->name == key ? found->code : 0;
  }

 private:
  named_code* entries_ = nullptr;
  size_t count_ = 0;
};

}  // namespace vlm
