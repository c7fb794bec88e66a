#pragma once

#include "tests/host/Process.hpp"

#include <filesystem>
#include <string>
#include <vector>

namespace fake {

/// A saver that was started in a process of its own, and what became of it.
class StartedSaver {
public:
    StartedSaver(const std::filesystem::path& bundle, const std::vector<std::string>& environment);

    /// "CODE:SUB-CODE" of the error that kept it from starting; "started" when none did.
    const std::string& code() const { return _code; }
    /// The text that a person would see of the error.
    const std::string& text() const { return _text; }

private:
    std::string _code;
    std::string _text;
};

/// The English text of a key of the built bundle's table "Vistashade", filled with the saver's name where it takes it.
std::string englishText(const std::string& key);

}  // namespace fake
