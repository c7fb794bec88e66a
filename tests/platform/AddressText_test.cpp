#include "platform/AddressText.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using platform::isAddress;
using platform::isMailAddress;
using platform::mailText;

TEST(AddressText, AnAddressHasASchemeAndSomethingBehindIt) {
    EXPECT_TRUE(isAddress("https://cirrane.example.org/a?b=c#d"));
    EXPECT_TRUE(isAddress("mailto:clouds@example.org?subject=Cirrane%201.0"));
    EXPECT_TRUE(isAddress("x-other+1.0:anything"));
    for (const char* text : {"", ":", "mailto", "mailto:", "//example.org", "example.org/a:b", "1http://a", "-x:a"}) {
        EXPECT_FALSE(isAddress(text)) << text;
    }
}

TEST(AddressText, CharactersThatMustBeEscapedMakeNoAddress) {
    for (const char* text : {"http://a b", "http://a\nb", "http://ä", "http://<a>", "http://a\"b", "http://a\\b",
                             "http://a^b", "http://`a`", "http://{a}", "http://a|b"}) {
        EXPECT_FALSE(isAddress(text)) << text;
    }
    EXPECT_FALSE(isAddress(std::string("http://a\0b", 10)));
}

TEST(AddressText, AnEscapeIsAPercentSignAndTwoHexadecimalDigits) {
    EXPECT_TRUE(isAddress("http://a/%2e%FF%00"));
    for (const char* text : {"http://a/%", "http://a/%2", "http://a/%2g", "http://a/%%20"}) {
        EXPECT_FALSE(isAddress(text)) << text;
    }
}

TEST(AddressText, MailAddressesAreToldByTheirSchemeInAnyCase) {
    EXPECT_TRUE(isMailAddress("mailto:a@example.org"));
    EXPECT_TRUE(isMailAddress("MailTo:a@example.org"));
    EXPECT_FALSE(isMailAddress("http://example.org/mailto:"));
    EXPECT_FALSE(isMailAddress("mail"));
}

TEST(AddressText, AMailReadsAsRecipientsHeadersAndBody) {
    EXPECT_EQ(mailText("mailto:clouds@example.org?subject=Cirrane%20error%20report&body=One%0D%0ATwo%20%26%20three"),
              "To: clouds@example.org\nSubject: Cirrane error report\n\nOne\nTwo & three\n");
}

TEST(AddressText, AMailKeepsWhatIsNoEscapeAndEveryHeader) {
    EXPECT_EQ(mailText("mailto:?BODY=1+1%&cc=a%40example.org&Body=%3D2#rest"), "Cc: a@example.org\n\n1+1%\n=2\n");
}

TEST(AddressText, AMailWithoutBodyIsItsHeaders) {
    EXPECT_EQ(mailText("mailto:a@example.org"), "To: a@example.org\n");
    EXPECT_EQ(mailText("mailto:a@example.org?subject=&&=x"), "To: a@example.org\nSubject: \n");
    EXPECT_EQ(mailText(""), "");
}

}  // namespace
