// The process's one pool, and how calls share it.
//
// A call enters the pool for its whole length and may claim its workers. The pool is made anew at another
// thread number only while no call is in it, so that a second call can never take the pool from under the
// first.
#pragma once

#include "Arithmetic/Parallel/pool_environment.h"
#include "Arithmetic/Parallel/settings.h"

namespace vlm::parallel {

enum class entry { renew, as_it_is };

class pool_call {
 public:
  /// renew: makes the pool, or makes it anew at a changed thread number, and clears the cancel mark if no
  /// call has claimed it. as_it_is: no more than enters; environment() is null if there is no pool.
  explicit pool_call(entry how);
  ~pool_call();
  pool_call(const pool_call&) = delete;
  pool_call& operator=(const pool_call&) = delete;

  ParallelThreadsEnvironment* environment() const { return environment_; }

  /// Claims the workers until finish(); false if another call has them.
  bool claim();

  /// Gives the claim back, if there is one. The result is the cancel code, 0 if the call was not canceled.
  int32_t finish();

 private:
  ParallelThreadsEnvironment* environment_;
  bool claimed_ = false;
};

/// True if the process has a pool.
bool pool_exists();

/// Once per process: a forked child then forgets the pool and the team, whose threads it does not have.
void register_fork_handlers();

}  // namespace vlm::parallel
