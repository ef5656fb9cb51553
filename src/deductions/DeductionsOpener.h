#pragma once

// Opens the monthly register for the loan window's Tools menu: the window is made on first
// use and kept, with its month, filters and rows, until the clerk exits it.

#include <QObject>

#include "session/WindowPorts.h"

namespace kav {

class Module;

class DeductionsOpener : public QObject, public DeductionsPort {
    Q_OBJECT
public:
    explicit DeductionsOpener(Module& module) : module_(module) {}
    void ShowDeductions() override;

private:
    Module& module_;
};

}  // namespace kav
