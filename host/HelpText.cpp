#include "host/CommandLine.hpp"

namespace host {

std::string_view helpText() {
    return R"(Usage: cirrane [OPTION]…

Slowly drifting, colour-shifting clouds.

  --window              in a window; Escape or q ends it (the default)
  --fullscreen          on every screen, until a key, a button, a touch or a moved pointer
  --root                in the X11 window that XSCREENSAVER_WINDOW names, as screen saver hosts ask
  --window-id N         in that X11 window, as a preview
  --configure           a window with a preview, the options, and how to have it start by itself
  --test-error CODE[:SUBCODE]
                        show the text of an error instead; nothing is saved

  --headless            draw without any window system:
    --size WxH            size of the picture in pixels (1920x1080)
    --frames N            number of frames (600)
    --fps R               rate of the display that is played, in Hz (60)
    --realtime            at that rate, not as fast as possible
    --time SECONDS        the time (since 1970) that seeds the clouds; the same time gives the same picture
    --set KEY=VALUE       a setting: Colors, Brightness, Speed, Zoom (0 to 1), MultiScreen, Diagnostics (0, 1),
                          ScreenshotInterval (0 to 3); may be repeated
    --output DIR          write frame-NNNNNN.png there: the last frame,
    --every K             or every K-th
    --stats FILE          write what was measured, as JSON

  --device NAME|INDEX   draw on this device
  --list-devices        list the devices
  --display NAME        the X11 display
  --validate            check all use of Vulkan, and print what is wrong
  --module PATH         the saver bundle to show
  --version             print the version
  --help                print this

What X11 screen saver hosts give may have one dash. Of these -fps, -no-fps, -visual X, -geometry G, -mono, -install and
-noinstall are accepted and mean nothing here.

Exit status: 0 when all went well, 1 on a failure, 2 on a wrong command line. Once there is a window, an error is shown
in it until the program is ended.
)";
}

}  // namespace host
