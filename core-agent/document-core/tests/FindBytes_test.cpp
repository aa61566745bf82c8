#include "FindBytes.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

TEST(FindBytes, FindsWhatTheStandardLibraryFinds) {
    const auto seed = std::random_device{}();
    std::mt19937_64 random(seed);
    for (int round = 0; round < 20000; ++round) {
        // Few letters make many half matches; the lengths lie on both sides of a block.
        const std::string letters = random() % 2 == 0 ? "aA" : "[/ N0";
        const auto randomText = [&](size_t length) {
            std::string text;
            while (text.size() < length)
                text += letters[random() % letters.size()];
            return text;
        };
        const std::string bytes = randomText(random() % 300);
        const std::string pattern = randomText(1 + random() % 12);
        ASSERT_EQ(FindBytes(bytes, pattern), bytes.find(pattern)) << "seed " << seed << ", round " << round;
    }
}
