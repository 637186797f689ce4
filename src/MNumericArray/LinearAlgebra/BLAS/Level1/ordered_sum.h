// Sums that have to come out as if their terms were added one after the other, in less time than that takes.
//
// Added in turn, each addition waits for the one before it. But as long as a sum s of terms t >= 0 stays within one binade,
// c <= s < 2 c for a power of two c, every sum on the way is a multiple of the spacing u of that binade, so that the rounding of s
// + t is s + r(t) with t rounded to a multiple of u: by how much s grows depends on t alone, not on s. And r(t) = (c + t) - c. The
// growths of all terms are multiples of u below 2^53 u, which add up exactly in any order: side by side in registers, and on many
// threads. One case is left: a t in the middle between two multiples of u goes to the even sum, which s decides. A block with such
// a term, one that leaves the binade, or one with a term that no sum could take in (infinity, NaN) is added in turn. Of ordinary
// data that happens to a handful of blocks: the binades of a sum of a million alike terms are twenty.
//
// What the terms are, is told by a class `Terms` of the magnitudes v, which may have a state that changes along the way:
//   void add(T v, T& sum)       takes v in as the algorithm says
//   T largest(T c)              the v up to which terms depend on v and on the state alone and can be added within the binade of c;
//                               0 if there are none
//   rule()                      a function from registers of such v to registers of their terms, not above c
//   bool operator==             whether two states give the same terms
#pragma once

#include <algorithm>
#include <atomic>
#include <bit>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <mutex>

#include "Arithmetic/Parallel/team.h"
#include "Includes/lanes.h"
#include "velorim/base.h"

namespace vlm::blas {

/// The power of two below or at a positive normal number.
template <class T> inline T binade_of(T s) {
  constexpr int digits = std::numeric_limits<T>::digits - 1;
  return from_bits<T>(to_bits(s) >> digits << digits);
}

template <class T, class Terms> class ordered_sum {
 public:
  ordered_sum(Terms terms, T sum) : terms_(terms), sum_(sum) {}

  /// Takes in |x[0]| to |x[n - 1]|.
  void add(const T* x, mint n) {
    using parallel::family;
    const parallel::length_pair lengths = parallel::lengths(family::reducing);
    // The members of the team round to nearest, whatever the caller's mode.
    if (n > block && parallel::use_team(n, lengths.threshold) && std::fegetround() == FE_TONEAREST) {
      add_on_team(x, n, lengths.chunk);
    } else {
      add_here(x, n);
    }
  }
  /// The same at a stride.
  void add(const T* x, mint n, mint stride) {
    if (stride == 1) return add(x, n);
    add_in_turn(x, n, stride);
  }

  T sum() const { return sum_; }
  const Terms& terms() const { return terms_; }

 private:
  static constexpr mint block = 1024;        ///< elements whose growth is computed at once
  static constexpr mint least_block = 64;    ///< the same where a larger block failed
  static constexpr mint most_blocks = 2048;  ///< of a run on the team

  /// The end of a block keeps the processor from reading on by itself. Of 512, 1024 and 2048 bytes the last was the best.
  static constexpr int bytes_ahead = 2048;

  /// By how much the sum grows in a run of elements that starts in the binade of c with these terms.
  struct growth {
    T c = 0;
    T amount = 0;  ///< infinite if the run has to be added in turn
    Terms terms;
  };

  static growth growth_of(const T* x, mint n, T c, const Terms& terms) {
    using V = register_of<T>;
    using bits = typename lanes_of<V>::signed_bits;  // magnitudes are ordered as their bits
    constexpr int lanes = lanes_of<V>::count;
    constexpr T failed = std::numeric_limits<T>::infinity();
    // Half a spacing has to be a normal number, and twice the binade finite.
    constexpr T least = std::numeric_limits<T>::min() / std::numeric_limits<T>::epsilon() * 2;
    const T largest = terms.largest(c);
    const bool ordinary =
        std::isgreaterequal(c, least) && std::islessequal(c, std::numeric_limits<T>::max() / 4);
    if (!ordinary || largest <= 0) return {c, failed, terms};

    const auto term = terms.rule();
    const V base = broadcast<V>(c);
    const bits most = (bits)broadcast<V>(largest);
    struct {
      V growth = {};
      bits largest = {};   ///< of the magnitudes
      bits furthest = {};  ///< of the distances from a term to its rounding: half a spacing is a middle
    } side[4];
    constexpr mint sides = 4;
    const auto take = [&](V v, auto& s) {
      const bits b = (bits)magnitude(v);
      s.largest = b > s.largest ? b : s.largest;
      // What is too large does not enter the arithmetic, where it might raise a flag.
      const V t = term((V)(b < most ? b : most));
      const V rounded = (base + t) - base;
      const bits distance = (bits)magnitude(t - rounded);
      s.furthest = distance > s.furthest ? distance : s.furthest;
      s.growth += rounded;
    };
    mint i = 0;
    for (; i + sides * lanes <= n; i += sides * lanes) {
      for (mint k = 0; k < sides; ++k) {
        const T* const v = x + i + k * lanes;
        __builtin_prefetch(reinterpret_cast<const char*>(v) + bytes_ahead);
        take(load<V>(v), side[k]);
      }
    }
    for (; i + lanes <= n; i += lanes) take(load<V>(x + i), side[0]);
    if (i < n) {
      V rest = {};
      for (int k = 0; i + k < n; ++k) rest[k] = x[i + k];
      take(rest, side[0]);
    }
    const bits half_spacing = (bits)broadcast<V>(c * (std::numeric_limits<T>::epsilon() / 2));
    bits refused = {};
    for (const auto& s : side) refused |= (bits)(s.largest > most) | (bits)(s.furthest >= half_spacing);
    const V growths = (side[0].growth + side[1].growth) + (side[2].growth + side[3].growth);
    T amount = 0;
    for (int k = 0; k < lanes; ++k) {
      amount += growths[k];
      if (refused[k] != 0) return {c, failed, terms};
    }
    return {c, amount, terms};
  }

  /// Takes in a run by its growth, if that holds for the sum as it is.
  bool grow(const growth& g) {
    // A sum of growths that was not exact is not below c.
    const bool within = std::isgreaterequal(sum_, g.c) && std::isless(sum_ + g.amount, 2 * g.c);
    if (!within || !(g.terms == terms_)) return false;
    sum_ += g.amount;
    return true;
  }

  void add_in_turn(const T* x, mint n, mint stride) {
    for (mint i = 0; i < n; ++i) terms_.add(magnitude(x[i * stride]), sum_);
  }

  /// By blocks; one that fails goes by smaller ones, and the smallest in turn.
  void add_here(const T* x, mint n, mint length = block) {
    for (mint i = 0; i < n; i += length) {
      const mint count = std::min(length, n - i);
      if (grow(growth_of(x + i, count, binade_of(sum_), terms_))) continue;
      if (count > least_block) {
        add_here(x + i, count, least_block);
      } else {
        add_in_turn(x + i, count, 1);
      }
    }
  }

  /// What the members of a team know of a sum that is on its way.
  struct progress {
    Terms terms;
    T sum;
    mint taken;  ///< blocks that the sum holds
  };

  /// The members compute the growths of blocks for the states that they expect; blocks whose state came true are taken in as they
  /// are, in order, and the others again. The result is that of add_here whoever computes what. No member waits for another: what
  /// is ready is taken in by one of them at a time, and the others leave it to that one.
  void add_on_team(const T* x, mint n, mint chunk) {
    const mint length = std::max(block, n / most_blocks + 1);
    const mint blocks = (n - 1) / length + 1;
    const auto count_of = [=](mint i) { return std::min(length, n - i * length); };
    growth growths[most_blocks];
    std::atomic<bool> ready[most_blocks] = {};
    // The first block tells what to expect of the others.
    add_here(x, count_of(0));
    mint next = 1;  // with the sum and the terms in the hands of who takes in
    std::mutex taking_in, reading;
    progress known = {terms_, sum_, next};

    const auto take_in = [&] {
      mint reached;
      do {
        const std::unique_lock turn(taking_in, std::try_to_lock);
        if (!turn) return;
        for (; next < blocks && ready[next].load(std::memory_order_acquire); ++next) {
          if (!grow(growths[next])) add_here(x + next * length, count_of(next));
        }
        reached = next;
        const std::lock_guard lock(reading);
        known = {terms_, sum_, next};
      } while (reached < blocks && ready[reached].load(std::memory_order_acquire));
    };
    parallel::for_chunks(blocks - 1, std::max(chunk / length, mint{1}), [&](mint first, mint count) {
      ++first;
      progress now;
      {
        const std::lock_guard lock(reading);
        now = known;
      }
      const T rate = now.sum / static_cast<T>(now.taken);
      T expected = now.sum + rate * static_cast<T>(first - now.taken);
      for (mint i = first; i < first + count; ++i) {
        growths[i] = growth_of(x + i * length, count_of(i), binade_of(expected), now.terms);
        expected += std::isinf(growths[i].amount) ? rate : growths[i].amount;
        ready[i].store(true, std::memory_order_release);
      }
      take_in();
    });
    take_in();
  }

  Terms terms_;
  T sum_;
};

}  // namespace vlm::blas
