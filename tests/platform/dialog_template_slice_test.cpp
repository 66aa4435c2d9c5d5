// SPDX-License-Identifier: MIT
// Reads intact and damaged dialog templates.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "platform/qt/services/resources.h"

namespace {

struct Bytes {
    const uint8_t* data = nullptr;
    size_t size = 0;
};

Bytes TemplateBytes(WORD name) {
    Bytes bytes;
    EXPECT_TRUE(FindResourceBytes(MAKEINTRESOURCE(kResourceDialog), MAKEINTRESOURCE(name),
                                  &bytes.data, &bytes.size));
    return bytes;
}

// Reads from a block of its exact size, so that the sanitizer sees a read past its end.
bool ReadExactly(const std::vector<uint8_t>& bytes, DialogTemplate* shape) {
    const std::unique_ptr<uint8_t[]> copy(new uint8_t[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), copy.get());
    return ReadDialogTemplate(copy.get(), bytes.size(), shape);
}

}  // namespace

TEST(DialogTemplates, OlderLayoutIsReadWhole) {
    DialogTemplate shape;
    ASSERT_TRUE(LoadDialogTemplate(MAKEINTRESOURCE(100), &shape));
    EXPECT_EQ(u"Everything", shape.caption);
    EXPECT_EQ(160, shape.width);
    EXPECT_EQ(150, shape.height);
    ASSERT_EQ(23u, shape.items.size());
    EXPECT_EQ(u"&Name:", shape.items[0].text);
    EXPECT_EQ(0x82, shape.items[0].window_class.number);
    EXPECT_EQ(200, shape.items[1].id);
    EXPECT_EQ(0x81, shape.items[1].window_class.number);
    EXPECT_EQ(48, shape.items[1].x);
    EXPECT_EQ(12, shape.items[1].height);
    EXPECT_EQ(u"A&dvanced...", shape.items[22].text);
    EXPECT_EQ(215, shape.items[22].id);
}

TEST(DialogTemplates, NewerLayoutIsReadWhole) {
    DialogTemplate shape;
    ASSERT_TRUE(LoadDialogTemplate(MAKEINTRESOURCE(101), &shape));
    EXPECT_EQ(u"Extended", shape.caption);
    EXPECT_EQ(100, shape.width);
    ASSERT_EQ(3u, shape.items.size());
    EXPECT_EQ(300, shape.items[0].id);
    EXPECT_EQ(0x85, shape.items[0].window_class.number);
    EXPECT_EQ(u"Close", shape.items[2].text);
}

TEST(DialogTemplates, EndingAtAnyByteAreRefused) {
    for (const WORD name : {WORD{100}, WORD{101}}) {
        const Bytes whole = TemplateBytes(name);
        for (size_t size = 0; size < whole.size; size++) {
            DialogTemplate shape;
            const bool read = ReadExactly({whole.data, whole.data + size}, &shape);
            EXPECT_FALSE(read) << name << " ended at " << size << " of " << whole.size;
        }
        DialogTemplate shape;
        EXPECT_TRUE(ReadExactly({whole.data, whole.data + whole.size}, &shape));
    }
}

TEST(DialogTemplates, AnyChangedByteIsReadWithinTheBounds) {
    for (const WORD name : {WORD{100}, WORD{101}}) {
        const Bytes whole = TemplateBytes(name);
        for (size_t i = 0; i < whole.size; i++) {
            for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
                std::vector<uint8_t> bytes(whole.data, whole.data + whole.size);
                bytes[i] = static_cast<uint8_t>(value);
                DialogTemplate shape;
                ReadExactly(bytes, &shape);
                EXPECT_LE(shape.items.size(), whole.size);
            }
        }
    }
}

TEST(DialogTemplates, ACountAboveTheItemsPresentIsRefused) {
    const Bytes whole = TemplateBytes(100);
    std::vector<uint8_t> bytes(whole.data, whole.data + whole.size);
    bytes[8] = 0xFF;  // the count of items
    bytes[9] = 0xFF;
    DialogTemplate shape;
    EXPECT_FALSE(ReadExactly(bytes, &shape));
}

TEST(DialogTemplates, ControlDataPastTheEndIsRefused) {
    const Bytes whole = TemplateBytes(100);
    std::vector<uint8_t> bytes(whole.data, whole.data + whole.size);
    bytes[bytes.size() - 2] = 0xFF;  // the size of the last item's control data
    DialogTemplate shape;
    EXPECT_FALSE(ReadExactly(bytes, &shape));
}
