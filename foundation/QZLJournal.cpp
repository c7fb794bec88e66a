#include "foundation/QZLJournal.hpp"

#include "foundation/QZLBundle.hpp"
#include "platform/SystemLog.hpp"

#include <utility>

namespace {

constexpr std::size_t initialCapacity = 8192;

/// The length of a UTF-8 text in UTF-16 units: every character has one leading byte, and those from U+10000 on, whose
/// leading byte is 0xF0 or more, take two units.
std::size_t lengthInUtf16(std::string_view text) {
    std::size_t length = 0;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        const bool isContinuation = (byte & 0xC0U) == 0x80U;
        length += isContinuation ? 0 : byte >= 0xF0U ? 2 : 1;
    }
    return length;
}

}  // namespace

QZLJournal::QZLJournal() {
    _messages.reserve(initialCapacity);
}

void QZLJournal::add(const std::optional<std::string>& message) {
    const std::string messageFormat = QZLLocalizedVistashadeString("QZL_JOURNAL_MESSAGE_FORMAT");
    const std::string currentPrefix = prefix().value_or("");
    {
        const std::lock_guard lock(_messagesMutex);
        if (_length < maximumLength) {
            const std::string line = platform::formatted(messageFormat, currentPrefix, message);
            _messages += line;
            _length += lengthInUtf16(line);
        }
    }
    const std::string logFormat = QZLLocalizedVistashadeString("QZL_JOURNAL_LOG_FORMAT");
    platform::systemLog(platform::formatted(logFormat, logPrefix().value_or(""), currentPrefix, message));
}

std::string QZLJournal::accumulatedMessages() const {
    const std::lock_guard lock(_messagesMutex);
    return _messages;
}

std::optional<std::string> QZLJournal::prefix() const {
    const std::lock_guard lock(_prefixMutex);
    return _prefix;
}

void QZLJournal::setPrefix(std::optional<std::string> prefix) {
    const std::lock_guard lock(_prefixMutex);
    _prefix = std::move(prefix);
}

std::optional<std::string> QZLJournal::logPrefix() const {
    const std::lock_guard lock(_prefixMutex);
    return _logPrefix;
}

void QZLJournal::setLogPrefix(std::optional<std::string> logPrefix) {
    const std::lock_guard lock(_prefixMutex);
    _logPrefix = std::move(logPrefix);
}
