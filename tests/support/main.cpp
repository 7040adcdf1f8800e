#include "tests/support/OwnHome.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    const OwnHome home;
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
