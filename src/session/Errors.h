#pragma once

#include <QString>
#include <stdexcept>

namespace kav {

// An error raised by the module: a conversion that fails the way the classic runtime fails
// (overflow, type mismatch, division by zero), a database statement the driver refused, or
// a connection that cannot be opened. Handlers catch it at their boundary and show it.
class KavError : public std::runtime_error {
public:
    enum class Kind { Overflow, TypeMismatch, DivisionByZero, Database, Connection, Usage };

    KavError(Kind kind, const QString& message)
        : std::runtime_error(message.toStdString()), kind_(kind), message_(message) {}

    Kind kind() const { return kind_; }
    // The message in the user's language, ready to show.
    const QString& message() const { return message_; }

private:
    Kind kind_;
    QString message_;
};

}  // namespace kav
