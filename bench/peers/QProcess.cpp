// Qt's QProcess, its blocking use.
#include "measure/Measure.h"

#include <QCoreApplication>
#include <QProcess>

using namespace veltrix::bench;

namespace {

QStringList list(const std::vector<std::string>& strings) {
    QStringList all;
    for (const std::string& string : strings) {
        all << QString::fromStdString(string);
    }
    return all;
}

}  // namespace

int main(int count, char** arguments) {
    const QCoreApplication application(count, arguments);
    const QString child(arguments[1]);
    const QStringList childList = list(childArguments());
    QProcessEnvironment environment;
    for (const QString& entry : list(childEnvironment())) {
        environment.insert(entry.section('=', 0, 0), entry.section('=', 1));
    }
    return serveRounds({{"peer", [&] {
                             QProcess process;
                             process.setProcessEnvironment(environment);
                             process.setStandardErrorFile(QProcess::nullDevice());
                             process.start(child, childList);
                             process.closeWriteChannel();
                             return process.waitForFinished() &&
                                    isExpectedReply(process.readAllStandardOutput().toStdString());
                         }}});
}
