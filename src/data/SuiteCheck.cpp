#include "data/SuiteCheck.h"

#include "data/LoanSnapshot.h"

#include <QCalendar>
#include <QRegularExpression>

#include "data/Names.h"
#include "data/Procedures.h"

using namespace Qt::StringLiterals;

namespace kav::data::suite_check {

namespace {

QStringList numbered(const QString& stem, int count) {
    QStringList names;
    for (int i = 1; i <= count; ++i) names << stem + QString::number(i);
    return names;
}

// The module's own indexes, as its script and the embedded schema name them.
CheckedObject index(const QString& table, const QString& columns) {
    return {
        .name = u"IX_"_s + table + u'_' + columns,
        .kind = ObjectKind::Index,
        .withoutIt =
            u"جستجو و خواندن وام‌ها روي داده زياد کندتر است"_s,
        .essential = false,
        .moduleOwn = true,
        .table = table};
}

QString kindWord(ObjectKind kind) {
    switch (kind) {
        case ObjectKind::Table:
            return u"جدول"_s;
        case ObjectKind::View:
            return u"نماي"_s;
        case ObjectKind::Procedure:
            return u"روال ذخيره‌شده"_s;
        case ObjectKind::Index:
            return u"شاخص"_s;
    }
    return {};
}

QString listed(const QStringList& items) { return items.join(u"، "_s); }

// A T-SQL literal of a name.
QString nchar(const QString& text) {
    QString t = text;
    t.replace(u"'"_s, u"''"_s);
    return u"N'"_s + t + u'\'';
}

// The name a procedure is called by (dbo.NAME); tables and views are named alone.
QString lookupName(const CheckedObject& o) {
    return o.kind == ObjectKind::Procedure ? u"dbo."_s + o.name : o.name;
}

int columnOf(const ResultSet& rs, const QString& name) {
    for (int c = 0; c < rs.columns.size(); ++c)
        if (rs.columns[c].compare(name, Qt::CaseInsensitive) == 0) return c;
    return -1;
}

// The value of a named column in a row, or a null QVariant.
QVariant cell(const ResultSet& rs, const QVariantList& row, const QString& name) {
    const int c = columnOf(rs, name);
    return c >= 0 && c < row.size() ? row[c] : QVariant();
}

QString text(const ResultSet& rs, const QVariantList& row, const QString& name) {
    return cell(rs, row, name).toString().trimmed();
}

const ProcedureInfo* procedureInfo(const QString& name) {
    for (const ProcedureInfo* p :
         {&HasPermissionProcedure(), &LoanExceptionNewProcedure(), &LoanExceptionUpdateProcedure()})
        if (p->name.compare(name, Qt::CaseInsensitive) == 0) return p;
    return nullptr;
}

QStringList missingOf(const QStringList& wanted, const QStringList& present) {
    QStringList missing;
    for (const QString& c : wanted)
        if (!present.contains(c, Qt::CaseInsensitive)) missing << c;
    return missing;
}

bool sameNames(const QStringList& a, const QStringList& b) {
    if (a.size() != b.size()) return false;
    for (qsizetype i = 0; i < a.size(); ++i)
        if (a[i].compare(b[i], Qt::CaseInsensitive) != 0) return false;
    return true;
}

Line lost(const CheckedObject& o, const QString& text) {
    return {o.essential ? Status::Missing : Status::Reduced, text + u": "_s + o.withoutIt};
}

// A table or view: there, with the columns the module uses.
Line tableLine(const SuiteFacts& f, const CheckedObject& o) {
    const QString name = kindWord(o.kind) + u' ' + o.name;
    const std::optional<QStringList> columns = f.columns.value(o.name);
    if (!columns) {
        const QString what =
            f.objects && f.objects->contains(o.name.toLower())
                ? name + u" هست ولي خوانده نمي‌شود (حق SELECT؟)"_s
                : name + u" نيست"_s;
        // The module looks for it on entry and refuses a database without it.
        if (o.neededToOpen)
            return {Status::Missing, what + u": ماژول باز نمي‌شود"_s};
        return lost(o, what);
    }
    const QStringList missing = missingOf(o.columns, *columns);
    if (!missing.isEmpty()) return lost(o, name + u" ستون "_s + listed(missing) + u" را ندارد"_s);
    return {Status::Present,
            name + u" با %1 ستوني که ماژول به کار مي‌برد"_s.arg(
                       o.columns.size())};
}

Line procedureLine(const SuiteFacts& f, const CheckedObject& o) {
    const QString name = kindWord(o.kind) + u' ' + o.name;
    const ProcedureInfo* info = procedureInfo(o.name);
    const QStringList wanted = info ? info->parameters : QStringList();
    if (f.kind == DatabaseKind::SQLite) {
        // The embedded database has no procedures: the module runs its own emulation.
        const std::optional<QStringList> columns = f.columns.value(o.table);
        if (!columns)
            return lost(o, name + u": جدول "_s + o.table +
                               u" که جاي آن را مي‌گيرد نيست"_s);
        const QStringList missing = missingOf(o.columns, *columns);
        if (!missing.isEmpty())
            return lost(
                o, name + u": جدول "_s + o.table + u" ستون "_s + listed(missing) + u" را ندارد"_s);
        return {
            Status::Present,
            name + u": ماژول آن را روي جدول "_s + o.table +
                u" اجرا مي‌کند؛ پارامترها و مقدار بازگشتي آن از خود ماژول است و بررسي نشد"_s};
    }
    if (f.objects && !f.objects->contains(o.name.toLower())) return lost(o, name + u" نيست"_s);
    const QString order = u" ("_s + listed(wanted) + u')';
    if (!f.parameters) return {Status::NotChecked, name + order + u": پارامترهاي آن خوانده نشد"_s};
    const QStringList actual = f.parameters->value(o.name.toLower());
    if (sameNames(actual, wanted))
        return {Status::Present, name + order + u" با پارامترها به همين ترتيب"_s};
    if (actual.size() > wanted.size() && sameNames(actual.mid(0, wanted.size()), wanted))
        return {
            Status::Reduced,
            name + order + u" پس از آنها "_s + listed(actual.mid(wanted.size())) +
                u" را هم دارد که ماژول نمي‌فرستد: هر يک بايد مقدار پيش‌فرض داشته باشد"_s};
    return lost(o, name + u": پارامترهاي آن «"_s + listed(actual) + u"» است و ماژول «"_s +
                       listed(wanted) + u"» را به همين ترتيب مي‌فرستد"_s);
}

Line indexLine(const SuiteFacts& f, const CheckedObject& o) {
    const QString name = kindWord(o.kind) + u' ' + o.name + u" روي "_s + o.table;
    if (!f.indexes) return {Status::NotChecked, name + u": شاخص‌ها خوانده نشد"_s};
    if (f.indexes->contains((o.table + u'.' + o.name).toLower())) return {Status::Present, name};
    return lost(o, name + u" نيست"_s);
}

QList<Line> typedTextLines(const SuiteFacts& f) {
    QList<Line> lines;
    for (const TypedTextColumn& c : TypedTextColumns()) {
        const QString name = u"ستون "_s + c.column + u" از جدول "_s + c.table;
        if (f.kind == DatabaseKind::SQLite) {
            lines << Line{
                Status::Present,
                name + u": SQLite هر متني را يونيکد نگه مي‌دارد"_s};
            continue;
        }
        if (!f.columnTypes) {
            lines << Line{Status::NotChecked, name + u": نوع آن خوانده نشد"_s};
            continue;
        }
        const QString type = f.columnTypes->value((c.table + u'.' + c.column).toLower()).toLower();
        if (type.isEmpty())
            lines << Line{Status::NotChecked, name + u": ستون نيست"_s};
        else if (type.startsWith(u'n'))
            lines << Line{Status::Present,
                          name + u" متن يونيکد ("_s + type + u") نگه مي‌دارد"_s};
        else
            lines << Line{
                Status::Reduced,
                name + u" از نوع "_s + type +
                    u" است و متن يونيکد نگه نمي‌دارد: «\u06CC» فارسي و رقم‌هاي فارسي "
                    u"در آن به نويسه‌هاي ديگر تبديل مي‌شوند"_s};
    }
    return lines;
}

Line workingDateLine(const SuiteFacts& f) {
    const QString name = u"پارامتر %1 (تاريخ کاري سيستم) در tblVarekSystemParameters"_s.arg(
        names::DefaultPayDateParameterID);
    if (!f.workingDateRead) return {Status::NotChecked, name + u": خوانده نشد"_s};
    if (!f.workingDate)
        return {
            Status::Reduced,
            name +
                u" نيست: پنجره وام تاريخ امروز را به کار مي‌برد"_s};
    static const QRegularExpression form(u"^(\\d{4})/(\\d{2})/(\\d{2})$"_s);
    const auto m = form.match(*f.workingDate);
    if (m.hasMatch() &&
        QCalendar(QCalendar::System::Jalali)
            .isDateValid(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt()))
        return {Status::Present, name + u": "_s + *f.workingDate};
    return {
        Status::Reduced,
        name + u": «"_s + *f.workingDate +
            u"» تاريخ yyyy/mm/dd نيست؛ تاريخ‌هايي که پنجره وام براي وام تازه پيشنهاد مي‌کند "
            u"درست نيستند"_s};
}

QList<Line> payslipLines(const SuiteFacts& f, const PayslipColumns& payslip) {
    const QString table = names::tblHRMonthlyPaiedLoan;
    const std::optional<QStringList> columns = f.columns.value(table);
    const std::pair<QString, QString> wanted[] = {
        {payslip.employee, u"کارمند، تنظيم Payslip/EmployeeColumn"_s},
        {payslip.month, u"ماه به شکل "_s + payslip.monthForm + u"، تنظيم Payslip/MonthColumn"_s},
        {payslip.paid, u"مبلغ کسر شده، تنظيم Payslip/PaidColumn"_s}};
    QList<Line> lines;
    for (const auto& [column, role] : wanted) {
        const QString name = u"ستون فيش حقوقي "_s + column + u" ("_s + role + u") در "_s + table;
        if (!columns)
            lines << Line{Status::NotChecked, name + u": جدول خوانده نشد"_s};
        else if (columns->contains(column, Qt::CaseInsensitive))
            lines << Line{Status::Present, name};
        else
            lines << Line{
                Status::Reduced,
                name +
                    u" نيست: جدول بازپرداخت عضو فقط اقساط برنامه‌ريزي‌شده را نشان "
                    u"مي‌دهد، نه آنچه در فيش‌ها کسر شده است"_s};
    }
    return lines;
}

QList<Line> rightsLines(const SuiteFacts& f) {
    QList<Line> lines;
    if (f.kind == DatabaseKind::SQLite) {
        if (!f.embeddedFile) {
            lines << Line{
                Status::NotChecked,
                u"حق‌هاي دسترسي: SQLite حق جداگانه براي هر جدول ندارد و فايل اين اتصال "
                u"ODBC از اينجا ديده نمي‌شود"_s};
        } else if (f.fileWritable.value_or(false)) {
            lines << Line{Status::Present, u"حق‌هاي دسترسي: فايل «"_s +
                                               *f.embeddedFile +
                                               u"» و پوشه آن براي اين کاربر نوشتني است"_s};
        } else {
            lines << Line{
                Status::Missing,
                u"حق‌هاي دسترسي: فايل «"_s + *f.embeddedFile +
                    u"» يا پوشه آن براي اين کاربر نوشتني نيست: هيچ وامي ذخيره نمي‌شود"_s};
        }
        return lines;
    }
    for (const CheckedObject& o : CheckedObjects()) {
        if (o.rights.isEmpty()) continue;
        const QString on = u" روي "_s + kindWord(o.kind) + u' ' + o.name;
        if (!f.rights) {
            lines << Line{Status::NotChecked,
                          u"حق‌هاي "_s + listed(o.rights) + on + u": خوانده نشد"_s};
            continue;
        }
        const QMap<QString, std::optional<bool>> granted = f.rights->value(o.name.toLower());
        QStringList refused;
        bool unknown = false;
        for (const QString& r : o.rights) {
            const std::optional<bool> g = granted.value(r);
            if (!g)
                unknown = true;
            else if (!*g)
                refused << r;
        }
        if (!refused.isEmpty())
            lines << Line{o.essential || o.rightsEssential ? Status::Missing : Status::Reduced,
                          u"حق "_s + listed(refused) + on +
                              u" به اين کاربر پايگاه داده داده نشده است: "_s + o.writtenBy +
                              u" رد مي‌شود"_s};
        else if (unknown)
            lines << Line{Status::NotChecked,
                          u"حق‌هاي "_s + listed(o.rights) + on + u": اين شيء پيدا نشد"_s};
        else
            lines << Line{Status::Present, u"حق‌هاي "_s + listed(o.rights) + on};
    }
    return lines;
}

QList<Line> permissionLines(const SuiteFacts& f) {
    struct Wanted {
        int number;
        bool essential;
        QString withoutIt;
    };
    const Wanted wanted[] = {
        {names::PermissionOpenModule, true, u"ماژول را باز نمي‌کند"_s},
        {names::PermissionNewOrDeleteLoan, false,
         u"وام تازه نمي‌سازد و وامي را حذف نمي‌کند"_s},
        {names::PermissionEditLoan, false, u"وامي را ويرايش نمي‌کند"_s}};
    QList<Line> lines;
    for (const Wanted& w : wanted) {
        const QString name = u"نقش %1"_s.arg(w.number);
        if (!f.user) {
            lines << Line{Status::NotChecked,
                          name + u": کاربر داده نشده است (--user يا UserID ذخيره شده)"_s};
            continue;
        }
        const QString who = u"کاربر %1 "_s.arg(*f.user);
        if (!f.permissions.contains(w.number))
            lines << Line{Status::NotChecked, name + u": پرسيده نشد: "_s + f.permissionError};
        else if (f.permissions.value(w.number) == 1)
            lines << Line{Status::Present, who + name + u" را دارد"_s};
        else
            lines << Line{w.essential ? Status::Missing : Status::Reduced,
                          who + name + u" را ندارد: "_s + w.withoutIt};
    }
    return lines;
}

QString valuesList(const QStringList& rows) { return u"(VALUES "_s + rows.join(u", "_s) + u')'; }

QString sqliteList(const QStringList& names) {
    QStringList quoted;
    for (const QString& n : names) quoted << u'\'' + n.toLower() + u'\'';
    return u'(' + quoted.join(u", "_s) + u')';
}

}  // namespace

const QList<CheckedObject>& CheckedObjects() {
    namespace n = names;
    using K = ObjectKind;
    const QStringList read{u"SELECT"_s}, execute{u"EXECUTE"_s};
    static const QList<CheckedObject> objects = {
        {.name = n::tblHRLoan,
         .kind = K::Table,
         .columns = {u"ID"_s, u"Code"_s, u"TypeID"_s, u"PaymentDate"_s, u"FarsiPaymentDate"_s,
                     u"BeginDate"_s, u"FarsiBeginDate"_s, u"EndDate"_s, u"FarsiEndDate"_s,
                     u"LoanValue"_s, u"OriginalLoanValue"_s, u"MonthlyValue"_s, u"PayBackNumber"_s,
                     u"UseRemainedValueInFirstMonth"_s, u"Notes"_s},
         .withoutIt = u"وام‌ها خوانده و ذخيره نمي‌شوند"_s,
         .neededToOpen = true,
         .rights = read + QStringList{u"INSERT"_s, u"UPDATE"_s, u"DELETE"_s},
         .writtenBy = u"ذخيره، حذف و برگرداندن وام به موقت"_s},
        {.name = n::tblHRLoanDetail,
         .kind = K::Table,
         .columns =
             QStringList{u"LoanID"_s, u"EmployeeID"_s} + numbered(u"SupporterEmployeeID"_s, 3),
         .withoutIt = u"اعضاي وام خوانده و ذخيره نمي‌شوند"_s,
         .neededToOpen = true,
         .rights = read + QStringList{u"INSERT"_s, u"DELETE"_s},
         .writtenBy = u"ذخيره و حذف وام و حذف عضو"_s},
        {.name = n::tblHRLoanType,
         .kind = K::Table,
         .columns = {u"ID"_s, u"Name"_s, u"MaxValue"_s},
         .withoutIt = u"نوع‌هاي وام و سقف آنها خوانده نمي‌شوند"_s,
         .neededToOpen = true},
        {.name = n::tblHRLoanException,
         .kind = K::Table,
         .columns = {u"ID"_s, u"LoanID"_s, u"EmployeeID"_s, u"BeginDate"_s, u"FarsiBeginDate"_s,
                     u"EndDate"_s, u"FarsiEndDate"_s, u"MonthlyDebit"_s},
         .withoutIt =
             u"تعديل اقساط و جدول بازپرداخت عضو کار نمي‌کند"_s,
         .rights = read + QStringList{u"DELETE"_s},
         .writtenBy = u"حذف تعديل قسط"_s},
        {.name = n::tblHRMonthlyPaiedLoan,
         .kind = K::Table,
         .columns = {u"LoanID"_s},
         .withoutIt =
             u"ويرايش، حذف و برگرداندن وام به موقت کار نمي‌کند"_s},
        {.name = n::tblEmployee,
         .kind = K::Table,
         .columns = {u"ID"_s, u"Code"_s, u"FirstName"_s, u"SureName"_s, u"WorkStatusID"_s},
         .withoutIt = u"کارمندان و ضامن‌ها خوانده نمي‌شوند"_s,
         .neededToOpen = true},
        {.name = n::tblHROrdinance,
         .kind = K::Table,
         .columns = {u"EmployeeID"_s, u"BeginDate"_s, u"EndDate"_s},
         .withoutIt =
             u"افزودن کارمندان داراي حکم به وام کار نمي‌کند"_s},
        {.name = n::tblVarekSystemParameters,
         .kind = K::Table,
         .columns = {u"ID"_s, u"Value"_s},
         .withoutIt =
             u"پنجره وام باز نمي‌شود (تاريخ کاري سيستم را از آن مي‌خواند)"_s},
        {.name = n::vwHRLoanData,
         .kind = K::View,
         .columns = QStringList{u"ID"_s, u"LoanID"_s, u"EmployeeID"_s, u"TypeID"_s, u"CODE"_s,
                                u"LoanValue"_s, u"OriginalLoanValue"_s, u"MonthlyValue"_s,
                                u"PayBackNumber"_s, u"UseRemainedValueInFirstMonth"_s,
                                u"FarsiPaymentDate"_s, u"BeginDate"_s, u"FarsiBeginDate"_s,
                                u"EndDate"_s, u"FarsiEndDate"_s, u"Notes"_s} +
                    numbered(u"SupporterEmployeeID"_s, 3) +
                    QStringList{u"LoanTypeDesc"_s, u"EmployeeCode"_s} +
                    numbered(u"SupporterEmployeeName"_s, 3),
         .withoutIt = u"وام‌ها باز و جستجو نمي‌شوند"_s,
         .neededToOpen = true},
        {.name = n::vwHRLoanEmployees,
         .kind = K::View,
         .columns =
             QStringList{u"LoanID"_s, u"EmployeeID"_s, u"Code"_s, u"FirstName"_s, u"SureName"_s} +
             numbered(u"SupporterEmployeeID"_s, 3),
         .withoutIt = u"اعضاي وام نمايش داده نمي‌شوند"_s},
        {.name = n::vwHRLoanException,
         .kind = K::View,
         .columns = {u"ID"_s, u"LoanID"_s, u"EmployeeID"_s, u"EmployeeName"_s, u"FarsiBeginDate"_s,
                     u"FarsiEndDate"_s, u"MonthlyDebit"_s},
         .withoutIt =
             u"فهرست تعديل اقساط و پنجره تعديل کار نمي‌کند"_s},
        {.name = n::vwEmployeeMajor,
         .kind = K::View,
         .columns = {u"ID"_s},
         .withoutIt = u"انتخاب کارمند در پنجره‌ها کار نمي‌کند"_s},
        {.name = n::vwEmployeeMinor,
         .kind = K::View,
         .columns = {u"ID"_s},
         .withoutIt = u"انتخاب کارمند در پنجره‌ها کار نمي‌کند"_s},
        {.name = n::spVarekHasPermission,
         .kind = K::Procedure,
         .columns = {n::UserID, n::FormPermissionID},
         .withoutIt = u"هيچ کاربري ماژول را باز نمي‌کند"_s,
         .rights = execute,
         .writtenBy = u"بررسي نقش کاربران"_s,
         .table = n::tblVarekUserPermission},
        {.name = n::spHRLoanExceptionNew,
         .kind = K::Procedure,
         .columns = {n::LoanID, n::EmployeeID, n::MonthlyDebit, n::BeginDate, n::FarsiBeginDate,
                     n::EndDate, n::FarsiEndDate},
         .withoutIt = u"تعديل قسط تازه ذخيره نمي‌شود"_s,
         .rights = execute,
         .writtenBy = u"ذخيره تعديل قسط تازه"_s,
         .table = n::tblHRLoanException},
        {.name = n::spHRLoanExceptionUpdate,
         .kind = K::Procedure,
         .columns = {n::ID, n::LoanID, n::EmployeeID, n::MonthlyDebit, n::BeginDate,
                     n::FarsiBeginDate, n::EndDate, n::FarsiEndDate},
         .withoutIt = u"تغيير تعديل قسط ذخيره نمي‌شود"_s,
         .rights = execute,
         .writtenBy = u"ذخيره تغيير تعديل قسط"_s,
         .table = n::tblHRLoanException},
        index(n::tblHRLoan, u"Code"_s),
        index(n::tblHRLoan, u"TypeID"_s),
        index(n::tblHRLoanDetail, u"LoanID"_s),
        index(n::tblHRLoanDetail, u"EmployeeID"_s),
        index(n::tblHRLoanException, u"LoanID_EmployeeID"_s),
        index(n::tblHRLoanException, u"EmployeeID"_s),
        index(n::tblHRMonthlyPaiedLoan, u"LoanID_EmployeeID"_s),
        index(n::tblHRMonthlyPaiedLoan, u"EmployeeID"_s),
        index(n::tblEmployee, u"Code"_s),
        index(n::tblHROrdinance, u"EmployeeID"_s),
        {.name = snapshot::HistoryTable(),
         .kind = K::Table,
         .columns = {u"ID"_s, u"LoanID"_s, u"RestoredFromLoanID"_s, u"LoanCode"_s, u"Command"_s,
                     u"UserID"_s, u"PositionID"_s, u"EmployeeID"_s, u"ChangedAtUtc"_s,
                     u"LoanBefore"_s, u"LoanAfter"_s},
         .withoutIt = u"تاريخچه تغييرات وام‌ها نگهداري نمي‌شود و وام حذف شده بازگردانده نمي‌شود"_s,
         .essential = false,
         .moduleOwn = true,
         .rights = read + QStringList{u"INSERT"_s},
         .writtenBy = u"ثبت تاريخچه، و با آن هر ذخيره، حذف و تعديل وام،"_s,
         .rightsEssential = true},
        index(snapshot::HistoryTable(), u"LoanID"_s),
        index(snapshot::HistoryTable(), u"Command_RestoredFromLoanID"_s),
    };
    return objects;
}

const QList<TypedTextColumn>& TypedTextColumns() {
    static const QList<TypedTextColumn> columns = {{names::tblHRLoan, u"Notes"_s}};
    return columns;
}

// ---- Queries ----

QString ObjectsQuery(DatabaseKind kind) {
    QStringList names, values;
    for (const CheckedObject& o : CheckedObjects()) {
        if (o.kind == ObjectKind::Index) continue;
        if (kind == DatabaseKind::SQLite) {
            if (o.kind != ObjectKind::Procedure) names << o.name;
            continue;
        }
        values << u'(' + nchar(o.name) + u", "_s + nchar(lookupName(o)) + u')';
    }
    if (kind == DatabaseKind::SQLite)
        return u"SELECT name AS Name, type AS Type FROM sqlite_master WHERE type IN ('table', "
               u"'view') AND lower(name) IN "_s +
               sqliteList(names);
    return u"SELECT v.Name, o.type AS Type FROM "_s + valuesList(values) +
           u" AS v(Name, Lookup) LEFT JOIN sys.objects o ON o.object_id = OBJECT_ID(v.Lookup)"_s;
}

QString IndexesQuery(DatabaseKind kind) {
    QStringList names, literals;
    for (const CheckedObject& o : CheckedObjects())
        if (o.kind == ObjectKind::Index) {
            names << o.name;
            literals << nchar(o.name);
        }
    if (kind == DatabaseKind::SQLite)
        return u"SELECT tbl_name AS TableName, name AS IndexName FROM sqlite_master WHERE type = "
               u"'index' AND lower(name) IN "_s +
               sqliteList(names);
    return u"SELECT OBJECT_NAME(i.object_id) AS TableName, i.name AS IndexName FROM sys.indexes i "
           u"WHERE i.name IN ("_s +
           literals.join(u", "_s) + u')';
}

QString ParametersQuery() {
    QStringList ids;
    for (const CheckedObject& o : CheckedObjects())
        if (o.kind == ObjectKind::Procedure) ids << u"OBJECT_ID("_s + nchar(lookupName(o)) + u')';
    return u"SELECT OBJECT_NAME(p.object_id) AS ProcedureName, p.name AS ParameterName FROM "
           u"sys.parameters p WHERE p.object_id IN ("_s +
           ids.join(u", "_s) + u") ORDER BY p.object_id, p.parameter_id"_s;
}

QString RightsQuery() {
    QStringList values;
    for (const CheckedObject& o : CheckedObjects())
        for (const QString& r : o.rights)
            values << u'(' + nchar(o.name) + u", "_s + nchar(lookupName(o)) + u", "_s + nchar(r) +
                          u')';
    return u"SELECT v.Name, v.Permission, CASE WHEN OBJECT_ID(v.Lookup) IS NULL THEN NULL ELSE "
           u"HAS_PERMS_BY_NAME(QUOTENAME(OBJECT_SCHEMA_NAME(OBJECT_ID(v.Lookup))) + N'.' + "
           u"QUOTENAME(OBJECT_NAME(OBJECT_ID(v.Lookup))), N'OBJECT', v.Permission) END AS Granted "
           u"FROM "_s +
           valuesList(values) + u" AS v(Name, Lookup, Permission)"_s;
}

QString ColumnTypesQuery() {
    QStringList values;
    for (const TypedTextColumn& c : TypedTextColumns())
        values << u'(' + nchar(c.table) + u", "_s + nchar(c.column) + u')';
    return u"SELECT v.TableName, v.ColumnName, TYPE_NAME(c.system_type_id) AS TypeName FROM "_s +
           valuesList(values) +
           u" AS v(TableName, ColumnName) INNER JOIN sys.columns c ON c.object_id = "
           u"OBJECT_ID(v.TableName) AND c.name = v.ColumnName"_s;
}

QString WorkingDateQuery() {
    return u"Select * from tblVarekSystemParameters Where ID=%1"_s.arg(
        names::DefaultPayDateParameterID);
}

void ReadObjects(SuiteFacts& facts, const ResultSet& rs) {
    QHash<QString, QString> objects;
    for (const QVariantList& row : rs.rows) {
        const QVariant type = cell(rs, row, u"Type"_s);
        if (!type.isNull())
            objects.insert(text(rs, row, u"Name"_s).toLower(), type.toString().trimmed());
    }
    facts.objects = objects;
}

void ReadIndexes(SuiteFacts& facts, const ResultSet& rs) {
    QSet<QString> indexes;
    for (const QVariantList& row : rs.rows)
        indexes.insert(
            (text(rs, row, u"TableName"_s) + u'.' + text(rs, row, u"IndexName"_s)).toLower());
    facts.indexes = indexes;
}

void ReadParameters(SuiteFacts& facts, const ResultSet& rs) {
    QHash<QString, QStringList> parameters;
    for (const QVariantList& row : rs.rows)
        parameters[text(rs, row, u"ProcedureName"_s).toLower()]
            << text(rs, row, u"ParameterName"_s);
    facts.parameters = parameters;
}

void ReadRights(SuiteFacts& facts, const ResultSet& rs) {
    QHash<QString, QMap<QString, std::optional<bool>>> rights;
    for (const QVariantList& row : rs.rows) {
        const QVariant granted = cell(rs, row, u"Granted"_s);
        rights[text(rs, row, u"Name"_s).toLower()][text(rs, row, u"Permission"_s).toUpper()] =
            granted.isNull() ? std::nullopt : std::optional<bool>(granted.toInt() == 1);
    }
    facts.rights = rights;
}

void ReadColumnTypes(SuiteFacts& facts, const ResultSet& rs) {
    QHash<QString, QString> types;
    for (const QVariantList& row : rs.rows)
        types.insert(
            (text(rs, row, u"TableName"_s) + u'.' + text(rs, row, u"ColumnName"_s)).toLower(),
            text(rs, row, u"TypeName"_s));
    facts.columnTypes = types;
}

void ReadWorkingDate(SuiteFacts& facts, const ResultSet& rs) {
    facts.workingDateRead = true;
    facts.workingDate.reset();
    if (!rs.rows.isEmpty()) facts.workingDate = text(rs, rs.rows.first(), u"Value"_s);
}

QList<MetadataQuery> MetadataQueries(DatabaseKind kind) {
    QList<MetadataQuery> queries = {
        {u"فهرست جدول‌ها، نماها و روال‌ها"_s, ObjectsQuery(kind),
         &ReadObjects},
        {u"فهرست شاخص‌ها"_s, IndexesQuery(kind), &ReadIndexes},
        {u"تاريخ کاري سيستم"_s, WorkingDateQuery(), &ReadWorkingDate}};
    if (kind == DatabaseKind::SqlServer)
        queries += {{u"پارامترهاي روال‌ها"_s, ParametersQuery(), &ReadParameters},
                    {u"حق‌هاي دسترسي"_s, RightsQuery(), &ReadRights},
                    {u"نوع ستون‌هاي متني"_s, ColumnTypesQuery(), &ReadColumnTypes}};
    return queries;
}

// ---- Decisions ----

QList<Line> Decide(const SuiteFacts& facts, const PayslipColumns& payslip) {
    QList<Line> lines;
    for (const QString& failure : facts.failures) lines << Line{Status::NotChecked, failure};
    for (const ObjectKind kind : {ObjectKind::Table, ObjectKind::View, ObjectKind::Procedure})
        for (const CheckedObject& o : CheckedObjects())
            if (o.kind == kind && !o.moduleOwn)
                lines << (kind == ObjectKind::Procedure ? procedureLine(facts, o)
                                                        : tableLine(facts, o));
    lines += typedTextLines(facts);
    lines << workingDateLine(facts);
    lines += payslipLines(facts, payslip);
    for (const CheckedObject& o : CheckedObjects())
        if (o.moduleOwn)
            lines << (o.kind == ObjectKind::Index       ? indexLine(facts, o)
                      : o.kind == ObjectKind::Procedure ? procedureLine(facts, o)
                                                        : tableLine(facts, o));
    lines += rightsLines(facts);
    lines += permissionLines(facts);
    return lines;
}

QString LineText(const Line& line) {
    switch (line.status) {
        case Status::Present:
            return u"موجود: "_s + line.text;
        case Status::Reduced:
            return u"محدود: "_s + line.text;
        case Status::Missing:
            return u"ناموجود: "_s + line.text;
        case Status::NotChecked:
            return u"بررسي نشد: "_s + line.text;
    }
    return line.text;
}

int ExitCode(const QList<Line>& lines) {
    for (const Line& l : lines)
        if (l.status == Status::Missing) return 2;
    return 0;
}

QString Summary(const QList<Line>& lines) {
    int missing = 0, reduced = 0, unchecked = 0;
    for (const Line& l : lines) {
        missing += l.status == Status::Missing;
        reduced += l.status == Status::Reduced;
        unchecked += l.status == Status::NotChecked;
    }
    QString text =
        missing > 0
            ? u"اين پايگاه داده براي ماژول وام کارمندان آماده نيست: %1 مورد ناموجود"_s.arg(missing)
            : u"اين پايگاه داده همه آنچه ماژول وام کارمندان نياز دارد را دارد"_s;
    if (reduced > 0) text += u"؛ %1 مورد محدود"_s.arg(reduced);
    if (unchecked > 0) text += u"؛ %1 مورد بررسي نشد"_s.arg(unchecked);
    return text + u'.';
}

}  // namespace kav::data::suite_check
