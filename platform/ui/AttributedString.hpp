#pragma once

#include "platform/ui/Font.hpp"

#include <QtCore/QRectF>
#include <QtGui/QColor>
#include <string>
#include <vector>

class QPainter;

namespace platform {

struct TextAttributes {
    Font font;
    QColor foreground;
    QColor background;
    bool operator==(const TextAttributes&) const = default;
};

/// How a text is laid out; the values are the platform's.
enum StringDrawingOptions : unsigned {
    stringDrawingUsesLineFragmentOrigin = 1,  ///< the rectangle's top left is where the first line's box begins
    stringDrawingUsesFontLeading = 2,         ///< lines are apart by what their fonts ask for
};

/// A text whose parts have attributes of their own. A value; measuring and drawing need the application object, on the
/// main thread. Lines end at "\n" and are wrapped between words, or within a word that is wider than a line. Without
/// `stringDrawingUsesLineFragmentOrigin` only the first line is drawn and measured.
class AttributedString {
public:
    struct Part {
        std::string text;
        TextAttributes attributes;
        bool operator==(const Part&) const = default;
    };

    void append(std::string text, TextAttributes attributes) {
        _parts.push_back({std::move(text), std::move(attributes)});
    }
    const std::vector<Part>& parts() const { return _parts; }
    bool isEmpty() const { return _parts.empty(); }
    bool operator==(const AttributedString&) const = default;

    /// The size in points that the text takes when wrapped at this width.
    QSizeF boundingSize(double width, unsigned options) const;
    /// Draws from the top left corner of the rectangle and wraps at its width; what does not fit goes on below it.
    void drawWithRect(QPainter& painter, const QRectF& rect, unsigned options) const;

private:
    std::vector<Part> _parts;
};

}  // namespace platform
