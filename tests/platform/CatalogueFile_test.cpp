#include "platform/CatalogueFile.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

using platform::isSoundCatalogue;

namespace {

constexpr std::uint32_t headerSize = 28;
constexpr std::uint32_t tableSize = 8;  // of one text's length and place

/// A catalogue that translates "A" to "B", with this hash table.
std::string catalogueWithHashTable(const std::vector<std::uint32_t>& slots) {
    const auto hashSize = static_cast<std::uint32_t>(slots.size());
    const std::uint32_t hashTable = headerSize + 2 * tableSize;
    const std::uint32_t texts = hashTable + 4 * hashSize;
    std::vector<std::uint32_t> numbers{0x950412DE, 0,     1, headerSize, headerSize + tableSize, hashSize, hashTable,
                                       1,          texts, 1, texts + 2};
    numbers.insert(numbers.end(), slots.begin(), slots.end());
    std::string bytes;
    for (const std::uint32_t number : numbers) {
        bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
    }
    return bytes + std::string("A\0B\0", 4);
}

TEST(CatalogueFile, IsSoundWithAndWithoutAHashTable) {
    EXPECT_TRUE(isSoundCatalogue(catalogueWithHashTable({})));
    EXPECT_TRUE(isSoundCatalogue(catalogueWithHashTable({0, 1, 0})));
    EXPECT_TRUE(isSoundCatalogue(catalogueWithHashTable({1, 1, 0, 1, 1})));
}

TEST(CatalogueFile, CutAnywhereIsNotSound) {
    const std::string whole = catalogueWithHashTable({0, 1, 0});
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(isSoundCatalogue(whole.substr(0, size))) << size;
    }
}

TEST(CatalogueFile, IsNotSoundWhereASearchMeetsNoMessage) {
    EXPECT_FALSE(isSoundCatalogue(catalogueWithHashTable({0, 2, 0})));
    EXPECT_FALSE(isSoundCatalogue(catalogueWithHashTable({0, 0xFFFFFFFF, 0})));
}

TEST(CatalogueFile, IsNotSoundWhereASearchNeverEnds) {
    EXPECT_FALSE(isSoundCatalogue(catalogueWithHashTable({1, 1, 1}))) << "no slot is empty";
    EXPECT_FALSE(isSoundCatalogue(catalogueWithHashTable({0, 1, 1, 1}))) << "steps of two miss the empty slot";
    EXPECT_FALSE(isSoundCatalogue(catalogueWithHashTable({0, 1, 1, 1, 1, 1, 1, 1, 1}))) << "and here steps of three";
}

}  // namespace
