// The thread-local key of the shared rank-0 arrays.
#include "Runtime/hooks.h"
#include "velorim/thread.h"

namespace vlm {
namespace {
KThreadLocalStorage* shared_rank0_key = nullptr;
}

// A second initialisation keeps the key, and with it what the threads hold under it.
void shared_rank0_key_create() {
  if (shared_rank0_key == nullptr) shared_rank0_key = New_KThreadLocalStorage();
}

void shared_rank0_key_delete() {
  if (shared_rank0_key == nullptr) return;
  Delete_KThreadLocalStorage(shared_rank0_key);
  shared_rank0_key = nullptr;
}

}  // namespace vlm
