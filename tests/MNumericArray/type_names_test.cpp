// Faults to catch: a name missing, misspelt or under another code; a name of one vocabulary accepted by the other; a prefix or
// another letter case accepted; maps that are still used, or leak, after they were freed.
#include <map>
#include <set>
#include <string>

#include "Runtime/hooks.h"
#include "support/array_fixture.h"

using namespace vlm_test;

namespace {

using names = std::map<std::string, int>;

const names& array_names() {
  static const names list = {{"Integer8", 1},
                             {"SignedInteger8", 1},
                             {"signed char", 1},
                             {"UnsignedInteger8", 2},
                             {"Byte", 2},
                             {"Character8", 2},
                             {"char", 2},
                             {"unsigned char", 2},
                             {"UBIT8", 2},
                             {"Integer16", 3},
                             {"SignedInteger16", 3},
                             {"signed short", 3},
                             {"UnsignedInteger16", 4},
                             {"Bit16", 4},
                             {"Character16", 4},
                             {"Short", 4},
                             {"short", 4},
                             {"unsigned short", 4},
                             {"UBIT16", 4},
                             {"Integer32", 5},
                             {"SignedInteger32", 5},
                             {"int", 5},
                             {"UnsignedInteger32", 6},
                             {"Character32", 6},
                             {"Integer64", 7},
                             {"SignedInteger64", 7},
                             {"MachineInteger", 7},
                             {"UnsignedInteger64", 8},
                             {"Character64", 8},
                             {"UnsignedMachineInteger", 8},
                             {"Real32", 9},
                             {"Float", 9},
                             {"float", 9},
                             {"Real64", 10},
                             {"Double", 10},
                             {"double", 10},
                             {"MachineReal", 10},
                             {"ComplexReal32", 11},
                             {"Complex64", 11},
                             {"complexreal32", 11},
                             {"ComplexReal64", 12},
                             {"Complex128", 12},
                             {"complexreal64", 12},
                             {"MachineComplexReal", 12},
                             {"Real16", 13},
                             {"Half", 13},
                             {"half", 13}};
  return list;
}

const names& raw_names() {
  static const names list = {{"Integer8", 1},
                             {"SignedInteger8", 1},
                             {"signed char", 1},
                             {"UnsignedInteger8", 2},
                             {"Byte", 2},
                             {"Character8", 2},
                             {"char", 2},
                             {"unsigned char", 2},
                             {"UBIT8", 2},
                             {"Integer16", 3},
                             {"SignedInteger16", 3},
                             {"signed short", 3},
                             {"UnsignedInteger16", 4},
                             {"Bit16", 4},
                             {"Character16", 4},
                             {"Short", 4},
                             {"short", 4},
                             {"unsigned short", 4},
                             {"UBIT16", 4},
                             {"Integer32", 5},
                             {"SignedInteger32", 5},
                             {"Integer", 5},
                             {"int", 5},
                             {"UnsignedInteger32", 6},
                             {"Character32", 6},
                             {"Integer64", 7},
                             {"SignedInteger64", 7},
                             {"UnsignedInteger64", 8},
                             {"Character64", 8},
                             {"Real32", 9},
                             {"Float", 9},
                             {"float", 9},
                             {"Real64", 10},
                             {"Real", 10},
                             {"Double", 10},
                             {"double", 10},
                             {"Complex64", 11},
                             {"ComplexReal32", 11},
                             {"complexreal32", 11},
                             {"Complex128", 12},
                             {"ComplexReal64", 12},
                             {"complexreal64", 12},
                             {"Complex", 12},
                             {"mcomplex", 12}};
  return list;
}

const names& methods() {
  static const names list = {{"Check", 1}, {"ClipAndCheck", 2}, {"Coerce", 3}, {"ClipAndCoerce", 4},
                             {"Round", 5}, {"ClipAndRound", 6}, {"Scale", 7},  {"ClipAndScale", 8},
                             {"Cast", 9},  {"ClipAndCast", 10}};
  return list;
}

/// Every name of the three lists and its near misses, looked up in one list; what is not in it must give 0.
template <class Lookup> void expect_lookups(const names& accepted, Lookup lookup) {
  std::set<std::string> asked = {"", " ", "integer8", "INTEGER8", "Real128", "Integer128", "Zzz"};
  for (const names* list : {&array_names(), &raw_names(), &methods()}) {
    for (const auto& [name, code] : *list) {
      asked.insert(
          {name, name + " ", " " + name, name + "x", name.substr(0, name.size() - 1), name.substr(1)});
    }
  }
  for (const std::string& name : asked) {
    const auto found = accepted.find(name);
    EXPECT_EQ(lookup(name.c_str()), found == accepted.end() ? 0 : found->second) << '"' << name << '"';
  }
  EXPECT_EQ(lookup(nullptr), 0);
}

class TypeNames : public ArrayTest {};

TEST_F(TypeNames, EveryAcceptedNameAndNoOther) {
  expect_lookups(array_names(), MNumericArrayType_fromString);
  expect_lookups(raw_names(), MRawArrayType_fromString);
  expect_lookups(methods(), MNumericArrayConvertMethod_fromString);
}

TEST_F(TypeNames, CodesHaveTheirFirstNames) {
  const char* const arrayNames[] = {"Integer8",      "UnsignedInteger8",
                                    "Integer16",     "UnsignedInteger16",
                                    "Integer32",     "UnsignedInteger32",
                                    "Integer64",     "UnsignedInteger64",
                                    "Real32",        "Real64",
                                    "ComplexReal32", "ComplexReal64",
                                    "Real16"};
  for (int code = 1; code <= 13; ++code) EXPECT_STREQ(MNumericArrayTypeString(code), arrayNames[code - 1]);
  for (int code = 1; code <= 10; ++code) EXPECT_STREQ(MRawArrayTypeString(code), arrayNames[code - 1]);
  EXPECT_STREQ(MRawArrayTypeString(11), "Complex64");
  EXPECT_STREQ(MRawArrayTypeString(12), "Complex128");
  EXPECT_EQ(MRawArrayTypeString(13), nullptr);
  for (const auto& [name, code] : methods()) EXPECT_EQ(MNumericArrayConvertMethodString(code), name);
  for (int code : {-1, 0, 14, 1 << 30}) {
    EXPECT_EQ(MNumericArrayTypeString(code), nullptr);
    EXPECT_EQ(MRawArrayTypeString(code), nullptr);
    EXPECT_EQ(MNumericArrayConvertMethodString(code), nullptr);
  }
  EXPECT_EQ(MNumericArrayConvertMethodString(11), nullptr);
}

TEST_F(TypeNames, MapsComeAndGo) {
  vlm::array_names_free();
  EXPECT_EQ(MNumericArrayType_fromString("Integer8"), 0);
  EXPECT_EQ(MNumericArrayConvertMethod_fromString("Cast"), 0);
  EXPECT_EQ(MRawArrayType_fromString("Integer8"), 1);
  vlm::array_names_free();
  vlm::array_names_build();
  vlm::array_names_build();
  EXPECT_EQ(MNumericArrayType_fromString("Half"), 13);
  EXPECT_EQ(MNumericArrayConvertMethod_fromString("ClipAndCast"), 10);
}

}  // namespace
