#include "host/PropertyBag.h"

namespace kav {

QVariant SettingsPropertyBag::ReadProperty(const QString& name, const QVariant& defaultValue) {
    return settings_.value(key(name), defaultValue);
}

void SettingsPropertyBag::WriteProperty(const QString& name, const QVariant& value,
                                        const QVariant& defaultValue) {
    // Compared as text, the way the bag keeps them, so 0 and "0" are one value.
    if (value.toString() == defaultValue.toString())
        settings_.remove(key(name));
    else
        settings_.setValue(key(name), value);
}

}  // namespace kav
