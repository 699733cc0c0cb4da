#include "common/Pipe.h"

#include "support/DescriptorLimit.h"
#include "support/Processes.h"
#include "support/SignalStorm.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <thread>

namespace veltrix {
namespace {

using namespace test;

bool isCloseOnExec(int fd) {
    return (::fcntl(fd, F_GETFD) & FD_CLOEXEC) != 0;
}

bool isOpen(int fd) {
    return ::fcntl(fd, F_GETFD) >= 0;
}

class PipeTest : public testing::Test {
  protected:
    PipeTest() {
        ignoreBrokenPipes();
        Pipe made = *makePipe();
        readEnd = std::move(made.readEnd);
        writeEnd = std::move(made.writeEnd);
    }

    void write(std::string_view bytes) { ASSERT_TRUE(writeAll(writeEnd.get(), bytes)); }

    UniqueFd readEnd;
    UniqueFd writeEnd;
};

TEST(UniqueFd, ClosesWhatItOwns) {
    const int fd = ::dup(0);
    ASSERT_GE(fd, 0);
    { const UniqueFd owner(fd); }
    EXPECT_FALSE(isOpen(fd));
}

TEST(UniqueFd, GivesAwayWhatIsMovedFromIt) {
    const int fd = ::dup(0);
    UniqueFd first(fd);
    UniqueFd second(std::move(first));
    EXPECT_FALSE(first);
    EXPECT_EQ(second.get(), fd);
    UniqueFd third(::dup(0));
    const int replaced = third.get();
    third = std::move(second);
    EXPECT_EQ(third.get(), fd);
    EXPECT_FALSE(isOpen(replaced));
    UniqueFd& itself = third;
    third = std::move(itself);
    EXPECT_EQ(third.get(), fd);
    EXPECT_TRUE(isOpen(fd));
    third.reset();
    third.reset();
    EXPECT_FALSE(third);
    EXPECT_FALSE(isOpen(fd));
}

TEST_F(PipeTest, IsCloseOnExecAndAboveTheStandardStreams) {
    for (const UniqueFd* end : {&readEnd, &writeEnd}) {
        EXPECT_TRUE(isCloseOnExec(end->get()));
        EXPECT_GT(end->get(), 2);
    }
}

// In a process of its own, for it loses its standard streams; the exit code says how it went.
[[noreturn]] void makePipeWithoutStandardStreams() {
    for (int fd = 0; fd < 3; ++fd) {
        ::close(fd);
    }
    const std::optional<Pipe> pipe = makePipe();
    if (!pipe || pipe->readEnd.get() < 3 || pipe->writeEnd.get() < 3) {
        std::_Exit(1);
    }
    if (!isCloseOnExec(pipe->readEnd.get()) || !isCloseOnExec(pipe->writeEnd.get())) {
        std::_Exit(2);
    }
    std::_Exit(isOpen(0) || isOpen(1) || isOpen(2) ? 3 : 0);
}

TEST(PipeDeathTest, LeavesTheStandardStreamsAloneAlsoWhenTheyAreClosed) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(makePipeWithoutStandardStreams(), testing::ExitedWithCode(0), "");
}

TEST_F(PipeTest, LeavesNothingOpenWhenTheDescriptorLimitIsReached) {
    for (std::size_t spare = 0; spare < 2; ++spare) {
        const std::vector<int> before = openDescriptors();
        {
            const DescriptorLimit limit(spare);
            EXPECT_FALSE(makePipe()) << spare;
        }
        EXPECT_EQ(openDescriptors(), before);
    }
    const DescriptorLimit limit(2);
    EXPECT_TRUE(makePipe());
}

TEST_F(PipeTest, CarriesBytesUnchangedUpToItsEnd) {
    const std::string bytes("a\0b\xff\n", 5);
    write(bytes);
    write("");
    write("end");
    writeEnd.reset();
    EXPECT_EQ(drain(readEnd.get(), 100), bytes + "end");
    EXPECT_EQ(drain(readEnd.get(), 100), "") << "at the end it stays at its end";
}

TEST_F(PipeTest, KeepsOnlyTheFirstBytesOfALongOutput) {
    std::thread writer([this] {
        EXPECT_TRUE(writeAll(writeEnd.get(), std::string(8192, 'a') + std::string(1'000'000, 'b')));
        writeEnd.reset();
    });
    EXPECT_EQ(drain(readEnd.get(), 8193), std::string(8192, 'a') + "b");
    writer.join();
}

TEST_F(PipeTest, KeepsExactlyWhatIsAskedFor) {
    write("abc");
    writeEnd.reset();
    EXPECT_EQ(drain(readEnd.get(), 3), "abc");
    Pipe other = *makePipe();
    ASSERT_TRUE(writeAll(other.writeEnd.get(), "abc"));
    other.writeEnd.reset();
    EXPECT_EQ(drain(other.readEnd.get(), 0), "");
}

TEST_F(PipeTest, HandsOutOneByteAtATimeAndNoMore) {
    write("xy\n");
    EXPECT_EQ(readByte(readEnd.get()), 'x');
    EXPECT_EQ(readByte(readEnd.get()), 'y');
    EXPECT_EQ(readByte(readEnd.get()), '\n');
    writeEnd.reset();
    EXPECT_EQ(readByte(readEnd.get()), std::nullopt);
}

TEST_F(PipeTest, HasNoByteWhereThereIsNoPipe) {
    EXPECT_EQ(readByte(-1), std::nullopt);
    EXPECT_EQ(drain(-1, 100), "");
    EXPECT_FALSE(writeAll(-1, "x"));
    EXPECT_TRUE(writeAll(-1, "")) << "nothing to write is always written";
}

// What is still in the pipe.
std::string rest(UniqueFd& writeEnd, const UniqueFd& readEnd) {
    writeEnd.reset();
    return drain(readEnd.get(), 1 << 20);
}

TEST_F(PipeTest, HandsOutALineAndNothingBehindIt) {
    write("first\nsecond\n\nrest");
    EXPECT_EQ(readLine(readEnd.get(), 100), "first");
    EXPECT_EQ(readLine(readEnd.get(), 100), "second");
    EXPECT_EQ(readLine(readEnd.get(), 100), "");
    EXPECT_EQ(rest(writeEnd, readEnd), "rest");
}

TEST_F(PipeTest, HandsOutNoMoreOfALineThanIsAskedFor) {
    write("abcdef\nrest");
    EXPECT_EQ(readLine(readEnd.get(), 4), "abcd");
    EXPECT_EQ(readLine(readEnd.get(), 2), "ef");
    EXPECT_EQ(readLine(readEnd.get(), 0), "");
    EXPECT_EQ(rest(writeEnd, readEnd), "\nrest");
}

TEST_F(PipeTest, EndsALineWhereItsOutputEnds) {
    write("half");
    writeEnd.reset();
    EXPECT_EQ(readLine(readEnd.get(), 100), "half");
    EXPECT_EQ(readLine(readEnd.get(), 100), "");
    EXPECT_EQ(readLine(-1, 100), "");
}

TEST_F(PipeTest, PutsALineTogetherThatComesInPiecesOfAnySize) {
    const std::string line = std::string(40000, 'l') + std::string(5000, 'm');
    for (const std::size_t piece : {1, 7, 4096, 45000}) {
        std::thread writer([&] {
            for (std::size_t written = 0; written < line.size(); written += piece) {
                EXPECT_TRUE(
                    writeAll(writeEnd.get(), std::string_view(line).substr(written, piece)));
            }
            EXPECT_TRUE(writeAll(writeEnd.get(), "\nn\n"));
        });
        EXPECT_EQ(readLine(readEnd.get(), line.size() + 1), line) << piece;
        EXPECT_EQ(readLine(readEnd.get(), 10), "n");
        writer.join();
    }
    EXPECT_EQ(rest(writeEnd, readEnd), "");
}

TEST_F(PipeTest, HandsOutLinesWhileItIsInterruptedAllTheTime) {
    constexpr int kLines = 200;
    std::thread reader([&] {
        const SignalStorm storm;
        for (int line = 0; line < kLines; ++line) {
            EXPECT_EQ(readLine(readEnd.get(), 10000), std::string(5000, 'x')) << line;
        }
        storm.waitForInterruptions(20);
    });
    for (int line = 0; line < kLines; ++line) {
        write(std::string(5000, 'x') + "\n");
    }
    reader.join();
}

TEST_F(PipeTest, MakesNoRoomForAWriterBehindTheLine) {
    ASSERT_NE(::fcntl(writeEnd.get(), F_SETFL, O_NONBLOCK), -1);
    write("line\n");
    const std::string filler(4096, 'f');
    while (::write(writeEnd.get(), filler.data(), filler.size()) > 0) {
    }
    int before = 0;
    int after = 0;
    ASSERT_EQ(::ioctl(readEnd.get(), FIONREAD, &before), 0);
    EXPECT_EQ(readLine(readEnd.get(), 100), "line");
    ASSERT_EQ(::ioctl(readEnd.get(), FIONREAD, &after), 0);
    EXPECT_EQ(before - after, 5);
}

TEST_F(PipeTest, HandsOutLinesAlsoWhenNoDescriptorIsLeft) {
    write("line\nrest");
    const std::size_t before = openDescriptors().size();
    {
        const DescriptorLimit limit(0);
        EXPECT_EQ(readLine(readEnd.get(), 100), "line");
    }
    EXPECT_EQ(openDescriptors().size(), before);
    EXPECT_EQ(rest(writeEnd, readEnd), "rest");
}

TEST_F(PipeTest, TakesMoreThanItHolds) {
    const std::string bytes(1'000'000, 'x');
    std::string received;
    std::thread reader([&] { received = drain(readEnd.get(), bytes.size() + 1); });
    write(bytes);
    writeEnd.reset();
    reader.join();
    EXPECT_EQ(received, bytes);
}

TEST_F(PipeTest, FailsToBeWrittenOnceItsReaderHasGone) {
    readEnd.reset();
    EXPECT_FALSE(writeAll(writeEnd.get(), "x"));
    EXPECT_FALSE(writeAll(writeEnd.get(), std::string(1'000'000, 'x')));
}

TEST_F(PipeTest, FailsInTheMiddleOfAWriteWhenItsReaderGoes) {
    std::thread reader([this] {
        EXPECT_TRUE(readByte(readEnd.get()));
        readEnd.reset();
    });
    EXPECT_FALSE(writeAll(writeEnd.get(), std::string(1'000'000, 'x')));
    reader.join();
}

TEST_F(PipeTest, SurvivesBeingInterruptedAllTheTime) {
    const std::string bytes(300'000, 'x');
    std::string received;
    std::thread reader([&] {
        const SignalStorm storm;
        while (received.size() < 100) {
            received.push_back(*readByte(readEnd.get()));
        }
        received += drain(readEnd.get(), bytes.size());
    });
    {
        const SignalStorm storm;
        for (std::size_t at = 0; at < bytes.size(); at += 1000) {
            write(bytes.substr(at, 1000));
            std::this_thread::yield();
        }
        storm.waitForInterruptions(20);
        writeEnd.reset();
    }
    reader.join();
    EXPECT_EQ(received, bytes);
}

}  // namespace
}  // namespace veltrix
