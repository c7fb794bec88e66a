#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// A program that starts screen savers, and how to make it start this one.
struct SaverHost {
    std::string name;
    /// The key of the host's text that says what to do.
    std::string explanationKey;
    /// What the text says to write somewhere; empty when it says nothing of the kind.
    std::string line;
};

/// Those that are installed in the folders of a search path such as PATH; `program` is what they shall start.
std::vector<SaverHost> findSaverHosts(std::string_view searchPath, const std::filesystem::path& program);

}  // namespace host
