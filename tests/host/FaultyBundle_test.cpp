// The program with a bundle whose parts are missing, cut or not what they should be.
#include "tests/host/Process.hpp"
#include "tests/host/StartedSaver.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using fake::ProcessEnd;

const std::vector<std::string> noDisplay{"DISPLAY", "WAYLAND_DISPLAY"};

/// A copy of the built bundle, for a test to spoil.
class FaultyBundle : public testing::Test {
protected:
    FaultyBundle() { fs::copy(CIRRANE_BUILT_BUNDLE, bundle, fs::copy_options::recursive); }

    ProcessEnd run(const std::vector<std::string>& environment = noDisplay) const {
        return fake::runCirrane({"--headless", "--size", "64x64", "--frames", "2", "--module", bundle.string()},
                                environment);
    }

    void expectRefusal(const std::string& code, const char* text) const {
        const fake::StartedSaver saver(bundle, noDisplay);
        EXPECT_EQ(saver.code(), code);
        EXPECT_EQ(saver.text(), fake::englishText(text));
        const ProcessEnd end = run();
        EXPECT_EQ(end.exitStatus, 1);
        EXPECT_EQ(end.standardError, "cirrane: " + fake::englishText(text) + "\n");
    }

    fake::TemporaryDirectory directory;
    fs::path bundle = directory.path() / "Cirrane.saver";
    fs::path library = bundle / "default.metallib";
};

constexpr const char* internalError = "QZL_ERROR_GENERAL_INTERNAL_ERROR";

TEST_F(FaultyBundle, IsSoundAsItWasBuilt) {
    EXPECT_EQ(fake::StartedSaver(bundle, noDisplay).code(), "started");
    EXPECT_EQ(run().exitStatus, 0);
}

TEST_F(FaultyBundle, AMissingShaderLibraryIsCode101) {
    fs::remove(library);
    expectRefusal("101:1000", internalError);
    fs::create_directory(library);
    expectRefusal("101:1000", internalError);
}

TEST_F(FaultyBundle, ATruncatedShaderLibraryIsCode101) {
    const std::string sound = fake::readFile(library);
    ASSERT_GT(sound.size(), 1000U);
    for (const std::size_t size : {std::size_t{0}, std::size_t{19}, std::size_t{20}, sound.size() / 2 / 4 * 4,
                                   sound.size() - 4, sound.size() - 1}) {
        fake::writeFile(library, sound.substr(0, size));
        EXPECT_EQ(fake::StartedSaver(bundle, noDisplay).code(), "101:1000") << "cut to " << size;
    }
}

TEST_F(FaultyBundle, AShaderLibraryThatIsNoSpirvIsCode101) {
    fake::writeFile(library, "no shader library");
    expectRefusal("101:1000", internalError);
    fake::writeFile(library, std::string(4096, '\xA5'));
    expectRefusal("101:1000", internalError);
}

TEST_F(FaultyBundle, AShaderLibraryWithoutTheVertexFunctionIsCode102) {
    fs::copy_file(OTHER_SHADER_LIBRARY, library, fs::copy_options::overwrite_existing);
    expectRefusal("102:1000", internalError);
}

TEST_F(FaultyBundle, AShaderLibraryWithoutTheFragmentFunctionIsCode103) {
    fs::copy_file(BUILT_VERTEX_SHADER, library, fs::copy_options::overwrite_existing);
    expectRefusal("103:1000", internalError);
}

TEST_F(FaultyBundle, WithoutStringsAnErrorShowsItsKey) {
    fs::remove_all(bundle / "strings");
    fs::remove(library);
    EXPECT_EQ(fake::StartedSaver(bundle, noDisplay).text(), internalError);
    EXPECT_EQ(run().standardError, std::string("cirrane: ") + internalError + "\n");
}

TEST_F(FaultyBundle, DamagedStringsAndTranslationsDoNotKeepItFromRunning) {
    for (const auto& entry : fs::recursive_directory_iterator(bundle)) {
        const bool isText = entry.path().extension() == ".mo" ||
                            (entry.path().extension() == ".json" && entry.path().filename() != "Info.json");
        if (isText) {
            fake::writeFile(entry.path(), fake::readFile(entry.path()).substr(0, 100));
        }
    }
    const ProcessEnd end = run({"DISPLAY", "WAYLAND_DISPLAY", "LC_ALL=C.UTF-8", "LANGUAGE=de"});
    EXPECT_EQ(end.exitStatus, 0) << end.standardError;
    EXPECT_EQ(end.standardError, "");
}

TEST_F(FaultyBundle, FormatsThatDoNotMatchTheirArgumentsStillSayTheirText) {
    fake::writeFile(bundle / "strings" / "Vistashade.json",
                    R"({"QZL_ERROR_GENERAL_INTERNAL_ERROR": "%d %n %s broken",
                        "QZL_JOURNAL_MESSAGE_FORMAT": "%lf %9$@ %*d", "QZL_JOURNAL_LOG_FORMAT": "%n%n%s%s%s%s%s%s"})");
    EXPECT_EQ(run().exitStatus, 0);
    fs::remove(library);
    EXPECT_EQ(run().standardError, "cirrane: %d %n %s broken\n") << "a message is no format";
}

TEST_F(FaultyBundle, ADamagedInformationListIsAClearFailure) {
    const std::string sound = fake::readFile(bundle / "Info.json");
    for (const std::string& damaged : {std::string(), sound.substr(0, sound.size() / 2), std::string("[]"),
                                       std::string("{\"SaverLibrary\": 1}"), std::string(4096, '\0')}) {
        fake::writeFile(bundle / "Info.json", damaged);
        const ProcessEnd end = run();
        EXPECT_EQ(end.exitStatus, 1);
        EXPECT_EQ(end.standardError, "cirrane: the bundle " + bundle.string() + " has no usable Info.json\n");
    }
}

TEST_F(FaultyBundle, ATruncatedSaverIsAClearFailure) {
    const std::string sound = fake::readFile(bundle / "Cirrane.so");
    ASSERT_GT(sound.size(), 100000U);
    for (const std::size_t size : {0U, 100U, 1000U, 50000U}) {
        fake::writeFile(bundle / "Cirrane.so", sound.substr(0, size));
        const ProcessEnd end = run();
        EXPECT_EQ(end.exitStatus, 1);
        EXPECT_EQ(end.standardError.find("cirrane: the saver cannot be loaded: "), 0U) << end.standardError;
        EXPECT_EQ(std::count(end.standardError.begin(), end.standardError.end(), '\n'), 1) << end.standardError;
    }
}

TEST_F(FaultyBundle, AnEntryPointThatIsMissingIsAClearFailure) {
    std::string info = fake::readFile(bundle / "Info.json");
    const std::string name = "cirraneSaverModule";
    ASSERT_NE(info.find(name), std::string::npos);
    info.replace(info.find(name), name.size(), "noSuchFunction");
    fake::writeFile(bundle / "Info.json", info);
    EXPECT_EQ(run().standardError, "cirrane: the saver in " + bundle.string() + " does not fit this program\n");
}

}  // namespace
