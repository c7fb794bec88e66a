// How the error's text is fitted to the view, at every size and at the scale that this program runs at.
#include "tests/view/ViewTest.hpp"

#include <QtCore/QStringList>
#include <QtGui/QFontDatabase>

namespace {

using platform::Rect;

struct Size {
    double width;
    double height;
};

void PrintTo(const Size& size, std::ostream* stream) {
    *stream << size.width << " x " << size.height;
}

class QZLScreenSaverViewErrorLayout : public ViewTest {
protected:
    std::unique_ptr<LookedAtView> viewWithError(Size size, const std::string& message = "No clouds today.") {
        texts.reset();  // the former one takes the override with it
        texts = std::make_unique<fake::Bundle>(
            std::map<std::string, fake::Bundle::Strings>{{"Vistashade",
                                                          {{"QZL_ERROR_FORMAT_TITLE", "%@ %@\n"},
                                                           {"QZL_ERROR_FORMAT_SIMPLE", "%@\n\nError %ld"},
                                                           {"QZL_ERROR_METAL_RESOURCES", message}}}});
        auto made = makeView(true, 0, {0, 0, size.width, size.height});
        made->setErrorFontName(fontName);
        made->showErrorCode(303, 0);
        return made;
    }

    static double bodySize(const LookedAtView& view) {
        return view.errorView()->text().parts().back().attributes.font.size;
    }
    static double titleSize(const LookedAtView& view) {
        return view.errorView()->text().parts().front().attributes.font.size;
    }
    static bool fits(const LookedAtView& view) {
        const QZLAttributedLabel& label = *view.errorView();
        return label.text().boundingSize(label.bound().width, label.options()).height() <= label.bound().height;
    }

    std::string fontName = "Helvetica";
    std::unique_ptr<fake::Bundle> texts;
};

TEST_F(QZLScreenSaverViewErrorLayout, AShortTextStartsAtATenthOfTheHeightWithHalfOfThatAsMargin) {
    const auto made = viewWithError({1920, 1080});
    EXPECT_EQ(bodySize(*made), 108.0);
    EXPECT_EQ(titleSize(*made), 162.0);
    const QZLAttributedLabel& label = *made->errorView();
    EXPECT_EQ(label.frame(), (Rect{0, 0, 1920, 1080}));
    EXPECT_EQ(label.bound(), (Rect{54, 54, 1812, 972}));
    EXPECT_EQ(label.options(), 3U);
}

TEST_F(QZLScreenSaverViewErrorLayout, ALongTextShrinksPointByPointUntilItFits) {
    std::string message;
    for (int word = 0; word < 120; ++word) {
        message += "cloudless ";
    }
    const auto made = viewWithError({1920, 1080}, message);
    const double size = bodySize(*made);
    EXPECT_LT(size, 108.0);
    EXPECT_EQ(size, std::floor(size)) << "108 less whole points";
    EXPECT_EQ(titleSize(*made), 1.5 * size);
    EXPECT_TRUE(fits(*made));

    // One point more would not have.
    platform::AttributedString larger;
    for (auto part : made->errorView()->text().parts()) {
        part.attributes.font.size *= (size + 1.0) / size;
        larger.append(part.text, part.attributes);
    }
    EXPECT_GT(larger.boundingSize(1920.0 - (size + 1.0), 3).height(), 1080.0 - (size + 1.0));
}

TEST_F(QZLScreenSaverViewErrorLayout, AViewOfNinetyPointsOrLessShowsNoText) {
    for (const double height : {90.0, 60.0, 1.0}) {
        EXPECT_EQ(viewWithError({1920, height}, "")->errorView(), nullptr) << height;
    }
}

TEST_F(QZLScreenSaverViewErrorLayout, APreviewOfAHundredPointsTriesSizeTenOnly) {
    EXPECT_EQ(bodySize(*viewWithError({1000, 100}, "")), 10.0);
    std::string tooLong;
    for (int word = 0; word < 300; ++word) {
        tooLong += "cloudless ";
    }
    EXPECT_EQ(viewWithError({1000, 100}, tooLong)->errorView(), nullptr);
}

TEST_F(QZLScreenSaverViewErrorLayout, TheLastSizeTriedIsAboveNine) {
    EXPECT_DOUBLE_EQ(bodySize(*viewWithError({1000, 91}, "")), 9.1);
}

TEST_F(QZLScreenSaverViewErrorLayout, AViewNarrowerThanItsFirstMarginsShowsTheTextSmallerOrNotAtAll) {
    const auto made = viewWithError({100, 1080});
    if (made->errorView() != nullptr) {
        EXPECT_TRUE(fits(*made));
        EXPECT_GT(made->errorView()->bound().width, 0.0);
    }
}

TEST_F(QZLScreenSaverViewErrorLayout, TheTextIsInTheErrorsColours) {
    const auto made = viewWithError({1920, 1080});
    EXPECT_EQ(made->errorView()->backgroundColor(), QColor(Qt::red));
    for (const auto& part : made->errorView()->text().parts()) {
        EXPECT_EQ(part.attributes.foreground, QColor(Qt::white));
        EXPECT_EQ(part.attributes.background, QColor(Qt::red));
    }
}

TEST_F(QZLScreenSaverViewErrorLayout, AFontThatIsThereIsUsedAndBoldInTheTitle) {
    fontName = platform::userFixedPitchFont(1.0).family;
    ASSERT_NE(fontName, platform::systemFont(1.0).family) << "another than the fallback";
    const auto made = viewWithError({1920, 1080});
    const auto& parts = made->errorView()->text().parts();
    EXPECT_EQ(parts.back().attributes.font, (platform::Font{fontName, 108.0, false}));
    EXPECT_EQ(parts.front().attributes.font, (platform::Font{fontName, 162.0, true}));
}

TEST_F(QZLScreenSaverViewErrorLayout, AFontThatIsNotThereIsTheSystemsAndBoldInTheTitle) {
    fontName = "Certainly No Such Font";
    const auto made = viewWithError({1920, 1080});
    const auto& parts = made->errorView()->text().parts();
    EXPECT_EQ(parts.back().attributes.font, platform::systemFont(108.0));
    EXPECT_EQ(parts.front().attributes.font, (platform::Font{platform::systemFont(1.0).family, 162.0, true}));
}

class QZLScreenSaverViewErrorSizes : public QZLScreenSaverViewErrorLayout, public testing::WithParamInterface<Size> {};

TEST_P(QZLScreenSaverViewErrorSizes, ShowATextThatFitsWhiteOnRedInsideItsMargin) {
    const auto made = viewWithError(GetParam(), "Vulkan was not found on this computer. Please install drivers.");
    ASSERT_NE(made->errorView(), nullptr);
    EXPECT_TRUE(fits(*made));
    made->show();
    QApplication::processEvents();
    const QImage picture = made->grab().toImage().convertToFormat(QImage::Format_RGB32);
    const double scale = made->devicePixelRatioF();
    EXPECT_EQ(picture.width(), static_cast<int>(GetParam().width * scale));
    const QRectF inside = QRectF(picture.rect())
                              .adjusted(1, 1, -1, -1)
                              .adjusted(made->errorView()->bound().x * scale, made->errorView()->bound().y * scale,
                                        -made->errorView()->bound().x * scale, -made->errorView()->bound().y * scale);
    std::int64_t white = 0;
    std::int64_t outside = 0;
    for (int y = 0; y < picture.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            white += row[x] == 0xffffffff ? 1 : 0;
            outside += row[x] != 0xffff0000 && !inside.adjusted(-2, -2, 2, 2).contains(x, y) ? 1 : 0;
        }
    }
    EXPECT_GT(static_cast<double>(white) / (static_cast<double>(picture.width()) * picture.height()), 0.002);
    EXPECT_EQ(outside, 0);
}

INSTANTIATE_TEST_SUITE_P(Size, QZLScreenSaverViewErrorSizes,
                         testing::Values(Size{640, 91}, Size{160, 100}, Size{320, 200}, Size{1024, 768},
                                         Size{1920, 1080}, Size{1080, 1920}, Size{5120, 1440}, Size{3840, 2160},
                                         Size{7680, 4320}));

}  // namespace
