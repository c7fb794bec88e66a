#include "foundation/QZLBundle.hpp"

#include "tests/foundation/BundleProbe.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/TemporaryDirectory.hpp"
#include "tests/support/TestBundle.hpp"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace {

TEST(QZLBundle, TextsComeFromTheTableThatIsAsked) {
    const fake::Bundle bundle(
        {{"Localizable", {{"GREETING", "Good morning"}}}, {"Vistashade", {{"GREETING", "Hello"}}}});
    EXPECT_EQ(QZLLocalizedSaverString("GREETING"), "Good morning");
    EXPECT_EQ(QZLLocalizedVistashadeString("GREETING"), "Hello");
}

TEST(QZLBundle, AKeyOfAnotherTableComesBackUnchanged) {
    const fake::Bundle bundle({{"Localizable", {{"QZL_ERROR_MEMORY", "No memory"}}}, {"Vistashade", {{"A", "a"}}}});
    EXPECT_EQ(QZLLocalizedVistashadeString("QZL_ERROR_MEMORY"), "QZL_ERROR_MEMORY");
    EXPECT_EQ(QZLLocalizedSaverString("A"), "A");
}

TEST(QZLBundle, AKeyOfAMissingTableComesBackUnchanged) {
    const fake::Bundle bundle;
    EXPECT_EQ(QZLLocalizedVistashadeString("QZL_ERROR_UNKNOWN"), "QZL_ERROR_UNKNOWN");
    EXPECT_EQ(QZLLocalizedSaverString("QZL_ERROR_MEMORY"), "QZL_ERROR_MEMORY");
}

TEST(QZLBundle, PropertiesAreReadAndMissingOnesAreNull) {
    const fake::Bundle bundle({}, {{"QZLEmailAddress", "clouds@example.org"}});
    EXPECT_EQ(QZLSaverBundleString("CFBundleName"), "Cirrane");
    EXPECT_EQ(QZLSaverBundleString("QZLEmailAddress"), "clouds@example.org");
    EXPECT_EQ(QZLSaverBundleString("QZLWebsiteAddress"), std::nullopt);
}

TEST(QZLBundle, EveryCallLooksTheBundleUpAnew) {
    fake::Bundle bundle;
    EXPECT_EQ(QZLSaverBundleString("CFBundleName"), "Cirrane");
    bundle.setInfo("CFBundleName", "Stratus");
    EXPECT_EQ(QZLSaverBundleString("CFBundleName"), "Stratus");
}

TEST(QZLBundle, AProgramOutsideAnyBundleHasNone) {
    EXPECT_EQ(QZLSaverBundle(), nullptr);
    EXPECT_EQ(QZLLocalizedSaverString("QZL_ERROR_MEMORY"), "QZL_ERROR_MEMORY");
    EXPECT_EQ(QZLLocalizedVistashadeString("QZL_ERROR_UNKNOWN"), "QZL_ERROR_UNKNOWN");
    EXPECT_EQ(QZLSaverBundleString("CFBundleName"), std::nullopt);
}

/// Makes a bundle that holds the probe and strings tables with one greeting, and loads the probe from there.
const BundleProbe* loadProbe(const std::filesystem::path& bundle, const std::string& name) {
    fake::writeFile(bundle / "Info.json", R"({"CFBundleIdentifier": "org.example.)" + name + R"("})");
    fake::writeFile(bundle / "strings/Localizable.json", R"({"GREETING": "Saver of )" + name + R"("})");
    fake::writeFile(bundle / "strings/Vistashade.json", R"({"GREETING": "Framework of )" + name + R"("})");
    std::filesystem::copy_file(BUNDLE_PROBE, bundle / "probe.so");
    void* const library = dlopen((bundle / "probe.so").c_str(), RTLD_NOW | RTLD_LOCAL);  // stays, as modules do
    return library != nullptr ? static_cast<const BundleProbe*>(dlsym(library, "bundleProbe")) : nullptr;
}

TEST(QZLBundle, EveryModuleFindsItsOwnBundleWhateverElseIsLoaded) {
    const fake::TemporaryDirectory directory;
    const auto onePath = directory.path() / "One.saver";
    const auto twoPath = directory.path() / "Two.saver";
    const BundleProbe* const one = loadProbe(onePath, "one");
    const BundleProbe* const two = loadProbe(twoPath, "two");
    ASSERT_NE(one, nullptr) << dlerror();
    ASSERT_NE(two, nullptr) << dlerror();

    ASSERT_NE(one->saverBundle(), nullptr);
    ASSERT_NE(two->saverBundle(), nullptr);
    EXPECT_EQ(one->saverBundle()->directory(), std::filesystem::canonical(onePath));
    EXPECT_EQ(two->saverBundle()->directory(), std::filesystem::canonical(twoPath));
    EXPECT_EQ(one->localizedSaverString("GREETING"), "Saver of one");
    EXPECT_EQ(two->localizedSaverString("GREETING"), "Saver of two");
    EXPECT_EQ(one->localizedVistashadeString("GREETING"), "Framework of one");
    EXPECT_EQ(two->localizedVistashadeString("GREETING"), "Framework of two");
    EXPECT_EQ(one->saverBundleString("CFBundleIdentifier"), "org.example.one");
    EXPECT_EQ(two->saverBundleString("CFBundleIdentifier"), "org.example.two");
    EXPECT_EQ(QZLSaverBundle(), nullptr) << "the program itself lies in neither";
}

TEST(QZLBundle, TablesElsewhereDoNotChangeTheModulesTexts) {
    const fake::TemporaryDirectory directory;
    const auto host = directory.path() / "Host.saver";
    const auto otherPath = directory.path() / "Other.saver";
    const BundleProbe* const other = loadProbe(otherPath, "other");
    const BundleProbe* const module = loadProbe(host / "PlugIns" / "Module.saver", "module");
    ASSERT_NE(other, nullptr) << dlerror();
    ASSERT_NE(module, nullptr) << dlerror();
    for (const auto& elsewhere : {host, otherPath}) {  // tables are read when a text is first asked for
        fake::writeFile(elsewhere / "strings/Vistashade.json", R"({"GREETING": "elsewhere", "FAREWELL": "elsewhere"})");
    }

    EXPECT_EQ(other->localizedVistashadeString("FAREWELL"), "elsewhere");
    EXPECT_EQ(module->localizedVistashadeString("GREETING"), "Framework of module");
    EXPECT_EQ(module->localizedVistashadeString("FAREWELL"), "FAREWELL");
}

}  // namespace
