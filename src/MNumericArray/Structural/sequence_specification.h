// The sequence specifications of an operation, one for each of the first dimensions of its source.
#pragma once

#include "MNumericArray/Allocate/array_record.h"
#include "Memory/working_space.h"
#include "velorim/status.h"
#include "velorim/structural.h"

namespace vlm {

struct sequence {
  mint start;  ///< one-based, as the other two
  mint end;
  mint step;
  mint count;
  mint stride;  ///< elements from one index of the dimension to the next
};

class sequence_list {
 public:
  sequence_list(const MNumericArray* source, mint n);
  /// 0; 403; 4 for a specification that is not valid in its dimension.
  int32_t normalize(const mint* starts, const mint* ends, const mint* steps, const uint32_t* flags);
  const sequence& operator[](mint i) const { return items_[static_cast<uint64_t>(i)]; }
  sequence& operator[](mint i) { return items_[static_cast<uint64_t>(i)]; }

 private:
  memory::working_space<sequence> items_;
  const MNumericArray* source_;
};

}  // namespace vlm
