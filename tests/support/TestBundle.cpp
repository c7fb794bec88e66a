#include "tests/support/TestBundle.hpp"

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace fake {
namespace {

std::filesystem::path makeTemporaryDirectory() {
    std::string path = (std::filesystem::temp_directory_path() / "cirrane-bundle-XXXXXX").string();
    if (mkdtemp(path.data()) == nullptr) {
        throw std::runtime_error("no temporary directory for a test's bundle");
    }
    return path;
}

void writeJson(const std::filesystem::path& path, const Bundle::Strings& texts) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << nlohmann::json(texts);
}

}  // namespace

Bundle::Bundle(const std::map<std::string, Strings>& tables, const Strings& info)
    : _directory(makeTemporaryDirectory()), _info(info) {
    _info.emplace("CFBundleName", "Cirrane");
    _info.emplace("CFBundleShortVersionString", "1.2.3");
    _info.emplace("CFBundleIdentifier", "org.example.test");
    for (const auto& [table, texts] : tables) {
        writeJson(_directory / "strings" / (table + ".json"), texts);
    }
    writeInfo();
    putInForce();
}

Bundle::~Bundle() {
    platform::Bundle::setOverride(nullptr);
    std::error_code ignored;
    std::filesystem::remove_all(_directory, ignored);
}

void Bundle::setInfo(const std::string& key, const std::string& value) {
    _info[key] = value;
    writeInfo();
    putInForce();
}

void Bundle::clearInfo() {
    _info = {{"CFBundleIdentifier", _info.at("CFBundleIdentifier")}};
    writeInfo();
    putInForce();
}

void Bundle::copyFromBuilt(const std::filesystem::path& name) const {
    std::filesystem::create_directories((_directory / name).parent_path());
    std::filesystem::copy(std::filesystem::path(CIRRANE_BUILT_BUNDLE) / name, _directory / name,
                          std::filesystem::copy_options::recursive);
}

void Bundle::writeInfo() {
    writeJson(_directory / "Info.json", _info);
}

void Bundle::putInForce() {
    platform::Bundle::setOverride(platform::Bundle::open(_directory));
}

BuiltBundle::BuiltBundle() {
    auto bundle = platform::Bundle::open(CIRRANE_BUILT_BUNDLE);
    if (bundle == nullptr) {
        throw std::runtime_error("the bundle has not been built: " CIRRANE_BUILT_BUNDLE);
    }
    platform::Bundle::setOverride(std::move(bundle));
}

BuiltBundle::~BuiltBundle() {
    platform::Bundle::setOverride(nullptr);
}

}  // namespace fake
