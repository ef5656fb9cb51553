#pragma once

// The look every window and control of the module shares: right to left, a Persian font.

#include <QFont>

class QWidget;

namespace kav {

// The Persian font of the module (Noto Naskh Arabic, else Nazli, else the default) at the
// given point size.
QFont PersianFont(int pointSize = 10);

// Right to left and the Persian font on a widget and its children.
void ApplyPersianStyle(QWidget* widget);

}  // namespace kav
