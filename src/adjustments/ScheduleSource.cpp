#include "adjustments/ScheduleSource.h"

#include "adjustments/AdjustmentSql.h"
#include "data/Names.h"
#include "session/DataEnvironment.h"
#include "session/TextProcs.h"

using namespace Qt::StringLiterals;

namespace kav::schedule {

bool HasPayslipColumns(Connection& cnt, const data::PayslipColumns& columns) {
    return cnt.HasColumns(data::names::tblHRMonthlyPaiedLoan,
                          {columns.employee, columns.month, columns.paid});
}

QString MemberPayslipsQuery(const data::PayslipColumns& columns, qint32 loanId,
                            qint32 employeeId) {
    return u"Select * from tblHRMonthlyPaiedLoan where LoanID="_s + QString::number(loanId) +
           u" and "_s + columns.employee + u"="_s + QString::number(employeeId);
}

MemberInputs ReadMemberInputs(Connection& cnt, const data::PayslipColumns& columns,
                              qint32 loanId, qint32 employeeId) {
    MemberInputs in;
    // Each is read once, row by row, its columns found once.
    {
        RowReader rows(cnt, adjustment_sql::MemberAdjustments(loanId, employeeId));
        const int id = rows.FieldIndex(u"ID"_s), begin = rows.FieldIndex(u"FarsiBeginDate"_s),
                  end = rows.FieldIndex(u"FarsiEndDate"_s),
                  monthlyDebit = rows.FieldIndex(u"MonthlyDebit"_s);
        while (rows.Next()) {
            const std::optional<vb::Currency> debit = AmountOf(rows.Fields(monthlyDebit));
            in.adjustments.append(
                {rows.Fields(id).toInt(), FieldText(rows.Fields(begin)),
                 FieldText(rows.Fields(end)),
                 debit.value_or(vb::Currency::fromRaw(-vb::Currency::Scale))});
        }
    }
    in.payslipsKnown = HasPayslipColumns(cnt, columns);
    if (!in.payslipsKnown) return in;
    RowReader rows(cnt, MemberPayslipsQuery(columns, loanId, employeeId));
    const int month = rows.FieldIndex(columns.month), paid = rows.FieldIndex(columns.paid);
    while (rows.Next()) {
        const QVariant stored = rows.Fields(month);
        // The month in the office's form, as the schedule reads months ("yyyy/mm").
        const std::optional<int> n = columns.MonthNumber(stored);
        in.payslips.append({n ? MonthText(*n) : FieldText(stored),
                            AmountOf(rows.Fields(paid)).value_or(vb::Currency())});
    }
    return in;
}

QString PayslipColumnsMissingText(const data::PayslipColumns& columns) {
    return u"ستون‌هاي کارمند، ماه و مبلغ فيش حقوقي (%1، %2، %3) در جدول tblHRMonthlyPaiedLoan "
           u"نيست؛ فقط مبالغ برنامه‌ريزي شده نشان داده مي‌شود."_s.arg(columns.employee,
                                                                    columns.month, columns.paid);
}

}  // namespace kav::schedule
