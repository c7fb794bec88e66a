#pragma once

#include "platform/Bundle.hpp"
#include "platform/SaverModule.hpp"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace host {

/// Opens the saver in a bundle directory, or in the default one when none is named: the bundle beside the program, then
/// the installed one. The module stays loaded to the end of the process. On failure one line that says why.
std::variant<const platform::SaverModule*, std::string> loadSaverModule(
    const std::optional<std::filesystem::path>& bundle);

/// The bundle that a module was loaded from; null when it came from none.
std::shared_ptr<const platform::Bundle> bundleOf(const platform::SaverModule& module);

}  // namespace host
