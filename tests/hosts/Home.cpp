#include "tests/hosts/Home.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <iterator>

namespace hosts {

Home::Home() {
    std::filesystem::create_directory(runtimeDirectory());
    std::filesystem::permissions(runtimeDirectory(), std::filesystem::perms::owner_all);
}

std::vector<std::string> Home::environment() const {
    return {"HOME=" + path().string(), "XDG_RUNTIME_DIR=" + runtimeDirectory().string()};
}

void Home::storeSetting(const std::string& setting) const {
    std::filesystem::create_directory(path() / ".config");
    std::ofstream(path() / ".config" / "org.example.cirrane.conf") << "[General]\n" << setting << '\n';
}

std::string Home::errorReport() const {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path())) {
        if (entry.path().extension() == ".conf") {
            std::ifstream file(entry.path());
            const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
            if (text.find("SavedErrorCode") != std::string::npos) {
                return text;
            }
        }
    }
    return {};
}

std::vector<std::string> operator+(std::vector<std::string> a, const std::vector<std::string>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

fake::ProcessEnd runTool(const std::vector<std::string>& command, const std::vector<std::string>& environment) {
    const auto end = fake::Process(command, environment).waitForEnd(std::chrono::seconds(20));
    EXPECT_TRUE(end) << command.front() << " did not end";
    return end.value_or(fake::ProcessEnd{});
}

}  // namespace hosts
