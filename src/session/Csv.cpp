#include "session/Csv.h"

#include <QSaveFile>

#include "base/Errors.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace {

QString field(const QString& text, bool alwaysQuoted) {
    if (!alwaysQuoted && !text.contains(u',') && !text.contains(u'"') && !text.contains(u'\n') &&
        !text.contains(u'\r'))
        return text;
    QString quoted = text;
    quoted.replace(u"\""_s, u"\"\""_s);
    return u'"' + quoted + u'"';
}

}  // namespace

QString CsvText(const QList<QStringList>& rows, const QList<int>& quotedColumns) {
    QString out;
    for (const QStringList& row : rows) {
        QStringList fields;
        fields.reserve(row.size());
        for (int c = 0; c < row.size(); ++c)
            fields << field(row[c], !row[c].isEmpty() && quotedColumns.contains(c));
        out += fields.join(u',') + u"\r\n"_s;
    }
    return out;
}

void SaveCsv(const QString& path, const QList<QStringList>& rows, const QList<int>& quotedColumns) {
    QSaveFile file(path);
    const QByteArray bom("\xEF\xBB\xBF");
    if (!file.open(QIODevice::WriteOnly) || file.write(bom) != bom.size()) {
        throw KavError(KavError::Kind::Usage,
                       u"فايل «%1» نوشته نشد: %2"_s.arg(path, file.errorString()));
    }
    const QByteArray text = CsvText(rows, quotedColumns).toUtf8();
    if (file.write(text) != text.size() || !file.commit())
        throw KavError(KavError::Kind::Usage,
                       u"فايل «%1» نوشته نشد: %2"_s.arg(path, file.errorString()));
}

}  // namespace kav
