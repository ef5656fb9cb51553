#pragma once

// Runs kav_reliability_child (or any program) as another client of a test's database: waits
// for the lines it prints, kills it with SIGKILL, and tells how long a run should be (the
// soak run, KAVHRLOAN_SOAK=1, asks for more of everything).

#include <QProcess>
#include <QString>
#include <QStringList>

namespace kav::reliability {

// `suite` in the test suite, `soak` when KAVHRLOAN_SOAK is set.
int Scaled(int suite, int soak);
bool Soaking();

class Child {
public:
    explicit Child(const QStringList& arguments, const QString& program = QString());
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // Waits until the child has printed a line starting with `prefix`; false when it ended
    // or the time ran out first.
    bool WaitForLine(const QString& prefix, int milliseconds = 20000);
    // Reads what has arrived, waiting at most `milliseconds`.
    void Pump(int milliseconds);
    void Write(const QByteArray& line);
    // SIGKILL, then waits for the end.
    void Kill();
    // Waits for a normal end; the exit code, or -1 when it crashed or did not end in time.
    int Finish(int milliseconds);

    const QStringList& Lines() const { return lines_; }
    // The number after the last line "word N", or `otherwise`.
    qint64 LastNumber(const QString& word, qint64 otherwise) const;
    QString Errors();

private:
    void take();
    QProcess process_;
    QByteArray pending_;
    QStringList lines_;
};

// The child program built beside the tests.
QString ChildProgram();

}  // namespace kav::reliability
