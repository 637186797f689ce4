// Faults to catch: a value read through the wrong member; an imaginary part left as it was; a refused widening that changes the
// number; integers beyond 2^53 rounded other than to nearest.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "velorim/array.h"

namespace {

IDCNum number(int64_t tag) {
  IDCNum made;
  std::memset(&made, 0xFF, sizeof made);
  made.tag = tag;
  if (tag == MTensorTypeInteger) made.value.integer = -5;
  if (tag == MTensorTypeReal) made.value.real = 2.5;
  if (tag == MTensorTypeComplex) made.value.complex = {2.5, -1.0};
  return made;
}

TEST(TaggedNumber, Widens) {
  IDCNum n = number(2);
  EXPECT_EQ(IDCNumToType(&n, 3), 0);
  EXPECT_EQ(n.tag, 3);
  EXPECT_EQ(n.value.real, -5.0);
  for (int64_t from : {2, 3}) {
    n = number(from);
    EXPECT_EQ(IDCNumToType(&n, 4), 0);
    EXPECT_EQ(n.tag, 4);
    EXPECT_EQ(n.value.complex.re, from == 2 ? -5.0 : 2.5);
    uint64_t imaginary = 1;
    std::memcpy(&imaginary, &n.value.complex.im, sizeof imaginary);
    EXPECT_EQ(imaginary, 0u);
  }
}

TEST(TaggedNumber, RoundsLargeIntegersToNearestEven) {
  const mint exact = mint{1} << 53;
  const std::pair<mint, double> cases[] = {{exact + 1, 9007199254740992.0},
                                           {exact + 3, 9007199254740996.0},
                                           {std::numeric_limits<mint>::max(), 9223372036854775808.0},
                                           {std::numeric_limits<mint>::min(), -9223372036854775808.0}};
  for (const auto& [integer, real] : cases) {
    for (int32_t target : {3, 4}) {
      IDCNum n = number(2);
      n.value.integer = integer;
      EXPECT_EQ(IDCNumToType(&n, target), 0);
      EXPECT_EQ(target == 3 ? n.value.real : n.value.complex.re, real);
    }
  }
}

TEST(TaggedNumber, LeavesTheNumberWhereItCannotWiden) {
  struct attempt {
    int64_t tag;
    int32_t target, result;
  };
  const attempt attempts[] = {{2, 2, 0}, {3, 3, 0}, {4, 4, 0}, {4, 3, 1}, {3, 2, 1}, {4, 2, 1},
                              {2, 1, 1}, {2, 0, 1}, {2, 5, 1}, {3, 9, 1}, {7, 7, 0}, {1, 3, 0},
                              {9, 3, 0}, {1, 4, 0}, {9, 4, 0}, {9, 2, 1}};
  for (const attempt& a : attempts) {
    IDCNum n = number(a.tag);
    const IDCNum before = n;
    EXPECT_EQ(IDCNumToType(&n, a.target), a.result) << a.tag << " to " << a.target;
    EXPECT_EQ(std::memcmp(&n, &before, sizeof n), 0) << a.tag << " to " << a.target;
  }
}

}  // namespace
