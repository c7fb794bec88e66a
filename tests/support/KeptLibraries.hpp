#pragma once

namespace fake {

/// Keeps every library that is loaded now to the end of the process. Graphics drivers go with their instance otherwise,
/// and the sanitizers, which look at what was left behind only at the end, could no longer tell whose it is.
void keepLoadedLibraries();

}  // namespace fake
