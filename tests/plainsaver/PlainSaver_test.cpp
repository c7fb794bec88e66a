// The program with a saver that the framework has never heard of.
#include "tests/host/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <QtGui/QImage>
#include <string>
#include <vector>

namespace {

using fake::ProcessEnd;
using fake::runCirrane;

const std::vector<std::string> noDisplay{"DISPLAY", "WAYLAND_DISPLAY"};

class PlainSaver : public testing::Test {
protected:
    ProcessEnd run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"--headless", "--module", PLAIN_SAVER, "--size", "64x48", "--frames", "5",
                                             "--validate", "--output", _output.path().string()});
        return runCirrane(arguments, noDisplay);
    }
    QImage lastFrame() const { return QImage(QString::fromStdString((_output.path() / "frame-000005.png").string())); }

    fake::TemporaryDirectory _output;
};

TEST_F(PlainSaver, DrawsItsColourEverywhere) {
    const ProcessEnd end = run({});
    EXPECT_EQ(end.standardError, "");
    ASSERT_EQ(end.exitStatus, 0);
    const QImage frame = lastFrame();
    ASSERT_EQ(frame.size(), QSize(64, 48));
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x) {
            ASSERT_EQ(frame.pixelColor(x, y), QColor(51, 102, 153)) << x << ", " << y;
        }
    }
}

TEST_F(PlainSaver, TakesTheSameSettings) {
    const ProcessEnd end = run({"--set", "Diagnostics=1"});
    ASSERT_EQ(end.exitStatus, 0) << end.standardError;
    EXPECT_EQ(lastFrame().pixelColor(1, 47), QColor(51, 102, 153)) << "the strip is never in a frame";
}

}  // namespace
