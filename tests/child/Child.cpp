// The program that plays Node in the tests. Its first argument names a file, as a script would be
// named; each line of that file is one step, carried out in order:
//
//   report PATH          write what this process sees of itself to PATH (see Report.h)
//   print TEXT           write TEXT to standard output, in one write
//   trickle TEXT         the same, byte by byte
//   fill COUNT           write COUNT bytes "x" to standard output
//   fill-errors COUNT    write COUNT bytes to standard error
//   close-output         close standard output and go on
//   close-input          close standard input and go on
//   nonblocking          make standard input and output non-blocking
//   read-input PATH      read standard input to its end into PATH
//   drop-input           the same without keeping it; a device must never stand for PATH, for
//                        what is written takes the place of what was there
//   read-slowly PATH     read-input in small pieces, with pauses
//   read-bytes COUNT     read COUNT bytes, or up to the end of input, and drop them
//   log-input PATH       append every line that the next three steps read to PATH
//   answer TEXT          read one line and print TEXT; end quietly when there is no line
//   answer-all TEXT      print TEXT for every line, up to the end of input
//   echo-all             send every line back, up to the end of input
//   on-terminate TEXT    from now on, print TEXT and exit on SIGTERM
//   count-terminates PATH  from now on, append one byte to PATH on every SIGTERM and live on
//   ignore-terminate     from now on, ignore SIGTERM
//   stop                 stop this process, as SIGSTOP does
//   die                  end it as SIGKILL does
//   descend PATH         leave a descendant behind that keeps every descriptor until PATH exists
//   touch PATH           create the empty file PATH
//   await PATH           go on when the file PATH exists
//   hang                 go on never
//   exit CODE            exit; without it, the end of the steps exits with 0
//
// TEXT may hold "\n", "\r", "\t", "\\" and "\xNN". A file that does not exist makes this program
// exit with 1 and without a word, as Node does. Nothing here outlives a test run that died.
#include "Report.h"
#include "Streams.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace {

constexpr unsigned kLongestLifeSeconds = 120;
constexpr int kNoScript = 1;
constexpr int kUnknownStep = 97;

int argumentCount = 0;
char** argumentList = nullptr;
std::string inputLog;

// What the signal handlers need, stored before they are installed.
std::string lastWords;
std::string terminationLog;

void sayLastWords(int) {
    child::writeAll(STDOUT_FILENO, lastWords);
    ::_exit(0);
}

void countTermination(int) {
    const int fd = ::open(terminationLog.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    child::writeAll(fd, "T");
    ::close(fd);
}

// Restarting, so that a read or write under way is not cut short.
void onTerminate(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGTERM, &action, nullptr);
}

void fill(int fd, const std::string& count) {
    const std::string block(65536, 'x');
    for (unsigned long long left = std::strtoull(count.c_str(), nullptr, 10); left > 0;) {
        const auto size = std::min<unsigned long long>(left, block.size());
        if (!child::writeAll(fd, std::string_view(block).substr(0, size))) {
            return;
        }
        left -= size;
    }
}

void setNonBlocking(int fd) {
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
}

std::optional<std::string> nextRequest() {
    std::optional<std::string> line = child::readLine();
    if (line && !inputLog.empty()) {
        child::appendFile(inputLog, *line + "\n");
    }
    return line;
}

void descend(const std::string& path) {
    if (::fork() == 0) {
        ::alarm(kLongestLifeSeconds);
        child::waitForFile(path);
        ::_exit(0);
    }
}

using Step = std::function<void(const std::string&)>;

const std::map<std::string, Step, std::less<>> kSteps{
    {"report",
     [](const std::string& path) {
         child::writeFile(path, child::report(argumentCount, argumentList));
     }},
    {"print",
     [](const std::string& text) { child::writeAll(STDOUT_FILENO, child::unescaped(text)); }},
    {"trickle",
     [](const std::string& text) {
         for (const char byte : child::unescaped(text)) {
             child::writeAll(STDOUT_FILENO, std::string_view(&byte, 1));
             child::nap(300);
         }
     }},
    {"fill", [](const std::string& count) { fill(STDOUT_FILENO, count); }},
    {"fill-errors", [](const std::string& count) { fill(STDERR_FILENO, count); }},
    {"close-output", [](const std::string&) { ::close(STDOUT_FILENO); }},
    {"close-input", [](const std::string&) { ::close(STDIN_FILENO); }},
    {"nonblocking",
     [](const std::string&) {
         setNonBlocking(STDIN_FILENO);
         setNonBlocking(STDOUT_FILENO);
     }},
    {"read-input",
     [](const std::string& path) { child::writeFile(path, child::readToEnd(65536, 0)); }},
    {"drop-input", [](const std::string&) { child::readToEnd(65536, 0); }},
    {"read-slowly",
     [](const std::string& path) { child::writeFile(path, child::readToEnd(1500, 200)); }},
    {"read-bytes",
     [](const std::string& count) { child::readBytes(std::strtoull(count.c_str(), nullptr, 10)); }},
    {"log-input", [](const std::string& path) { inputLog = path; }},
    {"answer",
     [](const std::string& text) {
         if (!nextRequest()) {
             ::_exit(0);
         }
         child::writeAll(STDOUT_FILENO, child::unescaped(text));
     }},
    {"answer-all",
     [](const std::string& text) {
         while (nextRequest()) {
             child::writeAll(STDOUT_FILENO, child::unescaped(text));
         }
     }},
    {"echo-all",
     [](const std::string&) {
         while (const std::optional<std::string> line = nextRequest()) {
             child::writeAll(STDOUT_FILENO, *line + "\n");
         }
     }},
    {"on-terminate",
     [](const std::string& text) {
         lastWords = child::unescaped(text);
         onTerminate(sayLastWords);
     }},
    {"count-terminates",
     [](const std::string& path) {
         terminationLog = path;
         onTerminate(countTermination);
     }},
    {"ignore-terminate", [](const std::string&) { onTerminate(SIG_IGN); }},
    {"stop", [](const std::string&) { ::raise(SIGSTOP); }},
    {"die", [](const std::string&) { ::raise(SIGKILL); }},
    {"descend", descend},
    {"touch", [](const std::string& path) { child::writeFile(path, ""); }},
    {"await", child::waitForFile},
    {"hang",
     [](const std::string&) {
         for (;;) {
             ::pause();
         }
     }},
    {"exit", [](const std::string& code) { ::_exit(std::atoi(code.c_str())); }},
};

void carryOut(std::string_view line) {
    const std::size_t space = line.find(' ');
    const auto step = kSteps.find(line.substr(0, space));
    if (step == kSteps.end()) {
        ::_exit(kUnknownStep);
    }
    step->second(space == std::string_view::npos ? "" : std::string(line.substr(space + 1)));
}

}  // namespace

int main(int argc, char** argv) {
    ::alarm(kLongestLifeSeconds);
    argumentCount = argc;
    argumentList = argv;
    const std::optional<std::string> script =
        argc > 1 ? child::readFile(argv[1]) : std::optional<std::string>();
    if (!script) {
        return kNoScript;
    }
    for (std::string_view rest = *script; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        if (end > 0) {
            carryOut(rest.substr(0, end));
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return 0;
}
