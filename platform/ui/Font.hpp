#pragma once

#include <optional>
#include <string>

namespace platform {

/// A font as a view asks for it: a family, a size in points of the view (which may be a fraction of one), and whether
/// it is bold. A value; the functions below need the application object. Main thread.
struct Font {
    std::string family;
    double size = 0.0;
    bool isBold = false;
    bool operator==(const Font&) const = default;
};

/// Null when the machine has no font family of that name.
std::optional<Font> fontNamed(const std::string& family, double size);
/// The one that the desktop uses for its own texts.
Font systemFont(double size);
/// One whose characters are all of one width, as the user has chosen it.
Font userFixedPitchFont(double size);
/// The same font, bold; as it is when the family has no bold face.
Font boldFont(Font font);

}  // namespace platform
