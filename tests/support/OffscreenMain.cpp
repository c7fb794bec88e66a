// The main function of tests with widgets that need no display. TEST_SCALE is the scale of their screen.
#include <gtest/gtest.h>

#include <QtWidgets/QApplication>

int main(int argumentCount, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_SCALE_FACTOR", TEST_SCALE);
    const QApplication application(argumentCount, arguments);
    testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
