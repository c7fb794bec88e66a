#include "platform/FormatConversion.hpp"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

namespace platform {
namespace {

/// Reads the parts of a conversion from left to right.
class ConversionReader {
public:
    explicit ConversionReader(std::string_view text) : _text(text) {}

    /// Null when the text, which begins with a percent sign, holds no known conversion.
    std::optional<Conversion> read() {
        if (!readPosition()) {
            return std::nullopt;
        }
        readFlags();
        _conversion.width = readNumber().value_or(0);
        if (take('.')) {
            _conversion.precision = readNumber().value_or(0);
        }
        skipAnyOf("hlqztjL");
        constexpr std::string_view types = "@sSdiDuUxXoOcCfFeEgGaAp";
        if (_at == _text.size() || types.find(_text[_at]) == std::string_view::npos) {
            return std::nullopt;
        }
        _conversion.type = _text[_at];
        _conversion.length = _at + 1;
        return _conversion;
    }

private:
    bool take(char character) {
        const bool found = _at < _text.size() && _text[_at] == character;
        _at += found ? 1 : 0;
        return found;
    }

    void skipAnyOf(std::string_view characters) {
        _at = std::min(_text.find_first_not_of(characters, _at), _text.size());
    }

    /// Decimal digits; null when there are none. Numbers beyond any use come out as a very large one.
    std::optional<std::size_t> readNumber() {
        const std::size_t begin = _at;
        skipAnyOf("0123456789");
        if (_at == begin) {
            return std::nullopt;
        }
        std::uint32_t number = 0;
        const auto result = std::from_chars(_text.data() + begin, _text.data() + _at, number);
        return result.ec == std::errc() ? number : UINT32_MAX;
    }

    /// False when there is a position that cannot be, which is 0.
    bool readPosition() {
        const std::size_t begin = _at;
        const auto number = readNumber();
        if (!number || !take('$')) {
            _at = begin;
            return true;
        }
        _conversion.position = *number;
        return *number != 0;
    }

    void readFlags() {
        for (; _at < _text.size(); ++_at) {
            switch (_text[_at]) {
                case '-': _conversion.leftAligned = true; break;
                case '0': _conversion.zeroPadded = true; break;
                case '#': _conversion.alternate = true; break;
                case '+': _conversion.positiveSign = "+"; break;
                case ' ':
                    if (_conversion.positiveSign.empty()) {
                        _conversion.positiveSign = " ";
                    }
                    break;
                case '\'': break;  // Grouping of digits belongs to a locale; there is none here.
                default: return;
            }
        }
    }

    std::string_view _text;
    std::size_t _at = 1;
    Conversion _conversion;
};

}  // namespace

std::optional<Conversion> readConversion(std::string_view text) {
    return ConversionReader(text).read();
}

}  // namespace platform
