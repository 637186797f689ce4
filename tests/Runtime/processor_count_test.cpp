// Faults to catch: threads of one core counted as cores, cores of two packages or dies taken for one,
// processors counted that the affinity mask or a CPU quota (of either version, of a group or of one above it)
// forbids, a quota rounded down, a pinned or one-kind processor without performance cores, a missing or
// garbled file that gives 0 or throws.
#include "Runtime/processor_count.h"

#include <gtest/gtest.h>

#include <fstream>
#include <numeric>
#include <string>

namespace {

namespace fs = std::filesystem;

// A made-up /proc and /sys in a folder of its own.
class ProcessorCount : public testing::Test {
 protected:
  void SetUp() override {
    std::string folder = (fs::temp_directory_path() / "processors-XXXXXX").string();
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    root_ = folder;
    files_ = {root_ / "proc", root_ / "sys"};
  }
  void TearDown() override { fs::remove_all(root_); }

  void write(const fs::path& file, const std::string& text) {
    fs::create_directories((root_ / file).parent_path());
    std::ofstream(root_ / file) << text << "\n";
  }
  void processor(int32_t number, const std::string& core, const std::string& package = "0") {
    const fs::path folder = fs::path("sys/devices/system/cpu") / ("cpu" + std::to_string(number));
    write(folder / "topology/core_id", core);
    write(folder / "topology/physical_package_id", package);
  }
  void attribute(int32_t number, const std::string& name, const std::string& text) {
    write(fs::path("sys/devices/system/cpu") / ("cpu" + std::to_string(number)) / name, text);
  }
  static std::vector<int32_t> first(int32_t count) {
    std::vector<int32_t> processors(static_cast<size_t>(count));
    std::iota(processors.begin(), processors.end(), 0);
    return processors;
  }
  void expect(const std::vector<int32_t>& permitted, int32_t physical, int32_t logical, int32_t performance) {
    const vlm::processor_counts counts = vlm::count_processors(permitted, files_);
    EXPECT_EQ(counts.physical, physical);
    EXPECT_EQ(counts.logical, logical);
    EXPECT_EQ(counts.performance, performance);
  }

  fs::path root_;
  vlm::kernel_files files_;
};

TEST_F(ProcessorCount, WithoutFilesEachProcessorIsACore) {
  expect(first(6), 6, 6, 6);
  expect({}, 1, 1, 1);
}

TEST_F(ProcessorCount, ThreadsOfOneCoreCountOnce) {
  // Two packages with two cores of two threads each; siblings lie four apart. Core numbers repeat in the
  // second package.
  for (int32_t i = 0; i < 8; ++i) processor(i, std::to_string(i % 2), std::to_string(i / 2 % 2));
  expect(first(8), 4, 8, 4);
  expect({0, 4}, 1, 2, 1);
  expect({0, 1, 2, 5}, 3, 4, 3);
}

TEST_F(ProcessorCount, DiesOfAPackageAreTold) {
  for (int32_t i = 0; i < 4; ++i) {
    processor(i, std::to_string(i % 2));
    attribute(i, "topology/die_id", std::to_string(i / 2));
  }
  expect(first(4), 4, 4, 4);
}

TEST_F(ProcessorCount, HybridProcessorsOfTwoKinds) {
  // Four fast cores of two threads, 0-7, and eight slow ones, 8-15.
  for (int32_t i = 0; i < 16; ++i) processor(i, std::to_string(i < 8 ? i / 2 : i));
  write("sys/devices/cpu_core/cpus", "0-7");
  expect(first(16), 12, 16, 4);
  expect({0, 2, 8, 9}, 4, 4, 2);
  expect({8, 9, 10}, 3, 3, 3);  // pinned to slow cores
  write("sys/devices/cpu_core/cpus", "0-1,4,6-7");
  expect(first(16), 12, 16, 3);
  for (const char* garbled : {"", "x", "7-", "5-2", "0-", "0;3", "0-99999999999"}) {
    write("sys/devices/cpu_core/cpus", garbled);
    expect(first(16), 12, 16, 12);
  }
}

TEST_F(ProcessorCount, CapacitiesOfThreeKinds) {
  const char* const capacities[] = {"380", "380", "380", "380", "910", "910", "910", "1024"};
  for (int32_t i = 0; i < 8; ++i) {
    processor(i, std::to_string(i));
    attribute(i, "cpu_capacity", capacities[i]);
  }
  expect(first(8), 8, 8, 4);
  expect({0, 1, 2}, 3, 3, 3);
}

TEST_F(ProcessorCount, QuotaOfVersionTwo) {
  write("proc/self/cgroup", "0::/outer/inner");
  struct {
    const char* outer;
    const char* inner;
    int32_t usable;
  } const cases[] = {{"max 100000", "max 100000", 16},     {"max 100000", "200000 100000", 2},
                     {"150000 100000", "max 100000", 2},   {"300000 100000", "900000 100000", 3},
                     {"50000 100000", "max 100000", 1},    {"1 100000", "max 100000", 1},
                     {"9000000 100000", "max 100000", 16}, {"nonsense", "100 0", 16}};
  for (const auto& [outer, inner, usable] : cases) {
    SCOPED_TRACE(testing::Message() << outer << " / " << inner);
    write("sys/fs/cgroup/outer/cpu.max", outer);
    write("sys/fs/cgroup/outer/inner/cpu.max", inner);
    expect(first(16), usable, usable, usable);
  }
}

TEST_F(ProcessorCount, QuotaOfTheMountedRoot) {
  // In a container the path is the host's, and only the container's own group is mounted, as the root.
  write("proc/self/cgroup", "0::/kubepods/pod7/abc");
  write("sys/fs/cgroup/cpu.max", "250000 100000");
  expect(first(8), 3, 3, 3);
}

TEST_F(ProcessorCount, QuotaOfVersionOne) {
  write("proc/self/cgroup", "11:memory:/box\n4:cpu,cpuacct:/box/task\n3:cpuset:/box\n0::/");
  write("sys/fs/cgroup/cpu,cpuacct/box/cpu.cfs_quota_us", "350000");
  write("sys/fs/cgroup/cpu,cpuacct/box/cpu.cfs_period_us", "100000");
  write("sys/fs/cgroup/cpu,cpuacct/box/task/cpu.cfs_quota_us", "-1");
  write("sys/fs/cgroup/cpu,cpuacct/box/task/cpu.cfs_period_us", "100000");
  expect(first(8), 4, 4, 4);
  // A controller whose name only begins so is another one.
  write("proc/self/cgroup", "4:cpuset:/box\n5:cpuacct:/box");
  expect(first(8), 8, 8, 8);
  write("proc/self/cgroup", "garbled\n:\n");
  expect(first(8), 8, 8, 8);
}

TEST(ProcessorCountOfThisProcess, IsWithinTheMask) {
  const std::vector<int32_t> permitted = vlm::permitted_processors();
  ASSERT_FALSE(permitted.empty());
  const vlm::processor_counts counts = vlm::count_processors();
  EXPECT_GE(counts.performance, 1);
  EXPECT_LE(counts.performance, counts.physical);
  EXPECT_LE(counts.physical, counts.logical);
  EXPECT_LE(counts.logical, static_cast<int32_t>(permitted.size()));
}

}  // namespace
