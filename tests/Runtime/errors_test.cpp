// Catches: a code with the wrong name, or none at a border of the table; a style that reports elsewhere than it should; a frame
// that loses or doubles a report, or leaves the thread's state other than it found it, whatever the styles around it; a frame
// that swallows foreign exceptions; locals spoilt by a jump; nodes and records that leak; state shared between threads.
#include "velorim/errors.h"

#include <gtest/gtest.h>

#include <csetjmp>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>

#include "support/allocation_balance.h"
#include "velorim/memory.h"
#include "velorim/runtime.h"

// What must let exceptions pass, and nothing else.
static_assert(!noexcept(throwVelorimException(1)) && !noexcept(catchExceptionHandler(nullptr, nullptr)));
static_assert(!noexcept(VelorimCompiler_CatchBase(nullptr, nullptr, nullptr, nullptr, nullptr)));
static_assert(!noexcept(checkAbortWatchThrow()) && !noexcept(Unwind_Resume_Velorim(nullptr)));
static_assert(noexcept(setExceptionStyle(0)) && noexcept(checkAbortWatch()) && noexcept(SetJumpStack_Pop()));

namespace {

constexpr uint32_t throw_class = 0, flag = 1, long_jump = 2;
constexpr uint32_t all_styles[] = {throw_class, flag, long_jump};

/// A function as compiled code hands it to a frame: an object whose first word leads to the code. Trivial, since jumps pass it.
template <class Body> struct compiled_function {
  struct code {
    void (*run)(void* argument, void* handler);
  };
  const code* record;
  const Body* body;

  static void run(void* argument, void* handler) {
    auto* self = static_cast<compiled_function*>(handler);
    (*self->body)(argument);
  }
};

template <class Body> CompilerError* run_in_frame(const Body& body, void* argument = nullptr) {
  static constexpr typename compiled_function<Body>::code code{compiled_function<Body>::run};
  compiled_function<Body> function{&code, &body};
  return catchExceptionHandler(argument, &function);
}

/// The code that a frame around body received, -1 for none.
template <class Body> int64_t received(const Body& body) {
  CompilerError* error = run_in_frame([&](void*) { body(); });
  if (error == nullptr) return -1;
  EXPECT_EQ(error->type, 4);
  const int32_t code = error->code;
  Delete_CompilerError(error);
  return code;
}

class Errors : public testing::Test {
 protected:
  void SetUp() override {
    InitializeRuntimeLibrary();
    setExceptionStyle(flag);
    setExceptionActive(0);
    setKernelAbortEnabled(0);
    in_use_ = vlm::test::bytes_of_blocks();
  }
  void TearDown() override {
    expect_state(0, 0, nullptr);
    EXPECT_EQ(vlm::test::bytes_of_blocks(), in_use_);
    setExceptionStyle(flag);
    DeinitializeRuntimeLibrary(1);
  }
  static void expect_state(uint32_t active, uint32_t abort_enabled, const void* top) {
    EXPECT_EQ(getExceptionActive(), active);
    EXPECT_EQ(*getKernelAbortEnabled(), abort_enabled);
    EXPECT_EQ(SetJumpStack_Peek(), top);
  }

 private:
  int64_t in_use_ = 0;
};

TEST_F(Errors, NamesAtTheBordersOfTheTable) {
  const auto name = [](uint32_t code) { return std::string(VelorimRuntimeException(code).what()); };
  EXPECT_EQ(name(0), "success");
  EXPECT_EQ(name(13), "argument");
  EXPECT_EQ(name(VelorimError_divide_by_zero), "divide_by_zero");
  EXPECT_EQ(name(VelorimError_memory), "memory");
  EXPECT_EQ(name(VelorimError_abort), "abort");
  EXPECT_EQ(name(VelorimError_cast), "cast");
  EXPECT_EQ(name(46), "arraycreation");
  for (uint32_t code = 47; code <= 96; ++code) EXPECT_EQ(name(code), "reserved_" + std::to_string(code - 46));
  EXPECT_EQ(name(97), "error_unknown");
  EXPECT_EQ(name(0xFFFFFFFF), "error_unknown");
}

// Reported before main, in the style that the library was loaded with; the code stays in the thread's state.
const int32_t reported_at_load = throwVelorimException(13);
const uint32_t stored_at_load = setExceptionActive(0);

TEST_F(Errors, TheStyleAtLoadTimeIsTheFlag) {
  EXPECT_EQ(reported_at_load, 13);
  EXPECT_EQ(stored_at_load, 13u);
}

TEST_F(Errors, AThreadStartsWithNothingAndKeepsItsOwn) {
  uint32_t active = 0;
  std::thread([&] {
    expect_state(0, 0, nullptr);
    throwVelorimException(13);
    active = getExceptionActive();
  }).join();
  EXPECT_EQ(active, 13u);
  EXPECT_EQ(getExceptionActive(), 0u);
}

TEST_F(Errors, SettersGiveTheOldValueAndHandlesTheAddress) {
  EXPECT_EQ(setExceptionActive(7), 0u);
  EXPECT_EQ(*getExceptionActiveHandle(), 7u);
  *getExceptionActiveHandle() = 9;
  EXPECT_EQ(setExceptionActive(0), 9u);
  EXPECT_EQ(setKernelAbortEnabled(3), 0u);
  EXPECT_EQ(setKernelAbortEnabled(0), 3u);
}

TEST_F(Errors, JumpStackIsAList) {
  int first = 0, second = 0;
  void** head = SetJumpStack_Push(&first);
  const void* bottom = *head;
  EXPECT_EQ(SetJumpStack_Push(&second), head);
  EXPECT_NE(*head, bottom);
  EXPECT_EQ(SetJumpStack_Peek(), &second);
  void* words[2];
  std::memcpy(words, *head, sizeof words);
  EXPECT_EQ(words[0], &second);
  EXPECT_EQ(words[1], bottom);
  SetJumpStack_Pop();
  EXPECT_EQ(SetJumpStack_Peek(), &first);
  SetJumpStack_Pop();
  EXPECT_EQ(*head, nullptr);
}

TEST_F(Errors, AFramePassesTheArgumentsAndEnablesAborts) {
  for (uint32_t style : {0u, 1u, 2u, 3u, 0xFFFFFFFFu}) {
    setExceptionStyle(style);
    setExceptionActive(5);
    int argument = 0;
    bool ran = false;
    CompilerError* error = run_in_frame(
        [&](void* given) {
          ran = given == &argument && *getKernelAbortEnabled() == 1;
          EXPECT_EQ(SetJumpStack_Peek() != nullptr, style == long_jump);
        },
        &argument);
    EXPECT_EQ(error, nullptr);
    EXPECT_TRUE(ran);
    expect_state(5, 0, nullptr);
    setExceptionActive(0);
  }
}

TEST_F(Errors, AFrameReceivesAReportInEveryStyle) {
  for (uint32_t style : {0u, 1u, 2u, 3u}) {
    setExceptionStyle(style);
    for (int32_t code : {1, 13, 34, 96, 1000, -1}) {
      const bool goes_on = style == flag;
      bool went_on = false;
      EXPECT_EQ(received([&] {
                  throwVelorimException(code);
                  went_on = true;
                }),
                code);
      EXPECT_EQ(went_on, goes_on) << "style " << style;
    }
  }
}

void base_function(void* a, void* b, void* c, void* d) {
  *static_cast<int*>(b) = 2;
  *static_cast<int*>(c) = 3;
  *static_cast<int*>(d) = 4;
  if (*static_cast<int*>(a) != 0) throwVelorimException(*static_cast<int*>(a));
}

TEST_F(Errors, CatchBaseAnswersOneForAReport) {
  for (uint32_t style : all_styles) {
    setExceptionStyle(style);
    for (int report : {0, 13}) {
      int b = 0, c = 0, d = 0;
      EXPECT_EQ(VelorimCompiler_CatchBase(base_function, &report, &b, &c, &d), report != 0);
      EXPECT_EQ(b * 100 + c * 10 + d, 234);
      expect_state(0, 0, nullptr);
    }
  }
}

// Each frame with its style set by the one that enters it: all mixes, reports in none, either and both.
TEST_F(Errors, FramesNestInEveryMixOfStyles) {
  for (uint32_t outer : all_styles) {
    for (uint32_t inner : all_styles) {
      for (int32_t inner_code : {0, 21}) {
        for (int32_t outer_code : {0, 43}) {
          SCOPED_TRACE(testing::Message() << outer << inner << " codes " << inner_code << ' ' << outer_code);
          setExceptionStyle(outer);
          setExceptionActive(6);
          setKernelAbortEnabled(2);
          int64_t inner_received = -2;
          const int64_t outer_received = received([&] {
            const void* top = SetJumpStack_Peek();
            const uint32_t active = getExceptionActive();
            setExceptionStyle(inner);
            inner_received = received([&] {
              if (inner_code != 0) throwVelorimException(inner_code);
            });
            expect_state(active, 1, top);
            setExceptionStyle(outer);
            if (outer_code != 0) throwVelorimException(outer_code);
          });
          EXPECT_EQ(inner_received, inner_code != 0 ? inner_code : -1);
          EXPECT_EQ(outer_received, outer_code != 0 ? outer_code : -1);
          expect_state(6, 2, nullptr);
          setExceptionActive(0);
          setKernelAbortEnabled(0);
        }
      }
    }
  }
}

// The style changes inside a frame, between its entry and the report, and stays so.
TEST_F(Errors, AStyleThatChangesInsideAFrame) {
  for (uint32_t entered : all_styles) {
    SCOPED_TRACE(entered);
    setExceptionActive(6);
    setExceptionStyle(entered);
    EXPECT_EQ(received([] {
                setExceptionStyle(throw_class);
                throwVelorimException(17);
              }),
              17);
    expect_state(6, 0, nullptr);

    setExceptionStyle(entered);
    EXPECT_EQ(received([] {
                setExceptionStyle(flag);
                throwVelorimException(18);
              }),
              18);
    expect_state(6, 0, nullptr);

    setExceptionStyle(entered);  // no report: the code that was there before is not taken for one
    EXPECT_EQ(received([] { setExceptionStyle(flag); }), -1);
    expect_state(6, 0, nullptr);
    setExceptionActive(0);
  }
  setExceptionStyle(flag);  // stored, then the style goes on to another: the report is not lost
  EXPECT_EQ(received([] {
              throwVelorimException(19);
              setExceptionStyle(throw_class);
            }),
            19);
}

// A jump to an outer frame passes inner frames that were entered in other styles.
TEST_F(Errors, AJumpPassesInnerFramesOfOtherStyles) {
  for (uint32_t inner : {throw_class, flag}) {
    setExceptionStyle(long_jump);
    setExceptionActive(6);
    EXPECT_EQ(received([&] {
                setExceptionStyle(inner);
                received([] {
                  setExceptionStyle(long_jump);
                  throwVelorimException(20);
                });
                ADD_FAILURE() << "the jump ended in the inner frame";
              }),
              20);
    expect_state(6, 0, nullptr);
    setExceptionActive(0);
  }
}

TEST_F(Errors, ForeignExceptionsPassAndLeaveNothingBehind) {
  for (uint32_t style : all_styles) {
    setExceptionStyle(style);
    setExceptionActive(style == flag ? 6 : 0);
    int reached = 0;
    EXPECT_THROW(received([&] {
                   ++reached;
                   received([] { throw std::runtime_error("foreign"); });
                   ++reached;
                 }),
                 std::runtime_error);
    EXPECT_EQ(reached, 1);
    expect_state(style == flag ? 6 : 0, 0, nullptr);
    setExceptionActive(0);
  }
}

// Buffers that compiled code pushed itself and never took off go when the frame around them ends.
TEST_F(Errors, AFrameDropsBuffersLeftBehind) {
  for (uint32_t style : {throw_class, long_jump}) {
    setExceptionStyle(style);
    static std::jmp_buf own;
    EXPECT_EQ(received([] {
                if (setjmp(own) != 0) throwVelorimException(22);
                SetJumpStack_Push(&own);
                SetJumpStack_Push(&own);
                SetJumpStack_Pop();
                SetJumpStack_Pop();
                SetJumpStack_Push(&own);
                setExceptionStyle(throw_class);
                throwVelorimException(23);
              }),
              23);
    expect_state(0, 0, nullptr);
  }
}

// A caller's locals that do not change hold their values across a jump, at whatever depth.
TEST_F(Errors, DeepFramesInStyleTwo) {
  setExceptionStyle(long_jump);
  struct recursion {
    static int64_t descend(int depth) {
      const int mine = depth * 3 + 1;
      const int64_t got = received([&] {
        if (depth < 50) {
          EXPECT_EQ(descend(depth + 1), (depth + 1) * 3 + 1);
        }
        throwVelorimException(mine);
      });
      EXPECT_EQ(got, mine);
      return got;
    }
  };
  EXPECT_EQ(recursion::descend(0), 1);
}

TEST_F(Errors, ReportsOfOneThreadAreNotSeenByAnother) {
  setExceptionStyle(long_jump);
  EXPECT_EQ(received([] {
              std::thread([] {
                EXPECT_EQ(SetJumpStack_Peek(), nullptr);
                EXPECT_EQ(received([] { throwVelorimException(14); }), 14);
              }).join();
              EXPECT_NE(SetJumpStack_Peek(), nullptr);
            }),
            -1);
}

TEST_F(Errors, AJumpWithoutABufferEndsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        setExceptionStyle(long_jump);
        throwVelorimException(13);
      },
      "");
}

TEST_F(Errors, CompilerErrorRecords) {
  CompilerError* error = New_CompilerError(9, -3);
  EXPECT_EQ(error->type, 9);
  EXPECT_EQ(error->code, -3);
  Delete_CompilerError(error);
  Delete_CompilerError(CompilerError_null());
  EXPECT_EQ(CompilerError_null(), nullptr);
}

}  // namespace
