// The fast half of every pattern search: where does a pair of bytes stand next?
#pragma once

#include <cstddef>
#include <string_view>

inline constexpr std::size_t kNoBytePair = static_cast<std::size_t>(-1);

// The first index at which `first` is followed, within `bytes`, by `second`;
// kNoBytePair if there is none. 32 bytes at a time on a processor that can, [any-thread].
std::size_t FindBytePair(std::string_view bytes, char first, char second);

namespace BytePairSearch {
// The two forms of the above, for tests. The wide one is the portable one where the processor does
// not have it.
using Form = std::size_t (*)(std::string_view bytes, char first, char second);
Form PortableForm();
Form WidestForm();
}  // namespace BytePairSearch
