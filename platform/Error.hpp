#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace platform {

/// The key under which an error's user info holds its message for people.
inline constexpr const char* localizedDescriptionKey = "NSLocalizedDescription";

/// A failure as a value: which domain, which code in it, and texts that explain it. Immutable; copied freely.
class Error {
public:
    using UserInfo = std::map<std::string, std::string>;

    Error(std::string domain, std::int64_t code, UserInfo userInfo)
        : _domain(std::move(domain)), _code(code), _userInfo(std::move(userInfo)) {}

    const std::string& domain() const { return _domain; }
    std::int64_t code() const { return _code; }
    const UserInfo& userInfo() const { return _userInfo; }
    std::optional<std::string> userInfoText(const std::string& key) const {
        const auto entry = _userInfo.find(key);
        return entry == _userInfo.end() ? std::nullopt : std::optional(entry->second);
    }
    std::string localizedDescription() const { return userInfoText(localizedDescriptionKey).value_or(std::string()); }

private:
    std::string _domain;
    std::int64_t _code;
    UserInfo _userInfo;
};

/// Where an operation may leave its error; null when the caller does not care.
using ErrorPlace = std::optional<Error>*;

}  // namespace platform
