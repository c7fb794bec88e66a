#include "settings/QZLDefaultsManager.hpp"

#include "tests/settings/DefaultsManagerFixture.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <latch>
#include <limits>
#include <thread>

using testing::ElementsAre;

namespace {

using QZLDefaultsManagerTest = DefaultsManagerFixture;

void expectRegisteredDefaults(const QZLDefaultsManager& manager) {
    EXPECT_EQ(manager.colors(), 0.4F);
    EXPECT_EQ(manager.brightness(), 0.5F);
    EXPECT_EQ(manager.speed(), 0.7F);
    EXPECT_EQ(manager.zoom(), 0.38F);
    EXPECT_TRUE(manager.multiScreen());
    EXPECT_EQ(manager.screenshotInterval(), 0);
    EXPECT_FALSE(manager.diagnostics());
}

void changeEverySetting(QZLDefaultsManager& manager) {
    manager.setColors(0.125F);
    manager.setBrightness(0.1F);
    manager.setSpeed(0.0F);
    manager.setZoom(1.0F);
    manager.setMultiScreen(false);
    manager.setScreenshotInterval(4);
    manager.setDiagnostics(true);
}

void expectEverySettingChanged(const QZLDefaultsManager& manager) {
    EXPECT_EQ(manager.colors(), 0.125F);
    EXPECT_EQ(manager.brightness(), 0.1F);
    EXPECT_EQ(manager.speed(), 0.0F);
    EXPECT_EQ(manager.zoom(), 1.0F);
    EXPECT_FALSE(manager.multiScreen());
    EXPECT_EQ(manager.screenshotInterval(), 4);
    EXPECT_TRUE(manager.diagnostics());
}

TEST_F(QZLDefaultsManagerTest, AFreshStoreReadsTheRegisteredDefaults) {
    expectRegisteredDefaults(manager);
}

TEST_F(QZLDefaultsManagerTest, TheRegisteredDefaultsAreNotStored) {
    EXPECT_EQ(store->allKeys().size(), 7U);
    for (const std::string& key : store->allKeys()) {
        EXPECT_FALSE(store->isStored(key)) << key;
    }
}

TEST_F(QZLDefaultsManagerTest, SettingsReadAsTheyWereSet) {
    changeEverySetting(manager);
    expectEverySettingChanged(manager);
}

TEST_F(QZLDefaultsManagerTest, SettersStoreUnderTheirKeysAndDoNotSynchronize) {
    changeEverySetting(manager);
    EXPECT_THAT(store->calls(),
                ElementsAre("setFloat Colors 0.125", "setFloat Brightness 0.1", "setFloat Speed 0", "setFloat Zoom 1",
                            "setFloat MultiScreen 0", "setInteger ScreenshotInterval 4", "setFloat Diagnostics 1"));
}

TEST_F(QZLDefaultsManagerTest, ValuesAreNotClamped) {
    manager.setColors(-3.5F);
    manager.setZoom(1e30F);
    manager.setScreenshotInterval(std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(manager.colors(), -3.5F);
    EXPECT_EQ(manager.zoom(), 1e30F);
    EXPECT_EQ(manager.screenshotInterval(), std::numeric_limits<std::int64_t>::min());
    manager.setScreenshotInterval(std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(manager.screenshotInterval(), std::numeric_limits<std::int64_t>::max());
}

TEST_F(QZLDefaultsManagerTest, SwitchesAreStoredAsNumbers) {
    manager.setMultiScreen(false);
    EXPECT_FALSE(manager.multiScreen());
    EXPECT_TRUE(store->isStored("MultiScreen"));
    EXPECT_EQ(store->floatForKey("MultiScreen"), 0.0F);
    manager.setMultiScreen(true);
    EXPECT_EQ(store->floatForKey("MultiScreen"), 1.0F);
    manager.setDiagnostics(true);
    EXPECT_EQ(store->floatForKey("Diagnostics"), 1.0F);
    manager.setDiagnostics(false);
    EXPECT_EQ(store->floatForKey("Diagnostics"), 0.0F);
    EXPECT_THAT(store->calls(), ElementsAre("setFloat MultiScreen 0", "setFloat MultiScreen 1",
                                            "setFloat Diagnostics 1", "setFloat Diagnostics 0"));
}

TEST_F(QZLDefaultsManagerTest, AnyNumberButZeroSwitchesOn) {
    for (const float value : {0.25F, -1.0F, 2.0F, std::numeric_limits<float>::denorm_min()}) {
        store->setFloat(value, "MultiScreen");
        store->setFloat(value, "Diagnostics");
        EXPECT_TRUE(manager.multiScreen()) << value;
        EXPECT_TRUE(manager.diagnostics()) << value;
    }
    store->setFloat(-0.0F, "MultiScreen");
    EXPECT_FALSE(manager.multiScreen());
}

TEST_F(QZLDefaultsManagerTest, ResetRemovesAllThatIsStored) {
    changeEverySetting(manager);
    store->setString("left by an older version", "Forgotten");
    manager.reset();
    expectRegisteredDefaults(manager);
    EXPECT_FALSE(store->isStored("Forgotten"));
    EXPECT_EQ(store->stringForKey("Forgotten"), std::nullopt);
    EXPECT_FALSE(store->isStored("Colors"));
    EXPECT_EQ(store->calls().back(), "synchronize");
}

TEST_F(QZLDefaultsManagerTest, ResetRemovesEveryVisibleKeyThenSynchronizesOnce) {
    store->setFloat(1.0F, "Another");
    store->clearCalls();
    manager.reset();
    const auto calls = store->calls();
    ASSERT_EQ(calls.size(), 9U);
    EXPECT_THAT(std::vector(calls.begin(), calls.end() - 1),
                testing::UnorderedElementsAre("remove Another", "remove Brightness", "remove Colors",
                                              "remove Diagnostics", "remove MultiScreen", "remove ScreenshotInterval",
                                              "remove Speed", "remove Zoom"));
    EXPECT_EQ(calls.back(), "synchronize");
}

TEST_F(QZLDefaultsManagerTest, SynchronizeOnlySynchronizes) {
    EXPECT_TRUE(manager.synchronize());
    EXPECT_THAT(store->calls(), ElementsAre("synchronize"));
    store->setSynchronizeSucceeds(false);
    EXPECT_FALSE(manager.synchronize());
}

TEST_F(QZLDefaultsManagerTest, SettingsSurviveInTheModulesFile) {
    const fake::TemporaryDirectory directory;
    const auto file = directory.path() / "settings.conf";
    platform::setPreferencesStore(platform::makeFilePreferencesStore(file));
    manager.registerDefaults();
    changeEverySetting(manager);
    EXPECT_TRUE(manager.synchronize());

    platform::setPreferencesStore(platform::makeFilePreferencesStore(file));
    manager.registerDefaults();
    expectEverySettingChanged(manager);
    manager.reset();

    platform::setPreferencesStore(platform::makeFilePreferencesStore(file));
    manager.registerDefaults();
    expectRegisteredDefaults(manager);
}

bool usesTheStoreOf(const std::string& moduleName) {
    return QZLDefaultsManager::sharedInstance().screenSaverDefaults() == platform::preferencesForModule(moduleName);
}

int exitCodeOfAFirstUseInANamedBundle() {
    fake::Bundle bundle;
    bundle.setInfo("CFBundleIdentifier", "org.example.named");
    const bool isTheBundles = usesTheStoreOf("org.example.named");
    bundle.setInfo("CFBundleIdentifier", "org.example.other");
    const bool staysThroughAnotherName = usesTheStoreOf("org.example.named");
    platform::Bundle::setOverride(nullptr);  // the bundle has gone
    const bool staysThroughNone = usesTheStoreOf("org.example.named");
    return isTheBundles && staysThroughAnotherName && staysThroughNone && !usesTheStoreOf("org.example.other") ? 0 : 1;
}

int exitCodeOfAFirstUseInABundleWithoutIdentifier() {
    fake::Bundle bundle;
    bundle.setInfo("CFBundleIdentifier", "");
    return usesTheStoreOf("Cirrane") ? 0 : 1;
}

int exitCodeOfAFirstUseWithoutABundle() {
    platform::Bundle::setOverride(nullptr);
    return usesTheStoreOf("Cirrane") ? 0 : 1;
}

int exitCodeOfAFirstUseByMany() {
    const auto store = RecordingStore::install();
    constexpr std::ptrdiff_t count = 8;
    std::latch start(count);
    std::vector<const QZLDefaultsManager*> managers(count);
    std::vector<float> zooms(count);
    {
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < managers.size(); ++i) {
            threads.emplace_back([&start, &manager = managers[i], &zoom = zooms[i]] {
                start.arrive_and_wait();
                manager = &QZLDefaultsManager::sharedInstance();
                zoom = manager->zoom();
            });
        }
    }
    const bool isOne = managers == std::vector<const QZLDefaultsManager*>(count, &QZLDefaultsManager::sharedInstance());
    const bool isRegistered = zooms == std::vector<float>(count, 0.38F);
    return isOne && isRegistered && store->calls() == std::vector<std::string>{"register 7"} ? 0 : 1;
}

// The instance is made once per process, so each of these needs a process of its own.
class QZLDefaultsManagerDeathTest : public testing::Test {
protected:
    QZLDefaultsManagerDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(QZLDefaultsManagerDeathTest, TheStoreIsThatOfTheBundlesIdentifierAtTheFirstUse) {
    EXPECT_EXIT(std::exit(exitCodeOfAFirstUseInANamedBundle()), testing::ExitedWithCode(0), "");
}

TEST_F(QZLDefaultsManagerDeathTest, ABundleWithoutIdentifierStillHasAStore) {
    EXPECT_EXIT(std::exit(exitCodeOfAFirstUseInABundleWithoutIdentifier()), testing::ExitedWithCode(0), "");
}

TEST_F(QZLDefaultsManagerDeathTest, WithoutABundleThereIsStillAStore) {
    EXPECT_EXIT(std::exit(exitCodeOfAFirstUseWithoutABundle()), testing::ExitedWithCode(0), "");
}

TEST_F(QZLDefaultsManagerDeathTest, IsMadeAndRegisteredOnceWhenManyAskAtOnce) {
    EXPECT_EXIT(std::exit(exitCodeOfAFirstUseByMany()), testing::ExitedWithCode(0), "");
}

}  // namespace
