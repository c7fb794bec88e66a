// The main function of tests with widgets on an X display of their own, without a window manager. TEST_SCALE is the
// scale of its screen.
#include "tests/host/VirtualServer.hpp"

#include <gtest/gtest.h>

#include <QtWidgets/QApplication>

int main(int argumentCount, char** arguments) {
    testing::InitGoogleTest(&argumentCount, arguments);
    const fake::VirtualServer server;
    server.useAsDisplay();
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QT_SCALE_FACTOR", TEST_SCALE);
    const QApplication application(argumentCount, arguments);
    return RUN_ALL_TESTS();
}
