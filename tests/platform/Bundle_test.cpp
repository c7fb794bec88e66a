#include "platform/Bundle.hpp"

#include "tests/support/Files.hpp"
#include "tests/support/TemporaryDirectory.hpp"
#include "tests/support/TestBundle.hpp"

#include <dlfcn.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <thread>
#include <vector>

using platform::Bundle;
namespace files = std::filesystem;

namespace {

// --- Opening -----------------------------------------------------------------------------------------------------

TEST(Bundle, IsNullWithoutADirectory) {
    const fake::TemporaryDirectory directory;
    fake::writeFile(directory.path() / "file", "text");
    EXPECT_EQ(Bundle::withDirectory(directory.path() / "missing"), nullptr);
    EXPECT_EQ(Bundle::withDirectory(directory.path() / "file"), nullptr);
    EXPECT_EQ(Bundle::withDirectory(""), nullptr);
    EXPECT_EQ(Bundle::open(directory.path() / "missing"), nullptr);
}

TEST(Bundle, IsTheSameObjectForTheSameDirectory) {
    const fake::TemporaryDirectory directory;
    files::create_directory(directory.path() / "A.saver");
    files::create_directory_symlink(directory.path() / "A.saver", directory.path() / "link");
    const auto bundle = Bundle::withDirectory(directory.path() / "A.saver");
    ASSERT_NE(bundle, nullptr);
    EXPECT_EQ(Bundle::withDirectory(directory.path() / "link" / "." / ""), bundle);
    EXPECT_EQ(bundle->directory(), directory.path() / "A.saver");
    EXPECT_NE(Bundle::withDirectory(directory.path()), bundle);
}

TEST(Bundle, IsGoneWhenItsDirectoryIsGone) {
    const fake::TemporaryDirectory directory;
    files::create_directory(directory.path() / "A.saver");
    ASSERT_NE(Bundle::withDirectory(directory.path() / "A.saver"), nullptr);
    files::remove(directory.path() / "A.saver");
    EXPECT_EQ(Bundle::withDirectory(directory.path() / "A.saver"), nullptr);
}

TEST(Bundle, ManyThreadsShareOneObject) {
    const fake::Bundle bundle({{"Localizable", {{"KEY", "text"}}}});
    std::vector<std::shared_ptr<const Bundle>> found(8);
    std::vector<std::thread> threads;
    for (auto& place : found) {
        threads.emplace_back([&place, &bundle] {
            for (int round = 0; round < 100; ++round) {
                place = Bundle::withDirectory(bundle.directory());
                EXPECT_EQ(place->localizedString("KEY", "", ""), "text");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const auto& place : found) {
        EXPECT_EQ(place, found.front());
    }
}

// --- Info.json ---------------------------------------------------------------------------------------------------

TEST(Bundle, ReadsTextsOfTheInformationList) {
    const fake::TemporaryDirectory directory;
    fake::writeFile(directory.path() / "Info.json",
                    R"({"CFBundleName": "W\u00f6lkchen", "CFBundleIdentifier": "org.example.a",
        "Number": 7, "Null": null, "List": ["x"], "Object": {"CFBundleName": "y"}, "Empty": ""})");
    const auto bundle = Bundle::open(directory.path());
    EXPECT_EQ(bundle->objectForInfoDictionaryKey("CFBundleName"), "W\u00f6lkchen");
    EXPECT_EQ(bundle->objectForInfoDictionaryKey("Empty"), "");
    EXPECT_EQ(bundle->bundleIdentifier(), "org.example.a");
    for (const char* key : {"Number", "Null", "List", "Object", "Missing"}) {
        EXPECT_EQ(bundle->objectForInfoDictionaryKey(key), std::nullopt) << key;
    }
}

TEST(Bundle, ADamagedInformationListReadsAsEmpty) {
    const fake::TemporaryDirectory directory;
    for (const char* text : {"", "{", "[\"CFBundleIdentifier\"]", "null", "{\"CFBundleIdentifier\": \"\xff\"}",
                             "{\"CFBundleIdentifier\": \"a\"} trailing", "{\"CFBundleIdentifier\": 1}"}) {
        fake::writeFile(directory.path() / "Info.json", text);
        const auto bundle = Bundle::open(directory.path());
        ASSERT_NE(bundle, nullptr) << text;
        EXPECT_EQ(bundle->bundleIdentifier(), std::nullopt) << text;
    }
    files::remove(directory.path() / "Info.json");
    EXPECT_EQ(Bundle::open(directory.path())->bundleIdentifier(), std::nullopt);
    files::create_directory(directory.path() / "Info.json");
    EXPECT_EQ(Bundle::open(directory.path())->bundleIdentifier(), std::nullopt);
}

TEST(Bundle, ATestSeesWhatItChangesInTheInformationList) {
    fake::Bundle bundle;
    const auto value = [](const char* key) { return Bundle::containing(nullptr)->objectForInfoDictionaryKey(key); };
    EXPECT_EQ(value("CFBundleName"), "Cirrane");
    EXPECT_EQ(value("CFBundleShortVersionString"), "1.2.3");
    EXPECT_EQ(value("CFBundleIdentifier"), "org.example.test");
    for (const char* version : {"1.2.4", "1.2.5", "1.2.6"}) {
        bundle.setInfo("CFBundleShortVersionString", version);
        EXPECT_EQ(value("CFBundleShortVersionString"), version);
    }
    EXPECT_EQ(value("CFBundleName"), "Cirrane");
}

// --- Files -------------------------------------------------------------------------------------------------------

TEST(Bundle, FindsFilesByNameAndType) {
    const fake::TemporaryDirectory directory;
    fake::writeFile(directory.path() / "default.metallib", "x");
    files::create_directory(directory.path() / "folder.metallib");
    const auto bundle = Bundle::open(directory.path());
    EXPECT_EQ(bundle->pathForResource("default", "metallib"), directory.path() / "default.metallib");
    EXPECT_EQ(bundle->pathForResource("default", "spv"), std::nullopt);
    EXPECT_EQ(bundle->pathForResource("folder", "metallib"), std::nullopt);
}

// --- Which bundle ------------------------------------------------------------------------------------------------

TEST(Bundle, CodeOutsideAnySaverHasNone) {
    static const int inTheProgram = 0;
    EXPECT_EQ(Bundle::containing(&inTheProgram), nullptr);
    EXPECT_EQ(Bundle::containing(nullptr), nullptr);
    const int onTheStack = 0;
    EXPECT_EQ(Bundle::containing(&onTheStack), nullptr);
}

TEST(Bundle, AModuleFindsTheInnermostSaverAroundIt) {
    const fake::TemporaryDirectory directory;
    const files::path saver = directory.path() / "Outer.saver" / "Inner.saver";
    files::create_directories(saver / "code");
    files::copy_file(BUNDLE_PROBE_MODULE, saver / "code" / "Probe.so");
    fake::writeFile(saver / "strings" / "Localizable.json", R"({"KEY": "the module's text"})");
    // What a host has beside itself, or where it works, is not looked at.
    fake::writeFile(directory.path() / "strings" / "Localizable.json", R"({"KEY": "the host's text"})");

    void* const module = dlopen((saver / "code" / "Probe.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(module, nullptr) << dlerror();
    const auto bundle = Bundle::containing(dlsym(module, "bundleProbe"));
    ASSERT_NE(bundle, nullptr);
    EXPECT_EQ(bundle->directory(), saver);
    EXPECT_EQ(bundle->localizedString("KEY", "KEY", ""), "the module's text");
    EXPECT_EQ(Bundle::containing(dlsym(module, "bundleProbe")), bundle);
    dlclose(module);
}

TEST(Bundle, AProgramFindsItsSaverHoweverItWasStarted) {
    const fake::TemporaryDirectory directory;
    files::create_directories(directory.path() / "A.saver" / "bin");
    files::copy_file(BUNDLE_PROBE_PROGRAM, directory.path() / "A.saver" / "bin" / "probe");
    const auto libraries = files::path(BUNDLE_PROBE_PROGRAM).parent_path().parent_path();
    const std::string command =
        "cd '" + directory.path().string() + "/A.saver' && LD_LIBRARY_PATH='" + libraries.string() + "' bin/probe";
    std::FILE* const pipe = popen(command.c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    std::array<char, 1000> line{};
    EXPECT_NE(std::fgets(line.data(), static_cast<int>(line.size()), pipe), nullptr);
    EXPECT_EQ(pclose(pipe), 0);
    EXPECT_EQ(std::string(line.data()), (directory.path() / "A.saver").string() + "\n");
}

TEST(Bundle, AnOverrideHoldsForEveryAddressUntilItEnds) {
    {
        const fake::Bundle bundle;
        ASSERT_NE(Bundle::containing(nullptr), nullptr);
        EXPECT_EQ(Bundle::containing(&bundle)->directory(), files::canonical(bundle.directory()));
    }
    EXPECT_EQ(Bundle::containing(nullptr), nullptr);
}

// --- Strings tables ----------------------------------------------------------------------------------------------

TEST(Bundle, AMissingKeyComesBackAsTheGivenValue) {
    const fake::Bundle test({{"Localizable", {{"QZL_ERROR_MEMORY", "No memory."}}}, {"Vistashade", {{"A", "a"}}}});
    const auto bundle = Bundle::containing(nullptr);
    EXPECT_EQ(bundle->localizedString("QZL_ERROR_MEMORY", "QZL_ERROR_MEMORY", ""), "No memory.");
    EXPECT_EQ(bundle->localizedString("QZL_ERROR_MEMORY", "QZL_ERROR_MEMORY", "Localizable"), "No memory.");
    EXPECT_EQ(bundle->localizedString("QZL_ERROR_MEMORY", "QZL_ERROR_MEMORY", "Vistashade"), "QZL_ERROR_MEMORY");
    EXPECT_EQ(bundle->localizedString("A", "value", "Vistashade"), "a");
    EXPECT_EQ(bundle->localizedString("A", "value", "NoSuchTable"), "value");
    EXPECT_EQ(bundle->localizedString("", "value", ""), "value");
}

TEST(Bundle, ADamagedTableReadsAsMissing) {
    const fake::TemporaryDirectory directory;
    fake::writeFile(directory.path() / "strings" / "Broken.json", "{\"KEY\": \"text\"");
    fake::writeFile(directory.path() / "strings" / "Mixed.json",
                    R"({"NUMBER": 1, "NULL": null, "TEXT": "text", "EMPTY": ""})");
    files::create_directory(directory.path() / "strings" / "Folder.json");
    const auto bundle = Bundle::open(directory.path());
    EXPECT_EQ(bundle->localizedString("KEY", "KEY", "Broken"), "KEY");
    EXPECT_EQ(bundle->localizedString("KEY", "KEY", "Folder"), "KEY");
    EXPECT_EQ(bundle->localizedString("NUMBER", "NUMBER", "Mixed"), "NUMBER");
    EXPECT_EQ(bundle->localizedString("NULL", "NULL", "Mixed"), "NULL");
    EXPECT_EQ(bundle->localizedString("TEXT", "TEXT", "Mixed"), "text");
    EXPECT_EQ(bundle->localizedString("EMPTY", "EMPTY", "Mixed"), "");
}

}  // namespace
