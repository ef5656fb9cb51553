#include "session/Csv.h"

#include <QRegularExpression>
#include <QSaveFile>

#include "base/Errors.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace {

// A spreadsheet takes a cell that begins with =, +, -, @, a tab or a carriage return for a
// formula (or its start): such a text gets an apostrophe in front, which the spreadsheet shows
// as text. A number (digits, an optional minus and fraction) stays a number.
QString guarded(const QString& text) {
    static const QRegularExpression number(u"^-?[0-9]+(\\.[0-9]+)?$"_s);
    if (text.isEmpty()) return text;
    const QChar first = text.front();
    const bool risky = first == u'=' || first == u'+' || first == u'-' || first == u'@' ||
                       first == u'\t' || first == u'\r';
    if (!risky || number.match(text).hasMatch()) return text;
    return u'\'' + text;
}

QString field(const QString& raw, bool alwaysQuoted) {
    const QString text = guarded(raw);
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
