// What a stranger's JSON text may ask of us. A tree is freed, copied and dumped by recursion, and
// one value takes some forty times the memory of its text, so that depth, values and bytes are
// bounded before a parser sees the text.
#pragma once

#include <cstddef>
#include <string_view>

namespace restful_mapper::Json {

inline constexpr std::size_t kMaxTextBytes = std::size_t{32} << 20;
// Arrays and maps around a value. yajl's generator writes 127 open ones, so that all that is parsed
// can be dumped.
inline constexpr std::size_t kMaxDepth = 127;
// Counted as commas and opening brackets. Some 150 bytes each at the most, beside long texts.
inline constexpr std::size_t kMaxValues = std::size_t{1} << 20;

// Why the text is refused unparsed, or null. Beside the limits: a zero byte, behind which a parser
// of C strings would not look, the escape of one, and an escape that is half of a surrogate pair
// and stands for no character. Comments are skipped as yajl skips them. One pass, no memory.
// [any-thread]
[[nodiscard]] const char* FindTextFault(std::string_view text);

}  // namespace restful_mapper::Json
