#include "host/QtTexts.hpp"

#include "tests/support/ScopedEnvironment.hpp"

#include <gtest/gtest.h>

#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

namespace {

QString cancelButton() {
    QMessageBox box;
    return box.addButton(QMessageBox::Cancel)->text().remove(QLatin1Char('&'));
}

TEST(QtTexts, AreInTheDesktopsLanguageWhileTheyAreUsed) {
    const fake::ScopedEnvironment language("LANGUAGE", "de");
    EXPECT_EQ(cancelButton(), "Cancel");
    {
        const host::QtTexts texts;
        EXPECT_EQ(cancelButton(), "Abbrechen");
    }
    EXPECT_EQ(cancelButton(), "Cancel");
}

TEST(QtTexts, AreEnglishWhereThereAreNone) {
    const fake::ScopedEnvironment language("LANGUAGE", "tlh");
    const host::QtTexts texts;
    EXPECT_EQ(cancelButton(), "Cancel");
}

}  // namespace
