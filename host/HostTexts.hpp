#pragma once

#include "platform/Bundle.hpp"

#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace host {

/// What the host says to people: the table "Host" of a saver's bundle, in the user's language; English where there is
/// no bundle, or it lacks a text. Immutable; any thread.
class HostTexts {
public:
    /// The bundle may be null.
    explicit HostTexts(std::shared_ptr<const platform::Bundle> bundle);

    /// The text of a key; the key itself when there is none.
    std::string text(const std::string& key) const;

private:
    std::shared_ptr<const platform::Bundle> _bundle;
    std::map<std::string, std::string> _english;
};

/// The strings table that the texts are written in, as it is.
std::string_view englishHostTable();

}  // namespace host
