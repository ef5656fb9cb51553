#pragma once

// Where a host keeps the control's properties between runs.

#include <QSettings>
#include <QString>
#include <QVariant>

namespace kav {

class PropertyBag {
public:
    virtual ~PropertyBag() = default;
    // The stored value, or the default when nothing is stored under the name.
    virtual QVariant ReadProperty(const QString& name, const QVariant& defaultValue) = 0;
    // Stores the value; a value equal to the default is not stored.
    virtual void WriteProperty(const QString& name, const QVariant& value,
                               const QVariant& defaultValue) = 0;
};

// A property bag in QSettings, under a group of its own.
class SettingsPropertyBag : public PropertyBag {
public:
    SettingsPropertyBag(QSettings& settings, const QString& group)
        : settings_(settings), group_(group) {}
    QVariant ReadProperty(const QString& name, const QVariant& defaultValue) override;
    void WriteProperty(const QString& name, const QVariant& value,
                       const QVariant& defaultValue) override;

private:
    QString key(const QString& name) const { return group_ + u'/' + name; }
    QSettings& settings_;
    QString group_;
};

}  // namespace kav
