#pragma once

#include <filesystem>

namespace host {

/// True when a file is a shared library of this machine's kind whose loaded parts all lie within it. One that was cut
/// short ends the process that opens it.
bool isWholeLibrary(const std::filesystem::path& file);

}  // namespace host
