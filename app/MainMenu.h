// The main menu that nobody sees: an accessory application shows none, but its key equivalents are
// what makes Command-C, -V, -X, -A, -Z and -W work in its windows. Main thread only.
#pragma once

namespace veltrix {

void installMainMenu();

}  // namespace veltrix
