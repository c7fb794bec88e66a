#include "platform/ui/WindowController.hpp"

#include "platform/SystemLog.hpp"
#include "platform/ui/Sheet.hpp"
#include "tests/support/TestBundle.hpp"

#include <gtest/gtest.h>

#include <QtGui/QScreen>
#include <QtTest/QTest>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <fstream>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

class Controller final : public platform::WindowController {
public:
    explicit Controller(std::shared_ptr<const platform::Bundle> bundle) : WindowController(std::move(bundle), "Test") {
        addOutlet("_name", name);
        addOutlet("_missing", missing);
        addAction("act:", [this] { ++actions; });
    }

    void windowDidLoad() override {
        ++loads;
        EXPECT_NE(window(), nullptr) << "it is there already";
    }

    void windowWillAppear() override { ++appearances; }

    QPointer<QLabel> name;
    QPointer<QCheckBox> missing;
    int actions = 0;
    int appearances = 0;
    int loads = 0;
};

class WindowController : public testing::Test {
protected:
    WindowController() {
        platform::setSystemLogSink([this](std::string_view line) { log.emplace_back(line); });
    }
    ~WindowController() override { platform::setSystemLogSink({}); }

    void writeForm(const std::string& widgets) const {
        std::ofstream(bundle.directory() / "Test.ui")
            << "<ui version=\"4.0\"><class>Test</class><widget class=\"QDialog\" name=\"Test\">"
            << "<layout class=\"QVBoxLayout\" name=\"all\">" << widgets << "</layout></widget></ui>";
    }
    static std::string item(const std::string& attributes, const std::string& properties = "") {
        return "<item><widget " + attributes + ">" + properties + "</widget></item>";
    }
    static std::string action(const std::string& name) {
        return "<property name=\"action\" stdset=\"0\"><string>" + name + "</string></property>";
    }
    std::shared_ptr<const platform::Bundle> opened() const { return platform::Bundle::open(bundle.directory()); }

    fake::Bundle bundle;
    Lines log;
};

TEST_F(WindowController, LoadsItsWindowOnFirstUseAndKeepsIt) {
    writeForm(item("class=\"QLabel\" name=\"_name\""));
    Controller controller(opened());
    EXPECT_EQ(controller.loads, 0);
    QWidget* const window = controller.window();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(controller.window(), window);
    EXPECT_EQ(controller.loads, 1);
    EXPECT_EQ(log, Lines());
}

TEST_F(WindowController, BindsOutletsByNameAndSkipsThoseThatTheFormLacks) {
    writeForm(item("class=\"QLabel\" name=\"_name\""));
    Controller controller(opened());
    controller.window();
    EXPECT_NE(controller.name, nullptr);
    EXPECT_EQ(controller.missing, nullptr);
    EXPECT_EQ(log, Lines());
}

TEST_F(WindowController, BindsActionsToButtons) {
    writeForm(item("class=\"QPushButton\" name=\"button\"", action("act:")));
    Controller controller(opened());
    QTest::mouseClick(controller.window()->findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_EQ(controller.actions, 1);
}

TEST_F(WindowController, WhatTheFormNamesAndNobodyKnowsIsALogLine) {
    writeForm(item("class=\"QLabel\" name=\"_strange\"") +
              item("class=\"QPushButton\" name=\"button\"", action("strange:")) +
              item("class=\"QLabel\" name=\"label\"", action("act:")) + item("class=\"QCheckBox\" name=\"_name\"") +
              item("class=\"Strange\" name=\"odd\""));
    Controller controller(opened());
    ASSERT_NE(controller.window(), nullptr);
    EXPECT_EQ(log, (Lines{"form Test: there is no class Strange", "form Test: there is no outlet for _strange",
                          "form Test: nothing answers to the action strange:",
                          "form Test: a view of the class QLabel cannot send act:",
                          "form Test: _name is of the wrong class, QCheckBox"}));
    EXPECT_EQ(controller.name, nullptr);
}

TEST_F(WindowController, HasNoWindowWithoutAForm) {
    Controller controller(opened());
    EXPECT_EQ(controller.window(), nullptr);
    EXPECT_EQ(controller.window(), nullptr);
    EXPECT_EQ(log, Lines{"form Test: there is none in the bundle"}) << "told once";
    EXPECT_EQ(controller.loads, 0);
}

TEST_F(WindowController, HasNoWindowWithADamagedForm) {
    std::ofstream(bundle.directory() / "Test.ui") << "<ui version=\"4.0\"><widget class=\"QDialog\" na";
    Controller controller(opened());
    EXPECT_EQ(controller.window(), nullptr);
    ASSERT_EQ(log.size(), 1U);
    EXPECT_TRUE(log[0].starts_with("form Test: ")) << log[0];
}

TEST_F(WindowController, OutlivesAWindowThatItsHostHasTakenAlong) {
    writeForm(item("class=\"QLabel\" name=\"_name\""));
    Controller controller(opened());
    delete controller.window();
    EXPECT_EQ(controller.window(), nullptr);
    EXPECT_EQ(controller.name, nullptr);
}

TEST_F(WindowController, HearsEveryTimeThatItsWindowIsShown) {
    writeForm("");
    Controller controller(opened());
    QWidget* const window = controller.window();
    EXPECT_EQ(controller.appearances, 0);
    for (int time = 1; time <= 2; ++time) {
        window->show();
        EXPECT_EQ(controller.appearances, time);
        window->show();
        window->setWindowState(Qt::WindowMinimized);
        window->setWindowState(Qt::WindowNoState);
        EXPECT_EQ(controller.appearances, time) << "it was there all the time";
        window->hide();
    }
}

TEST_F(WindowController, ASheetThatIsLargerThanItsScreenScrolls) {
    const QString large = QStringLiteral(
        "<property name=\"minimumSize\"><size><width>200</width><height>%1</height>"
        "</size></property>");
    for (const int height : {300, 5000}) {
        writeForm(
            "<item><widget class=\"platform::ScrollView\" name=\"scroll\"><widget class=\"QFrame\" "
            "name=\"body\">" +
            large.arg(height).toStdString() + "</widget></widget></item>");
        Controller controller(opened());
        QWidget* const window = controller.window();
        window->show();
        const bool fits = height == 300;
        EXPECT_EQ(window->height() >= height, fits);
        EXPECT_LE(window->height(), window->screen()->availableSize().height());
        EXPECT_GE(window->width(), 200);
        EXPECT_EQ(window->findChild<QScrollArea*>()->verticalScrollBar()->maximum() == 0, fits) << height;
        EXPECT_EQ(window->findChild<QScrollArea*>()->horizontalScrollBar()->maximum(), 0) << height;
    }
}

TEST_F(WindowController, EnterWithAnotherKeyHeldDoesNotCloseASheet) {
    writeForm("");
    Controller controller(opened());
    QWidget* const window = controller.window();
    window->show();
    for (const auto modifier : {Qt::AltModifier, Qt::MetaModifier, Qt::ControlModifier, Qt::ShiftModifier}) {
        QTest::keyClick(window, Qt::Key_Return, modifier);
        EXPECT_TRUE(window->isVisible());
    }
    QTest::keyClick(window, Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(WindowController, HowASheetIsClosedIsItsDefaultButtonsAffair) {
    writeForm(item("class=\"QPushButton\" name=\"close\"",
                   action("act:") + "<property name=\"default\"><bool>true</bool></property>"));
    Controller controller(opened());
    QWidget* const window = controller.window();
    window->show();
    window->close();
    QTest::keyClick(window, Qt::Key_Escape);
    QTest::keyClick(window, Qt::Key_Return);
    EXPECT_EQ(controller.actions, 3);
    EXPECT_TRUE(window->isVisible());
    platform::endSheet(window);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(WindowController, ASheetWithoutADefaultButtonClosesByItself) {
    writeForm("");
    Controller controller(opened());
    QWidget* const window = controller.window();
    window->show();
    QTest::keyClick(window, Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
    platform::endSheet(nullptr);
}

}  // namespace
