#include "tests/platform/LocaleForTests.hpp"

#include <clocale>
#include <cstdlib>
#include <system_error>

LocaleForTests::LocaleForTests() : _previousLocale(std::setlocale(LC_ALL, nullptr)) {}

std::unique_ptr<LocaleForTests> LocaleForTests::german() {
    std::unique_ptr<LocaleForTests> locale(new LocaleForTests);
    std::string directory = (std::filesystem::temp_directory_path() / "cirrane-locale-XXXXXX").string();
    if (mkdtemp(directory.data()) == nullptr) {
        return nullptr;
    }
    locale->_directory = directory;
    setenv("LOCPATH", directory.c_str(), 1);
    const std::string command = "localedef -i de_DE -f UTF-8 '" + directory + "/de_DE.UTF-8' >/dev/null 2>&1";
    const bool isSet = std::system(command.c_str()) == 0 && std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    return isSet ? std::move(locale) : nullptr;
}

std::unique_ptr<LocaleForTests> LocaleForTests::withLanguages(const std::string& languages) {
    std::unique_ptr<LocaleForTests> locale(new LocaleForTests);
    setenv("LANGUAGE", languages.c_str(), 1);
    // A real locale first: newer C libraries translate nothing in C.UTF-8.
    for (const char* name : {"de_DE.UTF-8", "en_US.UTF-8", "C.UTF-8"}) {
        if (std::setlocale(LC_ALL, name) != nullptr) {
            return locale;
        }
    }
    return nullptr;
}

LocaleForTests::~LocaleForTests() {
    unsetenv("LANGUAGE");
    unsetenv("LOCPATH");
    std::setlocale(LC_ALL, _previousLocale.c_str());
    std::error_code ignored;
    if (!_directory.empty()) {
        std::filesystem::remove_all(_directory, ignored);
    }
}
