// bench-action CHILD MEGABYTES WAY...: measures ways to the same child from one process, of which
// so many megabytes are dirty. The ways are "companion" and "job" (see Companion.h), "bare",
// "minimal" and "forked" (see BareLaunch.h), and "handed", a bare launch by another thread. A fork
// makes the next writes to memory dear, so it is measured by itself.
#include "measure/BareLaunch.h"
#include "measure/Companion.h"
#include "measure/Measure.h"
#include "measure/OtherThread.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

using namespace veltrix::bench;

namespace {

constexpr std::size_t kMegabyte = 1024 * 1024;

}  // namespace

int main(int count, char** arguments) {
    const std::span all(arguments, static_cast<std::size_t>(count));
    if (all.size() < 4) {
        giveUp("usage: bench-action CHILD MEGABYTES WAY...");
    }
    const std::vector<char> dirty(std::strtoul(all[2], nullptr, 10) * kMegabyte, 'x');
    Companion companion(all[1], plainMainLoop());
    BareLauncher bare(all[1], childArguments());
    OtherThread other([&] { return bare.run(Launch::equal); });
    const std::vector<Way> known{{"companion", [&] { return companion.run(); }},
                                 {"job", [&] { return companion.runJobOnly(); }},
                                 {"bare", [&] { return bare.run(Launch::equal); }},
                                 {"handed", [&] { return other.run(); }},
                                 {"minimal", [&] { return bare.run(Launch::minimal); }},
                                 {"forked", [&] { return bare.run(Launch::forked); }}};
    std::vector<Way> wanted;
    for (const std::string_view name : all.subspan(3)) {
        std::copy_if(known.begin(), known.end(), std::back_inserter(wanted),
                     [name](const Way& way) { return way.name == name; });
    }
    if (wanted.size() != all.size() - 3) {
        giveUp("unknown way");
    }
    return serveRounds(std::move(wanted));
}
