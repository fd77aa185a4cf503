#include "gui/dialog_layout.h"

#include <gtest/gtest.h>

using tarnGui::Area;
using tarnGui::DialogLayout;
using tarnGui::layOutDialog;
using tarnGui::scaled;
using tarnGui::TextMeasures;

namespace {

// What a usual font gives at 100 %, in the pixels of another scale.
TextMeasures usualMeasures(int dpi)
{
    return {scaled(21, dpi), {scaled(30, dpi), scaled(15, dpi)}, {scaled(20, dpi), scaled(17, dpi)},
        scaled(15, dpi)};
}

class GuiLayoutScales : public ::testing::TestWithParam<int>
{ };

} // namespace

TEST(GuiLayoutTest, ScalesToTheNearestPixel)
{
    EXPECT_EQ(scaled(20, 96), 20);
    EXPECT_EQ(scaled(20, 192), 40);
    EXPECT_EQ(scaled(9, 144), 14); // 13.5
    EXPECT_EQ(scaled(9, 120), 11); // 11.25
}

TEST_P(GuiLayoutScales, TextsStandBelowEachOtherBesideTheIcon)
{
    const int dpi = GetParam();
    const TextMeasures measures = usualMeasures(dpi);
    const DialogLayout layout = layOutDialog(dpi, measures);
    EXPECT_GT(layout.title.left, layout.icon.right());
    int bottom = layout.title.bottom();
    ASSERT_EQ(layout.paragraphs.size(), measures.paragraphHeights.size());
    for (std::size_t index = 0; index < layout.paragraphs.size(); ++index) {
        const Area &paragraph = layout.paragraphs[index];
        EXPECT_GT(paragraph.top, bottom);
        EXPECT_EQ(paragraph.left, layout.title.left);
        EXPECT_EQ(paragraph.height, measures.paragraphHeights[index]);
        EXPECT_EQ(paragraph.width, tarnGui::textWidth(dpi)); // as it was measured
        EXPECT_LT(paragraph.right(), layout.width);
        bottom = paragraph.bottom();
    }
    EXPECT_GT(layout.footerTop, bottom);
}

TEST_P(GuiLayoutScales, ButtonsStandInTheFooterFromTheRight)
{
    const int dpi = GetParam();
    const DialogLayout layout = layOutDialog(dpi, usualMeasures(dpi));
    ASSERT_EQ(layout.buttons.size(), 2U);
    const Area &first = layout.buttons[0];
    const Area &last = layout.buttons[1];
    EXPECT_EQ(layout.width - last.right(), layout.icon.left); // the same margin left and right
    EXPECT_LT(first.right(), last.left);
    EXPECT_EQ(first.width, last.width);
    EXPECT_EQ(first.top, last.top);
    EXPECT_EQ(last.top - layout.footerTop, layout.height - last.bottom());
    EXPECT_GT(last.top, layout.footerTop);
}

TEST_P(GuiLayoutScales, EverythingGrowsWithTheScale)
{
    const int dpi = GetParam();
    const DialogLayout layout = layOutDialog(dpi, usualMeasures(dpi));
    const DialogLayout plain = layOutDialog(tarnGui::dipsPerInch, usualMeasures(tarnGui::dipsPerInch));
    EXPECT_EQ(layout.width, scaled(plain.width, dpi));
    // Each of its parts is rounded by itself.
    constexpr int roundingPixels = 6;
    EXPECT_NEAR(layout.height, scaled(plain.height, dpi), roundingPixels);
}

INSTANTIATE_TEST_SUITE_P(Dpi, GuiLayoutScales, ::testing::Values(96, 120, 144, 168, 192, 288));

TEST(GuiLayoutTest, TitleOfOneLineStandsBesideTheMiddleOfTheIcon)
{
    const DialogLayout layout = layOutDialog(96, usualMeasures(96));
    EXPECT_NEAR(layout.title.top + layout.title.height / 2, layout.icon.top + layout.icon.height / 2, 1);
}

TEST(GuiLayoutTest, LongTitleBeginsWithTheIcon)
{
    TextMeasures measures = usualMeasures(96);
    measures.titleHeight = 63;
    const DialogLayout layout = layOutDialog(96, measures);
    EXPECT_EQ(layout.title.top, layout.icon.top);
    EXPECT_GE(layout.paragraphs.front().top, layout.title.bottom());
}

TEST(GuiLayoutTest, IconFitsAboveTheFooterWithoutText)
{
    TextMeasures measures = usualMeasures(96);
    measures.paragraphHeights.clear();
    const DialogLayout layout = layOutDialog(96, measures);
    EXPECT_GT(layout.footerTop, layout.icon.bottom());
}

TEST(GuiLayoutTest, ButtonsGrowWithLargeFonts)
{
    TextMeasures measures = usualMeasures(96);
    measures.lineHeight = 40;
    measures.buttonLabelWidths = {120, 20};
    const DialogLayout layout = layOutDialog(96, measures);
    EXPECT_GT(layout.buttons[0].width, 120);
    EXPECT_GT(layout.buttons[0].height, 40);
    EXPECT_LT(layout.buttons[1].width, 120);
    EXPECT_LT(layout.buttons[0].right(), layout.buttons[1].left);
    EXPECT_GT(layout.height, layout.buttons[0].bottom());
}
