#include "host/ModuleLoader.hpp"

#include <dlfcn.h>
#include "host/LibraryFile.hpp"

#include <array>
#include <system_error>

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr const char* bundleName = "Cirrane.saver";

fs::path programDirectory() {
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error).parent_path();
}

std::optional<fs::path> defaultBundle() {
    const fs::path program = programDirectory();
    const std::array candidates{program / bundleName, program.parent_path() / CIRRANE_INSTALLED_BUNDLE,
                                // XScreenSaver's hosts want the program in libexec/xscreensaver.
                                program.parent_path().parent_path() / CIRRANE_INSTALLED_BUNDLE};
    for (const fs::path& candidate : candidates) {
        std::error_code error;
        if (fs::is_directory(candidate, error)) {
            return candidate;
        }
    }
    return {};
}

std::string lastLoaderError() {
    const char* text = dlerror();  // NOLINT(concurrency-mt-unsafe): glibc keeps it per thread
    return text != nullptr ? text : "unknown error";
}

}  // namespace

std::variant<const platform::SaverModule*, std::string> loadSaverModule(const std::optional<fs::path>& bundle) {
    const std::optional<fs::path> chosen = bundle ? bundle : defaultBundle();
    if (!chosen) {
        return std::string("no saver bundle found beside the program; --module names one");
    }
    std::error_code error;
    const fs::path directory = fs::canonical(*chosen, error);
    const auto opened = error ? nullptr : platform::Bundle::withDirectory(directory);
    if (opened == nullptr) {
        return "no saver bundle at " + chosen->string();
    }
    const auto library = opened->objectForInfoDictionaryKey("SaverLibrary");
    const auto entryPointName = opened->objectForInfoDictionaryKey("SaverEntryPoint");
    if (!library || !entryPointName) {
        return "the bundle " + directory.string() + " has no usable Info.json";
    }

    if (!isWholeLibrary(directory / *library)) {
        return "the saver cannot be loaded: " + (directory / *library).string() + " is missing or damaged";
    }
    void* handle = dlopen((directory / *library).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        return "the saver cannot be loaded: " + lastLoaderError();
    }
    const auto entryPoint = reinterpret_cast<platform::SaverModuleEntryPoint>(dlsym(handle, entryPointName->c_str()));
    const platform::SaverModule* module = entryPoint != nullptr ? entryPoint() : nullptr;
    if (module == nullptr || module->version != platform::SaverModule::currentVersion ||
        module->createView == nullptr) {
        return "the saver in " + directory.string() + " does not fit this program";
    }
    return module;
}

std::shared_ptr<const platform::Bundle> bundleOf(const platform::SaverModule& module) {
    return platform::Bundle::containing(reinterpret_cast<const void*>(module.createView));
}

}  // namespace host
