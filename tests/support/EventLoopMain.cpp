// SPDX-License-Identifier: MIT
#include <QtCore/QCoreApplication>

#include <gtest/gtest.h>

/// For tests of what needs an event loop on the main thread.
int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
