#include "renderhost/QZLRenderHostError.hpp"

#include "foundation/QZLError.hpp"

void QZLReportError(platform::ErrorPlace place, QZLRenderHostErrorCode code, std::uint64_t subCode) {
    if (place != nullptr) {
        *place = QZLCreateVistashadeError(code, static_cast<std::int64_t>(subCode));
    }
}
