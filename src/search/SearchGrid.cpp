#include "search/SearchGrid.h"

#include <QFontMetrics>
#include <QHashFunctions>
#include <QHeaderView>
#include <QTableView>
#include <array>
#include <charconv>
#include <string>
#include <vector>

#include "base/Errors.h"
#include "controls/FlexGrid.h"
#include "search/SearchTexts.h"
#include "session/DataEnvironment.h"
#include "session/TextProcs.h"

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
// Amounts grouped by threes, by their plain text. An amount met before (a loan's amount for
// each of its members, the usual round amounts) is grouped once: a small table indexed by a
// hash of the text remembers the recent ones.
class GroupedAmounts {
public:
    QByteArrayView operator()(QByteArrayView plain) {
        if (plain.isEmpty()) return {};
        Entry& e = entries_[qHash(plain) & (Slots - 1)];
        if (!e.made || QByteArrayView(e.plain) != plain) {
            e.plain.assign(plain.data(), size_t(plain.size()));
            e.grouped = GroupDigits(QString::fromUtf8(plain)).toUtf8();
            e.made = true;
        }
        return e.grouped;
    }

private:
    static constexpr size_t Slots = 1024;
    struct Entry {
        std::string plain;
        QByteArray grouped;
        bool made = false;
    };
    std::vector<Entry> entries_ = std::vector<Entry>(Slots);
};

}  // namespace

const QStringList& ResultFields() {
    // In the order of the Source enumeration above.
    static const QStringList fields = {u"EmployeeCode"_s,
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
    return fields;
}

namespace {

// The width in twips a cell text needs in the grid's font, with its header beside it.
int twipsFor(const FlexGrid& grid, int c, const QString& text) {
    const QFontMetrics fm(grid.view()->font());
    const QFontMetrics header(grid.view()->horizontalHeader()->font());
    const int dpi = grid.logicalDpiX() > 0 ? grid.logicalDpiX() : 96;
    const int px = qMax(fm.horizontalAdvance(text), header.horizontalAdvance(T::GridHeaders[c])) + 18;
    return px * 1440 / dpi;
}

// A column's width before any result: as wide as the table says, or as wide as its header
// and its longest usual value need in the grid's font, so no amount or date is cut.
int baseWidth(const FlexGrid& grid, int c) {
    const int width = T::GridWidths[c];
    if (width == 0) return 0;
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
    return qMax(width, twipsFor(grid, c, sample));
}

// The amount columns grow to the widest amount of the result, so no amount is cut short.
void fitAmounts(FlexGrid& grid, const QByteArray& widestLoanValue,
                const QByteArray& widestMonthlyValue) {
    for (int c : {int(ColLoanValue), int(ColBalanceStart), int(ColBalanceEnd), int(ColMonthlyValue)}) {
        const QByteArray& widest = c == ColMonthlyValue ? widestMonthlyValue : widestLoanValue;
        grid.setColWidth(c, qMax(baseWidth(grid, c), twipsFor(grid, c, QString::fromUtf8(widest))));
    }
}

}  // namespace

void InitializeGrid(FlexGrid& grid) {
    grid.setRows(1);
    grid.setCols(GridColumns);
    for (int c = 0; c < GridColumns; ++c) {
        grid.setTextMatrix(0, c, T::GridHeaders[c]);
        grid.setColWidth(c, baseWidth(grid, c));
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
        grid.setRows(1);
        RowReader rows(cnt, sql);
        std::array<int, SourceCount> at{};
        for (int s = 0; s < SourceCount; ++s) at[s] = rows.FieldIndex(ResultFields()[s]);
        const QByteArray temporary = T::StatusTemporary.toUtf8();
        const QByteArray final = T::StatusFinal.toUtf8();
        GroupedAmounts loanValues, monthlyValues;
        QByteArray widestLoanValue, widestMonthlyValue;  // the longest grouped texts
        int r = 0;
        auto put = [&](int col, QByteArrayView text) {
            if (!text.isEmpty()) grid.setTextMatrixUtf8(r, col, text);
        };
        auto copy = [&](int col, int source) { put(col, rows.Text(at[source])); };
        while (rows.Next()) {
            ++r;
            // The grid grows in large steps and is cut to the rows found at the end.
            if (r >= grid.Rows())
                grid.setRows(qMax(1024, qMin(2 * grid.Rows(), grid.Rows() + 65536)));
            char number[16];
            put(ColRowNumber,
                QByteArrayView(number, std::to_chars(number, number + sizeof number, r).ptr));
            copy(ColEmployeeCode, SEmployeeCode);
            copy(2, SFirstName);
            copy(3, SSureName);
            copy(4, SLoanTypeDesc);
            copy(5, SFarsiPaymentDate);
            const QByteArrayView loanValue = loanValues(rows.Text(at[SLoanValue]));
            put(ColLoanValue, loanValue);
            if (loanValue.size() > widestLoanValue.size()) widestLoanValue = loanValue.toByteArray();
            copy(7, SFarsiBeginDate);
            copy(8, SFarsiEndDate);
            // No instalment: an empty cell.
            const QByteArrayView monthlyValue = monthlyValues(rows.Text(at[SMonthlyValue]));
            put(ColMonthlyValue, monthlyValue);
            if (monthlyValue.size() > widestMonthlyValue.size())
                widestMonthlyValue = monthlyValue.toByteArray();
            // The balance columns show the loan amount itself; the search computes no balance.
            put(ColBalanceStart, loanValue);
            put(ColBalanceEnd, loanValue);
            put(ColStatus, rows.IsNull(at[SLoanCode]) ? temporary : final);
            copy(13, SSupporter1);
            copy(14, SSupporter2);
            copy(15, SSupporter3);
            copy(ColId, SId);
        }
        grid.setRows(r + 1);
        fitAmounts(grid, widestLoanValue, widestMonthlyValue);
        // The new result starts at its first row, as after emptying the grid.
        grid.setRow(r > 0 ? 1 : 0);
        if (r > 0) grid.setTopRow(1);
        return r;
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
