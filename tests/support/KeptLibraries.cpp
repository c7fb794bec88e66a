#include "tests/support/KeptLibraries.hpp"

#include <dlfcn.h>
#include <link.h>

#include <string>
#include <vector>

namespace fake {

void keepLoadedLibraries() {
    std::vector<std::string> paths;
    const auto note = [](dl_phdr_info* library, std::size_t, void* context) {
        static_cast<std::vector<std::string>*>(context)->emplace_back(library->dlpi_name);
        return 0;
    };
    dl_iterate_phdr(note, &paths);
    for (const std::string& path : paths) {
        if (!path.empty()) {  // the program itself
            static_cast<void>(dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE));
        }
    }
}

}  // namespace fake
