// Faults it is meant to catch: creations or deletions that pass the table by; a second deletion that frees; leaks not reported or
// reported for arrays in expressions; records that a cleared check keeps.
#include "velorim/memory_check.h"

#include <string>

#include "support/array_fixture.h"

namespace {

std::vector<std::string> messages;
void note(const char* message) { messages.emplace_back(message); }

class MemoryCheck : public vlm_test::ArrayTest {
 protected:
  void SetUp() override {
    ArrayTest::SetUp();
    messages.clear();
  }
  static MNumericArray* vector_of(mint length) {
    return MNumericArray_newAllocatedCommon(MNumericArrayTypeReal32, 1, &length, FailFatal);
  }
};

TEST_F(MemoryCheck, ReportsDoubleFreesStrangersAndLeaks) {
  MNumericArray* const before = vector_of(3);
  initializeTensorMemoryCheck(note);
  MNumericArray* const deleted = vector_of(4);
  MNumericArray* const leaked = vector_of(5);
  MNumericArray* const in_expression = vector_of(6);
  in_expression->flags |= ArrayFlagInExpr;
  MNumericArray_delete(deleted);
  EXPECT_TRUE(messages.empty());
  EXPECT_EQ(deleted->flattenedLength, 4) << "the record stays";
  MNumericArray_delete(deleted);
  EXPECT_EQ(messages, std::vector<std::string>{"MTensor has already been freed"});
  MNumericArray_delete(before);
  EXPECT_EQ(messages.back(), "MTensor cannot be found");
  TensorMemory_addNew(leaked);
  EXPECT_EQ(messages.back(), "MTensor already created");
  messages.clear();
  runTensorMemoryCheck(0);
  EXPECT_EQ(trackTensorMemory, 0);
  EXPECT_EQ(messages, (std::vector<std::string>{"MTensor not freed", "MTensor not freed"}))
      << "entered twice";
  runTensorMemoryCheck(1);
  in_expression->flags &= ~static_cast<uint32_t>(ArrayFlagInExpr);
  for (MNumericArray* array : {before, leaked, in_expression}) MNumericArray_delete(array);
}

TEST_F(MemoryCheck, AFlagWithoutATableIsOff) {
  trackTensorMemory = 1;
  MNumericArray_delete(vector_of(2));
  trackTensorMemory = 0;
  runTensorMemoryCheck(1);
  EXPECT_TRUE(messages.empty());
}

}  // namespace
