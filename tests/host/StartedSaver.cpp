#include "tests/host/StartedSaver.hpp"

#include "platform/StringFormat.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>

namespace fake {

StartedSaver::StartedSaver(const std::filesystem::path& bundle, const std::vector<std::string>& environment) {
    const auto end = Process({START_PROBE, bundle.string()}, environment).waitForEnd();
    if (!end || end->exitStatus != 0) {
        ADD_FAILURE() << "the probe failed: " << (end ? end->standardError : "it did not end");
        return;
    }
    const std::string& line = end->standardOutput;
    const std::size_t space = std::min(line.find_first_of(" \n"), line.size());
    _code = line.substr(0, space);
    _text = line.substr(std::min(space + 1, line.size()));
    if (!_text.empty()) {
        _text.pop_back();  // the end of the line
    }
}

std::string englishText(const std::string& key) {
    std::ifstream table(CIRRANE_BUILT_BUNDLE "/strings/Vistashade.json");
    return platform::formatted(nlohmann::json::parse(table).at(key).get<std::string>(), "Cirrane");
}

}  // namespace fake
