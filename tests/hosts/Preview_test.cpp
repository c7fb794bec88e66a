// The program in the pane of XScreenSaver's settings dialog: the saver's line, with the pane's window added.
#include "tests/hosts/ForeignWindow.hpp"

#include <algorithm>
#include <functional>

namespace hosts {
namespace {

class Preview : public ForeignWindowTest {
protected:
    Preview() { startInPane(); }

    void startInPane() {
        start({"/bin/sh", "-c", "exec " + program().string() + " --root --window-id " + hexadecimal(window)});
    }
    bool hasWindows() const { return !server.display().windowsBelow(window).empty(); }
};

TEST_F(Preview, ShowsMovingCloudsInThePaneOnly) {
    EXPECT_TRUE(showsMovingCloudsOf(size));
    const auto [x, y] = server.display().placeOf(window);
    Picture desktop = server.picture();
    EXPECT_EQ(desktop.part({0, 0, Size{desktop.size().width, y}}).brightness(), 0.0);
    EXPECT_EQ(desktop.part({0, 0, Size{x, desktop.size().height}}).brightness(), 0.0);
    endByHost();
    EXPECT_FALSE(home.holdsErrorReport());
}

TEST_F(Preview, ThatIsEndedBeforeItShowsAnythingEndsAtOnce) {
    const std::function<bool()> stagesOfTheStart[] = {
        [this] { return process->hasLoaded(program()); },  // no shell any more
        [this] { return process->hasLoaded("/libQt6Core.so"); },
        [this] { return process->hasLoaded("/libqxcb.so"); },  // on its way to the display
        [this] { return process->hasLoaded("/libvulkan.so"); },
        [this] { return hasWindows(); },
        [this] { return process->isDrawing(); },
    };
    for (const auto& isReached : stagesOfTheStart) {
        ASSERT_TRUE(fake::eventually(isReached));
        endByHost();
        ASSERT_TRUE(fake::eventually([this] { return !hasWindows(); }));
        startInPane();
    }
}

TEST_F(Preview, GrowsAndShrinksWithThePane) {
    ASSERT_TRUE(showsMovingCloudsOf(size));
    for (const Size next : {Size{600, 450}, Size{200, 150}, Size{500, 200}}) {
        server.display().resize(window, static_cast<std::uint32_t>(next.width),
                                static_cast<std::uint32_t>(next.height));
        EXPECT_TRUE(showsMovingCloudsOf(next));
    }
    endByHost();
}

TEST_F(Preview, EndsQuietlyWithItsPane) {
    ASSERT_TRUE(showsMovingCloudsOf(size));
    server.display().destroy(window);
    const auto end = process->waitForEnd(std::chrono::seconds(10));
    ASSERT_TRUE(end);
    EXPECT_EQ(end->exitStatus, 0);
    EXPECT_EQ(end->standardError, "");
}

TEST_F(Preview, LeavesAllInputToTheDialog) {
    ASSERT_TRUE(showsMovingCloudsOf(size));
    const auto& display = server.display();
    const auto [x, y] = display.placeOf(window);
    display.movePointer(static_cast<std::int16_t>(x + size.width / 2), static_cast<std::int16_t>(y + size.height / 2));
    display.clickButton();
    EXPECT_TRUE(fake::eventually([&] { return display.takeEvent(XCB_BUTTON_PRESS, window); }));
    display.focus(window);
    display.typeKey('a');
    EXPECT_TRUE(fake::eventually([&] { return display.takeEvent(XCB_KEY_PRESS, window); }));

    // Only one client at a time may select presses of a button on a window.
    const auto inside = display.windowsBelow(window);
    EXPECT_FALSE(inside.empty());
    EXPECT_TRUE(std::all_of(inside.begin(), inside.end(),
                            [&](xcb_window_t each) { return display.canSelect(each, XCB_EVENT_MASK_BUTTON_PRESS); }));
    EXPECT_TRUE(showsMovingCloudsOf(size)) << "a press is none of the saver's business";
    endByHost();
}

}  // namespace
}  // namespace hosts
