// Work of the library set beside the same work of a peer in one process: the two run in turn, the fastest call of each counts,
// and their ratio meets a bar or does not.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace peers {

/// What a bar asks of the two sides. Rates and times are of the same work, so that both are one quotient read in two ways.
enum class bar_kind {
  time_at_most,   ///< our time is at most `bar` times the peer's
  rate_at_least,  ///< our rate is at least `bar` times the peer's
  peerless,       ///< no peer: `units` a second, at least `bar` of them
};

struct row {
  std::string work;
  std::string peer_name;
  std::function<void()> ours;
  std::function<void()> peer;     ///< empty if peerless
  std::function<bool()> correct;  ///< looked at once after the measurement; empty for none
  bar_kind kind;
  double bar;
  double units = 0;  ///< amount of work of one call, printed as a rate where it is not 0, in 1e9 a second
  std::string unit = "";  ///< what the amount counts: "GB/s", "GF"
};

/// Rows are made by a function per file, when the program runs, so that their data live no longer than the group.
using group = std::vector<row> (*)();
/// Names a group; the program runs those whose names contain its argument.
struct registered_group {
  registered_group(const char* name, group rows);
};

/// The function of a shared library, loaded with RTLD_LOCAL so that it takes the place of nothing in this process; null if the
/// library or the name is absent. Several names may be tried: a|b.
void* symbol_of(const char* library, const char* names);

}  // namespace peers
