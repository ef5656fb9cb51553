#include "ChildProcess.h"

#include <QElapsedTimer>

using namespace Qt::StringLiterals;

namespace kav::reliability {

bool Soaking() { return !qEnvironmentVariableIsEmpty("KAVHRLOAN_SOAK"); }

int Scaled(int suite, int soak) { return Soaking() ? soak : suite; }

QString ChildProgram() { return QStringLiteral(KAV_RELIABILITY_CHILD); }

Child::Child(const QStringList& arguments, const QString& program) {
    process_.setProcessChannelMode(QProcess::SeparateChannels);
    process_.start(program.isEmpty() ? ChildProgram() : program, arguments);
    process_.waitForStarted(10000);
}

Child::~Child() {
    if (process_.state() != QProcess::NotRunning) Kill();
}

void Child::take() {
    pending_ += process_.readAllStandardOutput();
    qsizetype end;
    while ((end = pending_.indexOf('\n')) >= 0) {
        lines_ << QString::fromUtf8(pending_.left(end));
        pending_.remove(0, end + 1);
    }
}

void Child::Pump(int milliseconds) {
    process_.waitForReadyRead(milliseconds);
    take();
}

bool Child::WaitForLine(const QString& prefix, int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    qsizetype seen = 0;
    for (;;) {
        for (; seen < lines_.size(); ++seen)
            if (lines_[seen].startsWith(prefix)) return true;
        const qint64 left = milliseconds - timer.elapsed();
        if (left <= 0 || process_.state() == QProcess::NotRunning) {
            take();
            for (; seen < lines_.size(); ++seen)
                if (lines_[seen].startsWith(prefix)) return true;
            return false;
        }
        Pump(int(qMin<qint64>(left, 200)));
    }
}

void Child::Write(const QByteArray& line) {
    process_.write(line);
    process_.waitForBytesWritten(5000);
}

void Child::Kill() {
    process_.kill();  // SIGKILL
    process_.waitForFinished(10000);
    take();
}

int Child::Finish(int milliseconds) {
    if (!process_.waitForFinished(milliseconds)) {
        Kill();
        return -1;
    }
    take();
    return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
}

qint64 Child::LastNumber(const QString& word, qint64 otherwise) const {
    for (qsizetype i = lines_.size() - 1; i >= 0; --i)
        if (lines_[i].startsWith(word + u' ')) return lines_[i].mid(word.size() + 1).toLongLong();
    return otherwise;
}

QString Child::Errors() { return QString::fromUtf8(process_.readAllStandardError()); }

}  // namespace kav::reliability
