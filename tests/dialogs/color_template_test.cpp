// SPDX-License-Identifier: MIT
// The template of the colour chooser in the resources. This platform shows the desktop's chooser
// instead, so no test can see the template on the screen.
#include <gtest/gtest.h>

#include <map>

#include "platform/qt/services/resources.h"

namespace {

DialogTemplate Load() {
    DialogTemplate shape;
    EXPECT_TRUE(LoadDialogTemplate(MAKEINTRESOURCE(1544), &shape));
    return shape;
}

extern "C" const uint8_t quill_resources[];
extern "C" const uint8_t quill_resources_end[];

class ColorTemplate : public testing::Test {
  protected:
    void SetUp() override {
        SetResourceImage(quill_resources,
                         static_cast<size_t>(quill_resources_end - quill_resources));
    }
};

TEST_F(ColorTemplate, HasTheLabelsInOrder) {
    std::vector<std::u16string> labels;
    for (const DialogItem& item : Load().items)
        if (!item.text.empty()) labels.push_back(item.text);
    const std::vector<std::u16string> expected = {u"&Basic colors:",
                                                  u"&Custom colors:",
                                                  u"&Define >>",
                                                  u"Hu&e:",
                                                  u"&Sat:",
                                                  u"&Lum:",
                                                  u"&Red:",
                                                  u"&Green:",
                                                  u"Bl&ue:",
                                                  u"&Add to Custom Colors",
                                                  u"OK",
                                                  u"Cancel"};
    EXPECT_EQ(labels, expected);
}

// Each text before a control has a mnemonic that focuses this control.
TEST_F(ColorTemplate, HasTheControlsOfTheSystemsDialogBehindTheirLabels) {
    const std::map<std::u16string, int> expected = {
        {u"&Basic colors:", 720}, {u"&Custom colors:", 721}, {u"Hu&e:", 703},   {u"&Sat:", 704},
        {u"&Lum:", 705},          {u"&Red:", 706},           {u"&Green:", 707}, {u"Bl&ue:", 708}};
    const DialogTemplate shape = Load();
    std::map<std::u16string, int> found;
    for (size_t i = 0; i + 1 < shape.items.size(); i++)
        if (expected.count(shape.items[i].text)) found[shape.items[i].text] = shape.items[i + 1].id;
    EXPECT_EQ(found, expected);
    std::vector<int> ids;
    for (const DialogItem& item : shape.items) ids.push_back(item.id);
    for (int id : {1, 2, 702, 709, 710, 712, 719})
        EXPECT_EQ(std::count(ids.begin(), ids.end(), id), 1) << id;
}

TEST_F(ColorTemplate, IsCalledColorAndIsNotWiderThanTheOtherDialogs) {
    const DialogTemplate shape = Load();
    EXPECT_EQ(shape.caption, u"Color");
    EXPECT_LE(shape.width, 140);
    for (const DialogItem& item : shape.items) {
        EXPECT_GE(item.x, 0);
        EXPECT_LE(item.x + item.width, shape.width) << item.id;
        EXPECT_LE(item.y + item.height, shape.height) << item.id;
    }
}

}  // namespace
