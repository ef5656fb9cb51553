#include "Harness.h"

#include <fcntl.h>
#include <malloc.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QFile>
#include <QHash>
#include <QProcessEnvironment>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>

using namespace Qt::StringLiterals;

namespace kav::bench {

namespace {
double nowMs() {
    return std::chrono::duration<double, std::milli>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}
// The VmHWM line of a status file in kB; 0 when it cannot be read.
long highWaterKb(const QString& statusFile) {
    QFile f(statusFile);
    if (!f.open(QIODevice::ReadOnly)) return 0;
    for (const QByteArray& line : f.readAll().split('\n'))
        if (line.startsWith("VmHWM:")) return line.mid(6).trimmed().split(' ').value(0).toLong();
    return 0;
}
}  // namespace

double Median(std::vector<double> values) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

std::vector<double> Rotate(int reps, const std::vector<std::function<void()>>& contenders,
                           const std::function<void()>& between) {
    const size_t n = contenders.size();
    for (const auto& c : contenders) {
        c();
        if (between) between();
    }
    std::vector<std::vector<double>> times(n);
    for (int r = 0; r < reps; ++r) {
        for (size_t k = 0; k < n; ++k) {
            const size_t i = (k + size_t(r)) % n;
            const double t0 = nowMs();
            contenders[i]();
            times[i].push_back(nowMs() - t0);
            if (between) between();
        }
    }
    std::vector<double> medians;
    for (auto& t : times) medians.push_back(Median(t));
    return medians;
}

long ResidentKb() {
    QFile f(u"/proc/self/status"_s);
    if (!f.open(QIODevice::ReadOnly)) return 0;
    for (const QByteArray& line : f.readAll().split('\n'))
        if (line.startsWith("VmRSS:")) return line.mid(6).trimmed().split(' ').value(0).toLong();
    return 0;
}

double HeapInUseMb() {
    // Blocks in the heap and blocks mapped on their own (large ones).
    const struct mallinfo2 m = mallinfo2();
    return double(m.uordblks + m.hblkhd) / (1024.0 * 1024.0);
}

ProcessRun RunProcess(const QString& program, const QStringList& args, const QStringList& setEnv,
                      const QString& logFile, int timeoutMs) {
    // The environment: this process's, with the given variables replaced.
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const QString& kv : setEnv) env.insert(kv.section(u'=', 0, 0), kv.section(u'=', 1));
    std::vector<QByteArray> envStore, argStore;
    for (const QString& kv : env.toStringList()) envStore.push_back(kv.toLocal8Bit());
    argStore.push_back(program.toLocal8Bit());
    for (const QString& a : args) argStore.push_back(a.toLocal8Bit());
    std::vector<char*> envp, argv;
    for (auto& e : envStore) envp.push_back(e.data());
    envp.push_back(nullptr);
    for (auto& a : argStore) argv.push_back(a.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const QByteArray log = logFile.toLocal8Bit();
    posix_spawn_file_actions_addopen(&actions, 1, log.constData(), O_WRONLY | O_CREAT | O_APPEND,
                                     0644);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);

    ProcessRun run;
    pid_t pid = 0;
    const double t0 = nowMs();
    const int rc = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    if (rc != 0) return run;
    // The child's peak is read from its own high-water mark while it runs: the one the
    // kernel reports at its end includes this process's memory, shared until the exec.
    const QString statusFile = u"/proc/%1/status"_s.arg(pid);
    int status = 0;
    rusage usage{};
    for (;;) {
        run.peakKb = std::max(run.peakKb, highWaterKb(statusFile));
        const pid_t done = wait4(pid, &status, WNOHANG, &usage);
        if (done == pid) break;
        if (nowMs() - t0 > timeoutMs) {
            kill(pid, SIGKILL);
            wait4(pid, &status, 0, &usage);
            run.wallMs = nowMs() - t0;
            return run;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    run.wallMs = nowMs() - t0;
    run.cpuMs = double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1000.0 +
                double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1000.0;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

// ---- Table ----

namespace {

QString number(double v) {
    if (v >= 100) return QString::number(v, 'f', 0);
    if (v >= 10) return QString::number(v, 'f', 1);
    return QString::number(v, 'f', 2);
}

QString targetText(const Target& t, const QString& unit) {
    return t.kind == Target::Kind::AtMost ? u"<= "_s + number(t.limit) + u" "_s + unit
                                          : u"ratio <= "_s + number(t.limit);
}

// Whether the target is met; empty when the values it needs are not measured yet.
std::optional<bool> met(const Result& r, const Target& t) {
    if (!r.ours) return std::nullopt;
    if (t.kind == Target::Kind::AtMost) return *r.ours <= t.limit;
    if (!r.baseline || *r.baseline <= 0) return std::nullopt;
    return *r.ours / *r.baseline <= t.limit;
}

}  // namespace

int Table::targetCount() const {
    int n = 0;
    for (const Result& r : results_) n += int(r.targets.size());
    return n;
}

int Table::targetsMet() const {
    int n = 0;
    for (const Result& r : results_)
        for (const Target& t : r.targets) n += met(r, t).value_or(false) ? 1 : 0;
    return n;
}

void Table::print() const {
    const QStringList header = {u"measured"_s, u"ours"_s,   u"baseline"_s,
                                u"ratio"_s,    u"target"_s, u"met"_s};
    std::vector<QStringList> rows;
    for (const Result& r : results_) {
        QStringList cells;
        cells << r.what;
        cells << (r.ours ? number(*r.ours) + u" "_s + r.unit
                         : (r.note.isEmpty() ? u"not yet measured"_s : r.note));
        cells << (r.baseline ? number(*r.baseline) + u" "_s + r.unit : u"-"_s);
        cells << (r.ours && r.baseline && *r.baseline > 0 ? number(*r.ours / *r.baseline) : u"-"_s);
        QStringList targets, verdicts;
        for (const Target& t : r.targets) {
            targets << targetText(t, r.unit);
            const std::optional<bool> m = met(r, t);
            verdicts << (!m ? u"not yet"_s : (*m ? u"yes"_s : u"NO"_s));
        }
        cells << (targets.isEmpty() ? u"(information)"_s : targets.join(u", "_s));
        cells << (verdicts.isEmpty() ? u"-"_s : verdicts.join(u", "_s));
        rows.push_back(cells);
    }
    std::vector<qsizetype> width(size_t(header.size()));
    for (qsizetype c = 0; c < header.size(); ++c) width[size_t(c)] = header[c].size();
    for (const QStringList& row : rows)
        for (qsizetype c = 0; c < row.size(); ++c)
            width[size_t(c)] = std::max(width[size_t(c)], row[c].size());
    auto line = [&](const QStringList& cells) {
        QString text = u"|"_s;
        for (qsizetype c = 0; c < cells.size(); ++c)
            text += u" "_s + cells[c].leftJustified(width[size_t(c)]) + u" |"_s;
        std::printf("%s\n", text.toUtf8().constData());
    };
    line(header);
    QStringList rule;
    for (qsizetype w : width) rule << QString(w, u'-');
    line(rule);
    for (const QStringList& row : rows) line(row);
    std::printf("targets met: %d of %d\n", targetsMet(), targetCount());
    std::fflush(stdout);
}

}  // namespace kav::bench
