#include "platform/StringFormat.hpp"

#include "tests/platform/LocaleForTests.hpp"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <vector>

using platform::FormatArgument;
using platform::formatString;
using platform::formatted;

namespace {

TEST(StringFormat, TextWithoutConversionsStaysAsItIs) {
    EXPECT_EQ(formatted(""), "");
    EXPECT_EQ(formatted("Started animation."), "Started animation.");
    EXPECT_EQ(formatted("W\u00f6lkchen \U0001F324"), "W\u00f6lkchen \U0001F324");
    EXPECT_EQ(formatted(std::string_view("a\0b", 3)), std::string("a\0b", 3));
}

TEST(StringFormat, TwoPercentSignsPrintOne) {
    EXPECT_EQ(formatted("%%"), "%");
    EXPECT_EQ(formatted("mailto:%@?subject=%@%%20%@", "a", "b", "c"), "mailto:a?subject=b%20c");
    EXPECT_EQ(formatted("%%%%d%%", 1), "%%d%");
}

TEST(StringFormat, ObjectsPrintTheirText) {
    EXPECT_EQ(formatted("[%@]", "text"), "[text]");
    EXPECT_EQ(formatted("[%@]", std::string("a\0b", 3)), std::string("[a\0b]", 5));
    EXPECT_EQ(formatted("[%s] [%S]", std::string_view("one"), std::optional<std::string>("two")), "[one] [two]");
    EXPECT_EQ(formatted("%@ %@ %@", 302, -1.5, 1.0), "302 -1.5 1");
}

TEST(StringFormat, NullObjectsPrintAsNull) {
    EXPECT_EQ(formatted("%@: ", nullptr), "(null): ");
    EXPECT_EQ(formatted("%@", std::optional<std::string>()), "(null)");
    EXPECT_EQ(formatted("%@", static_cast<const char*>(nullptr)), "(null)");
    EXPECT_EQ(formatted("%d %8.2lf", nullptr, nullptr), "(null)   (null)");
}

TEST(StringFormat, IntegersPrintWhole) {
    EXPECT_EQ(formatted("%d %i", -1, 42), "-1 42");
    EXPECT_EQ(formatted("%d", INT64_MAX), "9223372036854775807");
    EXPECT_EQ(formatted("%ld:%lld", INT64_MIN, std::int64_t{-3}), "-9223372036854775808:-3");
    EXPECT_EQ(formatted("%hd %hhd %qd %zd %td %jd %Ld", 70000, 300, 1, 2, 3, 4, 5), "70000 300 1 2 3 4 5");
    EXPECT_EQ(formatted("%u %lu", 7U, UINT64_MAX), "7 18446744073709551615");
    EXPECT_EQ(formatted("%d", UINT64_MAX), "18446744073709551615");
    EXPECT_EQ(formatted("%d %d", true, false), "1 0");
}

TEST(StringFormat, NegativeIntegersShowTheirBitsInTheirOwnWidth) {
    EXPECT_EQ(formatted("%x", std::int32_t{-1}), "ffffffff");
    EXPECT_EQ(formatted("%x", std::int16_t{-1}), "ffff");
    EXPECT_EQ(formatted("%x", std::int64_t{-1}), "ffffffffffffffff");
    EXPECT_EQ(formatted("%X", std::int32_t{-2}), "FFFFFFFE");
    EXPECT_EQ(formatted("%u", std::int32_t{-1}), "4294967295");
    EXPECT_EQ(formatted("%o", std::int8_t{-1}), "377");
}

TEST(StringFormat, FlagsWidthAndPrecisionShapeIntegers) {
    EXPECT_EQ(formatted("[%5d] [%-5d] [%05d]", 42, 42, 42), "[   42] [42   ] [00042]");
    EXPECT_EQ(formatted("[%+d] [% d] [%+ d] [%+d]", 5, 5, 5, -5), "[+5] [ 5] [+5] [-5]");
    EXPECT_EQ(formatted("[%05d] [%-05d]", -42, -42), "[-0042] [-42  ]");
    EXPECT_EQ(formatted("[%.4d] [%8.4d] [%08.4d]", 42, -42, 42), "[0042] [   -0042] [    0042]");
    EXPECT_EQ(formatted("%08x %#x %#X %#o %#x", 0xBEEF, 255, 255, 8, 0), "0000beef 0xff 0XFF 010 0");
    EXPECT_EQ(formatted("%#010x", 255), "0x000000ff");
    EXPECT_EQ(formatted("%'d", 1234567), "1234567");
}

TEST(StringFormat, AnIntegerOfNoDigitsPrintsNoZero) {
    EXPECT_EQ(formatted("[%.0d] [%.d] [%3.0d] [%+.0i] [%03.0d]", 0, 0, 0, 0, 0), "[] [] [   ] [+] [   ]");
    EXPECT_EQ(formatted("[%.0u] [%.0x] [%#.0X] [%.0o] [%#.0o]", 0U, 0, 0U, 0U, 0), "[] [] [] [] [0]");
    EXPECT_EQ(formatted("[%.0d] [%.0x] [%.1d]", -7, 10, 0), "[-7] [a] [0]");
    EXPECT_EQ(formatted("[%.0@] [%.0lf]", 0, 0), "[0] [0]") << "digits of another type of number";
}

TEST(StringFormat, FloatsPrintInEveryStyle) {
    EXPECT_EQ(formatted("%f %.2lf %.0f", 1.5, 29.999, 2.5), "1.500000 30.00 2");
    EXPECT_EQ(formatted("%6.2lf fps", 59.94), " 59.94 fps");
    EXPECT_EQ(formatted("%e %.1E", 12345.678, 0.00025), "1.234568e+04 2.5E-04");
    EXPECT_EQ(formatted("%g %g %g %G", 0.0001, 100000.0, 1e10, 1e-10), "0.0001 100000 1e+10 1E-10");
    EXPECT_EQ(formatted("%#g %#.0f", 1.0, 3.0), "1.00000 3.");
    EXPECT_EQ(formatted("%a %.1a %A", 1.5, -1.0, 10.0), "0x1.8p+0 -0x1.0p+0 0X1.4P+3");
    EXPECT_EQ(formatted("%.3f", 0.5F), "0.500");
    EXPECT_EQ(formatted("%08.2f|%-8.2f|%+.1f|% .1f", -1.5, 1.5, 1.0, 1.0), "-0001.50|1.50    |+1.0| 1.0");
}

TEST(StringFormat, UnusualFloatsPrintAsWords) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(formatted("%f %.2lf %F %d", infinity, -infinity, notANumber, infinity), "inf -inf NAN inf");
    EXPECT_EQ(formatted("[%06f] [%6g]", infinity, notANumber), "[   inf] [   nan]");
    EXPECT_EQ(formatted("%.1f", -0.0), "-0.0");
    EXPECT_EQ(formatted("%.0f", DBL_MAX).size(), 309U);
}

TEST(StringFormat, CharactersPrintAsText) {
    EXPECT_EQ(formatted("%c%c", 'o', 'k'), "ok");
    EXPECT_EQ(formatted("%c %C %C", 0xE9, 0x20AC, 0x1F324), "\u00e9 \u20ac \U0001F324");
    EXPECT_EQ(formatted("[%3c] [%-3c]", 'x', 'y'), "[  x] [y  ]");
    EXPECT_EQ(formatted("%c %c", 0xD800, INT64_MAX), "\ufffd \ufffd");
    EXPECT_EQ(formatted("%c", std::int8_t{-23}), "\u00e9");
}

TEST(StringFormat, PointersPrintAsHexadecimal) {
    EXPECT_EQ(formatted("%p", std::uint64_t{0xDEADBEEF}), "0xdeadbeef");
    EXPECT_EQ(formatted("%p", nullptr), "(null)");
}

TEST(StringFormat, TextIsPaddedAndCutByCharacters) {
    EXPECT_EQ(formatted("[%5@] [%-5@]", "ab", "ab"), "[   ab] [ab   ]");
    EXPECT_EQ(formatted("[%5@]", "W\u00f6"), "[   W\u00f6]");
    EXPECT_EQ(formatted("[%.2@] [%.0s]", "W\u00f6lkchen", "gone"), "[W\u00f6] []");
    EXPECT_EQ(formatted("[%05@]", "ab"), "[   ab]");
}

TEST(StringFormat, PositionsChooseTheArgument) {
    EXPECT_EQ(formatted("%2$@ %1$@", "world", "hello"), "hello world");
    EXPECT_EQ(formatted("%1$d %1$05d %1$x", 42), "42 00042 2a");
    EXPECT_EQ(formatted("%2$@ %@ %@", "a", "b"), "b a b");
    EXPECT_EQ(formatted("%2$6.2lf", 1, 2.0), "  2.00");
}

TEST(StringFormat, SurplusArgumentsAreIgnored) {
    EXPECT_EQ(formatted("%@", "one", "two", 3), "one");
    EXPECT_EQ(formatted("QZL_MISSING_KEY", "one", 2), "QZL_MISSING_KEY");
}

TEST(StringFormat, MissingArgumentsPrintAsNull) {
    EXPECT_EQ(formatted("%@ %d", "one"), "one (null)");
    EXPECT_EQ(formatted("%9$@"), "(null)");
    EXPECT_EQ(formatted("%99999999999999999999$@", 1), "(null)");
}

TEST(StringFormat, ArgumentsOfAnotherTypePrintAsThemselves) {
    EXPECT_EQ(formatted("%d %x %.1lf", "text", "text", "text"), "text text text");
    EXPECT_EQ(formatted("%d %x %c", 2.5, 2.5, -2.5), "2.5 2.5 -2.5");
    EXPECT_EQ(formatted("%lf %g", 5, UINT64_MAX), "5 18446744073709551615");
    EXPECT_EQ(formatted("%06d", -2.5), "-002.5");
}

TEST(StringFormat, UnknownConversionsPrintAsTheyStand) {
    EXPECT_EQ(formatted("%y %d", 1), "%y 1");
    EXPECT_EQ(formatted("%n", 1), "%n");
    EXPECT_EQ(formatted("%*d %d", 5, 6), "%*d 5");
    EXPECT_EQ(formatted("%.*f", 5), "%.*f");
    EXPECT_EQ(formatted("%0$@", "x"), "%0$@");
    EXPECT_EQ(formatted("100%"), "100%");
    EXPECT_EQ(formatted("%-08.3l"), "%-08.3l");
    EXPECT_EQ(formatted("%\u00e9 %@", "x"), "%\u00e9 x");
    EXPECT_EQ(formatted("% %d", 1), "% 1");
    EXPECT_EQ(formatted("%1$"), "%1$");
}

TEST(StringFormat, HugeWidthsAndPrecisionsAreCapped) {
    for (const char* format : {"%999999999d", "%0999999999d", "%-999999999d", "%.999999999d", "%.999999999f",
                               "%.999999999e", "%.999999999g", "%.999999999a", "%99999999999999999999@"}) {
        const std::string result = formatted(format, 1.5);
        EXPECT_LT(result.size(), 2000U) << format;
        EXPECT_NE(result.find('1'), std::string::npos) << format;
    }
    EXPECT_EQ(formatted("%.999999999@", std::string(5000, 'x')).size(), 5000U);
}

TEST(StringFormat, InvalidUtf8PassesThrough) {
    EXPECT_EQ(formatted("\xff%@\xc3", "\x80\xfe"), "\xff\x80\xfe\xc3");
    EXPECT_EQ(formatted("%.1@", "\x80\x80x"), "\x80\x80x");
    EXPECT_EQ(formatted("[%3@]", "\xc3"), "[  \xc3]");
}

TEST(StringFormat, TheLocaleChangesNothing) {
    const auto german = LocaleForTests::german();
    if (german == nullptr) {
        GTEST_SKIP() << "localedef cannot make a German locale here";
    }
    ASSERT_STREQ(localeconv()->decimal_point, ",");
    EXPECT_EQ(formatted("%.2lf Hz, %'d, %g, %e, %.1a, %@", 30.0, 1234567, 0.5, 1.5, 1.5, 0.25),
              "30.00 Hz, 1234567, 0.5, 1.500000e+00, 0x1.8p+0, 0.25");
}

/// What the C library makes of a format with one argument.
template <typename Argument>
std::string printed(const std::string& format, Argument argument) {
    std::vector<char> buffer(2000);
    const int size = std::snprintf(buffer.data(), buffer.size(), format.c_str(), argument);
    return {buffer.data(), static_cast<std::size_t>(size)};
}

std::string anyOf(std::mt19937& random, const std::vector<std::string>& choices) {
    return choices[random() % choices.size()];
}

TEST(StringFormat, AgreesWithTheCLibraryOnRandomNumberFormats) {
    std::mt19937 random(20260101);
    const std::vector<std::string> flags{"", "-", "+", " ", "0", "#", "-#", "+0", "0#"};
    const std::vector<std::string> widths{"", "1", "7", "12", "40"};
    const std::vector<std::string> precisions{"", ".1", ".3", ".12", ".25"};
    for (int round = 0; round < 20000; ++round) {
        const std::string shape = "%" + anyOf(random, flags) + anyOf(random, widths) + anyOf(random, precisions);
        const std::uint64_t bits = (std::uint64_t{random()} << 32U | random()) >> (random() % 64);
        const std::string integerFormat = shape + "l" + anyOf(random, {"d", "i", "u", "x", "X"});
        EXPECT_EQ(formatted(integerFormat, static_cast<std::int64_t>(bits)), printed(integerFormat, bits))
            << integerFormat << " of " << bits;
        // The libraries differ over the zeros of "%#g".
        const bool isAlternate = shape.find('#') != std::string::npos;
        const std::string floatFormat =
            shape + (isAlternate ? anyOf(random, {"f", "e", "F", "E"}) : anyOf(random, {"f", "e", "g", "F", "E", "G"}));
        const double number = (static_cast<double>(bits) - 1e15) * std::pow(10.0, static_cast<int>(random() % 40) - 30);
        EXPECT_EQ(formatted(floatFormat, number), printed(floatFormat, number)) << floatFormat << " of " << number;
    }
}

TEST(StringFormat, RandomBytesNeverHarm) {
    std::mt19937 random(7);
    const std::string alphabet = "%%%%@dxfgac0123456789$.-+ #*lh\xc3\xa9\xff'n";
    const std::vector<FormatArgument> arguments{1, -1.5, "text", nullptr, UINT64_MAX, std::string("\xff\x80")};
    for (int round = 0; round < 20000; ++round) {
        std::string format(random() % 40, ' ');
        for (char& character : format) {
            character = alphabet[random() % alphabet.size()];
        }
        EXPECT_LT(formatString(format, arguments).size(), 40U * 1000U) << format;
    }
}

}  // namespace
