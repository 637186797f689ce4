// Faults it is meant to catch: a wrong constant, rotation or order of steps; a tail that is skipped or read twice; an exported form with
// the wrong seed; bounded hashes that look at the wrong end; reals that differ below the kept bits and hash apart.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "Hash/hash_rules.h"
#include "Hash/murmur3.h"
#include "support/array_fixture.h"
#include "velorim/hash.h"

namespace {

using bytes = std::vector<uint8_t>;

bytes numbered(size_t length) {
  bytes data(length);
  for (size_t i = 0; i < length; ++i) data[i] = static_cast<uint8_t>(7 * i + 3);
  return data;
}

TEST(HashFunctions, PublishedVectors) {
  const char check[] = "123456789";
  EXPECT_EQ(crc_32_hash(check, 9), 0xCBF43926u);
  EXPECT_EQ(crc_32_hash("abc", 3), 0x352441C2u);
  EXPECT_EQ(crc_64_hash(check, 9), 0x6C40DF5F0B497347u);
  EXPECT_EQ(crc_32_hash(nullptr, 0), 0u);
  EXPECT_EQ(crc_64_hash(nullptr, 0), 0u);
}

TEST(HashFunctions, ChecksumsAgreeWithTheirBitwiseDefinition) {
  for (size_t length = 0; length < 70; ++length) {
    const bytes data = numbered(length);
    uint32_t r32 = ~uint32_t{0};
    uint64_t r64 = 0;
    for (const uint8_t byte : data) {
      r32 ^= byte;
      r64 ^= uint64_t{byte} << 56;
      for (int bit = 0; bit < 8; ++bit) {
        r32 = r32 >> 1 ^ (r32 & 1 ? 0xEDB88320 : 0);
        r64 = r64 << 1 ^ (r64 >> 63 ? 0x42F0E1EBA9EA3693 : 0);
      }
    }
    EXPECT_EQ(crc_32_hash(data.data(), length), static_cast<uint32_t>(~r32)) << length;
    EXPECT_EQ(crc_64_hash(data.data(), length), r64) << length;
  }
}

/// The digest of a form that its author's test suite states: keys of 0 to 255 bytes under falling seeds, then their hashes as a key.
template <class Hash> uint32_t verification_value(Hash hash) {
  bytes key, digests;
  for (uint32_t i = 0; i < 256; ++i) {
    const auto h = hash(key.data(), i, 256 - i);
    const auto* const first = reinterpret_cast<const uint8_t*>(&h);
    digests.insert(digests.end(), first, first + sizeof h);
    key.push_back(static_cast<uint8_t>(i));
  }
  const auto h = hash(digests.data(), digests.size(), 0);
  uint32_t value;
  std::memcpy(&value, &h, sizeof value);
  return value;
}

TEST(HashFunctions, MurmurFormsHaveTheirVerificationValues) {
  using namespace vlm::murmur3;
  EXPECT_EQ(verification_value(x86_32), 0xB0F57EE3u);
  EXPECT_EQ(verification_value(x86_128), 0xB3ECE62Au);
  EXPECT_EQ(verification_value([](const void* d, uint64_t n, uint32_t seed) { return x64_128(d, n, seed); }),
            0x6384BA69u);
  const bytes data = numbered(128);
  EXPECT_EQ(murmur3_32_hash(data.data(), 127), x86_32(data.data(), 127, 0x4370DD55));
  const auto wide = x86_128(data.data(), 128, 0xFC7560E0);
  EXPECT_EQ(murmur3_32_hash(data.data(), 128), uint64_t{wide[0] ^ wide[1] ^ wide[2] ^ wide[3]});
  const auto halves = x64_128(data.data(), 77, 0x6641F5B030CFFB2C);
  EXPECT_EQ(murmur3_64_128_hash(data.data(), 77), halves[0] ^ halves[1]);
}

TEST(HashFunctions, MetroAgreesWithAModelInPython) {
  EXPECT_EQ(metro_64_hash(nullptr, 0), 0x4603428CB9878E7Du);
  EXPECT_EQ(metro_64_hash("a", 1), 0xA28B7BF25345CC9Du);
  uint64_t digest = 0;
  for (size_t length = 0; length <= 130; ++length) {
    const bytes data = numbered(length);
    digest = digest * 0x9E3779B97F4A7C15 + metro_64_hash(data.data(), length);
    const uint64_t h = metro_64_hash(data.data(), length);
    EXPECT_EQ(metro_32_hash(data.data(), length), (h ^ h >> 32) & 0xFFFFFFFF);
  }
  EXPECT_EQ(digest, 0xE3BE3FE49EE7D1C0u);
}

class TensorHash : public vlm_test::ArrayTest {
 protected:
  TensorHash() {
    vlm::hash_settings_hook(0);
    vlm::tensor_hash_hook(0);
  }
  ~TensorHash() override { vlm::hash_settings_hook(0); }

  template <class T> static uint64_t of(std::vector<mint> dims, std::vector<T> values, double tolerance = 0) {
    constexpr int32_t type = sizeof(T) == 16               ? MTensorTypeComplex
                             : std::is_floating_point_v<T> ? MTensorTypeReal
                                                           : MTensorTypeInteger;
    const vlm_test::array_ptr tensor(
        MTensor_newCopyFromDataArray(type, static_cast<mint>(dims.size()), dims.data(), values.data()));
    return MTensor_hash(tensor.get(), 99, tolerance);
  }
};

TEST_F(TensorHash, FollowsTheLevels) {
  using vlm::hash::combine, vlm::hash::of_integer;
  const uint64_t row = combine(combine(combine(99, 2), of_integer(5)), of_integer(6));
  const uint64_t other = combine(combine(combine(99, 2), of_integer(7)), of_integer(8));
  EXPECT_EQ(of<mint>({2, 2}, {5, 6, 7, 8}), combine(combine(combine(99, 2), row), other));
  EXPECT_EQ(of<mint>({}, {5}), combine(99, of_integer(5)));
  EXPECT_NE(of<mint>({4}, {1, 2, 3, 4}), of<mint>({2, 2}, {1, 2, 3, 4}));
  EXPECT_NE(of<mint>({1}, {1}), of<double>({1}, {1.0}));
  EXPECT_EQ(MTensor_hash(nullptr, 1, 1), 0u);
}

TEST_F(TensorHash, TolerancesRoundTheSignificand) {
  const double x = 1.5, next = std::nextafter(x, 2), inf = std::numeric_limits<double>::infinity();
  const auto at = [](double v, double tolerance) { return of<double>({1}, {v}, tolerance); };
  EXPECT_NE(at(0.0, 0), at(-0.0, 0));
  EXPECT_EQ(at(0.0, 1), at(-0.0, 1));
  EXPECT_NE(at(x, 0), at(next, 0));
  EXPECT_EQ(at(x, 2), at(next, 2));
  EXPECT_NE(at(x, 2), at(x + 0x1p-48, 2));
  EXPECT_EQ(at(x, 0.25), at(123.0, 0.25));  // 53 kept bits count as none
  EXPECT_EQ(at(x, 60), at(-7.0, 60));
  EXPECT_EQ(at(inf, 1), at(std::numeric_limits<double>::max(), 1));
  EXPECT_EQ(at(x, std::nan("")), at(x, 0));
}

TEST_F(TensorHash, ThresholdsLookAtTheEnds) {
  HashArrayLengthThreshold = 1;
  EXPECT_NE(of<mint>({2}, {1, 2}), of<mint>({2}, {1, 3}));
  EXPECT_EQ(of<mint>({4}, {1, 2, 3, 4}), of<mint>({4}, {1, 8, 9, 4}));
  EXPECT_NE(of<mint>({4}, {1, 2, 3, 4}), of<mint>({4}, {1, 2, 3, 5}));
  EXPECT_EQ(of<mint>({4, 1}, {1, 2, 3, 4}), of<mint>({4, 1}, {1, 8, 9, 4}));
  HashByteLengthThreshold = 3;
  const bytes data = numbered(8);
  const uint64_t length = 8;
  uint64_t h = metro_64_hash(data.data(), 3);
  h = vlm::hash::combine(h, metro_64_hash(data.data() + 5, 3));
  EXPECT_EQ(vlm::hash::bounded(data.data(), 8), vlm::hash::combine(h, metro_64_hash(&length, 8)));
  EXPECT_EQ(vlm::hash::bounded(data.data(), 7), metro_64_hash(data.data(), 7));
}

}  // namespace
