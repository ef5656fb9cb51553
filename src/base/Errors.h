#pragma once

#include <QString>
#include <stdexcept>

namespace kav {

// An error raised by the module: a conversion that fails the way the classic runtime fails
// (overflow, type mismatch, division by zero), a database statement the driver refused, a
// database another client holds locked, or a connection that cannot be opened. Handlers
// catch it at their boundary and show it. It sits below every folder, so the data layer and
// the session raise the same error.
class KavError : public std::runtime_error {
public:
    enum class Kind { Overflow, TypeMismatch, DivisionByZero, Database, Busy, Connection, Usage };

    KavError(Kind kind, const QString& message)
        : std::runtime_error(message.toStdString()), kind_(kind), message_(message) {}

    Kind kind() const { return kind_; }
    // The message in the user's language, ready to show.
    const QString& message() const { return message_; }

private:
    Kind kind_;
    QString message_;
};

// A driver's own text on a line of its own, isolated left to right, so that its brackets
// and colons stay where the driver put them inside a right-to-left message.
inline QString DriverTextLine(const QString& driverText) {
    return QStringLiteral("\n\u2066") + driverText.trimmed() + QChar(0x2069);
}

}  // namespace kav
