#include <QApplication>

#include <gtest/gtest.h>

// Every test is a process of its own. The settings and the system's look are left out of it.
int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
