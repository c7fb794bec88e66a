// Something to put into a bundle: as a module, a place whose bundle is asked for; as a program, one that asks itself.
#include "platform/Bundle.hpp"

#include <cstdio>

extern "C" const int bundleProbe = 1;

int main() {
    const auto bundle = platform::Bundle::containing(&bundleProbe);
    std::puts(bundle == nullptr ? "(none)" : bundle->directory().c_str());
}
