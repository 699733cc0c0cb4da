#include "endurance/EnduranceFixture.h"

#include "support/Processes.h"
#include "support/WaitFor.h"

#include <algorithm>
#include <utility>

namespace veltrix::test {

void ShortLimits::asyncOnMain(Work work) {
    systemDispatcher().asyncOnMain(std::move(work));
}

void ShortLimits::asyncOnMainAfter(std::chrono::milliseconds delay, Work work) {
    systemDispatcher().asyncOnMainAfter(delay, std::move(work));
}

void ShortLimits::asyncOnGlobal(QualityOfService quality, Work work) {
    systemDispatcher().asyncOnGlobal(quality, std::move(work));
}

std::shared_ptr<DelayedWork> ShortLimits::afterOnGlobal(std::chrono::milliseconds, Work work) {
    return systemDispatcher().afterOnGlobal(limit_, std::move(work));
}

std::shared_ptr<SerialQueue> ShortLimits::makeSerialQueue(std::string label) {
    return systemDispatcher().makeSerialQueue(std::move(label));
}

int rounds(int count) {
    const auto slowness = patience() / std::chrono::seconds(15);
    return std::max(1, count / static_cast<int>(slowness));
}

Endurance::Endurance() : descriptorsBefore(openDescriptors()) {}

void Endurance::TearDown() {
    EXPECT_TRUE(waitFor([] { return !hasChildren(); })) << "a child is left";
    EXPECT_TRUE(waitFor([this] { return openDescriptors() == descriptorsBefore; }));
}

ActionJob Endurance::jobFor(std::string_view name, std::string_view steps) const {
    return {resources.node(), {resources.script("desktop/" + std::string(name), steps)}, {}};
}

std::shared_ptr<SetupIPC> Endurance::makeChannel(const std::string& executable) {
    return SetupIPC::make(executable, "/home", {dispatcher, resources.asFunction(), [] {
                                                    return std::vector<std::string>();
                                                }});
}

void Endurance::firstRun(std::string_view steps) const {
    static_cast<void>(resources.script(kFirstRunScript, steps));
}

std::vector<Reply> Endurance::useAndClose(const std::shared_ptr<SetupIPC>& channel,
                                          int count) const {
    // Shared, so that a completion that comes too late or too often finds it.
    const auto replies = std::make_shared<std::vector<Reply>>();
    const auto closings = std::make_shared<int>(0);
    for (int asked = 0; asked < count; ++asked) {
        channel->request("enrollment.poll", {},
                         [replies](const Reply& reply) { replies->push_back(reply); });
    }
    channel->close([closings] { ++*closings; });
    EXPECT_TRUE(waitFor([&closings] { return *closings > 0; })) << "not closed";
    EXPECT_EQ(replies->size(), static_cast<std::size_t>(count)) << "one reply a request";
    EXPECT_EQ(*closings, 1);
    return *replies;
}

}  // namespace veltrix::test
