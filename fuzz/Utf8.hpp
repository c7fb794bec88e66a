#pragma once

#include <QUtf8StringView>

#include <string_view>

namespace fuzz {

inline bool isUtf8(std::string_view text) {
    return QUtf8StringView(text.data(), static_cast<qsizetype>(text.size())).isValidUtf8();
}

}  // namespace fuzz
