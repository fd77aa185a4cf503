#include <QCoreApplication>

#include <gtest/gtest.h>

// Every test is a process of its own: the objects of the service live as long as their process.
int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
