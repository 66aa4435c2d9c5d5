// SPDX-License-Identifier: MIT
// Reads intact and damaged compiled resources.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "platform/qt/services/resources.h"

namespace {

std::vector<uint8_t> CompiledImage() {
    std::ifstream file(TEST_RESOURCE_FILE, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(file), {});
}

class Resources : public testing::Test {
  protected:
    void SetUp() override {
        image = CompiledImage();
        ASSERT_GT(image.size(), 100u);
        SetResourceImage(image.data(), image.size());
    }
    void TearDown() override { SetResourceImage(nullptr, 0); }
    static std::string Find(LPCWSTR type, LPCWSTR name) {
        const uint8_t* bytes = nullptr;
        size_t size = 0;
        if (!FindResourceBytes(type, name, &bytes, &size)) return "none";
        return std::string(reinterpret_cast<const char*>(bytes), size);
    }

    std::vector<uint8_t> image;
};

std::vector<WORD> Flat(HACCEL table) {
    std::vector<WORD> words;
    for (const AcceleratorRow& row : table->rows)
        words.insert(words.end(), {row.flags, row.key, row.command});
    return words;
}

// A block of its exact size, so that the sanitizer sees a read past its end.
struct ExactImage {
    explicit ExactImage(const std::vector<uint8_t>& bytes, size_t length)
        : copy(new uint8_t[length]), size(length) {
        std::copy(bytes.begin(), bytes.begin() + static_cast<long>(length), copy.get());
        SetResourceImage(copy.get(), size);
    }
    std::unique_ptr<uint8_t[]> copy;
    size_t size;
};

// Asks for every resource and returns how many exist.
int AskForAll(const ExactImage& image) {
    int found = 0;
    for (WORD type = 0; type < 20; type++) {
        for (WORD name = 0; name < 20; name++) {
            const uint8_t* bytes = nullptr;
            size_t size = 0;
            if (!FindResourceBytes(MAKEINTRESOURCE(type), MAKEINTRESOURCE(name), &bytes, &size))
                continue;
            EXPECT_GE(bytes, image.copy.get());
            EXPECT_LE(bytes + size, image.copy.get() + image.size);
            found++;
        }
        LoadAcceleratorsW(nullptr, MAKEINTRESOURCE(type));
    }
    return found;
}

}  // namespace

TEST_F(Resources, OfTheImageBeforeAreForgotten) {
    const LPCWSTR type = MAKEINTRESOURCE(kResourceAccelerator), name = MAKEINTRESOURCE(8);
    EXPECT_NE("none", Find(type, name));
    SetResourceImage(image.data(), 32);  // the empty entry at the front
    EXPECT_EQ("none", Find(type, name));
    SetResourceImage(image.data(), image.size());
    EXPECT_NE("none", Find(type, name));
    SetResourceImage(nullptr, 0);
    EXPECT_EQ("none", Find(type, name));
}

TEST_F(Resources, AcceleratorsComeInOrder) {
    const HACCEL table = LoadAcceleratorsW(nullptr, MAKEINTRESOURCE(7));
    ASSERT_NE(nullptr, table);
    const std::vector<WORD> expected = {
        kAcceleratorKey,
        0x78,
        200,
        kAcceleratorKey | kAcceleratorControl,
        0x43,
        201,
        kAcceleratorKey | kAcceleratorControl | kAcceleratorShift,
        0x56,
        202,
        kAcceleratorKey | kAcceleratorAlt,
        0x2E,
        203,
        0,
        'q',
        204,
    };
    EXPECT_EQ(expected, Flat(table));
}

TEST_F(Resources, TableLoadedTwiceIsTheSame) {
    const HACCEL table = LoadAcceleratorsW(nullptr, MAKEINTRESOURCE(8));
    ASSERT_NE(nullptr, table);
    EXPECT_EQ(table, LoadAcceleratorsW(nullptr, MAKEINTRESOURCE(8)));
    EXPECT_NE(table, LoadAcceleratorsW(nullptr, MAKEINTRESOURCE(7)));
}

TEST_F(Resources, MissingOnesAreNotFound) {
    EXPECT_EQ(nullptr, LoadAcceleratorsW(nullptr, MAKEINTRESOURCE(9)));
    EXPECT_EQ("none", Find(MAKEINTRESOURCE(kResourceData), MAKEINTRESOURCE(7)));
    EXPECT_EQ("none", Find(MAKEINTRESOURCE(kResourceData), u"farewell"));
}

TEST_F(Resources, NamesAreNumbersOrTexts) {
    EXPECT_EQ("hello", Find(MAKEINTRESOURCE(kResourceData), u"Greeting"));
    EXPECT_EQ("abcdefg", Find(MAKEINTRESOURCE(kResourceData), MAKEINTRESOURCE(12)));
    EXPECT_EQ("typed by name", Find(u"odd_Type", MAKEINTRESOURCE(12)));
}

TEST_F(Resources, WithoutAnImageNothingIsFound) {
    SetResourceImage(nullptr, 0);
    EXPECT_EQ("none", Find(MAKEINTRESOURCE(kResourceData), u"greeting"));
    EXPECT_EQ(nullptr, LoadAcceleratorsW(nullptr, MAKEINTRESOURCE(7)));
}

TEST_F(Resources, ImageCutAnywhereIsReadWithinItsBounds) {
    int most = 0, least = 99;
    for (size_t size = 0; size <= image.size(); size++) {
        const ExactImage cut(image, size);
        const int found = AskForAll(cut);
        most = std::max(most, found);
        least = std::min(least, found);
        SetResourceImage(nullptr, 0);
    }
    EXPECT_EQ(0, least);
    EXPECT_EQ(4, most);  // two tables, one piece of data, and the empty first entry
}

TEST_F(Resources, EachChangedByteIsReadWithinItsBounds) {
    for (size_t i = 0; i < image.size(); i++) {
        for (int value : {0x00, 0x7F, 0x80, 0xFF}) {
            std::vector<uint8_t> changed = image;
            changed[i] = static_cast<uint8_t>(value);
            const ExactImage damaged(changed, changed.size());
            EXPECT_LE(AskForAll(damaged), 6);
            SetResourceImage(nullptr, 0);
        }
    }
}

TEST_F(Resources, TableWithoutALastRowIsRefused) {
    const uint8_t* bytes = nullptr;
    size_t size = 0;
    ASSERT_TRUE(FindResourceBytes(MAKEINTRESOURCE(kResourceAccelerator), MAKEINTRESOURCE(8), &bytes,
                                  &size));
    image[static_cast<size_t>(bytes - image.data())] &= 0x7F;
    EXPECT_EQ(nullptr, LoadAcceleratorsW(nullptr, MAKEINTRESOURCE(8)));
}

TEST(ResourceReader, ReadsPastTheEndGiveNothing) {
    const uint8_t bytes[] = {1, 2, 3};
    ResourceReader reader{bytes, sizeof(bytes)};
    EXPECT_EQ(0x0201, reader.TakeWord());
    EXPECT_EQ(0u, reader.TakeDword());
    EXPECT_FALSE(reader.ok);
    EXPECT_EQ(0, reader.TakeWord());
    EXPECT_EQ(u"", reader.TakeText());
    EXPECT_FALSE(reader.Has(0));
}
