// SPDX-License-Identifier: MIT
// Faces, the font in use and its cell, and stepping the size.
#include "program_double.h"
#include "ui/view/view.h"

class Font : public TerminalWindow {
  protected:
    static TEXTMETRICW Metrics(LONG height, LONG leading, LONG descent) {
        TEXTMETRICW metrics = {};
        metrics.tmHeight = height;
        metrics.tmExternalLeading = leading;
        metrics.tmDescent = descent;
        return metrics;
    }
    // Each height serves `sizes` neighbouring sizes: 1..sizes give 10, the next give 11.
    static void RepeatHeights(int sizes) {
        gdi.metrics = [sizes](const LOGFONTW& font) {
            return Metrics(10 + (font.lfHeight - 1) / sizes, 0, 2);
        };
    }
};

static void SetName(LPCWSTR name) {
    memset(session.settings.fname, 0, sizeof session.settings.fname);
    for (int i = 0; name[i]; ++i) session.settings.fname[i] = name[i];
}

TEST_F(Font, TheListHoldsFixedPitchFacesOnly) {
    gdi.faces = {Face(TEXT("Wide")), Face(TEXT("Mono")), Face(TEXT("Serif")), Face(TEXT("Term"))};
    gdi.pitches = {TMPF_FIXED_PITCH, 0, TMPF_FIXED_PITCH, 0};
    ListFontFaces(TestWindow());
    ASSERT_EQ(session.view.face_count, 2);
    EXPECT_EQ(lstrcmpW(session.view.faces[0].font.lfFaceName, TEXT("Mono")), 0);
    EXPECT_EQ(lstrcmpW(session.view.faces[1].font.lfFaceName, TEXT("Term")), 0);
}

TEST_F(Font, TheListEndsAt24Faces) {
    gdi.faces.assign(40, Face(TEXT("Mono")));
    ListFontFaces(TestWindow());
    EXPECT_EQ(session.view.face_count, 24);
}

TEST_F(Font, CreationSetsTheFieldsOnTheFacesOwnRecord) {
    LOGFONTW face = Face(TEXT("Term"));
    memset(&face, 0x55, offsetof(LOGFONTW, lfFaceName));
    gdi.faces = {face};
    ListFontFaces(TestWindow());
    SetName(TEXT("Term"));
    CreateTerminalFont();
    const LOGFONTW& font = gdi.fonts_made.at(0);
    EXPECT_EQ(font.lfHeight, 16);
    EXPECT_EQ(font.lfWidth, 0);
    EXPECT_EQ(font.lfWeight, 400);
    EXPECT_EQ(font.lfItalic, 0);
    EXPECT_EQ(font.lfCharSet, 1);
    EXPECT_EQ(font.lfOutPrecision, 0);
    EXPECT_EQ(font.lfClipPrecision, 0);
    EXPECT_EQ(font.lfQuality, 0);
    EXPECT_EQ(font.lfPitchAndFamily, 0);
    EXPECT_EQ(font.lfEscapement, 0x55555555);
    EXPECT_EQ(lstrcmpW(font.lfFaceName, TEXT("Term")), 0);
}

TEST_F(Font, BoldAndItalicFollowTheSettings) {
    session.settings.font_bold = 1;
    session.settings.font_italic = 1;
    CreateTerminalFont();
    EXPECT_EQ(gdi.fonts_made.at(0).lfWeight, 700);
    EXPECT_EQ(gdi.fonts_made.at(0).lfItalic, 1);
}

TEST_F(Font, TheConfiguredFaceIsFoundByName) {
    SetName(TEXT("Courier"));
    CreateTerminalFont();
    EXPECT_EQ(lstrcmpW(gdi.fonts_made.at(0).lfFaceName, TEXT("Courier")), 0);
    SetName(TEXT("Terminal"));
    CreateTerminalFont();
    EXPECT_EQ(lstrcmpW(gdi.fonts_made.at(1).lfFaceName, TEXT("Terminal")), 0);
}

TEST_F(Font, AnUnknownFaceBecomesTheFirstOfTheList) {
    SetName(TEXT("Nowhere"));
    CreateTerminalFont();
    EXPECT_EQ(lstrcmpW(gdi.fonts_made.at(0).lfFaceName, TEXT("Courier")), 0);
}

TEST_F(Font, WithoutAnyFaceTheSystemChooses) {
    gdi.faces.clear();
    session.view = ViewState{};
    ListFontFaces(TestWindow());
    CreateTerminalFont();
    EXPECT_EQ(gdi.fonts_made.at(0).lfFaceName[0], 0);
    EXPECT_EQ(session.view.cell_height, 16);
    DeleteObject(session.view.font);  // the first font was released with the old state
}

TEST_F(Font, TheCellIsHeightPlusLeadingAndATenthOfTheSample) {
    gdi.metrics = [](const LOGFONTW&) { return Metrics(13, 2, 3); };
    gdi.sample_width = [](const LOGFONTW&) { return 79; };
    CreateTerminalFont();
    EXPECT_EQ(session.view.cell_height, 15);
    EXPECT_EQ(session.view.underline_offset, 3);
    EXPECT_EQ(session.view.cell_width, 7);
}

// The monitor's scale changes: the font is the same, and it is drawn larger.
TEST_F(Font, EachLayoutMeasuresTheFontAgain) {
    CreateTerminalFont();
    Paint();
    const size_t made = gdi.fonts_made.size();
    gdi.metrics = [](const LOGFONTW&) { return Metrics(28, 4, 6); };
    gdi.sample_width = [](const LOGFONTW&) { return 160; };
    Paint();
    EXPECT_EQ(session.view.cell_width, 8) << "an ordinary paint measures nothing";
    LayoutTerminal();
    Paint();
    EXPECT_EQ(session.view.cell_width, 16);
    EXPECT_EQ(session.view.cell_height, 32);
    EXPECT_EQ(session.view.underline_offset, 6);
    EXPECT_EQ(session.view.visible_columns, 39);
    EXPECT_EQ(session.view.visible_rows, 11);
    EXPECT_EQ(gdi.fonts_made.size(), made);
}

TEST_F(Font, ACellIsNeverSmallerThanAPixel) {
    gdi.metrics = [](const LOGFONTW&) { return Metrics(0, 0, 0); };
    gdi.sample_width = [](const LOGFONTW&) { return 6; };
    CreateTerminalFont();
    EXPECT_EQ(session.view.cell_height, 1);
    EXPECT_EQ(session.view.cell_width, 1);
}

TEST_F(Font, TheOldFontIsDeleted) {
    for (int i = 0; i < 5; ++i) CreateTerminalFont();
    EXPECT_EQ(LiveObjects("font"), 1);
}

TEST_F(Font, AFontThatCannotBeCreatedLeavesTheSystemFont) {
    gdi.refuse_fonts = true;
    CreateTerminalFont();
    EXPECT_EQ(session.view.font, nullptr);
    Paint();
    EXPECT_GE(session.view.cell_height, 1);
}

TEST_F(Font, SizesFromTheRegistryAreClampedTo1To25) {
    const DWORD stored[] = {0, 26, 1000, 0xFFFFFFFFu};
    const LONG used[] = {1, 25, 25, 25};
    for (size_t i = 0; i < 4; ++i) {
        session.settings.fsize = stored[i];
        CreateTerminalFont();
        EXPECT_EQ(gdi.fonts_made.back().lfHeight, used[i]) << stored[i];
    }
}

TEST_F(Font, LargerAndSmallerStepByOneWhenTheHeightChanges) {
    LargerFont();
    EXPECT_EQ(session.settings.fsize, 17u);
    SmallerFont();
    SmallerFont();
    EXPECT_EQ(session.settings.fsize, 15u);
}

TEST_F(Font, SteppingSkipsSizesOfTheSameHeight) {
    RepeatHeights(4);  // 13..16 share a height, 17..20 the next
    session.settings.fsize = 13;
    CreateTerminalFont();
    LargerFont();
    EXPECT_EQ(session.settings.fsize, 17u);
    SmallerFont();
    EXPECT_EQ(session.settings.fsize, 16u);
    SmallerFont();
    EXPECT_EQ(session.settings.fsize, 12u);
}

TEST_F(Font, SteppingAlongOneHeightEndsAtTheLimit) {
    RepeatHeights(100);
    session.settings.fsize = 20;
    CreateTerminalFont();
    LargerFont();
    EXPECT_EQ(session.settings.fsize, 25u);
    SmallerFont();
    EXPECT_EQ(session.settings.fsize, 1u);
}

TEST_F(Font, LargerFrom25StaysAt25) {
    session.settings.fsize = 25;
    CreateTerminalFont();
    LargerFont();
    EXPECT_EQ(session.settings.fsize, 25u);
    EXPECT_EQ(session.view.cell_height, 25);
}

TEST_F(Font, SmallerFrom1StaysAt1) {
    session.settings.fsize = 1;
    CreateTerminalFont();
    SmallerFont();
    EXPECT_EQ(session.settings.fsize, 1u);
}

TEST_F(Font, SteppingLaysTheViewOutAgainEvenAtTheLimit) {
    session.settings.fsize = 25;
    CreateTerminalFont();
    LargerFont();
    EXPECT_TRUE(session.view.geometry_pending);
    EXPECT_TRUE(session.view.full_repaint);
    EXPECT_GE(gdi.invalidations, 1);
}

TEST_F(Font, SteppingBeforeTheFirstPaintSkipsSizesOfTheSameHeightToo) {
    RepeatHeights(4);
    DeleteObject(session.view.font);
    session.view.font = nullptr;
    session.view.cell_height = 0;
    session.settings.fsize = 13;
    LargerFont();
    EXPECT_EQ(session.settings.fsize, 17u);
}

TEST_F(Font, SteppingBeforeTheFirstPaintCreatesTheFontFirst) {
    DeleteObject(session.view.font);
    session.view.font = nullptr;
    session.view.cell_height = 0;
    LargerFont();
    EXPECT_EQ(session.settings.fsize, 17u);
    EXPECT_EQ(session.view.cell_height, 17);
}
