#include "support/seen_texts.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

namespace {

class SeenTextsWriter : public ::testing::EmptyTestEventListener
{
    void OnTestEnd(const ::testing::TestInfo &) override { tarnTest::writeSeenTexts(); }
};

} // namespace

// Every test is a process of its own: the objects of the service live as long as their process.
int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    ::testing::UnitTest::GetInstance()->listeners().Append(new SeenTextsWriter);
    return RUN_ALL_TESTS();
}
