#include "measure/Measure.h"

#include "common/Environment.h"
#include "operator/ActionJob.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <random>

namespace veltrix::bench {
namespace {

using Clock = std::chrono::steady_clock;

void takeAndReport(const Way& way) {
    const auto begin = Clock::now();
    const bool good = way.take();
    const auto end = Clock::now();
    if (!good) {
        giveUp(way.name + " failed");
    }
    std::printf("%s %lld\n", way.name.c_str(),
                static_cast<long long>(
                    std::chrono::duration_cast<std::chrono::nanoseconds>(end - begin).count()));
}

}  // namespace

int serveRounds(std::vector<Way> ways) {
    std::minstd_rand random(std::random_device{}());
    for (long rounds = 0; std::cin >> rounds;) {
        for (; rounds > 0; --rounds) {
            std::shuffle(ways.begin(), ways.end(), random);
            std::for_each(ways.begin(), ways.end(), takeAndReport);
        }
        std::puts("done");
        std::fflush(stdout);
    }
    return std::cin.eof() ? 0 : 2;
}

std::vector<std::string> childEnvironment() {
    return filterEnvironment(processEnvironment(), kOperatorEnvironment);
}

std::vector<std::string> childArguments() {
    return {"/bench/desktop/service.mjs", "status", "--home", "/bench/home"};
}

bool isExpectedReply(std::string_view output) {
    return output == "{\"ok\":true,\"code\":\"running\"}\n";
}

std::vector<char*> pointersTo(std::vector<std::string>& strings) {
    std::vector<char*> pointers;
    for (std::string& string : strings) {
        pointers.push_back(string.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

void giveUp(std::string_view what) {
    std::fprintf(stderr, "%.*s\n", static_cast<int>(what.size()), what.data());
    std::exit(1);
}

}  // namespace veltrix::bench
