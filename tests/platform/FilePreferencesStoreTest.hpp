#pragma once

#include "platform/PreferencesStore.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

/// A file in a directory of its own, and stores that keep their settings there.
class FilePreferencesStoreTest : public testing::Test {
protected:
    ~FilePreferencesStoreTest() override { platform::setPreferencesStore(nullptr); }

    std::shared_ptr<platform::PreferencesStore> open() const { return platform::makeFilePreferencesStore(file); }

    void write(const std::string& bytes) const { fake::writeFile(file, bytes); }
    std::filesystem::path damaged() const { return file.string() + ".damaged"; }

    fake::TemporaryDirectory directory;
    std::filesystem::path file = directory.path() / "org.example.test.conf";
};
