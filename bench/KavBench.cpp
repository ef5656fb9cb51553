// kav_bench: measures the module on the large database side by side with the same SQL texts
// run through the sqlite3 C library in this process, and start-up on the demo database, and
// prints one table.
//
//   kav_bench --db LARGE.db --demo-db DEMO.db --app path/to/kavhrloan [--reps N]

#include <malloc.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QSqlQuery>
#include <QSqlRecord>
#include <cstdio>

#include "Harness.h"
#include "LargeDatabase.h"
#include "RawSqlite.h"
#include "adjustments/AdjustmentSql.h"
#include "adjustments/FormHRException.h"
#include "adjustments/FormList.h"
#include "adjustments/ScheduleSource.h"
#include "base/Errors.h"
#include "controls/FlexGrid.h"
#include "data/DemoData.h"
#include "data/LoanSnapshot.h"
#include "data/SqlDialect.h"
#include "deductions/DeductionRegister.h"
#include "deductions/DeductionsSql.h"
#include "deductions/FormDeductions.h"
#include "loan_editor/FormHRLoan.h"
#include "loan_editor/LoanEditorSql.h"
#include "loan_editor/LoanSave.h"
#include "search/FormSearch.h"
#include "search/SearchGrid.h"
#include "search/SearchSql.h"
#include "session/DataEnvironment.h"
#include "session/LoanHistory.h"
#include "session/Module.h"

using namespace Qt::StringLiterals;
using namespace kav::bench;

namespace {

const kav::data::SqlDialect kSqlite(kav::data::DatabaseKind::SQLite);

// The columns the adjustment list's grid shows.
const QStringList kAdjustmentColumns = {u"EmployeeName"_s, u"FarsiBeginDate"_s,
                                        u"FarsiEndDate"_s, u"MonthlyDebit"_s,
                                        u"ID"_s,           u"LoanID"_s};

// The columns the editor reads from the loan's header and from its member rows.
const QStringList kHeaderColumns = {u"ID"_s,
                                    u"TypeID"_s,
                                    u"LoanValue"_s,
                                    u"OriginalLoanValue"_s,
                                    u"CODE"_s,
                                    u"FarsiPaymentDate"_s,
                                    u"BeginDate"_s,
                                    u"FarsiBeginDate"_s,
                                    u"EndDate"_s,
                                    u"FarsiEndDate"_s,
                                    u"Notes"_s,
                                    u"MonthlyValue"_s,
                                    u"PayBackNumber"_s,
                                    u"UseRemainedValueInFirstMonth"_s};
const QStringList kMemberColumns = {u"EmployeeID"_s,
                                    u"Code"_s,
                                    u"FirstName"_s,
                                    u"SureName"_s,
                                    u"Supporter1"_s,
                                    u"Supporter2"_s,
                                    u"Supporter3"_s,
                                    u"SupporterEmployeeID1"_s,
                                    u"SupporterEmployeeID2"_s,
                                    u"SupporterEmployeeID3"_s};

// Messages are not expected while measuring; any that comes is said on stderr.
class LoggedMessage : public kav::MessageComponent {
public:
    void SetFormTitle(const QVariant& title) override { title_ = title.toString(); }
    void SetFormMessage(const QString& message) override { message_ = message; }
    void SetFormType(qint16) override {}
    void ClearShow() override {
        std::fprintf(stderr, "kav_bench: message shown: %s: %s\n", title_.toUtf8().constData(),
                     message_.toUtf8().constData());
    }
    QVariant Resualt() const override { return 0; }

private:
    QString title_, message_;
};

void progress(const char* what) {
    std::fprintf(stderr, "kav_bench: %s\n", what);
    std::fflush(stderr);
}

// A module on the database as the host control makes it, as the demo user.
std::unique_ptr<kav::Module> moduleOn(const QString& file) {
    auto module = std::make_unique<kav::Module>();
    module->SetMessageFactory([] { return std::make_unique<LoggedMessage>(); });
    module->SetModalRunner([](QDialog&) { return 0; });
    module->session.SessionConnectionString = kav::data::EmbeddedConnectionString(file);
    module->session.SessionUserID = kav::data::DemoUserWithPermissions;
    module->OpenSessionConnection();
    return module;
}

struct Context {
    QString db, demoDb, app, workDir;
    int reps = 7;
    Landmarks landmarks;
    Table table;
};

void openBigLoan(Context& ctx) {
    progress("opening the loan with 1,000 members");
    RawDb raw(ctx.db);
    auto module = moduleOn(ctx.db);
    kav::FormHRLoan& editor = module->Window<kav::FormHRLoan>();
    editor.show();
    QApplication::processEvents();
    const qint32 id = ctx.landmarks.bigLoanId;
    kav::Connection& cnt = module->DtEn().cnt();
    const QString headerText = kav::loan_sql::FillLoan(id);
    const QString memberText = kav::loan_sql::MemberGrid(kSqlite, id);
    const std::vector<double> t =
        Rotate(ctx.reps * 3, {[&] {
                                  raw.stepAll(headerText, kHeaderColumns);
                                  raw.stepAll(memberText, kMemberColumns);
                              },
                              // The editor's loading: the header into its boxes, the members
                              // into the grid, the mode applied.
                              [&] { editor.ViewPRSLoansInfo(id); },
                              [&] {
                                  editor.ViewPRSLoansInfo(id);
                                  QApplication::processEvents();  // the window repaints
                              },
                              [&] { raw.stepAll(headerText, kHeaderColumns); },
                              [&] { kav::Recordset(cnt).Open(headerText); },
                              [&] { raw.stepAll(memberText, kMemberColumns); },
                              [&] { editor.FillLoanDetail(id); }});
    ctx.table.add({u"open the 1,000-member loan in the editor (header, member grid)"_s,
                   u"ms"_s,
                   t[1],
                   t[0],
                   {{Target::Kind::AtMost, 100}, {Target::Kind::RatioAtMost, 1.5}},
                   {}});
    ctx.table.add({u"  the same, then the window painted"_s, u"ms"_s, t[2], t[0], {}, {}});
    ctx.table.add({u"  header text (1,000 rows): Recordset::Open"_s, u"ms"_s, t[4], t[3], {}, {}});
    ctx.table.add(
        {u"  member text: FillLoanDetail, the grid filled"_s, u"ms"_s, t[6], t[5], {}, {}});
}

// What the windows do after a fill when control returns to the event loop: the view takes
// in the new rows and paints.
void settle() { QApplication::processEvents(); }

void search(Context& ctx) {
    progress("the search window with no criteria, every member row");
    RawDb raw(ctx.db);
    auto module = moduleOn(ctx.db);
    kav::Connection& cnt = module->DtEn().cnt();
    kav::FormSearch& form = module->Window<kav::FormSearch>();
    form.resize(1200, 700);
    form.show();
    settle();
    // The text the window runs: both statuses ticked, nothing else.
    const QString text = kav::search::SearchQuery(cnt.Dialect(), form.Criteria());
    const qint64 rows = raw.stepAll(text, kav::search::ResultFields());

    // What the filled grid holds: the growth of the resident memory from the window with an
    // empty grid to the window showing every row. A first search fills the caches of the
    // database and the fonts; its rows are then let go and their memory given back.
    form.RefreshFlexSearchResult();
    settle();
    form.Flexsearchresult->setRows(1);
    settle();
    malloc_trim(0);
    const long rssBefore = ResidentKb();
    const double heapBefore = HeapInUseMb();
    QElapsedTimer timer;
    timer.start();
    form.RefreshFlexSearchResult();
    settle();
    // This search also shows what a first search costs, its memory new to the process.
    const double coldMs = double(timer.nsecsElapsed()) / 1e6;
    const double gridRss = double(ResidentKb() - rssBefore) / 1024.0;
    const double gridHeap = HeapInUseMb() - heapBefore;
    if (form.Flexsearchresult->Rows() != rows + 1)
        std::fprintf(stderr, "kav_bench: the grid shows %d rows, the query gives %lld\n",
                     form.Flexsearchresult->Rows() - 1, rows);

    volatile qsizetype sink = 0;
    const std::vector<double> t =
        Rotate(ctx.reps, {
                             [&] { raw.stepAll(text, kav::search::ResultFields()); },
                             [&] {
                                 form.RefreshFlexSearchResult();
                                 settle();
                             },
                             // The data environment's reader alone: the shown columns as UTF-8.
                             [&] {
                                 kav::RowReader reader(cnt, text);
                                 std::vector<int> index;
                                 for (const QString& c : kav::search::ResultFields())
                                     index.push_back(reader.FieldIndex(c));
                                 while (reader.Next())
                                     for (int i : index) sink = sink + reader.Text(i).size();
                             },
                             // Qt SQL's QSQLITE driver on the same connection, for comparison: a
                             // forward-only query, the shown columns by position as QStrings.
                             [&] {
                                 QSqlQuery q(cnt.Database());
                                 q.setForwardOnly(true);
                                 q.exec(text);
                                 std::vector<int> index;
                                 for (const QString& c : kav::search::ResultFields())
                                     index.push_back(q.record().indexOf(c));
                                 while (q.next())
                                     for (int i : index) sink = sink + q.value(i).toString().size();
                             },
                             // The recordset: every row of every column kept, the shown ones read
                             // by position.
                             [&] {
                                 kav::Recordset rs(cnt);
                                 rs.Open(text);
                                 std::vector<int> index;
                                 for (const QString& c : kav::search::ResultFields())
                                     index.push_back(rs.FieldIndex(c));
                                 for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext())
                                     for (int i : index)
                                         sink = sink + rs.Fields(i).toString().size();
                             },
                         });
    const QString n = QLocale(QLocale::English).toString(rows);
    ctx.table.add({u"search, no criteria, %1 rows into the result grid"_s.arg(n),
                   u"ms"_s,
                   t[1],
                   t[0],
                   {{Target::Kind::RatioAtMost, 1.3}},
                   {}});
    ctx.table.add(
        {u"  the first search, its memory new to the process"_s, u"ms"_s, coldMs, t[0], {}, {}});
    ctx.table.add({u"  RowReader alone, shown cells as UTF-8"_s, u"ms"_s, t[2], t[0], {}, {}});
    ctx.table.add({u"  Qt SQL (QSQLITE) forward-only query, shown cells as QString"_s,
                   u"ms"_s,
                   t[3],
                   t[0],
                   {},
                   {}});
    ctx.table.add({u"  Recordset::Open, shown cells by position"_s, u"ms"_s, t[4], t[0], {}, {}});
    ctx.table.add({u"memory the %1-row search result grid adds (resident)"_s.arg(n),
                   u"MB"_s,
                   gridRss,
                   {},
                   {{Target::Kind::AtMost, 64}},
                   {}});
    ctx.table.add({u"  the same as heap in use"_s, u"MB"_s, gridHeap, {}, {}, {}});
    {
        const double before = HeapInUseMb();
        kav::Recordset rs(cnt);
        rs.Open(text);
        ctx.table.add({u"  memory held by an open Recordset of the same text (every column)"_s,
                       u"MB"_s,
                       HeapInUseMb() - before,
                       {},
                       {},
                       {}});
    }
}

void adjustmentList(Context& ctx) {
    progress("the adjustment list with no filter");
    RawDb raw(ctx.db);
    auto module = moduleOn(ctx.db);
    kav::FormList& list = module->Window<kav::FormList>();
    list.resize(900, 600);
    list.show();
    settle();
    const QString text = kav::adjustment_sql::ListQuery(-1, QString(), QString());
    const qint64 rows = raw.stepAll(text, kAdjustmentColumns);
    const std::vector<double> t =
        Rotate(ctx.reps * 3, {[&] { raw.stepAll(text, kAdjustmentColumns); },
                              [&] {
                                  list.cmdSearch_Click();
                                  settle();
                              }});
    if (list.FlexEmployee->Rows() != rows + 1)
        std::fprintf(stderr, "kav_bench: the list shows %d rows, the query gives %lld\n",
                     list.FlexEmployee->Rows() - 1, rows);
    ctx.table.add(
        {u"adjustment list, no filter, %1 rows"_s.arg(QLocale(QLocale::English).toString(rows)),
         u"ms"_s,
         t[1],
         t[0],
         {{Target::Kind::RatioAtMost, 1.3}},
         {}});
}

// The loan as the editor holds it after loading it from the database, made final.
kav::loan_save::LoanRecord storedLoan(RawDb& raw, qint32 id) {
    const QStringList h =
        raw.rows(
               u"select TypeID, PaymentDate, FarsiPaymentDate, BeginDate, FarsiBeginDate, "
               u"EndDate, FarsiEndDate, LoanValue, OriginalLoanValue, MonthlyValue, "
               u"PayBackNumber, UseRemainedValueInFirstMonth, Notes from tblHRLoan where ID="_s +
               QString::number(id))
            .value(0);
    kav::loan_save::LoanRecord loan;
    loan.isFinal = true;
    loan.typeId = h.value(0).toLongLong();
    loan.payDate = QDate::fromString(h.value(1), Qt::ISODate);
    loan.farsiPayDate = h.value(2);
    loan.beginDate = QDate::fromString(h.value(3), Qt::ISODate);
    loan.farsiBeginDate = h.value(4);
    loan.endDate = QDate::fromString(h.value(5), Qt::ISODate);
    loan.farsiEndDate = h.value(6);
    loan.loanValue = h.value(7);
    loan.originalValue = h.value(8);
    loan.monthlyValue = h.value(9);
    loan.payBackNumber = h.value(10);
    loan.remainderOption = h.value(11).toInt();
    loan.notes = h.value(12);
    const auto members = raw.rows(
        u"select EmployeeID, SupporterEmployeeID1, SupporterEmployeeID2, SupporterEmployeeID3 "
        u"from tblHRLoanDetail where LoanID="_s +
        QString::number(id) + u" order by ID"_s);
    for (const QStringList& m : members) {
        kav::loan_save::MemberRow row;
        row.employeeId = m[0];
        for (int g = 0; g < 3; ++g)
            row.guarantors[size_t(g)] = m[g + 1].isEmpty() ? u"null"_s : m[g + 1];
        loan.members << row;
    }
    return loan;
}

void finalSave(Context& ctx) {
    progress("the final save of the loan with 1,000 members");
    RawDb raw(ctx.db);
    auto module = moduleOn(ctx.db);
    kav::Connection& cnt = module->DtEn().cnt();
    const qint32 id = ctx.landmarks.bigLoanId;
    const QString backToTemporary = kav::loan_save::BackToTemporary(id);
    RawDb reset(ctx.db);
    reset.exec(backToTemporary);  // in case an earlier run stopped half-way
    const kav::loan_save::LoanRecord loan = storedLoan(raw, id);
    // The texts the save sends, from its own builders.
    const QString overlap = kav::loan_save::OverlapQuery(kSqlite, loan, id);
    const QStringList writes = kav::loan_save::Writes(kSqlite, loan, id);
    const QString begin = kSqlite.beginSerialised(kav::loan_save::LockName());
    const QString commit = kSqlite.commitTransaction();
    // The history row: the loan read before and after the writes, and the row's insert with
    // the two texts as the module makes them (the final one as the first round leaves it).
    const QStringList snapshotReads = {kav::data::snapshot::LoanQuery(id),
                                       kav::data::snapshot::MembersQuery(id)};
    kav::history::Row row;
    row.loanId = id;
    row.command = kav::history::Command::FinalSave;
    row.before = kav::history::ReadLoan(cnt, id).text;
    row.after = row.before;
    row.after.replace(u"\"Code\":null"_s, u"\"Code\":999999"_s);
    const QString historyInsert = kav::history::InsertRow(kSqlite, row);
    auto rawSave = [&](RawDb& db, bool history) {
        db.stepAll(overlap, {u"EmployeeID"_s});
        db.exec(begin);
        if (history)
            for (const QString& sql : snapshotReads) db.stepAll(sql);
        for (const QString& sql : writes) db.exec(sql);
        if (history) {
            for (const QString& sql : snapshotReads) db.stepAll(sql);
            db.exec(historyInsert);
        }
        db.exec(commit);
    };
    // The editor's save: the overlap check, then every write in one serialised transaction.
    auto moduleSave = [&](kav::Connection& c) {
        kav::Recordset rs(c);
        rs.Open(overlap);
        if (rs.RecordCount() < 0) std::abort();
        rs.Close();
        kav::loan_save::WriteLoan(c, loan, kav::stored_loan::Expected{id, {}, false});
    };

    // The same database without the history table, in the same journal mode: the save as it
    // is where no history is kept.
    const QString journal = raw.scalar(u"PRAGMA journal_mode"_s).toString();
    const bool wal = journal.compare(u"wal"_s, Qt::CaseInsensitive) == 0;
    const QString plainFile = QDir(ctx.workDir).filePath(u"save-no-history.db"_s);
    auto removeFile = [&](const QString& file) {
        for (const QString& suffix : {u""_s, u"-wal"_s, u"-shm"_s, u"-journal"_s})
            QFile::remove(file + suffix);
    };
    removeFile(plainFile);
    {
        RawDb source(ctx.db);
        source.exec(u"VACUUM INTO '"_s + plainFile + u"'"_s);
    }
    {
        RawDb copy(plainFile);
        copy.exec(u"drop table tblHRLoanHistory"_s);
        if (wal) copy.exec(u"PRAGMA journal_mode=WAL"_s);
    }
    RawDb plainRaw(plainFile), plainReset(plainFile);
    auto plainModule = moduleOn(plainFile);
    kav::Connection& plainCnt = plainModule->DtEn().cnt();

    const std::vector<double> t =
        Rotate(ctx.reps * 2,
               {[&] { rawSave(raw, true); }, [&] { moduleSave(cnt); },
                [&] { raw.stepAll(overlap, {u"EmployeeID"_s}); }, [&] { rawSave(plainRaw, false); },
                [&] { moduleSave(plainCnt); }},
               // On a connection of its own, so that both
               // contenders find the other's writes alike.
               [&] {
                   reset.exec(backToTemporary);
                   plainReset.exec(backToTemporary);
               });
    ctx.table.add(
        {u"final save of the 1,000-member loan (overlap check and history row included)"_s,
         u"ms"_s,
         t[1],
         t[0],
         {{Target::Kind::AtMost, 50}, {Target::Kind::RatioAtMost, 1.5}},
         {}});
    ctx.table.add({u"  sqlite3 C library: the overlap query alone"_s, u"ms"_s, t[2], t[0], {}, {}});
    ctx.table.add(
        {u"  the same save where the database keeps no history"_s, u"ms"_s, t[4], t[3], {}, {}});
    ctx.table.add({u"  the history row's before and after texts"_s,
                   u"KB"_s,
                   double(row.before.toUtf8().size() + row.after.toUtf8().size()) / 1024.0,
                   std::nullopt,
                   {},
                   {}});

    // The same statements on a copy of the database in the other journal mode, for comparison.
    const QString copyFile = QDir(ctx.workDir).filePath(u"save-journal.db"_s);
    removeFile(copyFile);
    {
        RawDb source(ctx.db);
        source.exec(u"VACUUM INTO '"_s + copyFile + u"'"_s);
    }
    {
        RawDb other(copyFile);
        other.exec(wal ? u"PRAGMA journal_mode=DELETE"_s : u"PRAGMA journal_mode=WAL"_s);
        if (!wal) other.exec(u"PRAGMA synchronous=NORMAL"_s);
        const double ms = Rotate(ctx.reps * 2, {[&] { rawSave(other, true); }},
                                 [&] { other.exec(backToTemporary); })[0];
        ctx.table.add({wal ? u"  sqlite3 C library: the same with the rollback journal"_s
                           : u"  sqlite3 C library: the same with WAL, synchronous=NORMAL"_s,
                       u"ms"_s,
                       ms,
                       t[0],
                       {},
                       {}});
    }
    removeFile(copyFile);
    plainModule.reset();
    removeFile(plainFile);
}

void schedule(Context& ctx) {
    progress("a member's schedule with 300 months of payslips");
    RawDb raw(ctx.db);
    auto module = moduleOn(ctx.db);
    kav::FormHRException& window = module->Window<kav::FormHRException>();
    window.resize(1000, 700);
    window.show();
    settle();
    const qint32 loan = ctx.landmarks.longScheduleLoanId;
    const qint32 employee = ctx.landmarks.longScheduleEmployeeId;
    window.txtPaidID->setText(QString::number(loan));
    const std::vector<double> t = Rotate(
        ctx.reps * 3, {[&] {
                           raw.stepAll(kav::adjustment_sql::LoanHeader(loan));
                           raw.stepAll(kav::adjustment_sql::MemberLoanRows(loan, employee));
                           raw.stepAll(kav::adjustment_sql::MemberAdjustments(loan, employee));
                           raw.stepAll(kav::schedule::MemberPayslipsQuery({}, loan, employee));
                       },
                       [&] {
                           window.ViewPRSBalance(employee);
                           settle();
                       }});
    ctx.table.add(
        {u"a member's schedule with %1 months of payslip rows"_s.arg(window.Schedule().rows.size()),
         u"ms"_s,
         t[1],
         t[0],
         {{Target::Kind::AtMost, 20}},
         {}});
}

// The columns the register reads of its three texts.
const QStringList kRegisterMemberColumns = {
    u"LoanID"_s,         u"EmployeeID"_s,    u"LoanCode"_s,
    u"TypeID"_s,         u"LoanTypeName"_s,  u"LoanValue"_s,
    u"MonthlyValue"_s,   u"PayBackNumber"_s, u"UseRemainedValueInFirstMonth"_s,
    u"FarsiBeginDate"_s, u"FarsiEndDate"_s,  u"EmployeeCode"_s,
    u"FirstName"_s,      u"SureName"_s,      u"WorkStatusID"_s};
const QStringList kRegisterAdjustmentColumns = {u"ID"_s,           u"LoanID"_s,
                                                u"EmployeeID"_s,   u"FarsiBeginDate"_s,
                                                u"FarsiEndDate"_s, u"MonthlyDebit"_s};
const QStringList kRegisterPayslipColumns = {u"LoanID"_s, u"EmployeeID"_s, u"PayMonth"_s,
                                             u"PaidValue"_s};

void deductionsRegister(Context& ctx) {
    progress("the monthly register of the working month");
    RawDb raw(ctx.db);
    auto module = moduleOn(ctx.db);
    const int month = WorkYear * 12 + WorkMonth - 1;
    namespace sql = kav::deductions::deductions_sql;
    const QString members = sql::MembersQuery({}), adjustments = sql::AdjustmentsQuery({}),
                  payslips = sql::PayslipsQuery({}, {});
    const auto rawRegister = [&] {
        raw.stepAll(members, kRegisterMemberColumns);
        raw.stepAll(adjustments, kRegisterAdjustmentColumns);
        raw.stepAll(payslips, kRegisterPayslipColumns);
    };
    rawRegister();  // the file's pages in the operating system's cache for both

    kav::FormDeductions& form = module->Window<kav::FormDeductions>();
    form.resize(1280, 720);
    form.show();
    settle();
    // What the register adds to the window: its first search, from the empty window.
    malloc_trim(0);
    const long rssBefore = ResidentKb();
    QElapsedTimer timer;
    timer.start();
    form.RefreshRegister();
    settle();
    const double firstMs = double(timer.nsecsElapsed()) / 1e6;
    const double added = double(ResidentKb() - rssBefore) / 1024.0;
    const qsizetype rows = form.RegisterShown().rows.size();

    kav::Connection& cnt = module->DtEn().cnt();
    volatile qsizetype sink = 0;
    const std::vector<double> t =
        Rotate(ctx.reps, {rawRegister,
                          [&] {
                              form.RefreshRegister();
                              settle();
                          },
                          [&] {
                              sink = sink + kav::deductions::ReadRegister(
                                                cnt, module->session.PayslipColumns, month)
                                                .rows.size();
                          }});
    const QString n = QLocale(QLocale::English).toString(rows);
    ctx.table.add({u"monthly register of 1403/07, %1 rows into the grid (totals included)"_s.arg(n),
                   u"ms"_s,
                   t[1],
                   t[0],
                   {{Target::Kind::AtMost, 1500}, {Target::Kind::RatioAtMost, 2.0}},
                   {}});
    ctx.table.add(
        {u"  the first search, its memory new to the process"_s, u"ms"_s, firstMs, t[0], {}, {}});
    ctx.table.add({u"  ReadRegister alone (three texts, every member's month)"_s,
                   u"ms"_s,
                   t[2],
                   t[0],
                   {},
                   {}});
    ctx.table.add({u"memory the %1-row register adds to its window (resident)"_s.arg(n),
                   u"MB"_s,
                   added,
                   {},
                   {{Target::Kind::AtMost, 100}},
                   {}});
}

void startUp(Context& ctx) {
    progress("start-up on the demo database");
    const QString home = QDir(ctx.workDir).filePath(u"startup-home"_s);
    QDir().mkpath(home);
    const QString log = QDir(ctx.workDir).filePath(u"startup.log"_s);
    QFile::remove(log);
    const QStringList args = {u"--connection"_s, kav::data::EmbeddedConnectionString(ctx.demoDb),
                              u"--user"_s, QString::number(kav::data::DemoUserWithPermissions),
                              u"--quit-when-shown"_s};
    // The program keeps its settings in a home of its own, never the user's.
    const QStringList env = {u"QT_QPA_PLATFORM=offscreen"_s,
                             u"HOME="_s + home,
                             u"XDG_CONFIG_HOME="_s + home + u"/config"_s,
                             u"XDG_DATA_HOME="_s + home + u"/data"_s,
                             u"XDG_CACHE_HOME="_s + home + u"/cache"_s,
                             u"XDG_RUNTIME_DIR="_s + home};
    QFile::setPermissions(home,
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    std::vector<double> wall, cpu;
    long peak = 0;
    for (int i = 0; i < ctx.reps * 2 + 1; ++i) {
        const ProcessRun run = RunProcess(ctx.app, args, env, log, 30000);
        if (run.exitCode != 0) {
            std::fprintf(stderr, "kav_bench: kavhrloan failed (exit %d); see %s\n", run.exitCode,
                         log.toUtf8().constData());
            return;
        }
        if (i == 0) continue;  // the first run fills the font and file caches
        wall.push_back(run.wallMs / 1000.0);
        cpu.push_back(run.cpuMs / 1000.0);
        peak = std::max(peak, run.peakKb);
    }
    ctx.table.add({u"start-up to the editor shown, demo database: wall"_s,
                   u"s"_s,
                   Median(wall),
                   {},
                   {{Target::Kind::AtMost, 0.3}},
                   {}});
    // Processor time depends far less on what else the machine runs than the wall time.
    ctx.table.add(
        {u"  start-up: processor time (user and system)"_s, u"s"_s, Median(cpu), {}, {}, {}});
    ctx.table.add({u"start-up: peak resident memory"_s,
                   u"MB"_s,
                   double(peak) / 1024.0,
                   {},
                   {{Target::Kind::AtMost, 60}},
                   {}});
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setLayoutDirection(Qt::RightToLeft);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Measures the loan module against raw SQLite."_s);
    parser.addHelpOption();
    const QCommandLineOption db(u"db"_s, u"The large database."_s, u"FILE"_s);
    const QCommandLineOption demoDb(u"demo-db"_s, u"The demo database."_s, u"FILE"_s);
    const QCommandLineOption appPath(u"app"_s, u"The kavhrloan program."_s, u"FILE"_s);
    const QCommandLineOption reps(u"reps"_s, u"Rounds per measurement (default 7)."_s, u"N"_s,
                                  u"7"_s);
    const QCommandLineOption only(
        u"only"_s,
        u"Run only these measurements: search, open, save, adjustments, schedule, deductions, "
        "startup."_s,
        u"NAMES"_s);
    parser.addOptions({db, demoDb, appPath, reps, only});
    parser.process(app);
    if (!parser.isSet(db) || !parser.isSet(demoDb) || !parser.isSet(appPath)) parser.showHelp(2);

    Context ctx;
    ctx.db = parser.value(db);
    ctx.demoDb = parser.value(demoDb);
    ctx.app = parser.value(appPath);
    ctx.workDir = QFileInfo(ctx.db).absolutePath();
    ctx.reps = std::max(1, parser.value(reps).toInt());
    try {
        {
            RawDb raw(ctx.db);
            ctx.landmarks = FindLandmarks(raw);
        }
        const QStringList chosen = parser.value(only).split(u',', Qt::SkipEmptyParts);
        const std::pair<QString, void (*)(Context&)> measurements[] = {
            {u"search"_s, search},     {u"open"_s, openBigLoan},
            {u"save"_s, finalSave},    {u"adjustments"_s, adjustmentList},
            {u"schedule"_s, schedule}, {u"deductions"_s, deductionsRegister},
            {u"startup"_s, startUp}};
        for (const auto& [name, run] : measurements)
            if (chosen.isEmpty() || chosen.contains(name)) run(ctx);
    } catch (const kav::KavError& e) {
        std::fprintf(stderr, "kav_bench: %s\n", e.message().toUtf8().constData());
        return 1;
    }
    ctx.table.print();
    return 0;
}
