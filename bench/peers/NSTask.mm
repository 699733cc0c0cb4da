// GNUstep's NSTask, as its documentation launches a program and takes its output.
#include "measure/Measure.h"

#include "common/RetainPtr.h"

#import <Foundation/Foundation.h>

using namespace veltrix;
using namespace veltrix::bench;

namespace {

NSString* text(const std::string& utf8) {
    return [NSString stringWithUTF8String:utf8.c_str()];
}

NSDictionary* environment() {
    NSMutableDictionary* const variables = [NSMutableDictionary dictionary];
    for (const std::string& entry : childEnvironment()) {
        const std::size_t end = entry.find('=');
        [variables setObject:text(entry.substr(end + 1)) forKey:text(entry.substr(0, end))];
    }
    return variables;
}

NSArray* arguments() {
    NSMutableArray* const list = [NSMutableArray array];
    for (const std::string& argument : childArguments()) {
        [list addObject:text(argument)];
    }
    return list;
}

bool run(const char* child) {
    @autoreleasepool {
        static NSDictionary* const kVariables = [environment() copy];
        static NSArray* const kArguments = [arguments() copy];
        NSPipe* const input = [NSPipe pipe];
        NSPipe* const output = [NSPipe pipe];
        const RetainPtr<NSTask> owner = adoptNS([[NSTask alloc] init]);
        NSTask* const task = owner.get();
        [task setLaunchPath:text(child)];
        [task setArguments:kArguments];
        [task setEnvironment:kVariables];
        [task setStandardInput:input];
        [task setStandardOutput:output];
        [task setStandardError:[NSFileHandle fileHandleWithNullDevice]];
        [task launch];
        [[input fileHandleForWriting] closeFile];
        NSData* const data = [[output fileHandleForReading] readDataToEndOfFile];
        [task waitUntilExit];
        return isExpectedReply({static_cast<const char*>([data bytes]), [data length]});
    }
}

}  // namespace

int main(int, char** arguments) {
    @autoreleasepool {
        return serveRounds({{"peer", [child = arguments[1]] { return run(child); }}});
    }
}
