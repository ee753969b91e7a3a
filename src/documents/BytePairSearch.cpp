#include "documents/BytePairSearch.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace {

using Bytes32 = signed char __attribute__((vector_size(32)));
constexpr std::size_t kVectors = 4;
constexpr std::size_t kBlock = kVectors * sizeof(Bytes32);

// The index of the first byte that is not 0 in a block that has one.
inline std::size_t FirstMarked(const Bytes32 (&hits)[kVectors]) {
  std::uint64_t words[kBlock / sizeof(std::uint64_t)];
  std::memcpy(words, hits, sizeof words);
  std::size_t index = 0;
  while (words[index] == 0) ++index;
  const int bits = std::endian::native == std::endian::little ? std::countr_zero(words[index])
                                                              : std::countl_zero(words[index]);
  return index * sizeof(std::uint64_t) + static_cast<std::size_t>(bits) / 8;
}

#define BYTE_PAIR_SEARCH_NAME FindPortable
#define BYTE_PAIR_SEARCH_TARGET
#include "documents/BytePairSearch.inl"
#undef BYTE_PAIR_SEARCH_NAME
#undef BYTE_PAIR_SEARCH_TARGET

#if defined(__x86_64__)
#define BYTE_PAIR_SEARCH_NAME FindWide
#define BYTE_PAIR_SEARCH_TARGET __attribute__((target("avx2")))
#include "documents/BytePairSearch.inl"
#undef BYTE_PAIR_SEARCH_NAME
#undef BYTE_PAIR_SEARCH_TARGET
#endif

}  // namespace

namespace BytePairSearch {

Form PortableForm() { return FindPortable; }

Form WidestForm() {
#if defined(__x86_64__)
  if (__builtin_cpu_supports("avx2")) return FindWide;
#endif
  return FindPortable;
}

}  // namespace BytePairSearch

std::size_t FindBytePair(std::string_view bytes, char first, char second) {
  static const BytePairSearch::Form form = BytePairSearch::WidestForm();
  return form(bytes, first, second);
}
