// libuv's uv_spawn with its pipes, on its default loop.
#include "measure/Measure.h"

#include <uv.h>

#include <array>
#include <signal.h>

using namespace veltrix::bench;

namespace {

struct Run {
    uv_process_t process{};
    uv_pipe_t input{};
    uv_pipe_t output{};
    std::array<char, 65536> buffer{};
    std::string text;
};

void close(uv_pipe_t* pipe) {
    uv_close(reinterpret_cast<uv_handle_t*>(pipe), nullptr);
}

void offerBuffer(uv_handle_t* handle, std::size_t, uv_buf_t* buffer) {
    Run* const run = static_cast<Run*>(handle->data);
    *buffer = uv_buf_init(run->buffer.data(), static_cast<unsigned>(run->buffer.size()));
}

void takeOutput(uv_stream_t* stream, ssize_t count, const uv_buf_t* buffer) {
    Run* const run = static_cast<Run*>(stream->data);
    if (count > 0) {
        run->text.append(buffer->base, static_cast<std::size_t>(count));
    } else if (count < 0) {
        close(&run->output);
    }
}

void seeExit(uv_process_t* process, std::int64_t, int) {
    uv_close(reinterpret_cast<uv_handle_t*>(process), nullptr);
}

bool runOnce(uv_loop_t* loop, char** command, char** environment) {
    Run run;
    uv_pipe_init(loop, &run.input, 0);
    uv_pipe_init(loop, &run.output, 0);
    run.output.data = &run;
    std::array<uv_stdio_container_t, 3> streams{};
    streams[0].flags = static_cast<uv_stdio_flags>(UV_CREATE_PIPE | UV_READABLE_PIPE);
    streams[0].data.stream = reinterpret_cast<uv_stream_t*>(&run.input);
    streams[1].flags = static_cast<uv_stdio_flags>(UV_CREATE_PIPE | UV_WRITABLE_PIPE);
    streams[1].data.stream = reinterpret_cast<uv_stream_t*>(&run.output);
    streams[2].flags = UV_IGNORE;  // the null device
    uv_process_options_t options{};
    options.file = command[0];
    options.args = command;
    options.env = environment;
    options.stdio_count = static_cast<int>(streams.size());
    options.stdio = streams.data();
    options.exit_cb = seeExit;
    if (uv_spawn(loop, &run.process, &options) != 0) {
        giveUp("uv_spawn failed");
    }
    close(&run.input);
    uv_read_start(reinterpret_cast<uv_stream_t*>(&run.output), offerBuffer, takeOutput);
    uv_run(loop, UV_RUN_DEFAULT);
    return isExpectedReply(run.text);
}

}  // namespace

int main(int, char** arguments) {
    signal(SIGPIPE, SIG_IGN);
    std::vector<std::string> strings = childArguments();
    strings.insert(strings.begin(), arguments[1]);
    std::vector<char*> command = pointersTo(strings);
    std::vector<std::string> variables = childEnvironment();
    std::vector<char*> environment = pointersTo(variables);
    uv_loop_t* const loop = uv_default_loop();
    return serveRounds(
        {{"peer", [&] { return runOnce(loop, command.data(), environment.data()); }}});
}
