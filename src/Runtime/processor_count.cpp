#include "Runtime/processor_count.h"

#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <limits>
#include <memory>
#include <numeric>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <tuple>

namespace vlm {
namespace {

namespace fs = std::filesystem;

constexpr int32_t no_limit = std::numeric_limits<int32_t>::max();

std::optional<std::string> first_line(const fs::path& file) {
  std::ifstream in(file);
  std::string line;
  if (!std::getline(in, line)) return std::nullopt;
  return line;
}

std::optional<int64_t> first_number(const fs::path& file) {
  std::ifstream in(file);
  int64_t value = 0;
  if (!(in >> value)) return std::nullopt;
  return value;
}

/// The numbers of a processor list such as "0-3,8,10-11"; empty if the text is not one.
std::set<int32_t> parse_processor_list(const std::string& text) {
  std::set<int32_t> processors;
  std::istringstream in(text);
  for (std::string item; std::getline(in, item, ',');) {
    std::istringstream bounds(item);
    int32_t first = 0;
    int32_t last = 0;
    char dash = 0;
    if (!(bounds >> first)) return {};
    last = first;
    if (bounds >> dash && (dash != '-' || !(bounds >> last))) return {};
    constexpr int32_t most_processors = 1 << 20;
    if (first < 0 || last < first || last >= most_processors) return {};
    for (int32_t processor = first; processor <= last; ++processor) processors.insert(processor);
  }
  return processors;
}

fs::path processor_folder(const kernel_files& files, int32_t processor) {
  return files.sys / "devices/system/cpu" / ("cpu" + std::to_string(processor));
}

int32_t count_cores(const std::vector<int32_t>& processors, const kernel_files& files) {
  std::set<std::tuple<int64_t, int64_t, int64_t>> cores;
  int32_t unknown = 0;
  for (const int32_t processor : processors) {
    const fs::path topology = processor_folder(files, processor) / "topology";
    const std::optional<int64_t> core = first_number(topology / "core_id");
    if (!core) {
      ++unknown;
      continue;
    }
    // Cores are numbered within a die, dies within a package; kernels before 5.2 know no dies.
    cores.emplace(first_number(topology / "physical_package_id").value_or(0),
                  first_number(topology / "die_id").value_or(0), *core);
  }
  return static_cast<int32_t>(cores.size()) + unknown;
}

/// The processors of the faster kind; all of them where there is one kind, or none of the faster kind is
/// permitted.
std::vector<int32_t> faster_processors(const std::vector<int32_t>& permitted, const kernel_files& files) {
  std::vector<int32_t> faster;
  // x86 processors of two kinds name those of the first as the device cpu_core.
  if (const auto list = first_line(files.sys / "devices/cpu_core/cpus")) {
    const std::set<int32_t> cores = parse_processor_list(*list);
    std::copy_if(permitted.begin(), permitted.end(), std::back_inserter(faster),
                 [&](int32_t processor) { return cores.contains(processor); });
    return faster.empty() ? permitted : faster;
  }
  // Arm processors carry a capacity, 1024 for the fastest. Three kinds are common, such as 1024, 900 and 400:
  // those with more than half of the highest capacity count, so that one prime core alone is not taken for
  // the machine.
  std::vector<int64_t> capacities;
  capacities.reserve(permitted.size());
  for (const int32_t processor : permitted) {
    capacities.push_back(first_number(processor_folder(files, processor) / "cpu_capacity").value_or(0));
  }
  const int64_t highest = capacities.empty() ? 0 : *std::max_element(capacities.begin(), capacities.end());
  for (size_t i = 0; i < permitted.size(); ++i) {
    if (2 * capacities[i] > highest) faster.push_back(permitted[i]);
  }
  return faster.empty() ? permitted : faster;
}

/// Whole processors for `quota` microseconds in each `period`, rounded up; no limit where the numbers say
/// none.
int32_t quota_processors(int64_t quota, int64_t period) {
  if (quota <= 0 || period <= 0) return no_limit;
  const int64_t processors = quota / period + (quota % period != 0);
  return static_cast<int32_t>(std::min<int64_t>(processors, no_limit));
}

int32_t quota_of_group_v2(const fs::path& group) {
  std::ifstream in(group / "cpu.max");
  int64_t quota = 0;
  int64_t period = 0;
  if (!(in >> quota >> period)) return no_limit;  // the file is missing, or says "max"
  return quota_processors(quota, period);
}

int32_t quota_of_group_v1(const fs::path& group) {
  return quota_processors(first_number(group / "cpu.cfs_quota_us").value_or(-1),
                          first_number(group / "cpu.cfs_period_us").value_or(-1));
}

/// The least quota of a group and those that it lies in. Inside a container the group's path may be that of
/// the host, of which only the root is mounted: folders that do not exist limit nothing.
template <class Quota> int32_t least_quota(const fs::path& mount, const std::string& group, Quota&& quota) {
  int32_t least = quota(mount);
  fs::path folder = mount;
  for (const fs::path& part : fs::path(group).relative_path()) {
    if (part == "..") return least;
    folder /= part;
    least = std::min(least, quota(folder));
  }
  return least;
}

/// The CPU quota of this process. Lines of /proc/self/cgroup: "0::/path" for version 2, "N:cpu,cpuacct:/path"
/// for version 1.
int32_t quota_of_process(const kernel_files& files) {
  const fs::path mounts = files.sys / "fs/cgroup";
  int32_t least = no_limit;
  std::ifstream in(files.proc / "self/cgroup");
  for (std::string line; std::getline(in, line);) {
    const size_t first = line.find(':');
    const size_t second = first == std::string::npos ? first : line.find(':', first + 1);
    if (second == std::string::npos) continue;
    const std::string controllers = line.substr(first + 1, second - first - 1);
    const std::string group = line.substr(second + 1);
    if (controllers.empty()) {
      for (const fs::path& mount : {mounts, mounts / "unified"}) {
        least = std::min(least, least_quota(mount, group, quota_of_group_v2));
      }
    } else if (("," + controllers + ",").find(",cpu,") != std::string::npos) {
      for (const fs::path& mount : {mounts / "cpu", mounts / controllers}) {
        least = std::min(least, least_quota(mount, group, quota_of_group_v1));
      }
    }
  }
  return least;
}

}  // namespace

std::vector<int32_t> permitted_processors() {
  std::vector<int32_t> permitted;
  constexpr int most = 1 << 20;
  for (int size = 1024; size <= most; size *= 2) {
    const std::unique_ptr<cpu_set_t, void (*)(cpu_set_t*)> set(CPU_ALLOC(size),
                                                               [](cpu_set_t* old) { CPU_FREE(old); });
    if (set == nullptr) break;
    const size_t bytes = CPU_ALLOC_SIZE(size);
    CPU_ZERO_S(bytes, set.get());
    if (sched_getaffinity(0, bytes, set.get()) == 0) {
      for (int processor = 0; processor < size; ++processor) {
        if (CPU_ISSET_S(processor, bytes, set.get())) permitted.push_back(processor);
      }
      return permitted;
    }
    if (errno != EINVAL) break;  // EINVAL: the machine has more processors than the set has room for
  }
  permitted.resize(static_cast<size_t>(std::max(sysconf(_SC_NPROCESSORS_ONLN), 0L)));
  std::iota(permitted.begin(), permitted.end(), 0);
  return permitted;
}

processor_counts count_processors(const std::vector<int32_t>& permitted, const kernel_files& files) {
  const int32_t quota = quota_of_process(files);
  const auto usable = [quota](int32_t count) { return std::max(std::min(count, quota), int32_t{1}); };
  return {usable(count_cores(permitted, files)), usable(static_cast<int32_t>(permitted.size())),
          usable(count_cores(faster_processors(permitted, files), files))};
}

processor_counts count_processors() {
  try {
    return count_processors(permitted_processors(), kernel_files{});
  } catch (const std::exception&) {  // no memory to read the files with
    return {};
  }
}

}  // namespace vlm
