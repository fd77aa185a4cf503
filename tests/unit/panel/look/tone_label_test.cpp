#include "panel/look/tone_label.h"

#include <QApplication>
#include <QTest>

#include <gtest/gtest.h>

using namespace tarnPanel;

TEST(ToneLabelTest, StaysReadableWhenTheWindowBecomesDark)
{
    setAppearance(Appearance::Light);
    ToneLabel label(Tone::Bad, QStringLiteral("text"));
    label.show();
    for (const Appearance appearance : {Appearance::Dark, Appearance::Light, Appearance::Dark}) {
        setAppearance(appearance);
        const QPalette palette = QApplication::palette();
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return label.palette().color(QPalette::WindowText) == toneColour(Tone::Bad, palette); },
            10000));
    }
}
