// kav_bench: measures the module on the large database side by side with the same SQL texts
// run through the sqlite3 C library in this process, and start-up on the demo database, and
// prints one table.
//
//   kav_bench --db LARGE.db --demo-db DEMO.db --app path/to/kavhrloan [--reps N]

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QSqlQuery>
#include <QSqlRecord>
#include <cstdio>

#include "Harness.h"
#include "LargeDatabase.h"
#include "RawSqlite.h"
#include "base/Errors.h"
#include "data/DemoData.h"
#include "data/SqlDialect.h"
#include "loan_editor/FormHRLoan.h"
#include "loan_editor/LoanEditorSql.h"
#include "session/DataEnvironment.h"
#include "session/Module.h"

using namespace Qt::StringLiterals;
using namespace kav::bench;

namespace {

const kav::data::SqlDialect kSqlite(kav::data::DatabaseKind::SQLite);

// The search's text with no criterion and both statuses ticked.
const QString kSearchText =
    u"Select *, (select x.code from tblHRLoan x where x.id=loanid) as LoanCode, (select "
    u"x.FirstName from tblEmployee x where x.id=EmployeeID) as FirstName, (select x.SureName from "
    u"tblEmployee x where x.id=EmployeeID) as SureName from vwHRLoanData where ID >=0 "_s;
// The columns the search's result grid shows.
const QStringList kSearchColumns = {u"EmployeeCode"_s,
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

// The adjustment list with no filter, and the columns its grid shows.
const QString kAdjustmentListText = u"Select * from vwHRLoanException Where ID>=0 "_s;
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
                              [&] {
                                  editor.ViewPRSLoansInfo(id);
                                  QApplication::processEvents();  // the window repaints
                              },
                              [&] { raw.stepAll(headerText, kHeaderColumns); },
                              [&] { kav::Recordset(cnt).Open(headerText); },
                              [&] { raw.stepAll(memberText, kMemberColumns); },
                              [&] { kav::Recordset(cnt).Open(memberText); },
                              [&] {
                                  editor.FillLoanDetail(id);
                                  QApplication::processEvents();
                              }});
    ctx.table.add({u"open the 1,000-member loan in the editor (header, member grid)"_s,
                   u"ms"_s,
                   t[1],
                   t[0],
                   {{Target::Kind::AtMost, 100}, {Target::Kind::RatioAtMost, 1.5}},
                   {}});
    ctx.table.add({u"  header text (1,000 rows): Recordset::Open"_s, u"ms"_s, t[3], t[2], {}, {}});
    ctx.table.add({u"  member text: Recordset::Open"_s, u"ms"_s, t[5], t[4], {}, {}});
    ctx.table.add({u"  member text: FillLoanDetail, the grid filled and painted"_s,
                   u"ms"_s,
                   t[6],
                   t[4],
                   {},
                   {}});
}

void search(Context& ctx) {
    progress("the search's text over every member row");
    RawDb raw(ctx.db);
    auto module = moduleOn(ctx.db);
    kav::Connection& cnt = module->DtEn().cnt();
    const qint64 rows = raw.stepAll(kSearchText, kSearchColumns);
    volatile qsizetype sink = 0;
    const std::vector<double> t = Rotate(
        ctx.reps, {
                      [&] { raw.stepAll(kSearchText, kSearchColumns); },
                      // The floor of a data environment on the sqlite3 C library that hands the
                      // grid the shown cells as UTF-8, converted only when painted.
                      [&] { sink = sink + raw.utf8Cells(kSearchText, kSearchColumns).ends.size(); },
                      // The same, each shown cell made a QString at once.
                      [&] { sink = sink + raw.rows(kSearchText, kSearchColumns).size(); },
                      // QtSql without the data environment: a forward-only query, the shown columns
                      // by index, each turned into a QString.
                      [&] {
                          QSqlQuery q(cnt.Database());
                          q.setForwardOnly(true);
                          q.exec(kSearchText);
                          std::vector<int> index;
                          for (const QString& c : kSearchColumns)
                              index.push_back(q.record().indexOf(c));
                          while (q.next())
                              for (int i : index) sink = sink + q.value(i).toString().size();
                      },
                      // The data environment as it is: every row of every column read into
                      // QVariants, then the shown columns read by name.
                      [&] {
                          kav::Recordset rs(cnt);
                          rs.Open(kSearchText);
                          for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext())
                              for (const QString& c : kSearchColumns)
                                  sink = sink + rs.Fields(c).toString().size();
                          rs.Close();
                      },
                  });
    const QString n = QLocale(QLocale::English).toString(rows);
    ctx.table.add({u"search, no criteria, %1 rows into the result grid"_s.arg(n),
                   u"ms"_s,
                   {},
                   t[0],
                   {{Target::Kind::RatioAtMost, 1.3}},
                   u"waits for the search window"_s});
    ctx.table.add(
        {u"  sqlite3 C library, shown cells kept as UTF-8"_s, u"ms"_s, t[1], t[0], {}, {}});
    ctx.table.add({u"  sqlite3 C library, shown cells as QString"_s, u"ms"_s, t[2], t[0], {}, {}});
    ctx.table.add(
        {u"  QtSql forward-only query, shown cells as QString"_s, u"ms"_s, t[3], t[0], {}, {}});
    ctx.table.add({u"  data environment today: Recordset::Open, shown cells by name"_s,
                   u"ms"_s,
                   t[4],
                   t[0],
                   {},
                   {}});

    // What holding the result costs.
    double mb[3];
    {
        const double before = HeapInUseMb();
        const RawDb::Utf8Cells cells = raw.utf8Cells(kSearchText, kSearchColumns);
        mb[0] = HeapInUseMb() - before;
    }
    {
        const double before = HeapInUseMb();
        const QList<QStringList> cells = raw.rows(kSearchText, kSearchColumns);
        mb[1] = HeapInUseMb() - before;
    }
    {
        const double before = HeapInUseMb();
        kav::Recordset rs(cnt);
        rs.Open(kSearchText);
        mb[2] = HeapInUseMb() - before;
    }
    ctx.table.add({u"  memory held: shown cells as UTF-8"_s, u"MB"_s, mb[0], {}, {}, {}});
    ctx.table.add({u"  memory held: shown cells as QStrings"_s, u"MB"_s, mb[1], {}, {}, {}});
    ctx.table.add({u"  memory held: the open Recordset (every column as QVariant)"_s,
                   u"MB"_s,
                   mb[2],
                   {},
                   {},
                   {}});
}

void adjustmentList(Context& ctx) {
    progress("the adjustment list's text");
    RawDb raw(ctx.db);
    const qint64 rows = raw.stepAll(kAdjustmentListText, kAdjustmentColumns);
    const std::vector<double> t =
        Rotate(ctx.reps * 3, {[&] { raw.stepAll(kAdjustmentListText, kAdjustmentColumns); }});
    ctx.table.add(
        {u"adjustment list, no filter, %1 rows"_s.arg(QLocale(QLocale::English).toString(rows)),
         u"ms"_s,
         {},
         t[0],
         {{Target::Kind::RatioAtMost, 1.3}},
         u"waits for the adjustment list"_s});
}

// The statements of a final save of the loan as it is stored, in the embedded dialect: the
// overlap check, the header with the next loan number, the member rows rewritten.
struct SaveTexts {
    QString overlap, header, deleteMembers;
    QStringList inserts;
};

SaveTexts finalSaveTexts(RawDb& raw, qint32 id) {
    auto text = [&](const QString& column) {
        return raw
            .scalar(u"select "_s + column + u" from tblHRLoan where ID="_s + QString::number(id))
            .toString();
    };
    auto value = [&](const QString& column) {
        const QVariant v = raw.scalar(u"select "_s + column + u" from tblHRLoan where ID="_s +
                                      QString::number(id));
        return v.isNull() ? u"Null"_s : v.toString();
    };
    SaveTexts s;
    QStringList members;
    const auto rows = raw.rows(
        u"select EmployeeID, SupporterEmployeeID1, SupporterEmployeeID2, "
        u"SupporterEmployeeID3 from tblHRLoanDetail where LoanID="_s +
        QString::number(id) + u" order by ID"_s);
    for (const QStringList& r : rows) {
        members << r[0];
        s.inserts << u"insert into tblHRLoanDetail(LoanID, EmployeeID, SupporterEmployeeID1, "
                     u"SupporterEmployeeID2, SupporterEmployeeID3) Values ("_s +
                         QString::number(id) + u", "_s + r[0] + u", "_s +
                         (r[1].isEmpty() ? u"null"_s : r[1]) + u", "_s +
                         (r[2].isEmpty() ? u"null"_s : r[2]) + u", "_s +
                         (r[3].isEmpty() ? u"null"_s : r[3]) + u")"_s;
    }
    s.overlap = u"Select distinct EmployeeID from tblHRLoanDetail Where EmployeeID in ("_s +
                members.join(u","_s) + u") and LoanID <> "_s + QString::number(id) +
                u" and LoanID in (Select x.ID from tblHRLoan x Where Not (x.BeginDate>'"_s +
                text(u"EndDate"_s) + u"' Or x.EndDate < '"_s + text(u"BeginDate"_s) +
                u"') and TypeID="_s + text(u"TypeID"_s) + u")"_s;
    const QString notes = text(u"Notes"_s);
    s.header = u"Update tblHRLoan Set TypeID = "_s + text(u"TypeID"_s) +
               u", Code =  IfNull((Select MAX(x.CODE) from tblHRLoan x Where x.Code is not null), "
               u"0)+1"_s +
               u", PaymentDate = '"_s + text(u"PaymentDate"_s) + u"'"_s +
               u", FarsiPaymentDate = '"_s + text(u"FarsiPaymentDate"_s) + u"'"_s +
               u", BeginDate = '"_s + text(u"BeginDate"_s) + u"'"_s + u", FarsiBeginDate = '"_s +
               text(u"FarsiBeginDate"_s) + u"'"_s + u", EndDate = '"_s + text(u"EndDate"_s) +
               u"'"_s + u", FarsiEndDate = '"_s + text(u"FarsiEndDate"_s) + u"'"_s +
               u", OriginalLoanValue="_s + value(u"OriginalLoanValue"_s) + u", MonthlyValue="_s +
               value(u"MonthlyValue"_s) + u", LoanValue="_s + value(u"LoanValue"_s) +
               u", PayBackNumber="_s + value(u"PayBackNumber"_s) +
               u", UseRemainedValueInFirstMonth="_s + value(u"UseRemainedValueInFirstMonth"_s) +
               u", Notes="_s + (notes.trimmed().isEmpty() ? u"Null"_s : u"'"_s + notes + u"'"_s) +
               u" Where ID= "_s + QString::number(id);
    s.deleteMembers = u"delete from tblHRLoanDetail Where LoanID="_s + QString::number(id);
    return s;
}

void finalSave(Context& ctx) {
    progress("the final save's statements for the loan with 1,000 members");
    RawDb raw(ctx.db);
    const qint32 id = ctx.landmarks.bigLoanId;
    const SaveTexts s = finalSaveTexts(raw, id);
    const QString backToTemporary =
        u"Update tblHRLoan Set Code = Null where ID="_s + QString::number(id);
    raw.exec(backToTemporary);  // in case an earlier run stopped half-way
    auto statements = [&] {
        raw.exec(s.header);
        raw.exec(s.deleteMembers);
        for (const QString& insert : s.inserts) raw.exec(insert);
    };
    const std::vector<double> t = Rotate(ctx.reps * 2,
                                         {[&] {
                                              raw.exec(u"BEGIN IMMEDIATE"_s);
                                              raw.stepAll(s.overlap, {u"EmployeeID"_s});
                                              statements();
                                              raw.exec(u"COMMIT"_s);
                                          },
                                          [&] { raw.stepAll(s.overlap, {u"EmployeeID"_s}); },
                                          [&] {
                                              raw.exec(u"BEGIN IMMEDIATE"_s);
                                              statements();
                                              raw.exec(u"ROLLBACK"_s);
                                          }},
                                         [&] { raw.exec(backToTemporary); });
    ctx.table.add({u"final save of the 1,000-member loan (overlap check included)"_s,
                   u"ms"_s,
                   {},
                   t[0],
                   {{Target::Kind::AtMost, 50}, {Target::Kind::RatioAtMost, 1.5}},
                   u"waits for the save"_s});
    // The same on a copy of the database in write-ahead-log mode with synchronous=NORMAL:
    // a commit appends to the log instead of waiting for the disk twice.
    const QString walFile = QDir(ctx.workDir).filePath(u"save-wal.db"_s);
    QFile::remove(walFile);
    QFile::remove(walFile + u"-wal"_s);
    QFile::remove(walFile + u"-shm"_s);
    double walMs = 0;
    if (QFile::copy(ctx.db, walFile)) {
        RawDb wal(walFile);
        wal.exec(u"PRAGMA journal_mode=WAL"_s);
        wal.exec(u"PRAGMA synchronous=NORMAL"_s);
        walMs = Rotate(ctx.reps * 2, {[&] {
                           wal.exec(u"BEGIN IMMEDIATE"_s);
                           wal.stepAll(s.overlap, {u"EmployeeID"_s});
                           wal.exec(s.header);
                           wal.exec(s.deleteMembers);
                           for (const QString& insert : s.inserts) wal.exec(insert);
                           wal.exec(u"COMMIT"_s);
                       }},
                       [&] { wal.exec(backToTemporary); })[0];
    }
    QFile::remove(walFile);
    QFile::remove(walFile + u"-wal"_s);
    QFile::remove(walFile + u"-shm"_s);
    ctx.table.add({u"  sqlite3 C library: the same with WAL journal, synchronous=NORMAL"_s,
                   u"ms"_s,
                   walMs,
                   t[0],
                   {},
                   {}});
    ctx.table.add({u"  sqlite3 C library: the overlap query alone"_s, u"ms"_s, t[1], t[0], {}, {}});
    ctx.table.add({u"  sqlite3 C library: header, delete, 1,000 inserts, not committed"_s,
                   u"ms"_s,
                   t[2],
                   t[0],
                   {},
                   {}});
}

void pending(Context& ctx) {
    ctx.table.add({u"a member's schedule with 300 months of payslip rows"_s,
                   u"ms"_s,
                   {},
                   {},
                   {{Target::Kind::AtMost, 20}},
                   u"waits for the adjustment window"_s});
    ctx.table.add({u"memory the 100,000-row search result grid adds"_s,
                   u"MB"_s,
                   {},
                   {},
                   {{Target::Kind::AtMost, 64}},
                   u"waits for the search window"_s});
}

void startUp(Context& ctx) {
    progress("start-up on the demo database");
    const QString home = QDir(ctx.workDir).filePath(u"startup-home"_s);
    QDir().mkpath(home);
    const QString log = QDir(ctx.workDir).filePath(u"startup.log"_s);
    QFile::remove(log);
    const QStringList args = {u"--connection"_s, kav::data::EmbeddedConnectionString(ctx.demoDb),
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
        u"only"_s, u"Run only these measurements: search, open, save, adjustments, startup."_s,
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
            {u"search"_s, search},   {u"open"_s, openBigLoan},
            {u"save"_s, finalSave},  {u"adjustments"_s, adjustmentList},
            {u"pending"_s, pending}, {u"startup"_s, startUp}};
        for (const auto& [name, run] : measurements)
            if (chosen.isEmpty() || chosen.contains(name)) run(ctx);
    } catch (const kav::KavError& e) {
        std::fprintf(stderr, "kav_bench: %s\n", e.message().toUtf8().constData());
        return 1;
    }
    ctx.table.print();
    return 0;
}
