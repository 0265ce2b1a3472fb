// The tests' program: an application object without a screen, so that serial ports find their event
// dispatcher.
#include <gtest/gtest.h>

#include <QCoreApplication>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
