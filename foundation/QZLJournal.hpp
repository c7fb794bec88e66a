#pragma once

#include "platform/StringFormat.hpp"

#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

/// A view's running diary. Every message is written to the system log at once and kept in memory, up to a cap, so that
/// a failure can be reported together with the story that led to it. Shared by a view and its renderer; any thread.
class QZLJournal {
public:
    /// No message is kept once the kept text has this many UTF-16 units; the last one admitted may run past it.
    static constexpr std::size_t maximumLength = 262144;

    QZLJournal();

    void add(const std::optional<std::string>& message);

    /// Formats in the platform's convention, then adds.
    template <typename... Arguments>
    void addWithFormat(std::string_view format, Arguments&&... arguments) {
        add(platform::formatted(format, std::forward<Arguments>(arguments)...));
    }

    /// A snapshot of the kept text.
    std::string accumulatedMessages() const;

    /// Put before every message.
    std::optional<std::string> prefix() const;
    void setPrefix(std::optional<std::string> prefix);
    /// Put before the log's lines only.
    std::optional<std::string> logPrefix() const;
    void setLogPrefix(std::optional<std::string> logPrefix);

private:
    mutable std::recursive_mutex _messagesMutex;
    std::string _messages;
    std::size_t _length = 0;  // of _messages, in UTF-16 units
    mutable std::mutex _prefixMutex;
    std::optional<std::string> _prefix;
    std::optional<std::string> _logPrefix;
};
