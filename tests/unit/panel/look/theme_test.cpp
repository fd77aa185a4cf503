#include "panel/look/theme.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

#include <gtest/gtest.h>

using namespace tarnPanel;

namespace {

constexpr Tone everyTone[] = {Tone::Good, Tone::Waiting, Tone::Bad, Tone::Quiet, Tone::Accent, Tone::Pl1,
    Tone::Pl2, Tone::Pl4, Tone::Traffic};

} // namespace

TEST(Theme, BlackOnWhiteHasTheGreatestContrast)
{
    EXPECT_NEAR(contrast(Qt::black, Qt::white), 21, 0.001);
    EXPECT_NEAR(contrast(Qt::red, Qt::red), 1, 0.001);
}

TEST(Theme, EveryToneCanBeReadOnEveryBackground)
{
    for (const Appearance appearance : {Appearance::Light, Appearance::Dark, Appearance::AsSystem}) {
        setAppearance(appearance);
        const QPalette palette = QApplication::palette();
        for (const Tone tone : everyTone) {
            for (const auto role : {QPalette::Window, QPalette::Base}) {
                EXPECT_GE(contrast(toneColour(tone, palette), palette.color(role)), 4.5)
                    << "tone " << static_cast<int>(tone) << ", appearance " << static_cast<int>(appearance);
            }
        }
        EXPECT_GE(contrast(palette.color(QPalette::Text), palette.color(QPalette::Base)), 7);
        EXPECT_GE(contrast(palette.color(QPalette::PlaceholderText), palette.color(QPalette::Base)), 4.5);
        EXPECT_GE(
            contrast(palette.color(QPalette::HighlightedText), palette.color(QPalette::Highlight)), 4.5);
    }
}

TEST(Theme, KnowsWhetherItIsDark)
{
    setAppearance(Appearance::Dark);
    EXPECT_TRUE(isDark(QApplication::palette()));
    setAppearance(Appearance::Light);
    EXPECT_FALSE(isDark(QApplication::palette()));
}

// Without it the borders of fields and boxes nearly have the colour of the window.
TEST(Theme, FieldsHaveABorderThatIsSeenInADarkWindow)
{
    setAppearance(Appearance::Dark);
    QWidget window;
    auto *field = new QLineEdit(&window);
    auto *box = new QComboBox(&window);
    auto *button = new QPushButton(QStringLiteral("Button"), &window);
    field->move(10, 10);
    box->move(10, 60);
    button->move(10, 110);
    window.resize(300, 160);
    const QImage picture = window.grab().toImage();
    const QColor background = window.palette().color(QPalette::Window);
    for (const QWidget *widget :
        {static_cast<QWidget *>(field), static_cast<QWidget *>(box), static_cast<QWidget *>(button)}) {
        const QPoint border(widget->x(), widget->y() + widget->height() / 2);
        EXPECT_GE(contrast(picture.pixelColor(border), background), 1.5) << widget->metaObject()->className();
    }
}
