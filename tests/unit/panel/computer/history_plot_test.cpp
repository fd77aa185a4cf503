#include "panel/computer/history_plot.h"
#include "panel/look/theme.h"
#include "unit/panel/computer/panel_machine.h"

using namespace tarnPanel;
using namespace tarnPanelTest;
using namespace tarnDeviceInfos;

namespace {

// How many points have that colour.
int pointsOf(HistoryPlot &plot, Tone tone)
{
    const QImage image = plot.grab().toImage();
    const QRgb wanted = toneColour(tone, plot.palette()).rgb();
    int points = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            points += (image.pixel(x, y) & RGB_MASK) == (wanted & RGB_MASK) ? 1 : 0;
    }
    return points;
}

} // namespace

TEST(HistoryPlotPicture, DrawsEveryLineAndLeavesGaps)
{
    setAppearance(Appearance::Light);
    HistoryPlot plot;
    plot.resize(440, 160);
    constexpr Tone tones[] = {Tone::Pl1, Tone::Pl2, Tone::Pl4, Tone::Traffic};
    QList<int> before;
    for (const Tone tone : tones)
        before << pointsOf(plot, tone);
    for (int second = 0; second < 100; ++second)
        plot.add(HistorySample {28, 40, 65, 30});
    for (int line = 0; line < 4; ++line)
        EXPECT_GT(pointsOf(plot, tones[line]), before.at(line) + 40) << line;
    EXPECT_EQ(plot.accessibleDescription(), QStringLiteral("PL1 28 W, PL2 40 W, PL4 65 W, Accesses 30 /s"));
    const int drawn = pointsOf(plot, Tone::Traffic);
    for (int second = 0; second < 50; ++second)
        plot.add(std::nullopt);
    EXPECT_LE(pointsOf(plot, Tone::Traffic), drawn + 5) << "a gap is no line";
    EXPECT_TRUE(plot.accessibleDescription().contains(QStringLiteral("PL1 unknown")));
}

TEST(HistorySamplerTest, KeepsFiveMinutes)
{
    HistorySampler sampler;
    for (int second = 0; second < 1000; ++second)
        sampler.add(HistorySample {second, 0, 0, 0});
    EXPECT_EQ(sampler.samples().size(), HistorySampler::seconds);
    EXPECT_EQ(sampler.samples().back()->pl1, 999);
}

namespace {

using HistoryPlotTest = PanelMachine;

} // namespace

TEST_F(HistoryPlotTest, ShowsTheLimitsInForceAndTheTraffic)
{
    computer->poke(EC_POWERMODE_PL1_CHECK, 11);
    computer->poke(EC_POWERMODE_PL2_CHECK, 22);
    computer->poke(EC_POWERMODE_PL4_CHECK, 44);
    openSide();
    const auto *plot = find<HistoryPlot>(QStringLiteral("historyPlot"));
    const auto rate = [plot] {
        return plot->accessibleDescription().section(u' ', -2, -2).toDouble();
    };
    EXPECT_TRUE(soon([this, &rate] {
        access(1);
        return rate() > 0;
    })) << plot->accessibleDescription().toStdString();
    EXPECT_TRUE(plot->accessibleDescription().startsWith(QStringLiteral("PL1 11 W, PL2 22 W, PL4 44 W")))
        << plot->accessibleDescription().toStdString();
}
