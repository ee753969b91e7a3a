#include "documents/BytePairSearch.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

std::size_t FindSlowly(std::string_view bytes, char first, char second) {
  for (std::size_t i = 0; i + 1 < bytes.size(); ++i) {
    if (bytes[i] == first && bytes[i + 1] == second) return i;
  }
  return kNoBytePair;
}

}  // namespace

TEST(BytePairSearch, FindsEveryPairAtEveryPlace) {
  for (const auto find : {BytePairSearch::PortableForm(), BytePairSearch::WidestForm()}) {
    for (std::size_t size = 0; size < 400; ++size) {
      const std::string empty(size, '/');
      EXPECT_EQ(kNoBytePair, find(empty, '/', 'F')) << size;
      for (std::size_t at = 0; at < size; ++at) {
        std::string bytes = empty;
        bytes[at] = 'F';
        EXPECT_EQ(at == 0 ? kNoBytePair : at - 1, find(bytes, '/', 'F')) << size;
      }
    }
  }
}

TEST(BytePairSearch, AgreesWithTheSlowSearch) {
  std::mt19937 random(7);
  const char alphabet[] = {'/', 'F', '\xFF', '\0'};
  for (int run = 0; run < 20'000; ++run) {
    std::string bytes(random() % 300, ' ');
    const unsigned rarity = 1 + static_cast<unsigned>(random() % 60);
    for (char& c : bytes) {
      if (random() % rarity == 0) c = alphabet[random() % 4];
    }
    const char first = alphabet[random() % 4];
    const char second = alphabet[random() % 4];
    // A view that begins anywhere, so that no alignment is taken for granted.
    const std::string_view view =
        std::string_view(bytes).substr(std::min<std::size_t>(bytes.size(), random() % 40));
    const std::size_t expected = FindSlowly(view, first, second);
    ASSERT_EQ(expected, BytePairSearch::PortableForm()(view, first, second));
    ASSERT_EQ(expected, FindBytePair(view, first, second));
  }
}
