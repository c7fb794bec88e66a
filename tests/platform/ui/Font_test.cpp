#include "platform/ui/Font.hpp"

#include <gtest/gtest.h>

#include <QtCore/QStringList>
#include <QtGui/QFont>
#include <QtGui/QFontDatabase>
#include <QtGui/QFontMetricsF>

namespace {

std::string someFamily() {
    return QFontDatabase::families().value(0).section(QLatin1String(" ["), 0, 0).toStdString();
}

TEST(Font, AFamilyThatIsThereIsFound) {
    const std::string family = someFamily();
    ASSERT_NE(family, "") << "the machine has no fonts";
    EXPECT_EQ(platform::fontNamed(family, 12.5), (platform::Font{family, 12.5, false}));
}

TEST(Font, AFamilyThatIsNotThereIsNone) {
    EXPECT_EQ(platform::fontNamed("Certainly No Such Font", 12.0), std::nullopt);
    EXPECT_EQ(platform::fontNamed("", 12.0), std::nullopt);
}

TEST(Font, TheBeginningOfAFamilysNameIsNone) {
    const std::string family = someFamily();
    EXPECT_EQ(platform::fontNamed(family.substr(0, family.size() - 1), 12.0), std::nullopt);
}

TEST(Font, TheSystemFontHasAFamilyAndTheSizeAskedFor) {
    const platform::Font font = platform::systemFont(13.25);
    EXPECT_NE(font.family, "");
    EXPECT_EQ(font.size, 13.25);
    EXPECT_FALSE(font.isBold);
}

TEST(Font, TheFixedPitchFontHasCharactersOfOneWidth) {
    const platform::Font font = platform::userFixedPitchFont(30.0);
    EXPECT_EQ(font.size, 30.0);
    QFont drawn(QString::fromStdString(font.family));
    drawn.setPixelSize(30);
    const QFontMetricsF metrics(drawn);
    EXPECT_EQ(metrics.horizontalAdvance(QStringLiteral("iiii")), metrics.horizontalAdvance(QStringLiteral("WWWW")));
}

TEST(Font, BoldKeepsFamilyAndSize) {
    const platform::Font bold = platform::boldFont(platform::systemFont(20.0));
    EXPECT_EQ(bold.family, platform::systemFont(20.0).family);
    EXPECT_EQ(bold.size, 20.0);
    EXPECT_TRUE(bold.isBold);
}

TEST(Font, AFamilyWithoutABoldFaceStaysAsItIs) {
    for (const QString& listed : QFontDatabase::families()) {
        bool hasBold = false;
        for (const QString& style : QFontDatabase::styles(listed)) {
            hasBold = hasBold || QFontDatabase::bold(listed, style);
        }
        const platform::Font font{listed.toStdString(), 12.0, false};
        EXPECT_EQ(platform::boldFont(font).isBold, hasBold) << font.family;
    }
}

}  // namespace
