// A main function for tests that need Qt's event loop.

#include <QCoreApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
