#include "client/tarnctl/stdin_reader.h"

#include <gtest/gtest.h>

#include <QEventLoop>
#include <QTimer>

#include <sstream>

using tarnctl::StdinReader;

namespace {

void waitUntilExhausted(StdinReader &reader, QStringList &lines)
{
    QEventLoop loop;
    QTimer::singleShot(std::chrono::seconds(20), &loop, &QEventLoop::quit);
    const auto drain = [&] {
        while (const std::optional<QString> line = reader.takeLine())
            lines << *line;
        if (reader.isExhausted())
            loop.quit();
    };
    QObject::connect(&reader, &StdinReader::changed, &loop, drain);
    drain();
    if (!reader.isExhausted())
        loop.exec();
}

} // namespace

TEST(StdinReaderTest, HandsOutLinesInOrder)
{
    StdinReader reader(std::make_shared<std::istringstream>("a\n\nb ü\nlast without end"));
    QStringList lines;
    waitUntilExhausted(reader, lines);
    EXPECT_EQ(lines, (QStringList {"a", "", "b ü", "last without end"}));
    EXPECT_TRUE(reader.isExhausted());
}

TEST(StdinReaderTest, ManyLinesAllArrive)
{
    std::string text;
    for (int i = 0; i < 5000; ++i)
        text += std::to_string(i) + "\n";
    StdinReader reader(std::make_shared<std::istringstream>(text));
    QStringList lines;
    waitUntilExhausted(reader, lines);
    ASSERT_EQ(lines.size(), 5000);
    EXPECT_EQ(lines.last(), "4999");
}

TEST(StdinReaderTest, LeavingWithLinesUntakenEndsTheThread)
{
    std::string text;
    for (int i = 0; i < 5000; ++i)
        text += "x\n";
    // The thread fills the queue and then waits for room.
    std::make_unique<StdinReader>(std::make_shared<std::istringstream>(text)).reset();
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&loop] {
        if (!StdinReader::hasThreadLeftBehind())
            loop.quit();
    });
    poll.start(std::chrono::milliseconds(5));
    QTimer::singleShot(std::chrono::seconds(20), &loop, &QEventLoop::quit);
    loop.exec();
    EXPECT_FALSE(StdinReader::hasThreadLeftBehind());
}
