// bench-micro: what single steps of an action cost, in the manner of Google Benchmark. A bare
// launch stands among them to compare with; its child is named by the environment variable
// BENCH_CHILD.
#include "common/Environment.h"
#include "common/Json.h"
#include "common/ValidPath.h"
#include "measure/BareLaunch.h"
#include "measure/Measure.h"
#include "operator/ActionJob.h"
#include "operator/Outcomes.h"
#include "setup/SetupIPC.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>
#include <vector>

using namespace veltrix;
using namespace veltrix::bench;

namespace {

constexpr int kManyVariables = 300;

std::string replyOfLength(std::size_t length) {
    const std::string frame = R"({"ok":true,"code":""})";
    return R"({"ok":true,"code":")" + std::string(length - frame.size(), 'x') + "\"}";
}

// As a reply of the largest size is with many members rather than one long one.
std::string replyOfManyMembers(std::size_t length) {
    std::string reply = R"({"ok":true)";
    for (int member = 0; reply.size() + 24 < length; ++member) {
        reply += ",\"name" + std::to_string(member) + R"(":"text")";
    }
    return reply + "}";
}

void parse(benchmark::State& state, const std::string& reply) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(parseJsonObject(reply));
    }
}

void filter(benchmark::State& state) {
    std::vector<std::string> entries;
    for (int number = 0; number < kManyVariables; ++number) {
        entries.push_back("A_USUAL_NAME_" + std::to_string(number) + "=and a usual value of it");
    }
    for (const std::string_view name : kOperatorEnvironment) {
        entries.push_back(std::string(name) + "=/usr/bin");
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(filterEnvironment(entries, kOperatorEnvironment));
    }
}

void lookUpLastOutcome(benchmark::State& state) {
    const std::string code(operatorOutcomes().back().code);
    for (auto _ : state) {
        benchmark::DoNotOptimize(operatorSentence(code));
    }
}

void checkPath(benchmark::State& state) {
    const std::string path = "/home/sam/Library/Application Support/VeltrixHomeDVR";
    for (auto _ : state) {
        benchmark::DoNotOptimize(validPath(path));
    }
}

void writeRequest(benchmark::State& state) {
    const Json request(
        Json::Object{{"action", Json("password.configure")},
                     {"values", Json(Json::Object{{"username", Json("sam")},
                                                  {"password", Json("secret")},
                                                  {"trustLocalProxy", Json(true)}})}});
    for (auto _ : state) {
        benchmark::DoNotOptimize(writeJson(request));
    }
}

void launchBare(benchmark::State& state) {
    BareLauncher launcher(std::getenv("BENCH_CHILD"), childArguments());
    for (auto _ : state) {
        if (!launcher.run(Launch::equal)) {
            state.SkipWithError("the child did not answer");
        }
    }
}

}  // namespace

int main(int count, char** arguments) {
    benchmark::RegisterBenchmark("bare launch", launchBare)->UseRealTime();
    benchmark::RegisterBenchmark("parse a reply of 40 bytes", parse, replyOfLength(40));
    benchmark::RegisterBenchmark("parse a reply of 8192 bytes", parse, replyOfLength(8192));
    benchmark::RegisterBenchmark("the same with 500 members", parse, replyOfManyMembers(8192));
    benchmark::RegisterBenchmark("copy and filter 312 variables", filter);
    benchmark::RegisterBenchmark("look up the last outcome", lookUpLastOutcome);
    benchmark::RegisterBenchmark("check a path", checkPath);
    benchmark::RegisterBenchmark("write a request of setup", writeRequest);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
