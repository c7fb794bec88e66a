#pragma once

#include <filesystem>
#include <memory>
#include <string>

/// A locale of the process for the life of the object; the one from before comes back. Main thread only.
class LocaleForTests {
public:
    /// "de_DE.UTF-8", made for the purpose; null when this machine cannot make it.
    static std::unique_ptr<LocaleForTests> german();
    /// Any UTF-8 locale, with texts in the languages given as in the variable LANGUAGE; null when there is none.
    static std::unique_ptr<LocaleForTests> withLanguages(const std::string& languages);

    ~LocaleForTests();
    LocaleForTests(const LocaleForTests&) = delete;
    LocaleForTests& operator=(const LocaleForTests&) = delete;

private:
    LocaleForTests();

    std::string _previousLocale;
    std::filesystem::path _directory;
};
