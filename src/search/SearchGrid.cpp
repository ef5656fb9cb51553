#include "search/SearchGrid.h"

#include <sqlite3.h>

#include <QFontMetrics>
#include <QHeaderView>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTableView>
#include <array>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "base/Errors.h"
#include "controls/FlexGrid.h"
#include "search/SearchTexts.h"
#include "session/DataEnvironment.h"
#include "session/TextProcs.h"
#include "session/Vb.h"

using namespace Qt::StringLiterals;

namespace kav::search {

namespace T = search_texts;
using controls::FlexGrid;

namespace {

// The result columns the grid shows, by name.
enum Source : int {
    SEmployeeCode,
    SFirstName,
    SSureName,
    SLoanTypeDesc,
    SFarsiPaymentDate,
    SLoanValue,
    SFarsiBeginDate,
    SFarsiEndDate,
    SMonthlyValue,
    SLoanCode,
    SSupporter1,
    SSupporter2,
    SSupporter3,
    SId,
    SourceCount
};
const std::array<QString, SourceCount> kSourceNames = {u"EmployeeCode"_s,
                                                       u"FirstName"_s,
                                                       u"SureName"_s,
                                                       u"LoanTypeDesc"_s,
                                                       u"FarsiPaymentDate"_s,
                                                       u"LoanValue"_s,
                                                       u"FarsiBeginDate"_s,
                                                       u"FarsiEndDate"_s,
                                                       u"MonthlyValue"_s,
                                                       u"LoanCode"_s,
                                                       u"SupporterEmployeeName1"_s,
                                                       u"SupporterEmployeeName2"_s,
                                                       u"SupporterEmployeeName3"_s,
                                                       u"ID"_s};

[[noreturn]] void databaseError(const QString& driverText) {
    throw KavError(KavError::Kind::Database, u"خطاي پايگاه داده: "_s + driverText.trimmed());
}

[[noreturn]] void missingColumn(int source) {
    throw KavError(KavError::Kind::Database,
                   u"ستون «%1» در نتيجه پرس و جو وجود ندارد."_s.arg(kSourceNames[source]));
}

// The column of each source among the result's column names: the first of that name,
// without regard to case, as a lookup by name finds it.
template <class NameOf>
std::array<int, SourceCount> resolveColumns(int count, NameOf nameOf) {
    std::array<int, SourceCount> index;
    index.fill(-1);
    for (int c = 0; c < count; ++c) {
        const QString name = nameOf(c);
        for (int s = 0; s < SourceCount; ++s)
            if (index[s] < 0 && name.compare(kSourceNames[s], Qt::CaseInsensitive) == 0)
                index[s] = c;
    }
    for (int s = 0; s < SourceCount; ++s)
        if (index[s] < 0) missingColumn(s);
    return index;
}

// Result rows stepped on the embedded database's own connection, read as UTF-8. A name, a
// date or an amount that comes again (the loan's columns for each of its members, the same
// type or date in many loans) is made once and shared by every cell that shows it.
class SqliteRows {
public:
    SqliteRows(sqlite3* db, const QString& sql) : db_(db) {
        const QByteArray utf8 = sql.toUtf8();
        if (sqlite3_prepare_v2(db_, utf8.constData(), int(utf8.size()), &st_, nullptr) != SQLITE_OK)
            fail();
        index_ = resolveColumns(sqlite3_column_count(st_), [this](int c) {
            return QString::fromUtf8(sqlite3_column_name(st_, c));
        });
        for (int t : {SFirstName, SSureName, SLoanTypeDesc, SFarsiPaymentDate, SLoanValue,
                      SFarsiBeginDate, SFarsiEndDate, SMonthlyValue}) {
            columns_[t].hashes.assign(TableSize, 0);
            columns_[t].entries.resize(TableSize);
        }
        columns_[SLoanValue].typed = columns_[SMonthlyValue].typed = columns_[SId].typed = true;
    }
    ~SqliteRows() { sqlite3_finalize(st_); }
    SqliteRows(const SqliteRows&) = delete;
    SqliteRows& operator=(const SqliteRows&) = delete;

    bool next() {
        const int rc = sqlite3_step(st_);
        if (rc == SQLITE_ROW) {
            ++row_;
            return true;
        }
        if (rc != SQLITE_DONE) fail();
        return false;
    }
    bool isNull(int s) { return sqlite3_column_type(st_, index_[s]) == SQLITE_NULL; }
    const QString& text(int s) { return read(s).text; }
    // The grouped amount, the empty text for Null.
    const QString& amountOrEmpty(int s) {
        static const QString none;
        return read(s).type == SQLITE_NULL ? none : amount(s);
    }
    const QString& amount(int s) {
        Entry& e = read(s);
        if (!e.amountMade) {
            e.amount = GroupDigits(e.value);
            e.amountMade = true;
        }
        return e.amount;
    }

private:
    // A value's texts.
    struct Entry {
        int type = -1;
        std::string bytes;  // the value: UTF-8 text, or a number's binary value
        QVariant value;     // the value, for the amount
        QString text;
        QString amount;
        bool amountMade = false;

        bool is(int t, const char* p, size_t n) const {
            return t == type && n == bytes.size() &&
                   (n == 0 || std::memcmp(p, bytes.data(), n) == 0);
        }
    };
    // Columns whose values come again often (names, the type, dates, amounts) also remember
    // the texts of recent values in a small table indexed by a hash of the value; its hashes
    // are compact, so a look-up stays in the processor's cache.
    static constexpr size_t TableSize = 512;
    struct Column {
        qint64 row = -1;
        Entry* current = &own;        // the current row's value
        Entry own;                    // the value, for a column without a table
        bool typed = false;           // read with its type (the amounts, the id)
        std::vector<quint64> hashes;  // empty: no table
        std::vector<Entry> entries;
    };

    static quint64 hashOf(int type, const char* p, size_t n) {
        const quint64 h = std::hash<std::string_view>()(std::string_view(p, n)) ^ quint64(type);
        return h | 1;  // 0 marks an empty slot
    }

    // A value's texts. Numbers come as their binary value (bytes holds it), so sqlite3 makes
    // no text of them; texts as UTF-8.
    void make(Entry& e, int type, const char* p, size_t n) {
        e.type = type;
        e.bytes.assign(p, n);
        e.amount = QString();
        e.amountMade = false;
        switch (type) {
            case SQLITE_NULL:
                e.value = QVariant();
                e.text = QString();
                break;
            case SQLITE_INTEGER: {
                qint64 v;
                std::memcpy(&v, p, sizeof v);
                e.value = QVariant(qlonglong(v));
                e.text = QString::number(v);
                break;
            }
            case SQLITE_FLOAT: {
                double v;
                std::memcpy(&v, p, sizeof v);
                e.value = QVariant(v);
                e.text = vb::CStr(v);
                break;
            }
            default:
                e.text = QString::fromUtf8(p, qsizetype(n));
                e.value = e.text;
                break;
        }
    }

    Entry& read(int s) {
        Column& c = columns_[s];
        if (c.row == row_) return *c.current;
        c.row = row_;
        const int i = index_[s];
        // Only the amounts and the id are read with their type; every other column as text,
        // Null when there is none.
        int type = c.typed ? sqlite3_column_type(st_, i) : SQLITE_TEXT;
        const char* p = "";
        size_t n = 0;
        char number[8];
        if (type == SQLITE_INTEGER) {
            const qint64 v = sqlite3_column_int64(st_, i);
            std::memcpy(number, &v, sizeof v);
            p = number;
            n = sizeof v;
        } else if (type == SQLITE_FLOAT) {
            const double v = sqlite3_column_double(st_, i);
            std::memcpy(number, &v, sizeof v);
            p = number;
            n = sizeof v;
        } else if (type != SQLITE_NULL) {
            const unsigned char* text = sqlite3_column_text(st_, i);
            if (text) {
                p = reinterpret_cast<const char*>(text);
                n = size_t(sqlite3_column_bytes(st_, i));
            } else {
                type = SQLITE_NULL;
            }
        }
        if (c.current->is(type, p, n)) return *c.current;  // as the row above
        if (c.hashes.empty()) {
            make(c.own, type, p, n);
            c.current = &c.own;
            return c.own;
        }
        const quint64 h = hashOf(type, p, n);
        const size_t slot = size_t(h) & (TableSize - 1);
        Entry& e = c.entries[slot];
        if (c.hashes[slot] != h || !e.is(type, p, n)) {
            make(e, type, p, n);
            c.hashes[slot] = h;
        }
        c.current = &e;
        return e;
    }

    [[noreturn]] void fail() { databaseError(QString::fromUtf8(sqlite3_errmsg(db_))); }

    sqlite3* db_;
    sqlite3_stmt* st_ = nullptr;
    std::array<int, SourceCount> index_{};
    std::array<Column, SourceCount> columns_;
    qint64 row_ = 0;
};

// Result rows read through Qt SQL, for every other database. A value equal to the row above's
// keeps the row above's texts.
class QueryRows {
public:
    QueryRows(const QSqlDatabase& db, const QString& sql) : q_(db) {
        q_.setForwardOnly(true);
        if (!q_.exec(sql)) fail();
        const QSqlRecord rec = q_.record();
        index_ = resolveColumns(rec.count(), [&rec](int c) { return rec.fieldName(c); });
    }
    ~QueryRows() { q_.finish(); }

    bool next() {
        if (q_.next()) {
            ++row_;
            return true;
        }
        if (q_.lastError().isValid()) fail();
        return false;
    }
    bool isNull(int s) { return read(s).isNull; }
    const QString& text(int s) { return read(s).text; }
    const QString& amountOrEmpty(int s) { return read(s).isNull ? read(s).text : amount(s); }
    const QString& amount(int s) {
        Column& c = read(s);
        if (!c.amountMade) {
            c.amount = GroupDigits(c.value);
            c.amountMade = true;
        }
        return c.amount;
    }

private:
    struct Column {
        qint64 row = -1;
        bool seen = false;
        bool isNull = true;
        QVariant value;
        QString text;
        QString amount;
        bool amountMade = false;
    };

    Column& read(int s) {
        Column& c = columns_[s];
        if (c.row == row_) return c;
        c.row = row_;
        QVariant v = q_.value(index_[s]);
        if (c.seen && v.isNull() == c.value.isNull() && v.typeId() == c.value.typeId() &&
            (v.isNull() || v == c.value))
            return c;  // as the row above
        c.seen = true;
        c.isNull = v.isNull();
        c.amountMade = false;
        if (v.isNull())
            c.text = QString();
        else if (v.typeId() == QMetaType::Double || v.typeId() == QMetaType::Float)
            c.text = vb::CStr(v.toDouble());
        else
            c.text = v.toString();
        c.value = c.isNull ? QVariant() : std::move(v);
        return c;
    }

    [[noreturn]] void fail() {
        QString text = q_.lastError().databaseText().trimmed();
        if (text.isEmpty()) text = q_.lastError().text();
        databaseError(text);
    }

    QSqlQuery q_;
    std::array<int, SourceCount> index_{};
    std::array<Column, SourceCount> columns_;
    qint64 row_ = 0;
};

// Puts the rows under the grid's header. The rows the grid holds are written over, so a new
// search reuses the last one's rows instead of freeing and making them again; the grid grows
// in large steps and is cut to the rows found at the end, so no row is added one by one.
template <class Rows>
int fillRows(Rows& rows, FlexGrid& grid) {
    const QString temporary = T::StatusTemporary;
    const QString final = T::StatusFinal;
    const int held = grid.Rows();  // rows from the last search, written over
    int r = 0;
    bool fresh = false;  // the row is new, its cells empty
    auto put = [&](int col, const QString& text) {
        if (!fresh || !text.isEmpty()) grid.setTextMatrix(r, col, text);
    };
    while (rows.next()) {
        ++r;
        fresh = r >= held;
        if (r >= grid.Rows()) grid.setRows(qMax(1024, qMin(2 * grid.Rows(), grid.Rows() + 262144)));
        put(ColRowNumber, QString::number(r));
        put(ColEmployeeCode, rows.text(SEmployeeCode));
        put(2, rows.text(SFirstName));
        put(3, rows.text(SSureName));
        put(4, rows.text(SLoanTypeDesc));
        put(5, rows.text(SFarsiPaymentDate));
        const QString& loanValue = rows.amount(SLoanValue);
        put(ColLoanValue, loanValue);
        put(7, rows.text(SFarsiBeginDate));
        put(8, rows.text(SFarsiEndDate));
        // No instalment: an empty cell.
        put(ColMonthlyValue, rows.amountOrEmpty(SMonthlyValue));
        // The balance columns show the loan amount itself; the search computes no balance.
        put(ColBalanceStart, loanValue);
        put(ColBalanceEnd, loanValue);
        put(ColStatus, rows.isNull(SLoanCode) ? temporary : final);
        put(13, rows.text(SSupporter1));
        put(14, rows.text(SSupporter2));
        put(15, rows.text(SSupporter3));
        put(ColId, rows.text(SId));
    }
    grid.setRows(r + 1);
    // The new result starts at its first row, as after emptying the grid.
    grid.setRow(r > 0 ? 1 : 0);
    if (r > 0) grid.setTopRow(1);
    return r;
}

sqlite3* sqliteHandle(const QSqlDatabase& db) {
    if (!db.driver()) return nullptr;
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0) return nullptr;
    return *static_cast<sqlite3* const*>(handle.constData());
}

}  // namespace

void InitializeGrid(FlexGrid& grid) {
    grid.setRows(1);
    grid.setCols(GridColumns);
    // Each column is as wide as the table says, or as wide as its header and its longest
    // usual value need in the grid's font, so no amount or date is cut.
    const QFontMetrics fm(grid.view()->font());
    const QFontMetrics header(grid.view()->horizontalHeader()->font());
    const int dpi = grid.logicalDpiX() > 0 ? grid.logicalDpiX() : 96;
    auto need = [&](int c) {
        QString sample;
        switch (c) {
            case ColRowNumber:
                sample = u"100000"_s;
                break;
            case ColEmployeeCode:
                sample = u"0000000"_s;
                break;
            case 5:
            case 7:
            case 8:
                sample = u"1400/00/00"_s;
                break;
            case ColLoanValue:
            case ColMonthlyValue:
            case ColBalanceStart:
            case ColBalanceEnd:
                sample = u"0/000/000/000"_s;
                break;
            case ColStatus:
                sample = T::StatusTemporary.size() > T::StatusFinal.size() ? T::StatusTemporary
                                                                           : T::StatusFinal;
                break;
            default:
                break;
        }
        const int px =
            qMax(fm.horizontalAdvance(sample), header.horizontalAdvance(T::GridHeaders[c])) + 18;
        return px * 1440 / dpi;
    };
    for (int c = 0; c < GridColumns; ++c) {
        grid.setTextMatrix(0, c, T::GridHeaders[c]);
        const int width = T::GridWidths[c];
        grid.setColWidth(c, width == 0 ? 0 : qMax(width, need(c)));
    }
    // Numbers, codes, dates and the status centred; names and the type from the right.
    for (int c : {0, 1, 5, 6, 7, 8, 9, 10, 11, 12, 16})
        grid.setColAlignment(c, FlexGrid::flexAlignCenterCenter);
    for (int c : {2, 3, 4, 13, 14, 15}) grid.setColAlignment(c, FlexGrid::flexAlignGeneral);
}

int FillSearchGrid(Connection& cnt, const QString& sql, FlexGrid& grid) {
    struct Redraw {
        FlexGrid& grid;
        bool was;
        ~Redraw() { grid.setRedraw(was); }
    } redraw{grid, grid.Redraw()};
    grid.setRedraw(false);
    try {
        QSqlDatabase db = cnt.Database();
        if (sqlite3* handle = sqliteHandle(db)) {
            SqliteRows rows(handle, sql);
            return fillRows(rows, grid);
        }
        QueryRows rows(db, sql);
        return fillRows(rows, grid);
    } catch (...) {
        grid.setRows(1);
        throw;
    }
}

QList<QStringList> CsvRows(const FlexGrid& grid) {
    QList<int> shown;
    for (int c = 0; c < grid.Cols(); ++c)
        if (grid.ColWidth(c) > 0) shown << c;
    QList<QStringList> rows;
    rows.reserve(grid.Rows());
    for (int r = 0; r < grid.Rows(); ++r) {
        QStringList cells;
        cells.reserve(shown.size());
        for (int c : shown) {
            QString text = grid.TextMatrix(r, c);
            const bool amount = c == ColLoanValue || c == ColMonthlyValue || c == ColBalanceStart ||
                                c == ColBalanceEnd;
            if (r > 0 && amount) text.remove(u'/');
            cells << text;
        }
        rows << cells;
    }
    return rows;
}

}  // namespace kav::search
