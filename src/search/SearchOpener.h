#pragma once

// Opens the search window for the loan editor's search button: the window is made on first
// use and kept, with its criteria and results, until the clerk exits it.

#include <QObject>

#include "session/WindowPorts.h"

namespace kav {

class Module;

class SearchOpener : public QObject, public SearchPort {
    Q_OBJECT
public:
    explicit SearchOpener(Module& module) : module_(module) {}
    void ShowSearch() override;

private:
    Module& module_;
};

}  // namespace kav
