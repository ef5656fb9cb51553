#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <map>

#include "../loan_editor/EditorFixture.h"
#include "controls/FlexGrid.h"
#include "host/PropertyBag.h"
#include "host/kavHRLoan1.h"
#include "loan_editor/FormHRLoan.h"
#include "search/FormSearch.h"
#include "support/QtPrinters.h"
#include "support/Raises.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

// A bag that remembers what was written, in order.
class MemoryBag : public PropertyBag {
public:
    QVariant ReadProperty(const QString& name, const QVariant& def) override {
        reads << name;
        auto it = stored.find(name);
        return it == stored.end() ? def : it->second;
    }
    void WriteProperty(const QString& name, const QVariant& value, const QVariant& def) override {
        writes << name;
        if (value.toString() == def.toString())
            stored.erase(name);
        else
            stored[name] = value;
    }
    std::map<QString, QVariant> stored;
    QStringList reads, writes;
};

class HostTest : public EditorTest {
protected:
    void SetUp() override {
        EditorTest::SetUp();
        session().SessionTitle.clear();
        host = std::make_unique<kavHRLoan1>(std::shared_ptr<Module>(&t.module, [](Module*) {}));
        host->setOLEConnectionstring(t.db.connectionString());
        host->setUserID(1);
        t.module.SetModalRunner([this](QDialog& d) {
            ++shown;
            modeWhenShown = session().LoanFormMode;
            titleWhenShown = d.windowTitle();
            return 0;
        });
    }
    std::unique_ptr<kavHRLoan1> host;
    int shown = 0;
    qint32 modeWhenShown = -1;
    QString titleWhenShown;
};

}  // namespace

TEST(HostProperties, InitialValuesAndChangeNotifications) {
    kavHRLoan1 c;
    EXPECT_EQ(c.UserID(), 0);
    EXPECT_EQ(c.OLEConnectionstring(), u"0"_s);
    EXPECT_EQ(c.PRSEmployeeID(), 0);
    EXPECT_TRUE(c.Caption().isEmpty());
    QSignalSpy spy(&c, &kavHRLoan1::propertyChanged);
    c.setUserID(3);
    c.setPositionID(4);
    c.setOLEConnectionstring(u"x"_s);
    c.setEmployeeID(5);
    c.setPRSEmployeeID(6);
    c.setCaption(u"c"_s);
    c.setModeWithChilds(1);
    QStringList names;
    for (const auto& args : spy) names << args.at(0).toString();
    EXPECT_EQ(names,
              (QStringList{u"UserID"_s, u"PositionID"_s, u"OLEConnectionstring"_s, u"EmployeeID"_s,
                           u"PRSEmployeeID"_s, u"Caption"_s, u"ModeWithChilds"_s}));
}

TEST(HostProperties, BagRoundTripInOrderWithoutDefaultsOrPRSEmployee) {
    const QStringList order{u"UserID"_s,     u"PositionID"_s, u"OLEConnectionstring"_s,
                            u"EmployeeID"_s, u"Caption"_s,    u"ModeWithChilds"_s};
    MemoryBag bag;
    kavHRLoan1 a;
    a.WriteProperties(bag);
    EXPECT_EQ(bag.writes, order);
    EXPECT_TRUE(bag.stored.empty());  // every value equals its default

    kavHRLoan1 b;
    b.setPRSEmployeeID(5);
    b.ReadProperties(bag);
    EXPECT_EQ(bag.reads, order);
    EXPECT_TRUE(b.UnreadProperties().isEmpty());
}

// Each property goes to the settings under its own name, with its own value, and leaves
// them when set back to its default.
TEST(HostProperties, SettingsKeepEachPropertyUnderItsNameUntilItIsTheDefaultAgain) {
    QTemporaryDir dir;
    const QString file = dir.filePath(u"host.ini"_s);
    {
        kavHRLoan1 a;
        a.setUserID(12);
        a.setPositionID(34);
        a.setOLEConnectionstring(u"Provider=SQLite;Data Source=x.db"_s);
        a.setEmployeeID(56);
        a.setPRSEmployeeID(99);
        a.setCaption(u" وام "_s);
        a.setModeWithChilds(7);
        QSettings settings(file, QSettings::IniFormat);
        SettingsPropertyBag bag(settings, u"kavHRLoan1"_s);
        a.WriteProperties(bag);
    }
    {
        QSettings settings(file, QSettings::IniFormat);
        QStringList keys = settings.allKeys();
        keys.sort();
        EXPECT_EQ(keys,
                  (QStringList{u"kavHRLoan1/Caption"_s, u"kavHRLoan1/EmployeeID"_s,
                               u"kavHRLoan1/ModeWithChilds"_s, u"kavHRLoan1/OLEConnectionstring"_s,
                               u"kavHRLoan1/PositionID"_s, u"kavHRLoan1/UserID"_s}));
        EXPECT_EQ(settings.value(u"kavHRLoan1/UserID"_s).toInt(), 12);
        EXPECT_EQ(settings.value(u"kavHRLoan1/PositionID"_s).toInt(), 34);
        EXPECT_EQ(settings.value(u"kavHRLoan1/EmployeeID"_s).toInt(), 56);
        EXPECT_EQ(settings.value(u"kavHRLoan1/ModeWithChilds"_s).toInt(), 7);
        EXPECT_EQ(settings.value(u"kavHRLoan1/Caption"_s).toString(), u" وام "_s);

        kavHRLoan1 b;
        b.setPRSEmployeeID(5);
        SettingsPropertyBag bag(settings, u"kavHRLoan1"_s);
        b.ReadProperties(bag);
        EXPECT_EQ(b.UserID(), 12);
        EXPECT_EQ(b.PositionID(), 34);
        EXPECT_EQ(b.OLEConnectionstring(), u"Provider=SQLite;Data Source=x.db"_s);
        EXPECT_EQ(b.EmployeeID(), 56);
        EXPECT_EQ(b.Caption(), u" وام "_s);
        EXPECT_EQ(b.ModeWithChilds(), 7);

        // Back to the defaults: nothing is left stored.
        b.setUserID(0);
        b.setPositionID(0);
        b.setOLEConnectionstring(u"0"_s);
        b.setEmployeeID(0);
        b.setCaption(QString());
        b.setModeWithChilds(0);
        b.WriteProperties(bag);
    }
    QSettings settings(file, QSettings::IniFormat);
    EXPECT_EQ(settings.allKeys(), QStringList());
}

// A stored value a 16-bit property cannot hold is refused by name, never read as 0 in
// silence; the other properties are read all the same.
TEST(HostProperties, AStoredValueThatIsNoNumberIsRefusedByName) {
    MemoryBag bag;
    bag.stored[u"UserID"_s] = u"abc"_s;
    bag.stored[u"EmployeeID"_s] = u"40000"_s;
    bag.stored[u"PositionID"_s] = u" 8 "_s;
    bag.stored[u"Caption"_s] = u"عنوان"_s;
    kavHRLoan1 c;
    c.setUserID(5);
    try {
        c.ReadProperties(bag);
        ADD_FAILURE() << "read without complaint";
    } catch (const KavError& e) {
        EXPECT_EQ(e.kind(), KavError::Kind::TypeMismatch);
        EXPECT_EQ(e.message(), u"مقدار ذخيره شده ويژگي UserID («abc») عدد نيست."_s);
    }
    EXPECT_EQ(c.UnreadProperties(), (QStringList{u"UserID"_s, u"EmployeeID"_s}));
    EXPECT_EQ(c.UserID(), 0);
    EXPECT_EQ(c.EmployeeID(), 0);
    EXPECT_EQ(c.PositionID(), 8);
    EXPECT_EQ(c.Caption(), u"عنوان"_s);

    bag.stored.erase(u"UserID"_s);
    try {
        c.ReadProperties(bag);
        ADD_FAILURE() << "read without complaint";
    } catch (const KavError& e) {
        EXPECT_EQ(e.kind(), KavError::Kind::Overflow);
        EXPECT_EQ(e.message(),
                  u"مقدار ذخيره شده ويژگي EmployeeID («40000») خارج از محدوده عدد صحيح 16 بيتي "
                  u"(32768- تا 32767) است."_s);
    }
    EXPECT_EQ(c.UnreadProperties(), QStringList{u"EmployeeID"_s});
}

TEST_F(HostTest, ClearShowModeFollowsPRSEmployee) {
    for (const auto& [prs, mode] :
         std::vector<std::pair<qint32, qint32>>{{0, 3}, {-4, 3}, {17, 2}}) {
        host->setPRSEmployeeID(prs);
        host->ClearShow();
        EXPECT_EQ(modeWhenShown, mode) << prs;
    }
    EXPECT_EQ(shown, 3);
    EXPECT_EQ(titleWhenShown, u"وام کارمندان (جديد)"_s);
    EXPECT_TRUE(t.messages->shown.isEmpty());
}

TEST_F(HostTest, ClearShowTitles) {
    host->setCaption(u"   "_s);
    host->ClearShow();
    EXPECT_EQ(session().SessionTitle, u"وام کارمندان"_s);
    EXPECT_EQ(session().SessionSearchTitle, u"وام کارمندان"_s);
    host->setCaption(u" وام ويژه "_s);
    host->ClearShow();
    EXPECT_EQ(session().SessionTitle, u" وام ويژه "_s);  // as it stands, untrimmed
    EXPECT_EQ(session().SessionSearchTitle, u" وام ويژه "_s);
}

TEST_F(HostTest, RoleRefusalLeavesTheWindowLoadedButUnshown) {
    host->ClearShow();
    EXPECT_FALSE(host->RoleWasRefused());
    host->setUserID(2);  // no permissions
    host->setPRSEmployeeID(3);
    host->ClearShow();
    EXPECT_TRUE(host->RoleWasRefused());
    EXPECT_EQ(shown, 1);
    ASSERT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(t.messages->last().title, u"خطا"_s);
    EXPECT_EQ(t.messages->last().text,
              u"شما فاقد نقش مورد نظر هستيد. به نگهدارنده سيستم رجوع فرمائيد."_s);
    ASSERT_TRUE(t.module.HasWindow<FormHRLoan>());
    EXPECT_EQ(t.module.Window<FormHRLoan>().windowTitle(), u"وام کارمندان (جديد)"_s);
}

TEST_F(HostTest, ViewNeedsNoRoleAndKeepsTheTitles) {
    host->setUserID(2);
    host->setCaption(u"عنوان"_s);
    session().SessionTitle = u"قبلي"_s;
    qint32 id = FinalLoan;
    host->View(id);
    EXPECT_EQ(id, FinalLoan);
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(modeWhenShown, 0);
    EXPECT_EQ(titleWhenShown, u"وام کارمندان (مشاهده)"_s);
    EXPECT_EQ(session().SessionTitle, u"قبلي"_s);
    EXPECT_EQ(session().SessionUserID, 2);
    EXPECT_EQ(t.module.Window<FormHRLoan>().txtCode->text(), u"7"_s);
    EXPECT_TRUE(t.messages->shown.isEmpty());
}

TEST_F(HostTest, ClosedWindowIsLoadedAfreshNextTime) {
    t.module.SetModalRunner([this](QDialog& d) {
        ++shown;
        d.show();
        d.close();  // the empty mode closes without a question
        return 0;
    });
    host->ClearShow();
    EXPECT_FALSE(t.module.HasWindow<FormHRLoan>());
    host->ClearShow();
    EXPECT_EQ(shown, 2);
}

TEST_F(HostTest, BenchViewAndGridDoubleClick) {
    host->TxtID->setText(u"abc"_s);
    host->CmdView->click();  // through the handler boundary
    EXPECT_EQ(shown, 0);
    ASSERT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(t.messages->last().title, u"خطا"_s);

    host->TxtID->setText(u"2"_s);
    host->CmdView->click();
    EXPECT_EQ(shown, 1);

    auto* grid = host->FlexTempDocs;
    grid->setCols(2);
    grid->setRows(1);
    host->FlexTempDocs_DblClick();  // header only
    grid->setRows(3);
    grid->setTextMatrix(1, 0, u"1"_s);
    grid->setRow(2);  // empty first cell
    host->FlexTempDocs_DblClick();
    EXPECT_EQ(shown, 1);
    grid->setRow(1);
    host->FlexTempDocs_DblClick();
    EXPECT_EQ(shown, 2);
}

TEST_F(HostTest, PositionTreeImagesStepOnExpandAndCollapse) {
    auto* node = new QTreeWidgetItem(host->treePosition, QStringList{u"واحد"_s});
    new QTreeWidgetItem(node, QStringList{u"زير واحد"_s});
    host->treePosition_Expand(node);
    EXPECT_EQ(node->data(0, Qt::UserRole + 1).toInt(), 7);
    host->treePosition_Expand(node);
    EXPECT_EQ(node->data(0, Qt::UserRole + 1).toInt(), 8);
    host->treePosition_Collapse(node);
    EXPECT_EQ(node->data(0, Qt::UserRole + 1).toInt(), 7);
}

// From the editor's search button to a found loan shown in the editor in view mode.
TEST_F(HostTest, SearchOpensAFoundLoanInTheEditor) {
    t.module.SetModalRunner([](QDialog& d) {
        if (auto* s = qobject_cast<FormSearch*>(&d)) {
            s->chkTempSave->setChecked(false);  // final loans only: loan 2
            s->cmdSearch->click();
            s->Flexsearchresult->setRow(1);
            s->Flexsearchresult_DblClick();
        }
        return 0;
    });
    host->ClearShow();
    FormHRLoan& editor = t.module.Window<FormHRLoan>();
    editor.cmdSearch->click();
    EXPECT_EQ(session().LoanFormMode, 0);
    EXPECT_EQ(editor.txtID->text(), u"2"_s);
    EXPECT_EQ(editor.txtCode->text(), u"7"_s);
    EXPECT_EQ(editor.windowTitle(), u"وام کارمندان (مشاهده)"_s);
    EXPECT_TRUE(t.module.HasWindow<FormSearch>());  // hidden, kept for the next search
    EXPECT_TRUE(t.messages->shown.isEmpty());
}

// What the entry methods raise reaches the host, as their documentation says.
TEST_F(HostTest, EntryMethodsRaiseWhenTheDatabaseDoesNotOpen) {
    host->setOLEConnectionstring(u"Provider=SQLite;Data Source=/no/such/folder/loans.db"_s);
    EXPECT_EQ(RaisedKind([&] { host->ClearShow(); }), KavError::Kind::Connection);
    qint32 id = FinalLoan;
    EXPECT_EQ(RaisedKind([&] { host->View(id); }), KavError::Kind::Connection);
    EXPECT_EQ(shown, 0);
}

// The developer's connection names no account and no password, and when it does not open
// the bench puts the properties back, so it is never stored.
TEST_F(HostTest, TheBenchKeepsNoConnectionThatFailedToOpen) {
    const QString developer = kavHRLoan1::DeveloperConnectionString();
    EXPECT_TRUE(developer.contains(u"Integrated Security=SSPI;"_s));
    EXPECT_TRUE(developer.contains(u"Password=;"_s));
    EXPECT_TRUE(developer.contains(u"User ID=;"_s));

    // The developer's server is this machine (the loopback address), where none answers.
    host->setPositionID(4);
    host->setEmployeeID(6);
    host->Command2->click();
    EXPECT_EQ(shown, 0);
    ASSERT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(t.messages->last().title, u"خطا"_s);
    EXPECT_EQ(host->OLEConnectionstring(), t.db.connectionString());
    EXPECT_EQ(host->UserID(), 1);
    EXPECT_EQ(host->PositionID(), 4);
    EXPECT_EQ(host->EmployeeID(), 6);
}

TEST_F(HostTest, TheBenchProgressBarLeavesTheGridWhole) {
    for (const QSize size : {QSize(720, 420), QSize(500, 300), QSize(1200, 900)}) {
        host->resize(size);
        host->show();
        QApplication::processEvents();
        const QRect grid = host->FlexTempDocs->geometry();
        const QRect progress = host->Progress->geometry();
        EXPECT_FALSE(grid.intersects(progress));
        EXPECT_EQ(grid.bottom() + 1, progress.top());
        EXPECT_FALSE(grid.intersects(host->treePosition->geometry()));
        EXPECT_GT(grid.height(), 0);
    }
}
