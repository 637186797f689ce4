// How many processors this process may use, by kind. The answers of Linux for the whole machine (files of
// /sys) are cut down to the processors of the affinity mask and to the CPU quota of the process's control
// groups, versions 1 and 2: a container that may use two processors of a hundred starts two threads.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace vlm {

struct processor_counts {
  int32_t physical = 1;     // cores; hardware threads of one core count once
  int32_t logical = 1;      // hardware threads
  int32_t performance = 1;  // cores of the faster kind where the processor has two; else all cores
};

/// Where the kernel's files are mounted.
struct kernel_files {
  std::filesystem::path proc = "/proc";
  std::filesystem::path sys = "/sys";
};

/// The processors that the calling thread may run on, in ascending order; empty if the kernel does not say.
std::vector<int32_t> permitted_processors();

/// The counts for a set of permitted processors. A file that is missing or unreadable limits nothing and
/// tells nothing apart: without topology each processor is a core of its own, without kinds all cores are
/// performance cores, and no permitted processors at all count as one.
processor_counts count_processors(const std::vector<int32_t>& permitted, const kernel_files& files);

/// The counts for this process.
processor_counts count_processors();

}  // namespace vlm
