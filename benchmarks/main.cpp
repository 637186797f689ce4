// Runs the benchmarks: velorim_benchmarks --benchmark_filter=REGEX --benchmark_format=json and the other
// options of Google Benchmark. Exits with 1 if a benchmark found wrong results.
#include "support.h"

namespace {

/// Prints as usual and remembers whether a benchmark ended with an error.
class watching_reporter : public benchmark::BenchmarkReporter {
 public:
  explicit watching_reporter(benchmark::BenchmarkReporter* inner) : inner_(inner) {}

  bool ReportContext(const Context& context) override { return inner_->ReportContext(context); }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) failed_ = failed_ || run.error_occurred;
    inner_->ReportRuns(runs);
  }
  void Finalize() override { inner_->Finalize(); }
  bool failed() const { return failed_; }

 private:
  benchmark::BenchmarkReporter* inner_;
  bool failed_ = false;
};

}  // namespace

int main(int argc, char** argv) {
  VelorimRTL_initialize();
  bench::register_elementary();
  bench::register_integer();
  bench::register_complex();
  bench::register_lengths();
  bench::register_threads();
  bench::register_front_ends();
  bench::register_conversion();
  benchmark::Initialize(&argc, argv);
  int status = 0;
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    status = 2;
  } else {
    benchmark::BenchmarkReporter* inner = benchmark::CreateDefaultDisplayReporter();
    watching_reporter reporter(inner);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    status = reporter.failed() ? 1 : 0;
    delete inner;
  }
  benchmark::Shutdown();
  DeinitializeRuntimeLibrary(1);
  return status;
}
