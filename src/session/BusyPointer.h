#pragma once

// The busy mouse pointer while a statement runs or a window loads. It needs no widget, so
// the data environment can show it while a statement waits for the database.

namespace kav {

// The busy mouse pointer while it lives (nothing without a GUI application, or off its GUI
// thread).
class BusyPointer {
public:
    BusyPointer();
    ~BusyPointer();
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;

private:
    bool active_;
};

}  // namespace kav
