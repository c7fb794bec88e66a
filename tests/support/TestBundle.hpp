#pragma once

#include "platform/Bundle.hpp"

#include <filesystem>
#include <map>
#include <memory>
#include <string>

namespace fake {

/// A bundle in a temporary directory, in force for the life of this object. Made with an Info.json that names it
/// "Cirrane" version "1.2.3", identifier "org.example.test", and with the strings tables given (table name to key to
/// text).
class Bundle {
public:
    using Strings = std::map<std::string, std::string>;

    explicit Bundle(const std::map<std::string, Strings>& tables = {}, const Strings& info = {});
    ~Bundle();
    Bundle(const Bundle&) = delete;
    Bundle& operator=(const Bundle&) = delete;

    const std::filesystem::path& directory() const { return _directory; }
    /// Replaces a value of Info.json; seen from the next look-up on.
    void setInfo(const std::string& key, const std::string& value);
    /// Leaves only the identifier in Info.json.
    void clearInfo();
    /// Copies a form or another file of the bundle that the build made into this one, as it lies there.
    void copyFromBuilt(const std::filesystem::path& name) const;

private:
    void writeInfo();
    void putInForce();

    std::filesystem::path _directory;
    Strings _info;
};

/// The bundle that the build made, with its strings and shaders, in force for the life of this object.
class BuiltBundle {
public:
    BuiltBundle();
    ~BuiltBundle();
};

}  // namespace fake
