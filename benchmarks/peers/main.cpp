// velorim_peers [--rounds N] [PART OF A GROUP'S NAME]: prints each row of work beside its peer and exits with 1 if a result was
// wrong; a bar that is not met is printed, not punished.
#include <dlfcn.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>

#include "rows.h"
#include "velorim/velorim.h"

namespace peers {
namespace {

struct named_group {
  const char* name;
  group rows;
};
std::vector<named_group>& groups() {
  static std::vector<named_group> all;
  return all;
}

double seconds_of(const std::function<void()>& call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// False if the result was wrong.
bool measure(const row& r, int rounds) {
  double ours = std::numeric_limits<double>::infinity(), peer = ours;
  for (int round = 0; round <= rounds; ++round) {  // the first one warms up
    const double a = seconds_of(r.ours), b = r.peer ? seconds_of(r.peer) : 0;
    if (round == 0) continue;
    ours = std::min(ours, a);
    peer = std::min(peer, b);
  }
  const bool correct = !r.correct || r.correct();
  const double rate = r.units / ours / 1e9;
  const double ratio = r.kind == bar_kind::peerless       ? rate
                       : r.kind == bar_kind::time_at_most ? ours / peer
                                                          : peer / ours;
  const bool met = r.kind == bar_kind::time_at_most ? ratio <= r.bar : ratio >= r.bar;
  std::ostringstream rates;
  if (r.units != 0) {
    rates.precision(3);
    rates << rate << (r.peer ? " against " : " ");
    if (r.peer) rates << r.units / peer / 1e9 << ' ';
    rates << r.unit;
  }
  std::printf("%-58s %-18s %8.2f  %s %-5.3g  %-8s %s\n", r.work.c_str(), r.peer_name.c_str(), ratio,
              r.kind == bar_kind::time_at_most ? "at most " : "at least", r.bar,
              !correct ? "WRONG"
              : met    ? "met"
                       : "not met",
              rates.str().c_str());
  std::fflush(stdout);
  return correct;
}

std::string processor_name() {
  std::ifstream about("/proc/cpuinfo");
  for (std::string line; std::getline(about, line);) {
    if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
  }
  return "unknown processor";
}

}  // namespace

registered_group::registered_group(const char* name, group rows) { groups().push_back({name, rows}); }

void* symbol_of(const char* library, const char* names) {
  void* const handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) return nullptr;
  std::istringstream all(names);
  for (std::string name; std::getline(all, name, '|');) {
    if (void* const found = dlsym(handle, name.c_str())) return found;
  }
  return nullptr;
}

}  // namespace peers

int main(int argc, char** argv) {
  int rounds = 12;
  std::string wanted;
  for (int i = 1; i < argc; ++i) {
    if (std::string(argv[i]) == "--rounds" && i + 1 < argc) {
      rounds = std::atoi(argv[++i]);
    } else {
      wanted = argv[i];
    }
  }
  VelorimRTL_initialize();
  std::printf("%s, %lld processors; fastest call of %d rounds\n\n", peers::processor_name().c_str(),
              static_cast<long long>(getProcessorCount()), rounds);
  bool correct = true;
  for (const auto& [name, rows] : peers::groups()) {
    if (std::string(name).find(wanted) == std::string::npos) continue;
    for (const peers::row& r : rows()) correct = peers::measure(r, rounds) && correct;
  }
  return correct ? 0 : 1;
}
