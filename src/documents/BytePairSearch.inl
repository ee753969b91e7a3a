// The body of the search, compiled once for each kind of processor: vectors are lowered before
// functions are inlined, so that sharing it as a function would give every form the narrowest code.
// BYTE_PAIR_SEARCH_NAME and BYTE_PAIR_SEARCH_TARGET are set by the including file.

BYTE_PAIR_SEARCH_TARGET std::size_t BYTE_PAIR_SEARCH_NAME(std::string_view bytes, char first,
                                                          char second) {
  if (bytes.size() < 2) return kNoBytePair;
  const char* const data = bytes.data();
  const std::size_t pairs = bytes.size() - 1;
  const Bytes32 firsts = Bytes32{} + static_cast<signed char>(first);
  const Bytes32 seconds = Bytes32{} + static_cast<signed char>(second);
  std::size_t at = 0;
  while (at + kBlock <= pairs) {
    Bytes32 hits[kVectors];
#pragma GCC unroll 4
    for (std::size_t k = 0; k < kVectors; ++k) {
      Bytes32 here;
      Bytes32 next;
      std::memcpy(&here, data + at + k * sizeof here, sizeof here);
      std::memcpy(&next, data + at + k * sizeof here + 1, sizeof next);
      hits[k] = (here == firsts) & (next == seconds);
    }
    const Bytes32 any = (hits[0] | hits[1]) | (hits[2] | hits[3]);
    std::uint64_t words[sizeof any / sizeof(std::uint64_t)];
    std::memcpy(words, &any, sizeof any);
    if (((words[0] | words[1]) | (words[2] | words[3])) != 0) return at + FirstMarked(hits);
    at += kBlock;
  }
  for (; at < pairs; ++at) {
    if (data[at] == first && data[at + 1] == second) return at;
  }
  return kNoBytePair;
}
