// The sheet over a bundle that lacks what it shows, says or opens.
#include "platform/NotificationCenter.hpp"
#include "platform/Workspace.hpp"
#include "settings/QZLNotifications.hpp"
#include "tests/saver/SheetTest.hpp"

namespace {

class QZLCirraneBareSheet : public SheetTest {
protected:
    using Tables = std::map<std::string, fake::Bundle::Strings>;

    QZLCirraneBareSheet() {
        platform::NotificationCenter::defaultCenter().addObserver(QZLConfigurationStoredNotification, _token,
                                                                  [this](std::string_view) { ++posts; });
        platform::setWorkspaceMessageSink([this](const std::string& message) { messages.push_back(message); });
    }
    ~QZLCirraneBareSheet() override {
        controller.reset();
        platform::setWorkspaceMessageSink(nullptr);
    }

    /// A form with nothing but what starts its actions, named as they are.
    void useBareForm() {
        const fake::Bundle::Strings texts{{"QZL_UI_MAILTO_FORMAT", "mailto:%@?subject=%@%%20%@"},
                                          {"QZL_UI_REPORT_ERROR_BODY_FORMAT", "%4$ld %6$@"},
                                          {"QZL_UI_REPORT_ERROR_FORMAT", "mailto:%@?subject=%@&body=%@"}};
        other.emplace(
            Tables{{"Vistashade", texts}},
            fake::Bundle::Strings{{"QZLEmailAddress", "a@b"}, {"QZLWebsiteAddress", "https://clouds.example.org"}});
        const auto item = [](const std::string& type, const std::string& action) {
            return "<item><widget class=\"" + type + "\" name=\"" + action +
                   "\"><property name=\"action\" stdset=\"0\"><string notr=\"true\">" + action +
                   "</string></property><property name=\"text\"><string>x</string></property></widget></item>";
        };
        std::string items = item("QPushButton", "closeSheet:");
        for (const char* action :
             {"resetToDefaults:", "sendEmail:", "openWebsite:", "sendErrorReport:", "startDedicationEasterEgg:",
              "startShowExtraEasterEgg:", "startHideExtraEasterEgg:"}) {
            items += item("QZLTextTrigger", action);
        }
        fake::writeFile(other->directory() / "Cirrane.ui",
                        "<ui version=\"4.0\"><class>Cirrane</class><widget class=\"QDialog\" name=\"Cirrane\">"
                        "<layout class=\"QVBoxLayout\" name=\"all\">" +
                            items + "</layout></widget></ui>");
    }

    /// The form that was built, over a bundle of these texts and this information.
    void useWholeForm(const Tables& tables, const fake::Bundle::Strings& info) {
        other.emplace(tables, info);
        other->copyFromBuilt("Cirrane.ui");
        other->copyFromBuilt("pictures");
    }
    /// The form and the texts that were built, over an Info.json that says nothing.
    void useWholeFormWithoutInformation() {
        useWholeForm({}, {});
        other->copyFromBuilt("strings");
        other->clearInfo();
    }

    std::optional<fake::Bundle> other;
    int posts = 0;
    std::vector<std::string> messages;

private:
    std::shared_ptr<const void> _token = std::make_shared<char>();
};

TEST_F(QZLCirraneBareSheet, WithoutAnyControlItStoresNoSettingAndStillTellsThatItWasClosed) {
    useBareForm();
    open();
    EXPECT_EQ(store->calls(), std::vector<std::string>());
    click(button("closeSheet:"));
    EXPECT_EQ(store->calls(), std::vector<std::string>{"synchronize"});
    EXPECT_EQ(posts, 1);
    EXPECT_FALSE(window().isVisible());
}

TEST_F(QZLCirraneBareSheet, WithoutAnyControlItStillResets) {
    defaults().setColors(0.9F);
    useBareForm();
    open();
    click(view<QLabel>("resetToDefaults:"));
    EXPECT_FALSE(store->isStored("Colors"));
    EXPECT_EQ(defaults().colors(), 0.4F);
    EXPECT_EQ(store->calls().back(), "synchronize");
    EXPECT_EQ(posts, 0);
}

TEST_F(QZLCirraneBareSheet, WithoutAnyControlItStillOpensItsAddressesAndForgetsTheReport) {
    defaults().saveError(200, 0, "journal");
    useBareForm();
    open();
    for (const auto& [action, address] :
         {std::pair("openWebsite:", "https://clouds.example.org"),
          std::pair("sendEmail:", "mailto:a%40b?subject=Cirrane%201%2E2%2E3"),
          std::pair("sendErrorReport:", "mailto:a%40b?subject=Cirrane&body=200%20journal")}) {
        click(view<QLabel>(action));
        EXPECT_EQ(desktop.receivedAddress(), address) << action;
        std::filesystem::remove(desktop.received());
    }
    EXPECT_EQ(defaults().savedErrorJournal(), std::nullopt);
}

TEST_F(QZLCirraneBareSheet, WithoutTheViewsThatTheyFadeTheAnimationsOnlyTakeTime) {
    useBareForm();
    open();
    click(view<QLabel>("startDedicationEasterEgg:"), Qt::AltModifier);
    click(view<QLabel>("startShowExtraEasterEgg:"), Qt::MetaModifier);
    EXPECT_EQ(timers.runningTimers(), 2U);
    timers.tick(28);
    EXPECT_EQ(timers.runningTimers(), 1U);
    click(view<QLabel>("startHideExtraEasterEgg:"));
    EXPECT_EQ(timers.runningTimers(), 2U);
    timers.tick(723 - 28);
    EXPECT_EQ(timers.runningTimers(), 0U);
    click(view<QLabel>("startDedicationEasterEgg:"), Qt::AltModifier);
    timers.tick(30);
    click(button("closeSheet:"));
    EXPECT_EQ(timers.runningTimers(), 0U);
    EXPECT_EQ(posts, 1);
}

TEST_F(QZLCirraneBareSheet, WhatItsBundleDoesNotSayIsWrittenAsAbsentAndItsLinksAreEmpty) {
    useWholeFormWithoutInformation();
    open();
    EXPECT_EQ(view<QLabel>("_appVersionCopyright").text(), QStringLiteral("(null) (null)\n(null)"));
    EXPECT_EQ(view<QLabel>("_mailto").text(), QString());
    EXPECT_EQ(view<QLabel>("_website").text(), QString());
    EXPECT_EQ(slider("_speed").floatValue(), 0.7F) << "all else is there";
}

TEST_F(QZLCirraneBareSheet, WhatItsBundleDoesNotSayIsMissingFromMailsAndOpensNoWebsite) {
    useWholeFormWithoutInformation();
    open();
    controller->openWebsite();
    controller->sendEmail();
    EXPECT_EQ(desktop.receivedAddress(), "mailto:?subject=%20");
    std::filesystem::remove(desktop.received());
    controller->sendErrorReport();
    const std::string report = desktop.receivedAddress();
    EXPECT_TRUE(report.starts_with("mailto:?subject=%20error%20report&body=")) << report;
    EXPECT_NE(report.find("Screen%20saver%3A%20%28null%29%20%28null%29%0D%0A"), std::string::npos) << report;
    EXPECT_TRUE(report.ends_with("Journal%3A%0D%0A%28null%29")) << report << ": nor is there a report";
    EXPECT_EQ(messages, std::vector<std::string>());
}

TEST_F(QZLCirraneBareSheet, AReportThatMakesNoAddressOpensNothingAndIsForgottenAllTheSame) {
    for (const char* format :
         {"no address", "mailto:%@?subject=error report&body=%@%@", "mailto:%%%@%@%@", "%@%@%@", ""}) {
        useWholeForm({{"Vistashade", {{"QZL_UI_REPORT_ERROR_FORMAT", format}}}},
                     {{"QZLWebsiteAddress", "https://later.example.org"}});
        defaults().saveError(200, 0, "journal");
        open();
        ASSERT_FALSE(button("_errorReport").isHidden()) << format;
        click(button("_errorReport"));
        EXPECT_TRUE(button("_errorReport").isHidden()) << format;
        EXPECT_EQ(defaults().savedErrorJournal(), std::nullopt) << format;
        click(view<QLabel>("_website"));
        EXPECT_EQ(desktop.receivedAddress(), "https://later.example.org") << format;
        std::filesystem::remove(desktop.received());
    }
    EXPECT_EQ(messages, std::vector<std::string>());
    EXPECT_TRUE(desktop.keptFiles().empty());
    EXPECT_EQ(desktop.clipboard(), "");
}

}  // namespace
