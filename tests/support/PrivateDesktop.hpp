#pragma once

#include "tests/support/EventLoop.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/ScopedEnvironment.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace fake {

/// A home folder of the test's own, on a desktop where nothing can open anything yet. What opens addresses here takes
/// them down.
class PrivateDesktop {
public:
    PrivateDesktop() {
        std::filesystem::create_directories(_data);
        std::filesystem::create_directories(_programs);
        QGuiApplication::clipboard()->clear();
    }

    std::filesystem::path folder() const { return _directory.path(); }
    std::filesystem::path dataFolder() const { return _data; }
    /// Where mails are kept that nobody took.
    std::filesystem::path stateFolder() const { return folder() / "state" / "cirrane"; }
    std::filesystem::path received() const { return folder() / "received"; }

    /// In place of the desktop's own opener: ends with that status, once it has done what stands before.
    void installOpener(int status, const std::string& before = "") const {
        writeProgram(_programs / "xdg-open", takeDown() + before + "\nexit " + std::to_string(status) + "\n");
    }
    /// A program for mails and pages of the web, for the desktop's own opener to find.
    void registerHandler(int status) {
        _path.set(_formerPath);
        writeProgram(folder() / "handler", takeDown() + "exit " + std::to_string(status) + "\n");
        writeFile(_data / "applications" / "handler.desktop",
                  "[Desktop Entry]\nType=Application\nName=Test\nExec=" + (folder() / "handler").string() +
                      " %u\nMimeType=x-scheme-handler/mailto;x-scheme-handler/https;\n");
        writeFile(folder() / "config" / "mimeapps.list",
                  "[Default Applications]\nx-scheme-handler/mailto=handler.desktop\n"
                  "x-scheme-handler/https=handler.desktop\n");
    }
    /// The address that was opened; waits for it.
    std::string receivedAddress() const {
        eventuallyInLoop([this] { return readFile(received()).ends_with('\n'); });
        std::string address = readFile(received());
        if (!address.empty()) {
            address.pop_back();
        }
        return address;
    }

    static std::string clipboard() { return QGuiApplication::clipboard()->text().toStdString(); }
    std::vector<std::filesystem::path> keptFiles() const {
        std::error_code none;
        std::vector<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::directory_iterator(stateFolder(), none)) {
            files.push_back(entry.path());
        }
        return files;
    }

private:
    std::string takeDown() const { return "#!/bin/bash\nprintf '%s\\n' \"$@\" > " + received().string() + "\n"; }
    static void writeProgram(const std::filesystem::path& file, const std::string& text) {
        writeFile(file, text);
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    }

    const TemporaryDirectory _directory;
    const std::filesystem::path _data = _directory.path() / "data";
    const std::filesystem::path _programs = _directory.path() / "bin";
    const std::string _formerPath = getenv("PATH");
    ScopedEnvironment _path{"PATH", _programs.string()};
    ScopedEnvironment _home{"HOME", _directory.path().string()};
    ScopedEnvironment _config{"XDG_CONFIG_HOME", (_directory.path() / "config").string()};
    ScopedEnvironment _dataHome{"XDG_DATA_HOME", _data.string()};
    ScopedEnvironment _dataFolders{"XDG_DATA_DIRS", _data.string()};
    ScopedEnvironment _configFolders{"XDG_CONFIG_DIRS", (_directory.path() / "etc").string()};
    ScopedEnvironment _state{"XDG_STATE_HOME", (_directory.path() / "state").string()};
    ScopedEnvironment _desktop{"XDG_CURRENT_DESKTOP", std::nullopt};
    ScopedEnvironment _browser{"BROWSER", "no-such-browser"};
};

}  // namespace fake
