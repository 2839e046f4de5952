// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QCoreApplication>

// For tests of what needs an event loop: the application exists, each test spins the loop itself.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
