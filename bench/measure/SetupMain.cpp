// bench-setup CHILD LENGTH: measures a request of the setup channel, from the call to its
// completion, and a bare exchange of the same lines with another process of the same program.
#include "common/Environment.h"
#include "common/Pipe.h"
#include "measure/BareLaunch.h"
#include "measure/Companion.h"
#include "measure/Measure.h"
#include "setup/SetupIPC.h"

#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>

using namespace veltrix;
using namespace veltrix::bench;

namespace {

constexpr const char* kAction = "enrollment.poll";

class Channel {
  public:
    Channel(const char* child, std::string length)
        : serve_(plainMainLoop()),
          channel_(SetupIPC::make(
              child, std::move(length),
              {systemDispatcher(), [] { return std::string("/bench"); }, processEnvironment})) {}

    bool exchange() {
        bool answered = false;
        bool good = false;
        channel_->request(kAction, {}, [&](const Reply& reply) {
            good = reply.find("ok") == reply.end() && stringMember(reply, "code") != nullptr;
            answered = true;
        });
        serve_([&] { return answered; });
        return good;
    }

  private:
    ServeMainQueue serve_;
    std::shared_ptr<SetupIPC> channel_;
};

class BareExchange {
  public:
    BareExchange(const char* child, const std::string& length)
        : size_(std::strtoul(length.c_str(), nullptr, 10) + 1),
          launcher_(child, {std::string("/bench/") + kFirstRunScript, "--home", length}),
          child_(launcher_.start(Launch::equal)) {}

    bool exchange() {
        static const std::string request =
            std::string(R"({"action":")") + kAction + "\",\"values\":{}}\n";
        if (!writeAll(child_.input, request)) {
            return false;
        }
        std::string line;
        std::array<char, 65536> buffer;
        do {
            const ssize_t count = read(child_.output, buffer.data(), buffer.size());
            if (count <= 0) {
                return false;
            }
            line.append(buffer.data(), static_cast<std::size_t>(count));
        } while (line.back() != '\n');
        return line.size() == size_;
    }

  private:
    std::size_t size_;
    BareLauncher launcher_;
    BareLauncher::Child child_;
};

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        giveUp("usage: bench-setup CHILD LENGTH");
    }
    ignoreBrokenPipes();
    Channel channel(arguments[1], arguments[2]);
    BareExchange bare(arguments[1], arguments[2]);
    return serveRounds({{"companion", [&] { return channel.exchange(); }},
                        {"bare", [&] { return bare.exchange(); }}});
}
