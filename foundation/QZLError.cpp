#include "foundation/QZLError.hpp"

#include "foundation/QZLBundle.hpp"

#include <cstdlib>

namespace {

const char* messageKey(std::int64_t code) {
    switch (code) {
        case 100:
        case 101:
        case 102:
        case 103:
        case 104: return "QZL_ERROR_GENERAL_INTERNAL_ERROR";
        case 105:
        case 106:
        case 107:
        case 108:
        case 109:
        case 110:
        case 303:
        case 304: return "QZL_ERROR_METAL_RESOURCES";
        case 200:
        case 201: return "QZL_ERROR_DISPLAY_LINK_INITIALIZE";
        case 300:
        case 301: return "QZL_ERROR_METAL_NOT_AVAILABLE";
        case 302: return "QZL_ERROR_METAL_FEATURE_SET";
        default: return "QZL_ERROR_UNKNOWN";
    }
}

}  // namespace

platform::Error QZLCreateError(const std::string& message, std::int64_t code, std::int64_t subCode) {
    return {QZLVistashadeErrorDomain,
            code,
            {{platform::localizedDescriptionKey, message}, {QZLErrorSubCodeKey, std::to_string(subCode)}}};
}

platform::Error QZLCreateVistashadeError(std::int64_t code, std::int64_t subCode) {
    return QZLCreateError(QZLLocalizedVistashadeString(messageKey(code)), code, subCode);
}

std::int64_t QZLGetErrorSubCode(const platform::Error& error) {
    const auto text = error.userInfoText(QZLErrorSubCodeKey);
    return text ? std::strtoll(text->c_str(), nullptr, 10) : 0;
}
