#pragma once

// A small harness for measuring the module side by side with its baseline: the contenders
// of one measurement run in turn, in a rotating order, so that a busy machine slows them
// alike, and the table reports medians, their ratio and whether each target is met.

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

namespace kav::bench {

// Runs every contender once untimed, then reps times each, the order rotating from one
// round to the next; between(), when given, runs untimed after every contender. Returns
// each contender's median time in milliseconds.
std::vector<double> Rotate(int reps, const std::vector<std::function<void()>>& contenders,
                           const std::function<void()>& between = {});

double Median(std::vector<double> values);

// Resident memory of this process now (VmRSS), in kB; bytes the heap has handed out and not
// taken back, in MB.
long ResidentKb();
double HeapInUseMb();

// One started program's wall time, peak resident memory, processor time and exit status.
struct ProcessRun {
    double wallMs = 0;
    long peakKb = 0;
    double cpuMs = 0;   // user and system time
    int exitCode = -1;  // -1: killed or not started
};
// Starts program with args and the environment changed by setEnv ("NAME=value"), its
// output going to logFile, and waits for it (killing it after timeoutMs).
ProcessRun RunProcess(const QString& program, const QStringList& args, const QStringList& setEnv,
                      const QString& logFile, int timeoutMs);

struct Target {
    enum class Kind { AtMost, RatioAtMost };
    Kind kind;
    double limit;
};

struct Result {
    QString what;
    QString unit;                    // of ours and baseline: "ms", "s", "MB"
    std::optional<double> ours;      // empty: not measured yet
    std::optional<double> baseline;  // empty: none or not measured yet
    std::vector<Target> targets;     // empty: for information only
    QString note;                    // shown instead of a value that is not measured yet
};

class Table {
public:
    void add(Result r) { results_.push_back(std::move(r)); }
    // Prints the table as Markdown, its last line "targets met: X of Y".
    void print() const;
    int targetCount() const;
    int targetsMet() const;

private:
    std::vector<Result> results_;
};

}  // namespace kav::bench
