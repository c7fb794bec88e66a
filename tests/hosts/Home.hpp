#pragma once

#include "tests/host/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <filesystem>
#include <string>
#include <vector>

namespace hosts {

/// A person's own folders, empty at first and gone with this object.
class Home {
public:
    Home();

    const std::filesystem::path& path() const { return _directory.path(); }
    std::filesystem::path runtimeDirectory() const { return path() / "runtime"; }
    /// What a program needs to live here, for `fake::Process`.
    std::vector<std::string> environment() const;
    /// Stores a setting of the saver's, "Key=value", as the saver would.
    void storeSetting(const std::string& setting) const;
    /// Whether a program that lived here has put an error aside, to be reported later.
    bool holdsErrorReport() const { return !errorReport().empty(); }
    /// The file that it is in.
    std::string errorReport() const;

private:
    fake::TemporaryDirectory _directory;
};

/// Both lists, one behind the other.
std::vector<std::string> operator+(std::vector<std::string> a, const std::vector<std::string>& b);

/// Runs a program of the system to its end, within a few seconds.
fake::ProcessEnd runTool(const std::vector<std::string>& command, const std::vector<std::string>& environment);

/// The program under test, in a place where the user of these tests may run it.
std::filesystem::path program();
/// A library for LD_PRELOAD, with which it finds no screen.
std::filesystem::path noScreensLibrary();

}  // namespace hosts
