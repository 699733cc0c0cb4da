/* The program that plays the script in the benches: static and without a library's start-up, so
 * that what is measured is the way to it and not the program itself.
 *
 *   child [ARGUMENT...]         prints one reply of an operator script
 *   child --produce BYTES       prints that many zero bytes, 64 KiB at a time
 *   child --null-reader         reads its input to the end
 *   child ... --home LENGTH     answers each line with a reply of LENGTH bytes, when its first
 *                               argument ends in first-run.mjs, as a first-run process is called
 */
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

enum { kPiece = 65536, kLongestReply = 8192 };

static char buffer[kPiece];

static int writeAll(const char* bytes, size_t size) {
    while (size > 0) {
        const ssize_t count = write(1, bytes, size);
        if (count <= 0) {
            return 0;
        }
        bytes += count;
        size -= (size_t)count;
    }
    return 1;
}

static int printReply(void) {
    static const char reply[] = "{\"ok\":true,\"code\":\"running\"}\n";
    return writeAll(reply, sizeof reply - 1) ? 0 : 1;
}

static int produce(unsigned long long bytes) {
    while (bytes > 0) {
        const size_t size = bytes < kPiece ? (size_t)bytes : kPiece;
        if (!writeAll(buffer, size)) {
            return 1;
        }
        bytes -= size;
    }
    return 0;
}

static int readToEnd(void) {
    while (read(0, buffer, kPiece) > 0) {
    }
    return 0;
}

/* A request may come in pieces; its line feed is its last byte. */
static int answerLines(size_t length) {
    static const char head[] = "{\"code\":\"";
    static const char tail[] = "\"}\n";
    static char reply[kLongestReply + 1];
    const size_t size = length + 1;
    if (length > kLongestReply || length < sizeof head + sizeof tail) {
        return 2;
    }
    memset(reply, 'x', size);
    memcpy(reply, head, sizeof head - 1);
    memcpy(reply + size - (sizeof tail - 1), tail, sizeof tail - 1);
    for (;;) {
        const ssize_t count = read(0, buffer, kPiece);
        if (count <= 0) {
            return 0;
        }
        if (buffer[count - 1] == '\n' && !writeAll(reply, size)) {
            return 1;
        }
    }
}

static int endsIn(const char* text, const char* end) {
    const size_t length = strlen(text);
    const size_t wanted = strlen(end);
    return length >= wanted && strcmp(text + length - wanted, end) == 0;
}

int main(int count, char** arguments) {
    if (count == 3 && strcmp(arguments[1], "--produce") == 0) {
        return produce(strtoull(arguments[2], NULL, 10));
    }
    if (count == 2 && strcmp(arguments[1], "--null-reader") == 0) {
        return readToEnd();
    }
    if (count == 4 && endsIn(arguments[1], "first-run.mjs")) {
        return answerLines(strtoul(arguments[3], NULL, 10));
    }
    return printReply();
}
