#pragma once

// What the loan editor's balance button opens: the adjustment window on the editor's loan
// and member, with the member's schedule, shown modally until the clerk closes it.

#include <QObject>

#include "session/WindowPorts.h"

namespace kav {
class Module;

class AdjustmentOpener : public QObject, public AdjustmentPort {
    Q_OBJECT
public:
    explicit AdjustmentOpener(Module& module) : module_(module) {}
    void ShowBalance(const QString& loanIdText, qint32 employeeId) override;

private:
    Module& module_;
};

}  // namespace kav
